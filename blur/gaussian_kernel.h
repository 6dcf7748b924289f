#pragma once

#include <cstdint>

namespace android {

// Returns how many taps a blur of standard deviation `radius` (pixels) has: 4 * radius truncated,
// less one when that is even, so that it reaches about twice the radius to either side. 0, which is
// no blur, below a radius of 0.25 and for NaN. From 23170.75 on it is more than kMaxKernelSize, and
// 2147483647 where an integer ends.
inline int32_t gaussianKernelSize(float radius) {
    const float taps = 4.0f * radius;
    if (!(taps >= 1.0f)) return 0;  // NaN too
    if (taps >= 2147483648.0f) return INT32_MAX;
    const int32_t size = static_cast<int32_t>(taps);
    return size % 2 == 0 ? size - 1 : size;
}

}  // namespace android

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
