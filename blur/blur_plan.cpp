#include "blur/blur_plan.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <tuple>

namespace android {
namespace {

constexpr int32_t kMaxWeight = 32767;  // of one multiplication
constexpr int32_t kPieceSpan = 257;    // 255 * 257 = 65535
constexpr int32_t kWidestGap = 16;     // of two pixels whose sum is a term

template <typename T>
bool allocate(std::unique_ptr<T[]>& array, size_t count) {
    array.reset(new (std::nothrow) T[count]());
    return array != nullptr;
}

uint32_t halves(int32_t low, int32_t high) {
    return (static_cast<uint32_t>(low) & 0xFFFF) | static_cast<uint32_t>(high) << 16;
}

bool planTaps(const int32_t* folded, int32_t reach, TapPlan* plan) {
    const int32_t taps = 2 * reach + 1;
    const int32_t heaviest = *std::max_element(folded, folded + taps);
    plan->reach = reach;
    plan->pairs = static_cast<size_t>(reach) + 1;
    plan->rounds = 1 + static_cast<size_t>(std::max(heaviest - 1, 0)) / kMaxWeight;
    if (!allocate(plan->weights, 2 * plan->pairs * plan->rounds)) return false;
    uint32_t* out = plan->weights.get();
    for (int32_t round = 0; round < static_cast<int32_t>(plan->rounds); ++round) {
        const auto weight = [=](int32_t tap) {
            return tap < 0 || tap >= taps
                       ? 0
                       : std::clamp(folded[tap] - round * kMaxWeight, 0, kMaxWeight);
        };
        for (size_t pair = 0; pair < plan->pairs; ++pair) {
            const int32_t tap = static_cast<int32_t>(2 * pair);
            *out++ = halves(weight(tap), weight(tap + 1));
            *out++ = halves(weight(tap - 1), weight(tap));
        }
    }
    return true;
}

// The change of a sum from one output to the next: change[j] times the pixel j - reach - 1 away
// from the later output, j = 0 ... count - 1.
struct Changes {
    std::unique_ptr<int32_t[]> change;
    std::unique_ptr<int32_t[]> slope;  // the part of it that is taken from prefix sums
    size_t count;
};

// Splits every change into a slope and a rest, both taken as terms: one a slope that differs from
// the one before, one a rest that is not 0. Finds the fewest terms: the cheapest way to each slope
// at each place, from the left, where staying costs nothing and jumping one term. Changes larger
// than kSlopes stay with the rest.
bool chooseSlopes(Changes* changes) {
    constexpr int32_t kSlopes = 12;
    constexpr int32_t kStates = 2 * kSlopes + 1;
    const size_t count = changes->count;
    std::unique_ptr<uint32_t[]> stayed;  // one bit a slope: whether its best way comes from itself
    std::unique_ptr<uint8_t[]> best;     // the slope a jump comes from
    if (!allocate(stayed, count) || !allocate(best, count) || !allocate(changes->slope, count)) {
        return false;
    }
    int32_t cost[kStates];
    for (int32_t s = 0; s < kStates; ++s) cost[s] = s == kSlopes ? 0 : 1;
    for (size_t j = 0; j < count; ++j) {
        const int32_t cheapest =
            static_cast<int32_t>(std::min_element(cost, cost + kStates) - cost);
        const int32_t jump = cost[cheapest] + 1;
        best[j] = static_cast<uint8_t>(cheapest);
        for (int32_t s = 0; s < kStates; ++s) {
            if (cost[s] <= jump) {
                stayed[j] |= 1u << s;
            } else {
                cost[s] = jump;
            }
            if (changes->change[j] != s - kSlopes) ++cost[s];
        }
    }
    for (int32_t s = 0; s < kStates; ++s) cost[s] += s == kSlopes ? 0 : 1;
    int32_t s = static_cast<int32_t>(std::min_element(cost, cost + kStates) - cost);
    for (size_t j = count; j-- > 0;) {
        changes->slope[j] = s - kSlopes;
        if ((stayed[j] >> s & 1) == 0) s = best[j];
    }
    return true;
}

bool makeChanges(const int32_t* folded, int32_t reach, bool isFolded, Changes* changes) {
    changes->count = 2 * static_cast<size_t>(reach) + 2;
    if (!allocate(changes->change, changes->count)) return false;
    int32_t* change = changes->change.get();
    for (size_t j = 0; j < changes->count; ++j) {
        const int32_t before = j == 0 ? 0 : folded[j - 1];
        const int32_t after = j + 1 == changes->count ? 0 : folded[j];
        change[j] = before - after;
    }
    if (isFolded) {
        // The two outermost places on either side meet the same pixel, the line's first or last
        // one, from every output; together their changes are small again.
        const size_t last = changes->count - 1;
        change[1] += change[0];
        change[last - 1] += change[last];
        change[0] = change[last] = 0;
    }
    return chooseSlopes(changes);
}

// Calls pair(row, gap, weight) for every two rests that are alike and at most kWidestGap rows apart
// in [begin, end) and single(row, weight) for the others, a pair only where `wanted(gap)`. Change j
// belongs to pixel j - reach - 1, which is row j + 1 of the bordered pixels: the border has a row
// more for the prefix sum in front of the first change.
template <typename Wanted, typename Pair, typename Single>
void walkRests(const Changes& changes, size_t begin, size_t end, Wanted wanted, Pair pair,
               Single single) {
    int32_t row = 0, weight = 0;  // of the rest that waits for another one
    for (size_t j = begin; j < end; ++j) {
        const int32_t rest = changes.change[j] - changes.slope[j];
        if (rest == 0) continue;
        const int32_t gap = static_cast<int32_t>(j) + 1 - row;
        if (rest == weight && gap <= kWidestGap && wanted(gap)) {
            pair(row, gap, weight);
            weight = 0;
        } else {
            if (weight != 0) single(row, weight);
            row += gap;
            weight = rest;
        }
    }
    if (weight != 0) single(row, weight);
}

// Gives tables to the gaps that save the most terms.
void chooseGaps(const Changes& changes, StepPlan* plan) {
    int32_t uses[kWidestGap + 1] = {};
    walkRests(
        changes, 0, changes.count, [](int32_t) { return true; },
        [&](int32_t, int32_t gap, int32_t) { ++uses[gap]; }, [](int32_t, int32_t) {});
    plan->gapCount = 0;
    while (plan->gapCount < kMaxGaps) {
        int32_t* most = std::max_element(uses, uses + kWidestGap + 1);
        if (*most == 0) return;
        plan->gaps[plan->gapCount++] = static_cast<int32_t>(most - uses);
        *most = 0;
    }
}

// The number of the table for `gap`; the number of tables when it has none.
size_t gapTable(int32_t gap, const StepPlan& plan) {
    return 2 +
           static_cast<size_t>(std::find(plan.gaps, plan.gaps + plan.gapCount, gap) - plan.gaps);
}

void addTerm(int32_t row, int32_t weight, StepPlan* plan) {
    if (weight == 0) return;
    plan->terms[plan->termCount++] = {row, halves(weight, weight)};
    plan->prefixSums |= row / plan->rows == 1;
}

// Appends the terms of the changes [begin, end) and their bias; the prefix sums start and end
// within the piece. Most terms weigh 1 or -1 and need no multiplication.
void addPiece(const Changes& changes, size_t begin, size_t end, StepPlan* plan) {
    int32_t negative = 0, slope = 0;
    StepTerm* const first = plan->terms.get() + plan->termCount;
    for (size_t j = begin; j < end; ++j) {
        addTerm(plan->rows + static_cast<int32_t>(j), slope - changes.slope[j], plan);
        slope = changes.slope[j];
        negative -= std::min(changes.change[j], 0);
    }
    addTerm(plan->rows + static_cast<int32_t>(end), slope, plan);
    walkRests(
        changes, begin, end,
        [plan](int32_t gap) { return gapTable(gap, *plan) < 2 + plan->gapCount; },
        [plan](int32_t row, int32_t gap, int32_t weight) {
            addTerm(static_cast<int32_t>(gapTable(gap, *plan)) * plan->rows + row, weight, plan);
        },
        [plan](int32_t row, int32_t weight) { addTerm(row, weight, plan); });
    const int32_t bias = 255 * negative;
    StepTerm* const last = plan->terms.get() + plan->termCount;
    const auto kindOf = [](const StepTerm& term) {
        return term.weight == halves(1, 1) ? 0 : term.weight == halves(-1, -1) ? 1 : 2;
    };
    const auto isPixel = [plan](const StepTerm& term) { return term.row < plan->rows; };
    std::sort(first, last, [&](const StepTerm& a, const StepTerm& b) {
        return std::tuple(kindOf(a), isPixel(a), a.row) < std::tuple(kindOf(b), isPixel(b), b.row);
    });
    const StepTerm* from = first;
    const auto termsOf = [&](int kind) {
        const auto number = [&](const StepTerm* term) {
            return static_cast<size_t>(term - plan->terms.get());
        };
        const StepTerm* const others = from;
        while (from != last && kindOf(*from) == kind && !isPixel(*from)) ++from;
        const StepTerm* const pixels = from;
        while (from != last && kindOf(*from) == kind) ++from;
        return StepTerms{number(others), number(pixels), number(from)};
    };
    StepPiece& piece = plan->pieces[plan->pieceCount++];
    piece = {termsOf(0), termsOf(1), termsOf(2), halves(bias, bias)};
    plan->bias += static_cast<uint32_t>(bias);
}

// Sets `possible` when every change fits a piece.
bool planSteps(const int32_t* folded, int32_t reach, int32_t length, StepPlan* plan,
               bool* possible) {
    Changes changes;
    if (!makeChanges(folded, reach, reach == length - 1, &changes)) return false;
    int64_t total = 0;
    int32_t largest = 0;
    for (size_t j = 0; j < changes.count; ++j) {
        total += std::abs(changes.change[j]);
        largest = std::max(largest, std::abs(changes.change[j]));
    }
    // Rows are counted in 32 bits, over all tables.
    const int64_t rows = int64_t{length} + 2 * (int64_t{reach} + 2) + 2;
    *possible = largest <= kPieceSpan && rows * (2 + int64_t{kMaxGaps}) <= INT32_MAX;
    if (!*possible) return true;

    plan->reach = reach;
    plan->border = reach + 2;
    plan->rows = length + 2 * plan->border + 2;  // 2: outputs are taken four at a time
    // A piece is closed when the next change does not fit, so two neighbours exceed the span.
    const size_t pieces = static_cast<size_t>(2 * total / kPieceSpan) + 2;
    if (!allocate(plan->start, static_cast<size_t>(reach) + 1) ||
        !allocate(plan->terms, 2 * changes.count + pieces + 1) || !allocate(plan->pieces, pieces)) {
        return false;
    }
    for (int32_t i = 0; i <= 2 * reach; ++i) {
        plan->start[static_cast<size_t>(std::max(i - reach, 0))] +=
            static_cast<uint32_t>(folded[i]);
    }
    chooseGaps(changes, plan);
    size_t begin = 0;
    int32_t span = 0;
    for (size_t j = 0; j < changes.count; ++j) {
        const int32_t change = std::abs(changes.change[j]);
        if (span + change > kPieceSpan) {
            addPiece(changes, begin, j, plan);
            begin = j;
            span = 0;
        }
        span += change;
    }
    addPiece(changes, begin, changes.count, plan);
    return true;
}

// Measured on x86-64 with AVX2, in hundredths of a nanosecond for 16 outputs of one channel.
bool stepsAreCheaper(const StepPlan& steps, const TapPlan& taps, size_t tapPairCost,
                     int32_t length) {
    const size_t tables = 1 + (steps.prefixSums ? 1 : 0) + steps.gapCount;
    const size_t layOut = tables * static_cast<size_t>(steps.rows / length);
    const size_t stepCost = 18 * steps.termCount + 90 * steps.pieceCount + 15 * layOut + 1000;
    const size_t tapCost = tapPairCost * taps.pairs * taps.rounds + 600;
    return stepCost < tapCost;
}

}  // namespace

bool isPlainKernel(const int32_t* kernel, int32_t size, int32_t norm) {
    if (norm < 257 || norm > 65536) return false;
    int64_t sum = 0;
    for (int32_t k = 0; k < size; ++k) {
        if (kernel[k] < 0) return false;
        sum += kernel[k];
    }
    return sum <= norm;
}

Divisor divisorOf(int32_t norm) {
    const uint64_t divisor = static_cast<uint64_t>(norm);
    return {65536 - static_cast<uint32_t>(norm),
            static_cast<uint32_t>(((uint64_t{1} << 40) + divisor - 1) / divisor)};
}

bool foldKernel(const int32_t* kernel, int32_t size, int32_t length, FoldedKernel* folded) {
    const int32_t half = (size - 1) / 2, reach = std::min(half, length - 1);
    folded->reach = reach;
    if (!allocate(folded->weights, 2 * static_cast<size_t>(reach) + 1)) return false;
    for (int32_t k = 0; k < size; ++k) {
        const int32_t place = std::clamp(k - half, -reach, reach) + reach;
        int32_t& weight = folded->weights[static_cast<size_t>(place)];
        weight =
            static_cast<int32_t>(static_cast<uint32_t>(weight) + static_cast<uint32_t>(kernel[k]));
    }
    return true;
}

bool makePassPlan(const int32_t* kernel, int32_t size, int32_t norm, int32_t length,
                  size_t tapPairCost, PassPlan* plan) {
    FoldedKernel folded;
    plan->divisor = divisorOf(norm);
    if (!foldKernel(kernel, size, length, &folded) ||
        !planTaps(folded.weights.get(), folded.reach, &plan->taps)) {
        return false;
    }
    constexpr int32_t kNarrow = 24;  // narrower kernels are cheaper by taps, without asking
    if (folded.reach < kNarrow) return true;
    bool possible = false;
    if (!planSteps(folded.weights.get(), folded.reach, length, &plan->steps, &possible))
        return false;
    if (!possible || !stepsAreCheaper(plan->steps, plan->taps, tapPairCost, length)) {
        plan->steps = StepPlan();
    }
    return true;
}

}  // namespace android
