#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "blur/folded_kernel.h"

namespace android {

// By steps: from one output of a line to the next, the weighted sum changes by the differences of
// the weights times the pixels under them. Under the weights 1 2 3 2 1, with p the pixels:
//
//     s(y)     = p(y-2) + 2 p(y-1) + 3 p(y) + 2 p(y+1) + p(y+2)
//     s(y-1)   =   p(y-3) + 2 p(y-2) + 3 p(y-1) + 2 p(y) + p(y+1)
//
//     s(y) - s(y-1) = - p(y-3) - p(y-2) - p(y-1) + p(y) + p(y+1) + p(y+2)        six terms
//                   = S(y-4) - 2 S(y-1) + S(y+2)                                three terms
//
// where S(i) = ... + p(i-1) + p(i) is the sum of all pixels up to i: a run of equal differences
// costs the two prefix sums at its ends, and where one run follows another they share one. So a
// plan is a list of terms, each a weight and a row of a table. The amounts of all differences of a
// kernel that rises and falls once add up to twice its largest weight, which is the less the wider
// it is: so most differences are 0 or like their neighbours, and the terms are few.
//
// What a term takes. Each difference is split into a slope and a residual. The slopes are the runs:
// a term of the prefix sums wherever a slope differs from the one before. The residuals are what is
// left: a term of the pixels for each that is not 0, or, for one and the next that are alike and
// lie one of a few distances apart, one term of a table that holds the sums of two pixels at that
// distance. The split with the fewest terms is a shortest path: the places from left to right, at
// each a choice of slope, where keeping the slope is free and changing it costs a term, as does a
// residual that is not 0. Dynamic programming finds it (splitDifferences), for slopes up to 12 and
// before residuals are paired and pieces cut. What it does not foresee costs terms, not exactness:
// any split adds up to the differences.
//
// Why 16 bits are enough. Table entries and terms are 16 bits wide and wrap, so that a vector holds
// twice as many lines. Sums that wrap are right modulo 65536, whatever wrapped on the way; if the
// true value is known to lie from 0 to 65535, the wrapped one is the true one. The differences are
// therefore cut, from left to right, into pieces whose amounts add up to at most 257. A pixel is at
// most 255, so with P the sum of a piece's positive differences and N that of its negative ones'
// amounts its value lies from -255 N to 255 P. The bias 255 N is added and makes that 0 to
// 255 (P + N) <= 255 * 257 = 65535. The pieces are widened to 32 bits, added up, and their biases
// taken off together. A piece's terms add up to its own differences times the pixels, because its
// prefix sums begin and end within it: so only that value must fit 16 bits, not what the tables or
// the sum hold on the way.
//
// The tables lie behind each other, `tableRows` rows each: the pixels with their borders, for up to
// kMaxDistances distances d, those used most, the sums of row i and row i + d, and the prefix sums
// if a term takes one. Table t begins at row t * tableRows, and a term's row plus the number of any
// output of the chunk stays within its table; the last d rows of a distance's table hold nothing
// and are not taken. A long line does not have all of its rows in them at a time: they are a window
// that moves on by `chunk` outputs, which keeps the tables in the cache and the memory in its
// bound.
//
// Sums of pixels up to a place are what graphics calls a summed-area table (Crow, "Summed-Area
// Tables for Texture Mapping", 1984), here along a line; taking a filter by its differences of some
// order is Heckbert's "Filtering by Repeated Integration", 1986.

constexpr size_t kMaxDistances = 4;      // that get a table; more save hardly any terms
constexpr int32_t kStepOutputs = 4;      // that follow each other share the fetching of a term
constexpr int32_t kStepPieceSpan = 257;  // of the differences of a piece: 255 * 257 = 65535

struct StepTerm {
    int32_t row;      // added to the output's number: a row of one of the tables
    uint32_t weight;  // twice the same 16 bits
};

// The numbers of the terms of one kind, from `begin` to `end`. From number `pixels` on they take
// pixels themselves, the ones with the lowest rows first; those before it take prefix sums and sums
// of two.
struct StepTerms {
    size_t begin, pixels, end;
};

struct StepPiece {
    StepTerms added, subtracted, weighted;  // of weight 1, of weight -1, of any other one
    uint32_t bias;                          // keeps the sum from 0 to 65535; twice the same 16 bits
};

// Output y, from 1 to length - 1, is output y - 1 plus, over all pieces, the terms' weights times
// row y + term.row of the tables. Output 0 is the weighted sum itself, from `start`. An output here
// is the sum before its division. Outputs are taken kStepOutputs at a time: as many less one may be
// computed behind the last one, on rows that are laid out, and dropped. They may be wrong, since a
// fold holds for the outputs of the line alone.
struct StepPlan {
    int32_t reach;
    int32_t border;     // rows in front of the first pixel: pixel i of the line is row border + i
    int32_t tableRows;  // of one table that are laid out at a time
    int32_t chunk;      // outputs that these serve; a multiple of kStepOutputs
    int32_t distances[kMaxDistances];  // of the tables behind the first one
    size_t distanceCount = 0;
    bool prefixSums = false;            // whether a term takes one: then they are the last table
    std::unique_ptr<uint32_t[]> start;  // weights of the pixels 0 ... reach in output 0
    std::unique_ptr<StepTerm[]> terms;
    size_t termCount = 0;
    std::unique_ptr<StepPiece[]> pieces;
    size_t pieceCount = 0;
    uint32_t bias = 0;  // of all pieces together
};

// The tables of a plan.
inline size_t tableCount(const StepPlan& plan) {
    return 1 + plan.distanceCount + (plan.prefixSums ? 1 : 0);
}

// Makes the plan of a kernel folded for lines of `length` pixels, with at most `room` rows in all
// tables together; false when memory cannot be had. `terms` stays null when there is no plan: a
// difference larger than a piece's span, or more rows than there is room for.
bool planSteps(const FoldedKernel& kernel, int32_t length, int32_t room, StepPlan* plan);

}  // namespace android
