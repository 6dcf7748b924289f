#include "blur/color_mask.h"

#include <gtest/gtest.h>

#include "tests/support/every_target.h"
#include "tests/support/images.h"

namespace {

using android::addMask;

// Every alpha, colour byte and pixel byte, in each channel by another order, and so many pixels
// that no vector ends with them.
TEST(ColorMask, BlendsEveryByte) {
    onEveryTarget([] {
        Image image(19, 14);
        for (uint32_t call = 0; call < 65536; ++call) {
            const uint32_t alpha = call >> 8, color = call & 255;
            const uint32_t mask[] = {color, color ^ 0x5A, 255 - color};  // red, green, blue
            const auto byteOf = [](uint32_t i, int c) { return (i + 85 * c) % 256; };
            for (uint32_t i = 0; i < 19 * 14; ++i) {
                image.pixels[i] = byteOf(i, 0) | byteOf(i, 1) << 8 | byteOf(i, 2) << 16 | i << 24;
            }
            addMask(&image, alpha << 24 | mask[0] << 16 | mask[1] << 8 | mask[2]);
            for (uint32_t i = 0; i < 19 * 14; ++i) {
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
