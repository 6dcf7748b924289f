#include <gtest/gtest.h>

#include <climits>

#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

// The configuration native, reached as Java reaches it: through its method table.

namespace {

using Lines = std::vector<std::string>;

const std::string kCannotRead = "4 zorenconfig: can not read file /system/etc/jpsp \n";
const std::string kFault = "4 zorenconfig: error zorenconfig file \n";
std::string pad(int count) {
    return "4 zorenconfig:  zorenconfig pading_length " + std::to_string(count) + " \n";
}
const std::string kAccess = "access /system/etc/jpsp 4", kOpen = "fopen /system/etc/jpsp r";
const Lines kReadWhole = {kAccess, kOpen, "fclose"};
const Lines kAnswered = {kAccess, kOpen, "fclose", "NewStringUTF"};

// `count` times x, then `end`, sealed.
std::string sealed(size_t count, const std::string& end) {
    return reference::encryptConfig(std::string(count, 'x') + end);
}
std::string byte(int value) { return std::string(1, static_cast<char>(value)); }
std::string xs(size_t count) { return std::string(count, 'x'); }

std::optional<std::string> answer(FakePlatform& platform, FakeLibc& libc) {
    std::optional<std::string> text = platform.config();
    EXPECT_TRUE(libc.balanced()) << "held " << libc.heldBlocks() << ", open " << libc.openFiles
                                 << ", wiped " << libc.keysWiped() << libc.plaintextWiped;
    return text;
}

std::optional<std::string> ask(FakePlatform& platform, FakeLibc& libc, const std::string& content) {
    const TemporaryFile file(content);
    libc.file = file.path();
    return answer(platform, libc);
}

// 20 characters under PKCS#7, encrypted elsewhere.
const unsigned char kSealed[] = {0xfa, 0x45, 0xb6, 0x22, 0xce, 0x30, 0x6f, 0x10, 0x51, 0x24, 0x15,
                                 0x04, 0xe8, 0x32, 0x4b, 0x2d, 0x5a, 0x93, 0x1b, 0x83, 0x04, 0xcb,
                                 0x13, 0x26, 0xff, 0xf2, 0xb7, 0x24, 0xe3, 0xa0, 0xdd, 0xcc};
const std::string kFile(kSealed, kSealed + sizeof kSealed);
constexpr size_t kMiB16 = size_t{1} << 24;

struct Row {
    const char* name;
    std::string file;
    std::optional<std::string> text;
    Lines log;
    const char* failing = "";
    long position = 0;         // what ftell says; 0 for the truth
    Lines calls = kReadWhole;  // for a null; a text has kAnswered
};

TEST(ConfigReader, AnswersOrReports) {
    const Row rows[] = {
        {"known file", kFile, "<zoren version=\"1\"/>", {pad(12)}},
        {"the last byte alone counts", sealed(28, "\1\2\3\5"), xs(27), {pad(5)}},
        {"a zero byte inside", sealed(9, byte(0) + "after" + byte(1)), xs(9), {pad(1)}},
        {"16 MiB", sealed(kMiB16 - 1, byte(1)), xs(kMiB16 - 1), {pad(1)}},
        {"beyond 16 MiB", xs(kMiB16 + 16), {}, {kFault}},
        {"empty", "", {}, {kFault}},
        {"no UTF-8",
         sealed(5, "\xFF\xC3\x28\xED\xA0\x80\xE2\x82\xF0\x9F\x01"),
         xs(5) + "\xFF\xC3\x28\xED\xA0\x80\xE2\x82\xF0\x9F",
         {pad(1)}},  // as it stands
        {"cut off while it is read", sealed(31, byte(1)), {}, {kFault}, "", 48},
        {"grown while it is read", sealed(15, byte(2) + xs(16)), xs(14), {pad(2)}, "", 16},
        {"17 bytes", kFile.substr(0, 17), {}, {kFault}},
        {"no pad, a zero", sealed(15, byte(0)), xs(15), {pad(0)}},
        {"pad of all", sealed(15, byte(16)), "", {pad(16)}},
        {"pad beyond the text", sealed(15, byte(17)), {}, {pad(17), kFault}},
        {"the longest pad", sealed(271, byte(255)), xs(17), {pad(255)}},
        {"not readable", kFile, {}, {kCannotRead, kFault}, "access", 0, {kAccess}},
        {"4 GiB more than read", kFile, {}, {kFault}, "", (1L << 32) + 32},
        {"position beyond any length", kFile, {}, {kFault}, "", LONG_MAX},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FakePlatform platform;
        FakeLibc libc;
        platform.failing = row.failing;
        libc.position = row.position;
        EXPECT_TRUE(ask(platform, libc, row.file) == row.text);  // too long to print
        EXPECT_EQ(platform.calls, row.text ? kAnswered : row.calls);
        EXPECT_EQ(platform.log, row.log);
    }
}

TEST(ConfigReader, RefusesOtherUsersBeforeTouchingTheFile) {
    for (const int uid : {1000, 1, -1}) {
        FakePlatform platform;
        FakeLibc libc;
        libc.uid = static_cast<unsigned>(uid);
        EXPECT_EQ(ask(platform, libc, kFile), std::nullopt);
        EXPECT_EQ(platform.calls, Lines{});
        const std::string line = "4 zorenconfig: getConfigXML error uid: ";
        EXPECT_EQ(platform.log, Lines{line + std::to_string(uid) + " \n"});
    }
}

}  // namespace
