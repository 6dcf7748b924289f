#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "blur/folded_kernel.h"

namespace android {

// By symmetric taps: the taps i and -i of a Gaussian weigh the same, so the two pixels are added
// first and multiplied once. With k(i) the weight at distance i, an even output x = 2u and an odd
// one x = 2u + 1 of a line:
//
//     even   k(0) p(x) + sum over t of   k(2t+1) (p(x-2t-1) + p(x+2t+1))
//                                      + k(2t+2) (p(x-2t-2) + p(x+2t+2))
//
//     odd                sum over t of   k(2t)   (p(x-2t)   + p(x+2t))
//                                      + k(2t+1) (p(x-2t-1) + p(x+2t+1))
//
// The odd output's first term counts p(x) twice, so its weight is half of k(0); what an odd k(0)
// loses by that is added on its own.
struct SymmetricPlan {
    size_t turns = 0;  // of t; 0 where the kernel has no such plan
    // Two words a turn: the weights of the even output, then of the odd one, the first of the sum's
    // two in the low half.
    std::unique_ptr<uint32_t[]> weights;
    uint32_t centerEven;  // weights of the pair (2u + 1, 2u), then
    uint32_t centerOdd;   // of the pair (2u + 1, 2u + 2)
};

// False when memory cannot be had. There is a plan for a kernel that is the same from both ends and
// whose weights fit the multiplication's 16 bits.
bool planSymmetricTaps(const FoldedKernel& kernel, SymmetricPlan* plan);

}  // namespace android
