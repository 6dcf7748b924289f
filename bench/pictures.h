#pragma once

#include <cstdint>

#include "jni/bitmap_struct.h"

// The pictures that are measured, and how far a result lies from the defined one.

struct Size {
    int32_t width, height;
};

// The taps a blur request takes for a standard deviation: 4 * sigma, less one when even.
int32_t kernelSize(float sigma);

// The picture of a size, made once: smooth colours under a little noise, as a photo has them.
// `picture` is never written; `canvas` is one buffer per size, for whoever writes.
android::BitmapStruct picture(Size size);
android::BitmapStruct canvas(Size size);

// How far colours lie from the defined ones, in steps of a byte: at most, and their mean.
struct Difference {
    double largest = 0, mean = 0;
};

// That of `result`, `channels` bytes a pixel of which the first three count, from `defined`.
Difference difference(const android::BitmapStruct& defined, const uint8_t* result,
                      int32_t channels);

// That from the blur of the size's picture.
Difference blurDifference(Size size, float sigma, const uint8_t* result, int32_t channels);

// All that a blur request does to the pixels: its kernel, the kernel's scratch, the blur.
void blurWhole(const android::BitmapStruct& bitmap, float sigma);
