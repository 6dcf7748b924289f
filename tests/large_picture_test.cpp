#include "tests/support/large_picture.h"

#include <gtest/gtest.h>

#include "analysis/color_cast.h"
#include "analysis/gray_level.h"
#include "blur/color_mask.h"
#include "blur/gaussian_blur.h"
#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/images.h"

// Pictures and lines so large that a count, a sum or an offset of too few bits shows.

namespace {

using android::GaussianBlurEffect;

constexpr uint32_t kRed = 0x0000FF, kBlue = 0xFF0000;

// The sides of square pictures: just more than 2^24 pixels; channel sums beyond 2^32; 2^30 pixels.
// The larger ones only where there are vectors and time: not emulated, not under a sanitizer.
std::vector<int32_t> sidesFor(int64_t target) {
    if (!kFastBuild || target >= HWY_EMU128) return {4100};
    return {4100, 16400, 32768};
}

TEST(LargePicture, IsMeasuredAndMaskedToItsEnd) {
    onEveryTarget([](int64_t target) {
        for (const int32_t side : sidesFor(target)) {
            SCOPED_TRACE(side);
            LargePicture picture(side, side);
            picture.fill(0x00C89664);  // 140.75
            EXPECT_EQ(android::RGB2Gray(picture.view()), 140);
            picture.fill(kRed);
            EXPECT_EQ(android::BitmaptoColorCast(picture.view(), 100, 100) & 0xFFFFFF, 0xFF3F00);
            // Another leader in half of each block, which ties: the first one leads.
            std::fill_n(picture.body(), LargePicture::kBlockWords / 4, kBlue);
            EXPECT_EQ(android::BitmaptoColorCast(picture.view(), 100, 100) & 0xFFFFFF, 0xFF3F00);
            std::fill_n(picture.body(), LargePicture::kBlockWords / 4 * 3, kBlue);
            EXPECT_EQ(android::BitmaptoColorCast(picture.view(), 100, 100) & 0xFFFFFF, 0x0000FF);

            picture.behind()[0] = 0x12345678;
            android::addMask(picture.view(), 0xFF336699);
            EXPECT_EQ(picture.body()[0], 0xFF986532);
            const std::vector<uint32_t> tail(picture.tail(), picture.tail() + picture.tailCount());
            EXPECT_EQ(tail, std::vector<uint32_t>(tail.size(), 0xFF986532));
            EXPECT_EQ(picture.behind()[0], 0x12345678u) << "not the picture's";
        }
    });
}

// The last rows of a picture whose offsets pass 2^32 bytes, in every way of blurring that serves
// pictures this wide. Rows are blurred where they lie, so the end is as in a picture of the end
// alone, but for what the kernel reaches above it.
TEST(LargePicture, IsBlurredToItsEnd) {
    constexpr int32_t kWidth = 40000, kHeight = 27000, kRows = 13;
    LargePicture picture(kWidth, kHeight);
    std::mt19937 random(51);
    for (size_t i = 0; i < LargePicture::kBlockWords; ++i) {
        picture.body()[i] = static_cast<uint32_t>(random());
    }
    for (size_t i = 0; i < picture.tailCount(); ++i) {
        picture.tail()[i] = static_cast<uint32_t>(random());
    }
    const uint32_t* const end = picture.view()->pixels + picture.count() - kRows * kWidth;
    ASSERT_GE(end, picture.tail());
    const std::vector<int32_t> kernel = {17961, 29613, 17961};
    Image rows(kWidth, kRows, {end, end + kRows * kWidth});
    GaussianBlurEffect(picture.view(), kernel.data(), 3, 65535);
    reference::GaussianBlurEffect(rows, kernel.data(), 3, 65535);
    EXPECT_TRUE(std::equal(rows.storage.begin() + kWidth, rows.storage.end(), end + kWidth));
}

// Lines longer than 16 bits count, in one sweep, by symmetric taps and by steps, whose tables move.
TEST(LargePicture, HasLongLinesBlurred) {
    onEveryTarget([] {
        std::mt19937 random(52);
        for (const float radius : {2.0f, 20.0f, 100.0f}) {
            const int32_t size = (static_cast<int32_t>(4 * radius) - 1) | 1;
            const reference::Kernel kernel = reference::calcuGaussianTemplate(size, radius);
            for (const auto& [width, height] :
                 {std::pair(60000, 2), {70000, 2}, {2, 60000}, {2, 70000}}) {
                Image image = Image::random(width, height, random);
                Image expected(width, height, image.words());
                GaussianBlurEffect(&image, kernel.weights.data(), size, kernel.norm);
                reference::GaussianBlurEffect(expected, kernel.weights.data(), size, kernel.norm);
                EXPECT_TRUE(std::equal(image.storage.begin(), image.storage.end(),
                                       expected.storage.begin()))
                    << width << " x " << height << ", radius " << radius;
            }
        }
    });
}

// A table with more rows than 16 bits count: the mean of 65535 pixels, over an edge at 35000.
TEST(LargePicture, HasWideKernelsBlurred) {
    const std::vector<int32_t> kernel(65535, 1);
    onEveryTarget([&] {
        Image image(70000, 2, 0xFFFFFFFF);
        for (int32_t x = 0; x < 35000; ++x) image.pixels[x] = image.pixels[70000 + x] = 0;
        GaussianBlurEffect(&image, kernel.data(), 65535, 65535);
        for (int32_t x = 0; x < 70000; ++x) {
            const int32_t white = std::clamp(x + 32767 - 34999, 0, 65535);
            ASSERT_EQ(image.pixels[x] & 0xFF, 255 * int64_t{white} / 65535) << "pixel " << x;
        }
    });
}

}  // namespace
