#pragma once

#include <cstdint>

#include "jni/bitmap_struct.h"

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Lays `color` (0xAARRGGBB) over every pixel of `bitmap`, in place.
//
// Each channel becomes ((255 - a) * old + a * colour) >> 8 with a the colour's alpha, and the
// alpha byte 255. The divisor is 256, so a full channel under an opaque mask ends at 254, and a
// colour of alpha 0 still takes one from every channel that is not 0. The old alpha byte plays
// no part.
//
// Leaves the bitmap untouched when it is narrower or lower than 2 pixels, or when its pixel count
// wraps below 1 as a signed 32-bit product.
//
// REQUIRES: the pixels are locked and nobody else uses them during the call. Reads and writes
// no byte outside the image. Re-entrant.
void addMask(BitmapStruct* bitmap, uint32_t color);

}  // namespace android
#pragma GCC visibility pop
