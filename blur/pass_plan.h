#pragma once

#include <cstddef>
#include <cstdint>

#include "blur/step_plan.h"
#include "blur/symmetric_plan.h"
#include "blur/tap_plan.h"

namespace android {

// Division by the norm n, 257 to 65536, without dividing, for sums A from 0 to 255 n. The quotient
// q is what the passes need; r = A - q n is the remainder, 0 <= r < n.
struct Divisor {
    // c = 65536 - n. While c <= 257 (kNearComplement) the quotient is
    //
    //     (A + c + c h) >> 16    with    h = (A + c) >> 16
    //
    // A = q (65536 - c) + r, so A + c = 65536 q + (r + c - q c). The bracket is at most
    // n - 1 + c = 65535 and at least c - 255 c = -254 * 257 > -65536. Hence h is q or, where the
    // bracket is negative, q - 1. With h = q the sum is 65536 q + r + c, and r + c <= 65535. With h
    // = q - 1 it is 65536 q + r. Either way the upper bits are q. That c h <= 257 * 255 = 65535 is
    // what limits c: one target multiplies in 16 bits. As signed numbers of 16 bits h and c are
    // positive, so the multiply-add of the others is exact too.
    uint32_t complement;
    // m = 2^40 / n, rounded up; it needs 32 bits because n > 256. The quotient is A m >> 40: the
    // rounding makes A m / 2^40 exceed A / n by at most A / 2^40, and A <= 255 * 65536 < 2^24, so
    // by less than 1 / 65536 <= 1 / n, too little to reach the next whole number (Granlund and
    // Montgomery, "Division by Invariant Integers using Multiplication", 1994).
    uint32_t reciprocal;
};
Divisor divisorOf(int32_t norm);
constexpr uint32_t kNearComplement = 257;

// How one pass of the blur is computed: which method, over which tables. A plan is made for lines
// (rows or columns) of one length. All methods are exact: their sums are whole numbers that are
// right to the last bit, and nothing is rounded before the division. `steps` holds a plan only if
// it is to be taken; then come symmetric taps, if there is a plan for them, then taps.
struct PassPlan {
    Divisor divisor;
    TapPlan taps;
    SymmetricPlan symmetric;
    StepPlan steps;
    bool bySteps() const { return steps.terms != nullptr; }
    bool bySymmetricTaps() const { return symmetric.turns > 0; }
};

// What the parts of a pass cost, in one unit of the instruction set's own: only which way costs
// less counts, never a result.
struct PassCosts {
    size_t pair;           // of taps
    size_t symmetricPair;  // of a symmetric kernel's
    size_t tapsRest;       // reading the line, the division, writing: what no plan changes
    size_t term, piece;    // of steps; a piece is widened and added up
    size_t tableRow;       // that is laid out for an output
    size_t stepsRest;
};

// Makes the plan for lines of `length` pixels under a plain kernel (isPlainKernel), where `lines`
// of them make the picture; false when memory cannot be had.
bool makePassPlan(const int32_t* kernel, int32_t size, int32_t norm, int32_t length, int32_t lines,
                  const PassCosts& costs, PassPlan* plan);

}  // namespace android
