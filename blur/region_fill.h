#pragma once

#include "jni/bitmap_struct.h"

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Both place `source` in the middle of a larger `destination` and repeat its edge pixels in the
// margins, which are (destination - source) / 2 pixels on either side. Pixels move as whole
// words.
//
// Both write nothing when the two pixel arrays share a word.
//
// REQUIRES: both pixel arrays as large as said; nobody else uses the destination during the call.
// Neither view is changed. Re-entrant.

// Widens: writes source->height rows of destination->width pixels; destination->height is not
// read. When the difference of the widths is odd, the column between the copy and the right
// margin keeps its old content, because the right margin ends at the destination's right edge.
// Writes nothing when the source has no row, when it has no pixel in a row, or when the
// destination is narrower.
void fillBitmapRegionHorizontal(const BitmapStruct* source, BitmapStruct* destination);

// Heightens: writes destination->height rows of source->width pixels; destination->width is not
// read. When the difference of the heights is odd, the last row keeps its old content, because
// the lower margin begins directly below the copy. Writes nothing when the source has no pixel,
// when the destination is lower, or when it has more pixels than a signed 32-bit integer counts.
void fillBitmapRegionVertical(const BitmapStruct* source, BitmapStruct* destination);

}  // namespace android
#pragma GCC visibility pop
