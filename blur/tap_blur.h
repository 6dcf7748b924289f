#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/pass_plan.h"
#include "jni/bitmap_struct.h"

namespace android {

// The two passes of a blur by taps, in place, over every row or every column of `bitmap`; writes
// alpha 255. `plan` was made for the length of those lines, `scratch` holds the words that
// tapScratchWords asks for, of any content. Reads and writes no byte outside the image.
void blurRowsByTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);
void blurColumnsByTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);

// The words of scratch for `lines` lines of `length` pixels.
size_t tapScratchWords(const PassPlan& plan, size_t length, size_t lines);

// What passes cost here, by taps and by the other ways.
PassCosts passCosts();

}  // namespace android
