#include "tests/support/large_picture.h"

#include <gtest/gtest.h>

#include "analysis/color_cast.h"
#include "analysis/gray_level.h"
#include "blur/color_mask.h"
#include "blur/gaussian_blur.h"
#include "blur/pass_plan.h"
#include "blur/sweep_plan.h"
#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/images.h"

// Pictures and lines so large that a count, a sum or an offset of too few bits shows.

namespace {

using android::GaussianBlurEffect;

constexpr uint32_t kRed = 0x0000FF, kOrange = 0x0055FF, kBlue = 0xFF0000;

// How lines of `length` pixels, `lines` of them, are blurred where taps cost the least, which is
// where steps are chosen last. A test that means one way asks, lest another cost takes it away.
std::string blurWayOf(const reference::Kernel& kernel, int32_t length, int32_t lines) {
    constexpr android::PassCosts kCheapTaps = {22, 12, 600, 18, 90, 15, 1000};  // with AVX-512
    const int32_t size = static_cast<int32_t>(kernel.weights.size());
    const int32_t* const weights = kernel.weights.data();
    android::SweepPlan sweep;
    android::PassPlan pass;
    if (!android::planSweep(weights, size, kernel.norm, length, lines, &sweep) ||
        !android::makePassPlan(weights, size, kernel.norm, length, lines, kCheapTaps, &pass)) {
        return "no memory";
    }
    return sweep.reach > 0          ? "in one sweep"
           : pass.bySteps()         ? "by steps"
           : pass.bySymmetricTaps() ? "by symmetric taps"
                                    : "by taps";
}

// The sides of square pictures: just more than 2^24 pixels; channel sums beyond 2^32; 2^30 pixels;
// offsets beyond 2^32 bytes, and nearly as many pixels as there may be. The larger ones only where
// there are vectors and time: not emulated, not under a sanitizer. The largest once.
std::vector<int32_t> sidesFor(int64_t target, bool isBest) {
    if (!kFastBuild || target >= HWY_EMU128) return {4100};
    if (!isBest) return {4100, 16400, 32768};
    return {4100, 16400, 32768, 46340};
}

TEST(LargePicture, IsMeasuredAndMaskedToItsEnd) {
    const int64_t best = instructionSets().front();
    onEveryTarget([best](int64_t target) {
        for (const int32_t side : sidesFor(target, target == best)) {
            SCOPED_TRACE(side);
            LargePicture picture(side, side);
            uint32_t* const end = picture.behind();
            // So few that only what lies close to a limit changes with them.
            const size_t few = picture.count() / 4096;

            picture.fill([](size_t) { return 0x000A96C8; });  // 148.99; a white 4096th adds 0.026
            EXPECT_EQ(android::RGB2Gray(picture.view()), 148);
            std::fill_n(end - few, few, 0xFFFFFF);
            EXPECT_EQ(android::RGB2Gray(picture.view()), 149);

            picture.fill([](size_t) { return kRed; });
            EXPECT_EQ(android::BitmaptoColorCast(picture.view(), 100, 100) & 0xFFFFFF, 0xFF3F00);
            // Of each block 314,572 pixels are red or orange: a lead of just less than 20 %.
            picture.fill([](size_t i) {
                return i < 2 || i % 10 > 5 ? kBlue : i % 2 == 0 ? kRed : kOrange;
            });
            EXPECT_EQ(android::BitmaptoColorCast(picture.view(), 100, 100), -1);
            std::fill_n(end - few, few, kRed);
            EXPECT_EQ(android::BitmaptoColorCast(picture.view(), 100, 100) & 0xFFFFFF, 0xFF3F00);

            *end = 0x12345678;
            android::addMask(picture.view(), 0xFF336699);
            EXPECT_EQ(picture.body()[0], 0xFF986532);
            EXPECT_EQ(std::count(picture.tail(), end, 0xFF986532), end - picture.tail());
            EXPECT_EQ(*end, 0x12345678u) << "not the picture's";
        }
    });
}

// The last corner of a picture whose offsets pass 2^32 bytes, in every way of blurring that has a
// plan. Lines are blurred where they lie, so the corner is as in a picture of the corner alone, but
// for what the kernel reaches beyond it.
TEST(LargePicture, IsBlurredToItsEnd) {
    constexpr int32_t kWidth = 16407, kHeight = 66000, kSide = 270;
    const struct {
        const char* way;
        reference::Kernel kernel;
    } rows[] = {{"in one sweep", reference::calcuGaussianTemplate(7, 2)},
                {"by taps", {{20000, 25535, 20001}, 65536}},
                {"by symmetric taps", reference::calcuGaussianTemplate(47, 12)},
                {"by steps", reference::calcuGaussianTemplate(399, 100)}};
    LargePicture picture(kWidth, kHeight, size_t{kSide} * kWidth);
    std::mt19937 random(51);
    for (const auto& [way, kernel] : rows) {
        ASSERT_EQ(blurWayOf(kernel, kWidth, kHeight), way);
        ASSERT_EQ(blurWayOf(kernel, kHeight, kWidth), way);
        picture.fill([&random](size_t) { return static_cast<uint32_t>(random()); });
        const int32_t size = static_cast<int32_t>(kernel.weights.size());
        const auto rowOf = [&](int32_t y) { return picture.behind() - (kSide - y) * kWidth; };
        Image corner(kSide, kSide);
        for (int32_t y = 0; y < kSide; ++y) {
            std::copy_n(rowOf(y) + kWidth - kSide, kSide, corner.pixels + y * kSide);
        }
        GaussianBlurEffect(picture.view(), kernel.weights.data(), size, kernel.norm);
        reference::GaussianBlurEffect(corner, kernel.weights.data(), size, kernel.norm);
        for (int32_t y = size / 2; y < kSide; ++y) {
            const uint32_t* const expected = corner.pixels + y * kSide;
            ASSERT_TRUE(std::equal(expected + size / 2, expected + kSide,
                                   rowOf(y) + kWidth - kSide + size / 2))
                << way << ", row " << y;
        }
        if (!kFastBuild) break;  // the one that takes the least time
    }
}

// Lines longer than 16 bits count, with a sign and without, and tables with more rows than that:
// plateaus of one value each, so that every sum follows from the sums of the kernel's first taps.
TEST(LargePicture, HasLongLinesBlurred) {
    const struct {
        const char* way;
        reference::Kernel kernel;
        int32_t lines;
    } rows[] = {{"by taps", reference::gauss(2), 2},
                {"in one sweep", reference::gauss(2), 4},
                {"by symmetric taps", reference::gauss(10), 2},
                {"by steps", reference::gauss(100), 2},
                {"by steps", {std::vector<int32_t>(65535, 1), 65535}, 2}};
    constexpr int32_t kPlateau = 7001;
    for (const auto& [way, kernel, lines] : rows) {
        const int32_t size = static_cast<int32_t>(kernel.weights.size());
        std::vector<int64_t> firstTaps(1);  // their sum, by how many they are
        for (const int32_t weight : kernel.weights) firstTaps.push_back(firstTaps.back() + weight);
        for (const int32_t length : {60000, 70000}) {
            SCOPED_TRACE(way);
            EXPECT_EQ(blurWayOf(kernel, length, lines), way);
            const auto valueAt = [](int32_t i) { return i / kPlateau * 97 % 256; };
            std::vector<uint32_t> expected(length);
            for (int32_t i = 0; i < length; ++i) {
                int64_t sum = valueAt(0) * firstTaps[size];
                for (int32_t edge = kPlateau; edge < length; edge += kPlateau) {
                    const int32_t behind = std::clamp(i + size / 2 - edge + 1, 0, size);
                    sum += (valueAt(edge) - valueAt(edge - 1)) *
                           (firstTaps[size] - firstTaps[size - behind]);
                }
                expected[i] = 0xFF000000 | static_cast<uint32_t>(sum / kernel.norm) * 0x010101;
            }
            for (const bool upright : {false, true}) {
                const int32_t stride = upright ? lines : 1;
                onEveryTarget([&, &kernel = kernel, lines = lines] {
                    Image image(upright ? lines : length, upright ? length : lines);
                    for (int32_t i = 0; i < length * lines; ++i) {
                        image.pixels[i] = valueAt(upright ? i / lines : i % length) * 0x010101u;
                    }
                    GaussianBlurEffect(&image, kernel.weights.data(), size, kernel.norm);
                    for (int32_t i = 0; i < length; ++i) {
                        ASSERT_EQ(image.pixels[i * stride], expected[i])
                            << (upright ? "row " : "column ") << i << " of " << length;
                    }
                });
            }
        }
    }
}

}  // namespace
