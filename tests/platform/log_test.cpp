#include <android/log.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <malloc.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

static int writes, interrupted;  // counted, and the first ones to interrupt
static size_t longest = SIZE_MAX;

// Stands before the C library's for every library of this process.
extern "C" ssize_t write(int file, const void* bytes, size_t length) {
    if (++writes > interrupted) return syscall(SYS_write, file, bytes, std::min(length, longest));
    errno = EINTR;
    return -1;
}

namespace {

class Log : public testing::Test {
  protected:
    Log() { setenv("ZOREN_LOG_FILE", path_.c_str(), 1); }
    ~Log() override { std::remove(path_.c_str()); }

    static int print(const char* text, int priority = ANDROID_LOG_INFO, const char* tag = "tag") {
        writes = 0;
        errno = EXDEV;
        const int result = __android_log_print(priority, tag, "%s", text);
        EXPECT_EQ(errno, EXDEV);
        return result;
    }

    const std::string path_ = testing::TempDir() + "zoren_log." + std::to_string(getpid());
};

TEST_F(Log, WritesOneLineAnEntry) {
    std::string all;
    const int priorities[] = {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, INT_MAX};
    for (int i = 0; i < 13; ++i) {
        print("", priorities[i]);
        all += std::string(1, "????VDIWEFS??"[i]) + "/tag: \n";
    }
    const std::string lineEnds(100000, '\n');
    std::string spelled;
    for (size_t i = 1; i < lineEnds.size(); ++i) spelled += "\\n";
    const std::string entries[][3] = {
        {"tag", "\ra\nb\r", "I/tag: \\ra\\nb\\r\n"},
        {lineEnds, lineEnds, "I/" + spelled + "\\n: " + spelled + "\n"},
    };
    for (const auto& [tag, text, line] : entries) {
        EXPECT_EQ(print(text.c_str(), 4, tag.c_str()), static_cast<int>(line.size()));
        EXPECT_EQ(writes, 1);
        all += line;
    }
    EXPECT_EQ(print("", 4, nullptr), 5);
    all += "I/: \n";
    interrupted = 2;
    longest = 5;
    EXPECT_EQ(print("in parts"), 16);
    EXPECT_EQ(writes, 6);
    interrupted = 0;
    longest = SIZE_MAX;
    std::ifstream file(path_);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(content == all + "I/tag: in parts\n");
}

TEST_F(Log, GivesBackWhatItTakes) {
    const mode_t mask = umask(0);
    print("");
    umask(mask);
    EXPECT_EQ(std::filesystem::status(path_).permissions(), std::filesystem::perms{0644});
    const int file = dup(0);
    close(file);
    const size_t used = mallinfo2().uordblks;
    for (int i = 0; i < 10; ++i) print(std::string(20000, 'a').c_str());
    EXPECT_LT(mallinfo2().uordblks, used + 20000);
    const int next = dup(0);
    close(next);
    EXPECT_EQ(next, file);
}

TEST_F(Log, ReportsFailures) {
    setenv("ZOREN_LOG_FILE", "/dev/full", 1);
    EXPECT_EQ(print("text"), -ENOSPC);
    errno = EXDEV;
    const wchar_t surrogate[] = {0xD800, 0};
    EXPECT_EQ(__android_log_print(4, "tag", "%ls", surrogate), -EILSEQ);
    const char* format = nullptr;
    EXPECT_EQ(__android_log_print(4, "tag", format, 0), -EINVAL);
    EXPECT_EQ(errno, EXDEV);
}

TEST_F(Log, FallsBackToStandardError) {
    for (const char* path : {"", "/no/such/folder/log", static_cast<const char*>(nullptr)}) {
        path != nullptr ? setenv("ZOREN_LOG_FILE", path, 1) : unsetenv("ZOREN_LOG_FILE");
        testing::internal::CaptureStderr();
        EXPECT_EQ(print("text\n"), 12);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "I/tag: text\n");
    }
}

}  // namespace
