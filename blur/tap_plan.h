#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "blur/folded_kernel.h"

namespace android {

// By taps: one multiply-add for two taps of one output. Entry e of a line is pixel e - reach, the
// first or the last one where there is none; pair i is the entries 2 i and 2 i + 1. The outputs o
// and o + 1, o even, take the pairs o / 2 to o / 2 + reach, the even one with the weights (k0, k1),
// (k2, k3), ..., the odd one with (0, k0), (k1, k2), ...
//
// The multiplication's numbers are signed and 16 bits wide. A weight above 32767 does not fit and
// is spread over several rounds: 32767 of it in the first, what is left, up to 32767, in the next.
// Each round adds its share of every weight, and sums stay below 255 * 65536 + 258 < 2^31.
struct TapPlan {
    int32_t reach;  // taps are -reach ... reach pixels away
    size_t pairs;   // in each round
    size_t rounds;
    // rounds * pairs entries of two words: the weights of the even output, then of the odd one,
    // each the earlier tap's in the low half.
    std::unique_ptr<uint32_t[]> weights;
};

// False when memory cannot be had. No weight of the kernel is negative.
bool planTaps(const FoldedKernel& kernel, TapPlan* plan);

}  // namespace android
