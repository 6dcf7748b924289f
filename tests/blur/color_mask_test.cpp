#include "blur/color_mask.h"

#include <gtest/gtest.h>

#include "tests/support/every_target.h"
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

// Every alpha, colour byte and pixel byte, in each channel by another order.
TEST(ColorMask, BlendsEveryByte) {
    onEveryTarget([] {
        Image image(16, 16);
        for (uint32_t call = 0; call < 65536; ++call) {
            const uint32_t alpha = call >> 8, color = call & 255;
            const uint32_t mask[] = {color, color ^ 0x5A, 255 - color};  // red, green, blue
            const auto byteOf = [](uint32_t i, int c) { return (i + 85 * c) % 256; };
            for (uint32_t i = 0; i < 256; ++i) {
                image.pixels[i] = byteOf(i, 0) | byteOf(i, 1) << 8 | byteOf(i, 2) << 16 | i << 24;
            }
            addMask(&image, alpha << 24 | mask[0] << 16 | mask[1] << 8 | mask[2]);
            for (uint32_t i = 0; i < 256; ++i) {
                uint32_t word = 0xFF000000;
                for (int c = 0; c < 3; ++c) {
                    word |= ((255 - alpha) * byteOf(i, c) + alpha * mask[c]) / 256 << 8 * c;
                }
                ASSERT_EQ(image.pixels[i], word) << std::hex << call << " over " << i;
            }
        }
    });
}

TEST(ColorMask, TouchesNothingWithoutACount) {
    for (const int32_t side : {-3, 46341, 65536}) {  // whose count is none, or wraps to none
        android::BitmapStruct bitmap = {side, side, nullptr};
        addMask(&bitmap, 0xFFFFFFFF);
    }
}

}  // namespace
