#include "analysis/gray_level.h"

#include <gtest/gtest.h>

#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/images.h"

namespace {

using android::RGB2Gray;

TEST(GrayLevel, IsThisForUniformImages) {
    struct Row {
        int32_t width, height;
        uint32_t pixel /* 0xAABBGGRR */;
        int32_t gray;
    };
    const Row rows[] = {
        {2, 2, 0xFFFFFFFF, 255}, {2, 2, 0xFF0000FF, 76},  {2, 2, 0xFF00FF00, 149},
        {2, 2, 0xFFFF0000, 29},  {2, 2, 0xFFC89664, 140},  // 140.75
        {2, 2, 0x00C89664, 140}, {2, 2, 0xFF252525, 36},   // 36.999996 in single precision
        {1, 50, 0xFFFFFFFF, -1}, {50, 1, 0xFFFFFFFF, -1}, {0, 0, 0, -1},
    };
    for (const Row& row : rows) {
        const Image image(row.width, row.height, row.pixel);
        EXPECT_EQ(RGB2Gray(&image), row.gray)
            << row.width << " x " << row.height << " of " << std::hex << row.pixel;
    }
    for (const int32_t side : {46341, 65536}) {  // too many pixels to count in 31 bits
        const android::BitmapStruct bitmap = {side, side, nullptr};
        EXPECT_EQ(RGB2Gray(&bitmap), 0) << side;
    }
}

TEST(GrayLevel, EqualsReference) {
    onEveryTarget([] {
        std::mt19937 random(37);
        for (int32_t width = 2; width <= 130; ++width) {
            const Image image = Image::random(width, 3, random);
            EXPECT_EQ(RGB2Gray(&image), reference::RGB2Gray(image)) << "width " << width;
        }
        const Image white(130, 130, 0xFFFFFFFF);  // the most that narrow sums have to hold
        EXPECT_EQ(RGB2Gray(&white), 255);
    });
}

}  // namespace
