#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/dot_plan.h"
#include "jni/bitmap_struct.h"

namespace android {

// Whether this processor has dot products of bytes. Where it has not, nothing below may be called.
bool hasDotProducts();

// Both passes of a blur by dot products in one sweep, in place; writes alpha 255. `scratch` holds
// the words that dotScratchWords asks for, of any content. Reads and writes no byte outside the
// image.
void blurByDots(const BitmapStruct& bitmap, const DotPlan& plan, uint32_t* scratch);

// The words of scratch; more than a blur may hold where a picture is too small for the kernel.
size_t dotScratchWords(const DotPlan& plan, size_t width, size_t height);

}  // namespace android
