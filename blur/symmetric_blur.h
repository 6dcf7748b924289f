#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/pass_plan.h"
#include "jni/bitmap_struct.h"

namespace android {

// The two passes of a blur by symmetric taps, like those by taps (blur/tap_blur.h), for a plan that
// has them.
void blurRowsBySymmetricTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);
void blurColumnsBySymmetricTaps(const BitmapStruct& bitmap, const PassPlan& plan,
                                uint32_t* scratch);
size_t symmetricScratchWords(const PassPlan& plan, size_t length, size_t lines);

}  // namespace android
