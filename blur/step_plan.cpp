#include "blur/step_plan.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "blur/plan_support.h"

namespace android {
namespace {

constexpr int32_t kWidestDistance = 16;  // of two pixels whose sum is a term; more save few
constexpr int32_t kCachedRows = 16384;   // of 64 bytes that a second-level cache holds

// Difference j, from 0 to count - 1, is what the pixel j - reach - 1 away from the later one of two
// outputs weighs in that one, less what it weighs in the earlier one.
struct Differences {
    std::unique_ptr<int32_t[]> difference;
    std::unique_ptr<int32_t[]> slope;  // the part of it that is taken from prefix sums
    size_t count;
    int32_t residual(size_t j) const { return difference[j] - slope[j]; }
};

// Splits every difference into a slope and a residual so that both together take the fewest terms:
// one where the slope changes, one for each residual that is not 0. Walks the places from the left
// and keeps, for each slope that the next place may have, the cost of the cheapest way there: by
// keeping the slope, which is free, or by changing it from the cheapest of all, which takes a term.
// Then follows the cheapest way back from the right end. A difference larger than kSteepest always
// leaves a residual: that costs terms, not exactness.
bool splitDifferences(Differences* differences) {
    constexpr int32_t kSteepest = 12;
    constexpr int32_t kSlopes = 2 * kSteepest + 1;  // index s stands for the slope s - kSteepest
    const size_t count = differences->count;
    std::unique_ptr<uint32_t[]> kept;      // one bit a slope: whether its cheapest way kept it
    std::unique_ptr<uint8_t[]> changedAt;  // the slope that a change comes from
    if (!allocate(kept, count) || !allocate(changedAt, count) ||
        !allocate(differences->slope, count)) {
        return false;
    }
    // In front of the first place the slope is 0: any other one costs the term that begins it.
    int32_t cost[kSlopes];
    for (int32_t s = 0; s < kSlopes; ++s) cost[s] = s == kSteepest ? 0 : 1;
    for (size_t j = 0; j < count; ++j) {
        const int32_t cheapest =
            static_cast<int32_t>(std::min_element(cost, cost + kSlopes) - cost);
        const int32_t change = cost[cheapest] + 1;
        changedAt[j] = static_cast<uint8_t>(cheapest);
        for (int32_t s = 0; s < kSlopes; ++s) {
            if (cost[s] <= change) {
                kept[j] |= 1u << s;
            } else {
                cost[s] = change;
            }
            if (differences->difference[j] != s - kSteepest) ++cost[s];
        }
    }
    for (int32_t s = 0; s < kSlopes; ++s) cost[s] += s == kSteepest ? 0 : 1;  // back to no slope
    int32_t s = static_cast<int32_t>(std::min_element(cost, cost + kSlopes) - cost);
    for (size_t j = count; j-- > 0;) {
        differences->slope[j] = s - kSteepest;
        if ((kept[j] >> s & 1) == 0) s = changedAt[j];
    }
    return true;
}

bool makeDifferences(const FoldedKernel& kernel, int32_t length, Differences* differences) {
    const int32_t* const weights = kernel.weights.get();
    differences->count = 2 * static_cast<size_t>(kernel.reach) + 2;
    if (!allocate(differences->difference, differences->count)) return false;
    int32_t* difference = differences->difference.get();
    for (size_t j = 0; j < differences->count; ++j) {
        const int32_t later = j == 0 ? 0 : weights[j - 1];
        const int32_t earlier = j + 1 == differences->count ? 0 : weights[j];
        difference[j] = later - earlier;
    }
    if (kernel.reach == length - 1) {
        // As wide as the line: the two outermost places on either side meet the same pixel, the
        // line's first or last one, from every output. The two differences of the outermost weight
        // w(0), -w(0) and w(0) - w(1), add up to -w(1): it cancels, however much was folded onto
        // it.
        const size_t last = differences->count - 1;
        difference[1] += difference[0];
        difference[last - 1] += difference[last];
        difference[0] = difference[last] = 0;
    }
    return splitDifferences(differences);
}

// Of the residuals in [begin, end) that are not 0, one and the next make a pair where they are
// alike, at most kWidestDistance rows apart and wanted(distance): pair(row, distance, weight). Each
// is in one pair at most; the others are single(row, weight). Greedy, so not always the most pairs.
// Difference j belongs to pixel j - reach - 1, which is row j + 1 of the bordered pixels: the
// border has a row more for the prefix sum in front of the first difference.
template <typename Wanted, typename Pair, typename Single>
void walkResiduals(const Differences& differences, size_t begin, size_t end, Wanted wanted,
                   Pair pair, Single single) {
    int32_t row = 0, weight = 0;  // of the residual that waits for another one
    for (size_t j = begin; j < end; ++j) {
        const int32_t residual = differences.residual(j);
        if (residual == 0) continue;
        const int32_t distance = static_cast<int32_t>(j) + 1 - row;
        if (residual == weight && distance <= kWidestDistance && wanted(distance)) {
            pair(row, distance, weight);
            weight = 0;
        } else {
            if (weight != 0) single(row, weight);
            row += distance;  // j + 1, the row of this residual
            weight = residual;
        }
    }
    if (weight != 0) single(row, weight);
}

// Gives tables to the distances that save the most terms, at most `most` of them; counted as if
// each distance had a table and nothing were cut into pieces.
void chooseDistances(const Differences& differences, size_t most, StepPlan* plan) {
    int32_t uses[kWidestDistance + 1] = {};
    walkResiduals(
        differences, 0, differences.count, [](int32_t) { return true; },
        [&](int32_t, int32_t distance, int32_t) { ++uses[distance]; }, [](int32_t, int32_t) {});
    while (plan->distanceCount < most) {
        int32_t* use = std::max_element(uses, uses + kWidestDistance + 1);
        if (*use == 0) return;
        plan->distances[plan->distanceCount++] = static_cast<int32_t>(use - uses);
        *use = 0;
    }
}

// The rows that one output takes, of a table.
int32_t spanOf(const StepPlan& plan) { return 2 * plan.reach + 3; }

// The number of the table for `distance`; that of the prefix sums' when it has none.
size_t distanceTable(int32_t distance, const StepPlan& plan) {
    const int32_t* const end = plan.distances + plan.distanceCount;
    return 1 + static_cast<size_t>(std::find(plan.distances, end, distance) - plan.distances);
}

// Tables are spanOf() rows apart until placeTerms() knows better.
void addTerm(size_t table, int32_t row, int32_t weight, StepPlan* plan) {
    if (weight == 0) return;
    plan->terms[plan->termCount++] = {static_cast<int32_t>(table) * spanOf(*plan) + row,
                                      halves(weight, weight)};
    plan->prefixSums |= table > plan->distanceCount;
}

// A run of slope s over the differences a to b - 1, which are rows a + 1 to b, is s (S(b) - S(a))
// with S(i) the prefix sum up to row i. So row j of the prefix sums weighs the slope in front of
// difference j less the one from j on. These weights add up to 0: whatever the sums hold from rows
// in front of the piece cancels.
void addTerms(const Differences& differences, size_t begin, size_t end, StepPlan* plan) {
    const size_t prefixSums = 1 + plan->distanceCount;
    int32_t slope = 0;
    for (size_t j = begin; j < end; ++j) {
        addTerm(prefixSums, static_cast<int32_t>(j), slope - differences.slope[j], plan);
        slope = differences.slope[j];
    }
    addTerm(prefixSums, static_cast<int32_t>(end), slope, plan);
    walkResiduals(
        differences, begin, end,
        [plan](int32_t distance) { return distanceTable(distance, *plan) <= plan->distanceCount; },
        [plan](int32_t row, int32_t distance, int32_t weight) {
            addTerm(distanceTable(distance, *plan), row, weight, plan);
        },
        [plan](int32_t row, int32_t weight) { addTerm(0, row, weight, plan); });
}

// Sorts the terms from number `first` on by kind, those of the pixels last, in the order of their
// rows, and says where each kind lies. Most terms weigh 1 or -1 and need no multiplication.
void sortTerms(size_t first, StepPlan* plan, StepPiece* piece) {
    const auto kindOf = [](const StepTerm& term) {
        return term.weight == halves(1, 1) ? 0 : term.weight == halves(-1, -1) ? 1 : 2;
    };
    const auto isPixel = [plan](const StepTerm& term) { return term.row < spanOf(*plan); };
    StepTerm* const terms = plan->terms.get();
    std::sort(terms + first, terms + plan->termCount, [&](const StepTerm& a, const StepTerm& b) {
        return std::tuple(kindOf(a), isPixel(a), a.row) < std::tuple(kindOf(b), isPixel(b), b.row);
    });
    size_t end = first;
    const auto termsOf = [&](int kind) {
        const auto is = [&](bool pixel) {
            return end < plan->termCount && kindOf(terms[end]) == kind &&
                   isPixel(terms[end]) == pixel;
        };
        StepTerms found = {end, end, end};
        while (is(false)) ++end;
        found.pixels = end;
        while (is(true)) ++end;
        found.end = end;
        return found;
    };
    piece->added = termsOf(0);
    piece->subtracted = termsOf(1);
    piece->weighted = termsOf(2);
}

// Appends a piece of the differences [begin, end).
void addPiece(const Differences& differences, size_t begin, size_t end, StepPlan* plan) {
    StepPiece& piece = plan->pieces[plan->pieceCount++];
    const size_t first = plan->termCount;
    addTerms(differences, begin, end, plan);
    sortTerms(first, plan, &piece);
    int32_t negative = 0;
    for (size_t j = begin; j < end; ++j) negative -= std::min(differences.difference[j], 0);
    const int32_t bias = 255 * negative;
    piece.bias = halves(bias, bias);
    plan->bias += static_cast<uint32_t>(bias);
}

// Decides how many rows of the tables are laid out at a time, and lets the terms' rows count them.
void placeTerms(int32_t length, int32_t room, StepPlan* plan) {
    const int64_t span = spanOf(*plan), tables = static_cast<int64_t>(tableCount(*plan));
    const int32_t outputs = (length - 1 + kStepOutputs - 1) / kStepOutputs * kStepOutputs;
    const int64_t rows =
        std::min<int64_t>(room, std::max<int64_t>(kCachedRows, 2 * span * tables)) / tables;
    const int64_t most = (rows - span) / kStepOutputs * kStepOutputs;
    plan->chunk = static_cast<int32_t>(std::min<int64_t>(outputs, most));
    plan->tableRows = spanOf(*plan) + plan->chunk;
    for (size_t t = 0; t < plan->termCount; ++t) {
        int32_t& row = plan->terms[t].row;
        row = row / spanOf(*plan) * plan->tableRows + row % spanOf(*plan);
    }
}

}  // namespace

bool planSteps(const FoldedKernel& kernel, int32_t length, int32_t room, StepPlan* plan) {
    const int32_t reach = kernel.reach;
    Differences differences;
    if (!makeDifferences(kernel, length, &differences)) return false;
    int64_t total = 0;
    int32_t largest = 0;
    for (size_t j = 0; j < differences.count; ++j) {
        total += std::abs(differences.difference[j]);
        largest = std::max(largest, std::abs(differences.difference[j]));
    }
    // The rows that one output takes, from the one in front of the first difference to the one
    // behind the last, and as many again for a chunk, so that moving the tables on costs little.
    const int64_t taken = 2 * int64_t{reach} + 3;
    const int64_t leastRows = taken + std::min<int64_t>(taken, length + kStepOutputs);
    if (largest > kStepPieceSpan || 2 * leastRows > room) return true;
    plan->reach = reach;
    plan->border = reach + 2;
    // A piece is closed when the next difference does not fit, so any two neighbours exceed the
    // span together.
    const size_t pieces = static_cast<size_t>(2 * total / kStepPieceSpan) + 2;
    // A difference gives two terms at most, and each piece ends with one more.
    if (!allocate(plan->start, static_cast<size_t>(reach) + 1) ||
        !allocate(plan->terms, 2 * differences.count + pieces + 1) ||
        !allocate(plan->pieces, pieces)) {
        return false;
    }
    for (int32_t i = 0; i <= 2 * reach; ++i) {
        plan->start[static_cast<size_t>(std::max(i - reach, 0))] +=
            static_cast<uint32_t>(kernel.weights[static_cast<size_t>(i)]);
    }
    const size_t tables = static_cast<size_t>(room / leastRows) - 2;
    chooseDistances(differences, std::min(kMaxDistances, tables), plan);
    size_t begin = 0;
    int32_t span = 0;
    for (size_t j = 0; j < differences.count; ++j) {
        const int32_t amount = std::abs(differences.difference[j]);
        if (span + amount > kStepPieceSpan) {
            addPiece(differences, begin, j, plan);
            begin = j;
            span = 0;
        }
        span += amount;
    }
    addPiece(differences, begin, differences.count, plan);
    placeTerms(length, room, plan);
    return true;
}

}  // namespace android
