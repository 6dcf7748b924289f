#include "analysis/color_cast.h"

#include <gtest/gtest.h>

#include "tests/reference/reference.h"
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
    {"green", {{100, kGreen}}, 0xFF00FF00},
    {"blue", {{100, kBlue}}, 0xFF0000FF},
    {"pale dark red", {{100, kRed}}, 0xFFCC7F66, 50, 80},
    {"pale dark green", {{100, kGreen}}, 0xFF66CC66, 50, 80},
    {"no saturation", {{100, kRed}}, 0xFF7F7F7F, 0, 50},
    {"no brightness", {{100, kRed}}, 0xFF000000, 100, 0},
    {"white is -1", {{100, kRed}}, 0xFFFFFFFF, 0, 100},
    {"percentages are not clamped", {{100, kRed}}, 0xFFFFFF02, 200, 200},
    {"gray", {{100, kGray}}, kNone},
    {"black", {{100, 0}}, kNone},
    {"too dark", {{100, 53}}, kNone},
    {"just bright enough", {{100, 54}}, kHue15},
    {"too pale", {{100, 0x585864}}, kNone},
    {"just saturated enough", {{100, 0x575764}}, kHue15},
    {"5 % coloured", {{95, kGray}, {5, kRed}}, kHue15},
    {"4 % coloured", {{96, kGray}, {4, kRed}}, kNone},
    {"two equal hues", {{50, kRed}, {50, kBlue}}, kNone},
    {"40 points ahead", {{70, kRed}, {30, kBlue}}, kHue15},
    {"the runner-up is the neighbour", {{45, kRed}, {55, kBlue}}, 0xFF0000FF},
    {"overtaken, not runner-up", {{45, kYellow}, {10, 0x00FFBF}, {45, 0xFF3F00}}, kNone},
    {"20 points ahead", {{30, kRed}, {30, kOrange}, {40, kBlue}}, kHue15},
    {"18 points ahead", {{30, kRed}, {29, kOrange}, {41, kBlue}}, kNone},
    {"40 % in a span", {{40, kRed}, {20, kGreen}, {20, kBlue}, {20, kYellow}}, kHue15},
    {"39 % in a span", {{39, kRed}, {21, kGreen}, {20, kBlue}, {20, kYellow}}, kNone},
    // 360 from truncation is hue 0 like pure red; with a floor it would be 359.
    {"hue 360", {{100, 0x0100BE}}, kHue15},
    {"across the wrap", {{50, 0x0500FF}, {50, kRed}}, 0xFFFF0000},
    {"alpha is not read", {{100, 0xFF000000 | kGreen}}, 0xFF00FF00},
    {"2 x 2", {{2, kRed}, {2, 0}}, kHue15, 100, 100, 2},
    {"one column", {{10, kGreen}}, kNone, 100, 100, 1},
    {"one row", {{10, kGreen}}, kNone},
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

TEST(ColorCast, EqualsReferenceForEveryHue) {
    for (uint32_t i = 0; i < 52 * 52 * 52; ++i) {
        const uint32_t pixel = i % 52 * 5 | i / 52 % 52 * 5 << 8 | i / (52 * 52) * 5 << 16;
        const Image image(2, 2, pixel);
        ASSERT_EQ(BitmaptoColorCast(&image, 90, 90), reference::BitmaptoColorCast(image, 90, 90))
            << std::hex << pixel;
    }
}

TEST(ColorCast, EqualsReference) {
    std::mt19937 random(33);
    int casts = 0, rounds = 0;
    for (const auto& [width, height] : sweepSizes()) {
        for (int round = 0; round < 20; ++round) {
            // Few enough colours that about half of the images have a cast.
            uint32_t palette[4];
            for (uint32_t& color : palette) color = static_cast<uint32_t>(random());
            Image image(width, height);
            for (uint32_t& pixel : image.storage) pixel = palette[random() % 4];
            const int32_t percent = static_cast<int32_t>(random() % 101);
            const int32_t cast = BitmaptoColorCast(&image, percent, 100 - percent);
            ASSERT_EQ(cast, reference::BitmaptoColorCast(image, percent, 100 - percent))
                << width << " x " << height << " round " << round;
            casts += cast != -1;
            ++rounds;
        }
    }
    EXPECT_GT(casts, rounds / 10);
    EXPECT_LT(casts, rounds * 9 / 10);
    const Image large(1001, 300, kGreen);  // counts beyond 16 bits
    EXPECT_EQ(static_cast<uint32_t>(BitmaptoColorCast(&large, 100, 100)), 0xFF00FF00);
    for (const int32_t extreme : {INT32_MIN, -1, 101, INT32_MAX}) {
        EXPECT_EQ(BitmaptoColorCast(&large, extreme, extreme),
                  reference::BitmaptoColorCast(large, extreme, extreme));
    }
}

}  // namespace
