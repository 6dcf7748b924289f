// The statistics reader, as the method table of its Java class names it. The file lies at its fixed
// place below ZOREN_DEVICE_ROOT, which scripts/bench sets, with the shim that maps it preloaded.

#include <android_runtime/AndroidRuntime.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench/support.h"
#include "jni/native_methods.h"

namespace {

using Reader = jlong (*)(JNIEnv*, jclass, jstring, jint, jint);
Reader readTotal = nullptr;

const char* interfaceName(JNIEnv*, jstring, jboolean*) { return "wlan0"; }
void releaseName(JNIEnv*, jstring, const char*) {}

constexpr int32_t kLines = 10000;
constexpr uint32_t kUid = 10057;

// Lines as a phone has them: per uid three interfaces, two counter sets, two lines in seven tagged.
// A uid comes back with other tags, so that some lines of each count and some do not.
std::string writeFile(const char* root) {
    const std::filesystem::path path = std::string(root) + "/proc/net/xt_qtaguid/stats";
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path);
    file << "idx iface acct_tag_hex uid_tag_int cnt_set rx_bytes rx_packets tx_bytes tx_packets\n";
    const char* const interfaces[] = {"wlan0", "rmnet_data0", "lo"};
    for (uint32_t i = 0; i < kLines; ++i) {
        char line[200];
        std::snprintf(
            line, sizeof line, "%u %s 0x%s %u %u %u %u %u %u %u %u 0 0 0 0 %u %u 0 0 0 0\n", i + 2,
            interfaces[i / 2 % 3], i % 7 < 2 ? "1000000000000" : "0", 10000 + i / 6 % 300, i % 2,
            i * 7919, i * 13, i * 4447, i * 11, i * 7919, i * 13, i * 4447, i * 11);
        file << line;
    }
    return path;
}

// What the reader would be without care: every line split by the scan format.
uint64_t scanEveryLine(const char* path) {
    FILE* file = std::fopen(path, "r");
    if (file == nullptr) std::abort();
    char line[384], name[32];
    uint64_t total = 0;
    while (std::fgets(line, sizeof line, file) != nullptr) {
        unsigned index, uid, set;
        unsigned long tag, bytes[4];
        if (std::sscanf(line, "%u %31s 0x%lx %u %u %lu %lu %lu %lu", &index, name, &tag, &uid, &set,
                        &bytes[0], &bytes[1], &bytes[2], &bytes[3]) == 9 &&
            uid == kUid && tag == 0 && std::strcmp(name, "wlan0") == 0) {
            total += bytes[0];
        }
    }
    std::fclose(file);
    return total;
}

void readOnly(const char* path) {
    FILE* file = std::fopen(path, "r");
    if (file == nullptr) std::abort();
    char block[16384];
    while (std::fread(block, 1, sizeof block, file) > 0) benchmark::DoNotOptimize(block);
    std::fclose(file);
}

const Suite suite([] {
    const char* root = std::getenv("ZOREN_DEVICE_ROOT");
    if (root == nullptr) return;
    const std::string path = writeFile(root);
    static JNINativeInterface_ functions = {};
    functions.GetStringUTFChars = interfaceName;
    functions.ReleaseStringUTFChars = releaseName;
    static JNIEnv env = {&functions};
    android::register_zoren_net_ZorenTrafficStats(&env);

    const auto total = [] {  // the string is only handed on
        return readTotal(&env, nullptr, reinterpret_cast<jstring>(&env), kUid, 0);
    };
    const uint64_t expected = scanEveryLine(path.c_str());
    if (expected == 0 || static_cast<uint64_t>(total()) != expected) {
        std::fprintf(stderr, "zoren_bench: the statistics file's total is %lld instead of %llu\n",
                     static_cast<long long>(total()), static_cast<unsigned long long>(expected));
        std::exit(1);
    }
    add("statistics", "zoren", {kLines, 1}, "",
        [=]() -> Work { return [=] { benchmark::DoNotOptimize(total()); }; });
    add("statistics", "fgets and sscanf", {kLines, 1}, "",
        [=]() -> Work { return [=] { benchmark::DoNotOptimize(scanEveryLine(path.c_str())); }; });
    add("statistics", "limit", {kLines, 1}, "",
        [=]() -> Work { return [=] { readOnly(path.c_str()); }; });
});

}  // namespace

// Stands in front of the platform's own, and keeps the one method of the class.
int android::AndroidRuntime::registerNativeMethods(JNIEnv*, const char*,
                                                   const JNINativeMethod* methods, int) {
    readTotal = reinterpret_cast<Reader>(methods[0].fnPtr);
    return 0;
}
