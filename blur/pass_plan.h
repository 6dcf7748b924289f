#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/step_plan.h"
#include "blur/symmetric_plan.h"
#include "blur/tap_plan.h"

namespace android {

// Division by the norm n, 257 to 65536, without dividing, for sums A from 0 to 255 n. The quotient
// q is what the kernels need; r = A - q n is the remainder, 0 <= r < n.
struct Divisor {
    // c = 65536 - n. While c <= 257 (kNearComplement) the quotient is
    //
    //     (A + c + c h) >> 16    with    h = (A + c) >> 16
    //
    // A = q (65536 - c) + r, so A + c = 65536 q + (r + c - q c). The bracket is at most
    // n - 1 + c = 65535 and at least c - 255 c = -254 * 257 > -65536. Hence h is q or, where it is
    // negative, q - 1. With h = q the sum is 65536 q + r + c, and r + c <= 65535. With h = q - 1 it
    // is 65536 q + r. Either way the upper bits are q. c h <= 257 * 255 = 65535 needs 16 bits.
    uint32_t complement;
    // m = 2^40 / n, rounded up; it needs 32 bits because n > 256. The quotient is A m >> 40: the
    // rounding makes A m / 2^40 exceed A / n by less than A / 2^40 < 2^24 / 2^40 = 1 / 65536 <= 1 /
    // n, too little to reach the next whole number (Granlund and Montgomery, "Division by Invariant
    // Integers using Multiplication", 1994).
    uint32_t reciprocal;
};
Divisor divisorOf(int32_t norm);
constexpr uint32_t kNearComplement = 257;

// How one pass of the blur is computed: which method, over which tables. A plan is made for lines
// (rows or columns) of one length and holds everything that depends on the kernel alone. Both
// methods are exact: they add the same integers in another order.
struct PassPlan {
    Divisor divisor;
    TapPlan taps;
    SymmetricPlan symmetric;
    StepPlan steps;
    bool bySteps() const { return steps.terms != nullptr; }
    bool bySymmetricTaps() const { return symmetric.turns > 0; }
};

// Makes the cheapest plan for lines of `length` pixels under a plain kernel (isPlainKernel), where
// a pair of taps costs `tapPairCost` (blur/tap_blur.h) and `lines` of them make the picture; false
// when memory cannot be had.
bool makePassPlan(const int32_t* kernel, int32_t size, int32_t norm, int32_t length, int32_t lines,
                  size_t tapPairCost, PassPlan* plan);

}  // namespace android
