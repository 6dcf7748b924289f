#pragma once

#include <cstdint>

#include "jni/bitmap_struct.h"

namespace android {

// GaussianBlurEffect that tells whether memory could be had: false leaves the bitmap untouched. A
// bitmap or size that there is nothing to do for is no failure.
bool tryGaussianBlur(BitmapStruct* bitmap, const int32_t* kernel, int32_t size, int32_t norm);

}  // namespace android
