#include <gtest/gtest.h>

#include <thread>

#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

const std::string kText = "<zoren/>";
std::string configPath, statisticsPath;

// Everything that the natives answer, for a picture of the caller's own and one of all threads.
std::vector<std::string> everything(uint32_t seed, Image& shared) {
    FakePlatform platform;
    std::mt19937 random(seed);
    Image own = Image::random(61, 43, random);
    platform.showBitmap(own);
    platform.blur(static_cast<float>(seed * seed), 0x60FF8800);
    platform.showBitmap(shared);
    return {{reinterpret_cast<char*>(own.pixels), 4 * own.storage.size()},
            std::to_string(platform.gray()),
            std::to_string(platform.cast(70, static_cast<jint>(seed))),
            platform.config().value_or("null"),
            std::to_string(platform.traffic("lo", static_cast<jint>(seed), 0))};
}

// As many threads as four a processor, and every answer equals that of one thread alone.
TEST(Concurrency, CallsShareNothing) {
    std::string lines;
    for (int uid = 0; uid < 20; ++uid) lines += "1 lo 0x0 " + std::to_string(uid) + " 0 7 7 7 7\n";
    const TemporaryFile config(reference::encryptConfig(kText + std::string(8, 8)));
    const TemporaryFile statistics(lines);
    configPath = config.path(), statisticsPath = statistics.path();
    const auto to = [](auto function) { return reinterpret_cast<void*>(+function); };
    const ImportPatch patches[] = {
        {"getuid", to([] { return 0u; })},
        {"access", to([](const char*, int) { return 0; })},
        {"fopen", to([](const char* path, const char* mode) {
             return std::fopen(
                 (std::string(path) == "/system/etc/jpsp" ? configPath : statisticsPath).c_str(),
                 mode);
         })},
    };
    Image shared(50, 40, 0x800000C8);
    std::vector<std::thread> threads;
    std::vector<std::vector<std::string>> together(4 * std::thread::hardware_concurrency());
    for (uint32_t t = 0; t < together.size(); ++t) {
        threads.emplace_back([&, t] {
            for (uint32_t round = 0; round < 10; ++round) together[t] = everything(t, shared);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (uint32_t t = 0; t < together.size(); ++t) {
        EXPECT_EQ(together[t], everything(t, shared)) << t;
        EXPECT_EQ(together[t][3], kText);
        EXPECT_EQ(together[t][4], t < 20 ? "7" : "0");
    }
}

}  // namespace
