#pragma once

#include <cstdint>
#include <memory>

namespace android {

// Whether a kernel can be planned: weights that are not negative and add up to at most the norm,
// and a norm of 257 to 65536 (from 257 on 2^40 / norm fits 32 bits). Then every weight and sum of
// weights is at most 65536, every sum of weighted bytes at most 255 * 65536 < 2^24, and every
// quotient a byte, which all ways of blurring and the division without dividing (blur/pass_plan.h)
// stand on. Any other kernel is blurred by blurAnyKernel (blur/gaussian_blur.cpp).
bool isPlainKernel(const int32_t* kernel, int32_t size, int32_t norm);

// The kernel as lines of `length` pixels meet it. Taps at least length - 1 pixels away meet the
// line's first or last pixel from every output, so their weights are added up (and may wrap) at
// that distance, and no kernel reaches farther. Weight i belongs to the pixel i - reach away, i = 0
// ... 2 * reach.
struct FoldedKernel {
    int32_t reach;  // at most length - 1
    std::unique_ptr<int32_t[]> weights;
};

// Whether it is the same from both ends, and its weights fit a multiplication's signed 16 bits.
bool isSymmetric(const FoldedKernel& kernel);

// False when memory cannot be had.
bool foldKernel(const int32_t* kernel, int32_t size, int32_t length, FoldedKernel* folded);

}  // namespace android
