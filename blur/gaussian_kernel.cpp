#include "blur/gaussian_kernel.h"

#include <cmath>
#include <memory>
#include <new>

namespace android {
namespace {

constexpr float kSqrtTwoPi = 2.5066283f;
constexpr float kScale = 65536.0f;  // 16 fraction bits, so 255 * the norm fits in 31 bits

// Single-precision exponential, correctly rounded over the arguments a kernel has. The math
// library's expf is one unit off for about one argument in a thousand, which now and then moves a
// weight; the double result rounded once is not.
float expRounded(float x) { return static_cast<float>(std::exp(static_cast<double>(x))); }

}  // namespace

// The weights depend on the rounding of every step, so no step may be reordered, mirrored or fused:
// the factor cancels on paper but not in the last bit.
int32_t calcuGaussianTemplate(int32_t* kernel, int32_t size, float radius) {
    if (size < 1 || size > kMaxKernelSize) return 0;
    const std::unique_ptr<float[]> scratch(new (std::nothrow) float[static_cast<size_t>(size)]);
    float* const weights = scratch.get();
    if (weights == nullptr) return 0;

    const float exponent = -1.0f / ((radius + radius) * radius);
    const float factor = 1.0f / (radius * kSqrtTwoPi);
    const int32_t half = size / 2;
    float total = 0.0f;
    for (int32_t i = 0; i < size; ++i) {
        const int32_t offset = i - half;
        const float g = expRounded(exponent * static_cast<float>(offset * offset));
        weights[i] = factor * g;
        total += weights[i];
    }

    int32_t sum = 0;
    for (int32_t i = 0; i < size; ++i) {
        const float weight = weights[i] * kScale / total;
        // All weights have the sign of the total, so a quotient is 0 to 65536, or NaN, which gives
        // 0.
        kernel[i] = weight > 0.0f ? static_cast<int32_t>(weight) : 0;
        sum += kernel[i];
    }
    return sum;
}

}  // namespace android
