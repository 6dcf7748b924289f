#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/pass_plan.h"
#include "jni/bitmap_struct.h"

namespace android {

// The two passes of a blur by steps, like those by taps (blur/tap_blur.h), for a plan that has
// them.
void blurRowsBySteps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);
void blurColumnsBySteps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);
size_t stepScratchWords(const PassPlan& plan, size_t length, size_t lines);

}  // namespace android
