#pragma once

#include <cstdint>

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Writes the channels, 0 to 255, of the colour with hue `h` (degrees, 0 to below 360: red at 0,
// green at 120, blue at 240), saturation `s` and brightness `v` (0 to 1). Single precision in a
// fixed order, truncated: half of 255 is 127.
//
// Outside that domain nothing is reduced or clamped: a sector below 0 gives black, a hue of 360
// and more or fractions beyond 1 give channels outside 0 to 255, those a 32-bit integer cannot
// hold end at its limits, and NaN counts as 0.
//
// Re-entrant.
void HSBtoRGB(int32_t& red, int32_t& green, int32_t& blue, float h, float s, float v);

}  // namespace android
#pragma GCC visibility pop
