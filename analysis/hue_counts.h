#pragma once

#include <cstddef>
#include <cstdint>

namespace android {

constexpr int32_t kHueBins = 24;  // of 15 degrees each

// Counts the coloured ones of `count` packed pixels, at most 2^31 - 1, by hue: bins[k] becomes the
// number of those from 15 k to 15 k + 14 degrees. BitmaptoColorCast says which pixels are coloured;
// hues are whole degrees, truncated toward the pure red, green or blue they lie next to.
//
// Reads each pixel once and no byte outside them; any alignment of a pixel will do. Re-entrant.
void countHues(const uint32_t* pixels, size_t count, int32_t bins[kHueBins]);

}  // namespace android
