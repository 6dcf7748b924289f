#pragma once

#include <cstdint>

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// The most taps a kernel can have: the square of half of it is the last that fits 31 bits.
constexpr int32_t kMaxKernelSize = 92681;

// Fills `kernel` with `size` Gaussian weights in 16.16 fixed point and returns their exact sum,
// which is the norm that GaussianBlurEffect divides by. `radius` is the standard deviation in
// pixels; its sign does not matter.
//
// Tap i weighs the pixel at offset i - size / 2. Weights are 0 to 65536 and truncated, so the
// sum falls short of 65536 by less than `size`; an odd size gives a symmetric kernel. A radius
// of 0 (or too small for its square to be told from 0), infinite or NaN gives all weights 0 and
// the sum 0.
//
// Returns 0 and writes nothing when `size` is below 1 or above kMaxKernelSize, or when the
// scratch memory of 4 * size bytes cannot be had.
//
// REQUIRES: room for `size` elements in `kernel`. Re-entrant.
int32_t calcuGaussianTemplate(int32_t* kernel, int32_t size, float radius);

}  // namespace android
#pragma GCC visibility pop
