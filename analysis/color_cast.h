#pragma once

#include <cstdint>

#include "jni/bitmap_struct.h"

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Returns the colour cast of `bitmap`, the one hue its coloured pixels share, as an opaque
// colour int (0xFFRRGGBB) with the given `saturation` and `brightness` in percent, 0 to 100; or
// -1 when there is no such hue.
//
// A pixel is coloured when its brightest channel is at least 54 and its saturation at least 13
// %. The hues are counted in 24 overlapping spans of 30 degrees. There is a cast when at least
// 5 % of the pixels are coloured, the fullest span holds at least 40 % of them, and a runner-up
// that is not next to it stays at least 20 points behind. The colour has the hue at the middle
// of the fullest span. Alpha is not read.
//
// Also returns -1 when the bitmap is narrower or lower than 2 pixels or has more pixels than a
// signed 32-bit integer counts. A saturation of 0 with a brightness of 100 gives white, which
// is -1 as well. Percentages outside 0 to 100 give the colour HSBtoRGB makes of them, its
// channels laid over each other unclamped.
//
// REQUIRES: the pixels are locked. Reads each once, writes none; re-entrant.
int32_t BitmaptoColorCast(const BitmapStruct* bitmap, int32_t saturation, int32_t brightness);

}  // namespace android
#pragma GCC visibility pop
