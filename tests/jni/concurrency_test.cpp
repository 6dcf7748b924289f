#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "include/zoren_runtime.h"
#include "tests/support/images.h"

namespace {

// Everything a caller can compute from one image, through the public header.
std::vector<uint32_t> everything(uint32_t seed) {
    std::mt19937 random(seed);
    Image image = Image::random(61, 43, random);
    std::array<int32_t, 39> kernel;
    const int32_t norm = android::calcuGaussianTemplate(kernel.data(), 39, 10.0f);
    android::GaussianBlurEffect(&image, kernel.data(), 39, norm);
    android::addMask(&image, 0x60FF8800);
    std::vector<uint32_t> results = image.words();
    results.push_back(static_cast<uint32_t>(android::RGB2Gray(&image)));
    results.push_back(static_cast<uint32_t>(android::BitmaptoColorCast(&image, 70, 90)));
    return results;
}

TEST(Concurrency, CallsShareNothing) {
    std::vector<uint32_t> together[4];
    std::vector<std::thread> threads;
    for (uint32_t seed = 0; seed < 4; ++seed) {
        threads.emplace_back([seed, &together] { together[seed] = everything(seed); });
    }
    for (std::thread& thread : threads) thread.join();
    for (uint32_t seed = 0; seed < 4; ++seed) EXPECT_EQ(together[seed], everything(seed));
}

}  // namespace
