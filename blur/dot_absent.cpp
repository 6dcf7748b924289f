#include "blur/dot_blur.h"

// In place of blur/dot_blur.cpp and blur/dot_processor.cpp where the code is not for 64-bit ARM.

namespace android {

bool hasDotProducts() { return false; }
void blurByDots(const BitmapStruct&, const DotPlan&, uint32_t*) {}
size_t dotScratchWords(const DotPlan&, size_t, size_t) { return 0; }

}  // namespace android
