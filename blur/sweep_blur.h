#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/sweep_plan.h"
#include "jni/bitmap_struct.h"

namespace android {

// Both passes of a blur by one sweep, in place; writes alpha 255. `scratch` holds the words that
// sweepScratchWords asks for, of any content. Reads and writes no byte outside the image.
void blurBySweep(const BitmapStruct& bitmap, const SweepPlan& plan, uint32_t* scratch);

// The words of scratch; 0 where there is no such plan, where the other ways are faster, and where
// the picture is so small that a sweep would hold more memory than a blur may.
size_t sweepScratchWords(const SweepPlan& plan, const BitmapStruct& bitmap);

}  // namespace android
