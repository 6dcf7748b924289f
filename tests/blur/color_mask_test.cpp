#include "blur/color_mask.h"

#include <gtest/gtest.h>

#include "tests/support/images.h"

namespace {

using android::addMask;

TEST(ColorMask, GivesThisPixel) {
    struct Row {
        uint32_t color /* 0xAARRGGBB */, before, after /* 0xAABBGGRR */;
    };
    const Row rows[] = {
        {0x80FF0000, 0xFFFF0000, 0xFF7E007F},  // red goes to the lowest byte
        {0x800000FF, 0x00000000, 0xFF7F0000}, {0xFF000000, 0x12345678, 0xFF000000},
        {0xFFFFFFFF, 0x12345678, 0xFFFEFEFE},  // divided by 256, not 255
        {0x00FFFFFF, 0x110001C8, 0xFF0000C7}, {0x01FFFFFF, 0x00FFFFFF, 0xFFFEFEFE},
    };
    for (const Row& row : rows) {
        Image image(2, 2, row.before);
        addMask(&image, row.color);
        EXPECT_EQ(image.words(), std::vector<uint32_t>(4, row.after)) << std::hex << row.color;
    }
}

TEST(ColorMask, TouchesNothingWithoutACount) {
    for (const int32_t side : {-3, 46341, 65536}) {  // whose count is none, or wraps to none
        android::BitmapStruct bitmap = {side, side, nullptr};
        addMask(&bitmap, 0xFFFFFFFF);
    }
}

}  // namespace
