#pragma once

#include <cstdint>

#include "jni/bitmap_struct.h"

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Returns the mean luma of `bitmap`, 0 (black) to 255 (white), truncated, or -1 when the bitmap
// is narrower or lower than 2 pixels.
//
// Luma is 0.299 R + 0.587 G + 0.114 B (ITU-R BT.601). The weights meet the exact channel sums
// once, in single precision, and the last bit decides the truncation: a uniform gray of 37
// measures 36. Alpha is not read; a transparent pixel counts like an opaque one.
//
// REQUIRES: the pixels are locked. Reads each once, writes none; re-entrant.
int32_t RGB2Gray(const BitmapStruct* bitmap);

}  // namespace android
#pragma GCC visibility pop
