#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

// The library's own functions: a sanitizer's stand before them and do not take a null path.
template <typename Function>
Function* shim(const char* name) {
    void* const library = dlopen("libzoren_device_root.so", RTLD_NOW);
    return reinterpret_cast<Function*>(dlsym(library, name));
}

using Open = FILE*(const char*, const char*);
Open* const kOpens[] = {shim<Open>("fopen"), shim<Open>("fopen64")};
const auto kAccess = shim<int(const char*, int)>("access");

constexpr const char* kConfig = "/system/etc/jpsp";
constexpr const char* kStatistics = "/proc/net/xt_qtaguid/stats";
constexpr const char* kNearly[] = {"/system/etc/jpsp2", "/system/etc", "/SYSTEM/etc/jpsp",
                                   "/./system/etc/jpsp", "/proc/net/xt_qtaguid/stat"};

// The errno values of the three functions, 0 for success.
std::string tried(const char* path) {
    std::string results;
    for (Open* const open : kOpens) {
        FILE* file = open(path, "r");
        results += std::to_string(file != nullptr ? 0 : errno) + " ";
        if (file != nullptr) fclose(file);
    }
    return results + std::to_string(kAccess(path, R_OK) == 0 ? 0 : errno);
}

TEST(DeviceRoot, MapsTwoPathsAlone) {
    const std::string root = testing::TempDir() + "zoren_root." + std::to_string(getpid());
    for (const std::string path : {kConfig, kStatistics, kNearly[0], kNearly[2], kNearly[4]}) {
        std::filesystem::create_directories((root + path).substr(0, (root + path).rfind('/')));
        std::ofstream(root + path) << "text";
    }
    // The longest name that the system takes has PATH_MAX bytes with its zero.
    const std::string longest(PATH_MAX - 1 - (root + kStatistics).size(), '/');
    const std::pair<std::string, std::string> roots[] = {
        {"", "2 2 2"},  // ENOENT
        {root + "/none", "2 2 2"},
        {root, "0 0 0"},
        {longest + root, "0 0 0"},
        {std::string(40, '/') + longest + root, "36 36 36"},  // ENAMETOOLONG
    };
    for (const auto& [set, result] : roots) {
        setenv("ZOREN_DEVICE_ROOT", set.c_str(), 1);
        EXPECT_EQ(tried(kConfig), result) << set;
        EXPECT_EQ(tried(kStatistics), result) << set;
        for (const char* path : kNearly) EXPECT_EQ(tried(path), "2 2 2") << set << path;
        EXPECT_EQ(tried("/dev/null"), "0 0 0") << set;
        EXPECT_EQ(tried(nullptr), "14 14 14") << set;  // EFAULT
    }
    setenv("ZOREN_DEVICE_ROOT", root.c_str(), 1);
    EXPECT_EQ(kAccess(kConfig, X_OK), -1);
    for (Open* const open : kOpens) EXPECT_EQ(fclose(open(kConfig, "w+")), 0);
    EXPECT_TRUE(std::filesystem::is_empty(root + kConfig));
    unsetenv("ZOREN_DEVICE_ROOT");
    EXPECT_EQ(tried(kConfig), "2 2 2");
    std::filesystem::remove_all(root);
}

}  // namespace
