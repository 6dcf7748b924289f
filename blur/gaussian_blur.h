#pragma once

#include <cstdint>

#include "jni/bitmap_struct.h"

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Blurs `bitmap` in place with one kernel, first along every row, then along every column.
//
// Tap k of `size` weighs the pixel at offset k - (size - 1) / 2; beyond the image the edge pixel
// repeats. Each pass replaces the red, green and blue bytes by the truncated quotient of the
// weighted sum and `norm`, and the alpha byte by 255; alpha is not read. Because the first pass
// truncates before the second reads, the result is not a two-dimensional convolution rounded once.
//
// The norm of a kernel from calcuGaussianTemplate keeps a uniform image as it is. Sums wrap at
// 32 bits, which needs weights that add up to more than 8421504 in magnitude; quotients outside
// 0 to 255 spill into the neighbouring bytes. A norm of 0 gives opaque black.
//
// Leaves the bitmap untouched when it is narrower or lower than 2 pixels, when `size` is not
// positive and odd, or when memory cannot be had: all of it is taken before the first pixel is
// written.
//
// REQUIRES: the pixels are locked and nobody else uses them during the call; `kernel` holds `size`
// weights. Reads and writes no byte outside the image. Re-entrant.
void GaussianBlurEffect(BitmapStruct* bitmap, const int32_t* kernel, int32_t size, int32_t norm);

}  // namespace android
#pragma GCC visibility pop
