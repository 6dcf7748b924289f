#include "analysis/color_cast.h"

#include <gtest/gtest.h>

#include <array>

#include "analysis/hue_counts.h"
#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/images.h"

namespace {

using android::BitmaptoColorCast;

struct Patch {
    int count;
    uint32_t pixel;  // 0xAABBGGRR
};
constexpr uint32_t kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kGray = 0x808080,
                   kOrange = 0x0055FF, kYellow = 0x00FFFF;
constexpr uint32_t kNone = 0xFFFFFFFF, kHue15 = 0xFFFF3F00;

struct Row {
    const char* name;
    std::vector<Patch> patches;
    uint32_t color;  // 0xAARRGGBB
    int32_t saturation = 100, brightness = 100;
    int32_t width = 10;
};

const Row kRows[] = {
    {"red leans to its span's middle", {{100, kRed}}, kHue15},
    {"blue", {{100, kBlue}}, 0xFF0000FF},
    {"pale dark red", {{100, kRed}}, 0xFFCC7F66, 50, 80},
    {"white is -1", {{100, kRed}}, 0xFFFFFFFF, 0, 100},
    {"percentages are not clamped", {{100, kRed}}, 0xFFFFFF02, 200, 200},
    {"gray", {{100, kGray}}, kNone},
    {"too dark", {{100, 53}}, kNone},
    {"just bright enough", {{100, 54}}, kHue15},
    {"too pale", {{100, 0x585864}}, kNone},
    {"just saturated enough", {{100, 0x575764}}, kHue15},
    {"5 % coloured", {{95, kGray}, {5, kRed}}, kHue15},
    {"4 % coloured", {{96, kGray}, {4, kRed}}, kNone},
    {"40 points ahead", {{70, kRed}, {30, kBlue}}, kHue15},
    {"the runner-up is the neighbour", {{45, kRed}, {55, kBlue}}, 0xFF0000FF},
    {"overtaken, not runner-up", {{45, kYellow}, {10, 0x00FFBF}, {45, 0xFF3F00}}, kNone},
    {"20 points ahead", {{30, kRed}, {30, kOrange}, {40, kBlue}}, kHue15},
    {"18 points ahead", {{30, kRed}, {29, kOrange}, {41, kBlue}}, kNone},
    // 50 % less 30 % is 0.19999999 in single precision.
    {"nearly 20 ahead", {{25, kRed}, {25, kOrange}, {30, kBlue}, {20, kGreen}}, kNone},
    {"40 % in a span", {{40, kRed}, {20, kGreen}, {20, kBlue}, {20, kYellow}}, kHue15},
    {"39 % in a span", {{39, kRed}, {21, kGreen}, {20, kBlue}, {20, kYellow}}, kNone},
    // 360 from truncation is hue 0 like pure red; with a floor it would be 359.
    {"hue 360", {{100, 0x0100BE}}, kHue15},
    {"across the wrap", {{50, 0x0500FF}, {50, kRed}}, 0xFFFF0000},
    {"2 x 2", {{2, kRed}, {2, 0}}, kHue15, 100, 100, 2},
    {"one column", {{10, kGreen}}, kNone, 100, 100, 1},
};

TEST(ColorCast, IsThisColor) {
    for (const Row& row : kRows) {
        std::vector<uint32_t> words;
        for (const Patch& patch : row.patches) words.insert(words.end(), patch.count, patch.pixel);
        const Image image(row.width, static_cast<int32_t>(words.size()) / row.width, words);
        const int32_t cast = BitmaptoColorCast(&image, row.saturation, row.brightness);
        EXPECT_EQ(static_cast<uint32_t>(cast), row.color) << row.name;
    }
    for (const int32_t side : {46341, 65536}) {  // too many pixels to count in 31 bits
        const android::BitmapStruct bitmap = {side, side, nullptr};
        EXPECT_EQ(BitmaptoColorCast(&bitmap, 100, 50), -1) << side;
    }
}

// All 2^24 colours, 256 at a time that differ in one channel and then in another, so that no two of
// them can change places unseen.
TEST(ColorCast, CountsTheHueOfEveryColor) {
    std::vector<int32_t> hues(1 << 24);
    for (uint32_t pixel = 0; pixel < hues.size(); ++pixel) hues[pixel] = reference::hueOf(pixel);
    onEveryTarget([&hues] {
        for (uint32_t row = 0; row < 2 * 65536; ++row) {
            const uint32_t y = row >> 8 & 255, x = row & 255;
            std::array<uint32_t, 256> pixels;
            std::array<int32_t, android::kHueBins> expected = {}, bins;
            for (uint32_t i = 0; i < 256; ++i) {
                pixels[i] = row < 65536 ? i << 16 | y << 8 | x : x << 16 | y << 8 | i;
                if (hues[pixels[i]] >= 0) ++expected[hues[pixels[i]] / 15];
            }
            android::countHues(pixels.data(), pixels.size(), bins.data());
            ASSERT_EQ(bins, expected) << std::hex << pixels[0] << " to " << pixels[255];
        }
    });
}

// Of 4101 x 4101 pixels 840,910 are 0.049999997, which is 5 % in single precision; the rest is
// none.
TEST(ColorCast, RoundsItsColoredShare) {
    Image image(4101, 4101, kGray);
    std::fill_n(image.pixels, 840909, kRed);
    EXPECT_EQ(static_cast<uint32_t>(BitmaptoColorCast(&image, 100, 100)), kNone);
    image.storage.end()[-1] = kRed;
    EXPECT_EQ(static_cast<uint32_t>(BitmaptoColorCast(&image, 100, 100)), kHue15);
}

}  // namespace
