#include <gtest/gtest.h>
#include <zoren_runtime.h>

#include <cmath>

#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

TEST(BlurBitmap, DoesWhatTheNativeDoes) {
    std::mt19937 random(26);
    for (const float radius : {0.2499f, 0.25f, 0.75f, 2.5f, 23170.5f, 23170.75f, 1e30f, NAN}) {
        for (const uint32_t color : {0x40FF8800u, 0x00FF8800u}) {
            Image expected = Image::random(7, 5, random);
            Image image(7, 5, expected.words());
            FakePlatform platform;
            platform.showBitmap(expected);
            platform.blur(radius, color);
            EXPECT_EQ(android::blurBitmap(&image, radius, color), !(radius > 23170.5f)) << radius;
            EXPECT_EQ(image.words(), expected.words()) << radius << " " << color;
        }
    }
}

TEST(BlurBitmap, LeavesThePixelsWhereTheKernelHasNoMemory) {
    FakePlatform platform;
    FakeLibc libc;
    platform.failing = "_ZnamRKSt9nothrow_t";
    platform.failingCall = 1;
    std::mt19937 random(26);
    Image image = Image::random(7, 5, random);
    const std::vector<uint32_t> before = image.words();
    EXPECT_FALSE(android::blurBitmap(&image, 2.5f, 0x40FF8800));
    EXPECT_EQ(image.words(), before);
}

}  // namespace
