#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace android {

// By dot products: pixels stay bytes in both passes, and one instruction multiplies four of them by
// four weights of a byte each and adds the products to a sum of 32 bits, in each of four lanes. A
// weight has two bytes, so there are two sums of one output:
//
//     L = sum of (w(k) mod 256) p(k)      H = sum of (w(k) / 256) p(k)      A = L + 256 H
//
// Four neighbouring outputs take the same groups of four pixels, each with the weights shifted by
// one place more, so that a group is loaded once for all four:
//
//     output 0    w0 w1 w2 w3 | w4 w5 ...
//     output 1     0 w0 w1 w2 | w3 w4 ...
//     output 2     0  0 w0 w1 | w2 w3 ...
//     output 3     0  0  0 w0 | w1 w2 ...
//
// Why the sums are exact. A plan holds the kernel and the norm both doubled as often as it takes to
// bring the norm n to 32769 ... 65536, which changes no quotient. The weights then add up to at
// most n (isPlainKernel), and a pixel is at most 255. Nothing in a sum is negative, so neither L
// nor H nor any part of them exceeds A, and A <= 255 n <= 255 * 65536 < 2^24.
//
// The quotient q = A / n is in bits 16 to 23 of
//
//     A + (A m + 2^30 >> 31)    with    m = 2^31 (65536 - n) / n, rounded down: from 0 to 2^31 - 1
//
// which one instruction computes: the upper half of a doubled product, rounded and added. Without
// rounding it is A + A (65536 - n) / n = 65536 A / n = 65536 q + 65536 r / n, with the remainder r
// from 0 to n - 1, so from 65536 q to 65536 (q + 1) - 65536 / n <= 65536 (q + 1) - 1. Rounding m
// makes that smaller by less than A / 2^31 < 2^-7, and rounding the result to the nearest whole
// number then neither leaves 65536 q downwards nor reaches 65536 (q + 1).
struct DotPlan {
    size_t groups = 0;  // of four pixels under four outputs; 0 where there is no such plan
    // From the first group to behind the last one with a weight above 255; others add nothing to H.
    size_t heavyBegin, heavyEnd;
    size_t reach;        // taps are -reach ... reach pixels away
    int32_t factors[2];  // m, then the 256 of the sum
    // kDotGroupBytes a group: the upper bytes of the weights of outputs 0 to 3, then the lower
    // ones.
    std::unique_ptr<uint8_t[]> weights;
};
constexpr size_t kDotGroupBytes = 32;

// False when memory cannot be had. There is a plan for every plain kernel (blur/folded_kernel.h)
// that weighs more than one pixel and none by 65536, and for which other ways are not cheaper.
bool planDots(const int32_t* kernel, int32_t size, int32_t norm, int32_t width, int32_t height,
              DotPlan* plan);

}  // namespace android
