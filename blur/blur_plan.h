#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace android {

// How one pass of the blur is computed: which method, over which tables. A plan is made for lines
// (rows or columns) of one length and holds everything that depends on the kernel alone.
//
// Both methods are exact: they add the same integers in another order. They need weights that are
// not negative and add up to at most the norm, and a norm of 257 to 65536, so that every quotient
// is a byte and every sum stays below 2^24. Any other kernel is blurred tap by tap
// (gaussian_blur.cpp).
bool isPlainKernel(const int32_t* kernel, int32_t size, int32_t norm);

// The kernel as lines of `length` pixels meet it. Taps farther away than a line is long meet its
// first or its last pixel wherever they are, so their weights are added up (and may wrap) and no
// kernel is wider than the line. Weight i belongs to the pixel i - reach away, i = 0 ... 2 * reach.
struct FoldedKernel {
    int32_t reach;
    std::unique_ptr<int32_t[]> weights;
};
// False when memory cannot be had.
bool foldKernel(const int32_t* kernel, int32_t size, int32_t length, FoldedKernel* folded);

// Division by the norm without dividing, for sums up to 255 * norm.
struct Divisor {
    // 65536 - norm. While 255 * gap <= 65536, the quotient of A is
    // (A + gap + gap * ((A + gap) >> 16)) >> 16.
    uint32_t gap;
    // 2^40 / norm, rounded up. The quotient of A is A * reciprocal >> 40: the rounding adds less
    // than A * norm / 2^40 < 1 to A, too little to reach the next multiple of the norm.
    uint32_t reciprocal;
};
Divisor divisorOf(int32_t norm);
constexpr uint32_t kNearGap = 257;  // 255 * 257 < 65536

// By taps: one multiply-add for two taps of one pixel. The pixels of a line are taken in pairs; two
// neighbouring outputs meet the same pairs, the even one with the weights (k0, k1), (k2, k3), ...,
// the odd one with (0, k0), (k1, k2), ...
//
// A weight above 32767 does not fit the multiplication's 16 bits and is spread over several rounds.
struct TapPlan {
    int32_t reach;  // taps are -reach ... reach pixels away
    size_t pairs;   // a round
    size_t rounds;
    // rounds * pairs entries of two words: the weights of the even output, then of the odd one,
    // each the earlier tap's in the low half.
    std::unique_ptr<uint32_t[]> weights;
};

// By steps: from one output to the next, a sum changes by the weights' differences times the pixels
// under them. Wide kernels are flat, so most differences are 0 or alike. Runs of alike differences
// are taken from prefix sums of the pixels; what is left, two pixels a few rows apart at a time,
// from sums of such two, or pixel by pixel. All in 16 bits, where sums wrap: the differences are
// cut into pieces whose true sum spans at most 65536 values, so the wrapped sum tells the true one.
//
// The tables lie behind each other, `rows` rows each: the pixels with their borders, their prefix
// sums, and for a few gaps the sums of row i and row i + gap.
constexpr size_t kMaxGaps = 4;
struct StepTerm {
    int32_t row;      // added to the output's number: a row of one of the tables
    uint32_t weight;  // twice the same 16 bits
};
// Terms of one kind, from `begin` to `end`. From `pixels` on they take pixels themselves, the ones
// with the lowest rows first.
struct StepTerms {
    size_t begin, pixels, end;
};
struct StepPiece {
    StepTerms added, subtracted, weighted;  // of weight 1, of weight -1, of any other one
    uint32_t bias;                          // keeps the sum from 0 to 65535; twice the same 16 bits
};
struct StepPlan {
    int32_t border;          // rows in front of the first pixel and behind the last one
    int32_t rows;            // of a table: the pixels, borders included
    int32_t gaps[kMaxGaps];  // of the tables behind the first two
    size_t gapCount = 0;
    bool prefixSums = false;  // whether a term takes one
    int32_t reach;
    std::unique_ptr<uint32_t[]> start;  // weights of the pixels 0 ... reach in the first output
    std::unique_ptr<StepTerm[]> terms;
    size_t termCount = 0;
    std::unique_ptr<StepPiece[]> pieces;
    size_t pieceCount = 0;
    uint32_t bias = 0;  // of all pieces together
};

// The plan of a pass: by steps when `steps.terms` is set, else by taps.
struct PassPlan {
    Divisor divisor;
    TapPlan taps;
    StepPlan steps;
};

// Makes the cheapest plan for lines of `length` pixels, where a pair of taps costs `tapPairCost`
// (blur/tap_blur.h); false when memory cannot be had.
bool makePassPlan(const int32_t* kernel, int32_t size, int32_t norm, int32_t length,
                  size_t tapPairCost, PassPlan* plan);

}  // namespace android
