#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/sweep_plan.h"
#include "jni/bitmap_struct.h"

namespace android {

// Both passes of a blur by one sweep, in place; writes alpha 255. `scratch` holds the words that
// sweepScratchWords asks for, of any content. Reads and writes no byte outside the image.
void blurBySweep(const BitmapStruct& bitmap, const SweepPlan& plan, uint32_t* scratch);

// The words of scratch; more than a blur may hold where the picture is too small for a sweep.
size_t sweepScratchWords(const SweepPlan& plan, size_t width, size_t height);

}  // namespace android
