#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "blur/pass_plan.h"
#include "blur/sweep_plan.h"
#include "tests/reference/reference.h"

// Certificates: a plan is expanded back into what it computes and compared with the kernel that it
// was made of, weight by weight. A plan that passes is right for every line there can be, so that
// no picture needs to be tried for it.

namespace {

using android::FoldedKernel;
using android::StepPlan;
using android::StepTerm;
using Weights = std::vector<int32_t>;

// What one piece, or all of them, adds from an output to the next: at[k] times row y + k.
struct Expansion {
    std::vector<int64_t> at;
    int64_t beforeAll = 0;  // times every row in front of those, which prefix sums include
};

int16_t weightOf(const StepTerm& term) { return static_cast<int16_t>(term.weight); }

// Adds a term to `sum`. Fails where the row that it takes for any output is not laid out.
void expand(const StepPlan& plan, const StepTerm& term, Expansion& sum) {
    const int32_t table = term.row / plan.tableRows, row = term.row % plan.tableRows;
    const int32_t weight = weightOf(term);
    ASSERT_EQ(term.weight, 0x10001u * static_cast<uint16_t>(weight));
    const int32_t prefixTable = 1 + static_cast<int32_t>(plan.distanceCount);
    ASSERT_LT(table, static_cast<int32_t>(tableCount(plan)));
    const int32_t distance = table == 0 || table == prefixTable ? 0 : plan.distances[table - 1];
    ASSERT_LT(plan.chunk + row + distance, plan.tableRows);
    if (table == prefixTable) {
        for (int32_t k = 0; k <= row; ++k) sum.at[k] += weight;
        sum.beforeAll += weight;
    } else {
        sum.at[row] += weight;
        if (table > 0) sum.at[row + distance] += weight;
    }
}

void certifySteps(const FoldedKernel& kernel, int32_t length, int32_t room, const StepPlan& plan) {
    const int32_t reach = kernel.reach, border = plan.border;
    ASSERT_EQ(plan.reach, reach);
    ASSERT_LE(static_cast<int64_t>(tableCount(plan)) * plan.tableRows, room);
    // Outputs are computed four at a time, and those of a chunk keep what the next one takes.
    ASSERT_TRUE(plan.chunk > 0 && plan.chunk % 4 == 0);
    ASSERT_EQ(plan.tableRows, plan.chunk + 2 * reach + 3);
    std::vector<int64_t> start(2 * reach + 1);
    for (int32_t i = -reach; i <= reach; ++i) start[std::max(i, 0)] += kernel.weights[i + reach];
    for (int32_t i = 0; i <= reach; ++i) ASSERT_EQ(plan.start[i], start[i]) << "pixel " << i;

    // One over the rows that an output takes and one more; terms are checked to lie in the tables.
    Expansion all = {std::vector<int64_t>(plan.tableRows), 0};
    Expansion piece = all;
    size_t next = 0;
    int64_t bias = 0;
    for (size_t p = 0; p < plan.pieceCount; ++p) {
        const android::StepPiece& made = plan.pieces[p];
        std::fill(piece.at.begin(), piece.at.end(), 0);
        piece.beforeAll = 0;
        for (const auto* terms : {&made.added, &made.subtracted, &made.weighted}) {
            ASSERT_EQ(terms->begin, next);
            for (; next < terms->end; ++next) {
                const StepTerm& term = plan.terms[next];
                expand(plan, term, piece);
                if (testing::Test::HasFatalFailure()) return;
                if (terms != &made.weighted) {
                    ASSERT_EQ(weightOf(term), terms == &made.added ? 1 : -1);
                }
                ASSERT_EQ(next >= terms->pixels, term.row < plan.tableRows);
                if (next > terms->pixels) {
                    ASSERT_GE(term.row, plan.terms[next - 1].row);
                }
            }
            ASSERT_LE(terms->pixels, next);
        }
        ASSERT_EQ(piece.beforeAll, 0) << "a prefix sum does not end";
        const int64_t offset = made.bias & 0xFFFF;
        int64_t least = offset, most = offset;
        for (size_t k = 0; k < piece.at.size(); ++k) {
            (piece.at[k] < 0 ? least : most) += 255 * piece.at[k];
            all.at[k] += piece.at[k];
        }
        ASSERT_GE(least, 0) << "piece " << p;
        ASSERT_LE(most, 65535) << "piece " << p;
        ASSERT_EQ(made.bias, 0x10001u * static_cast<uint32_t>(offset));
        bias += offset;
    }
    ASSERT_EQ(next, plan.termCount);
    ASSERT_EQ(plan.bias, bias);

    // Row border + i is pixel i, so pixel y + i is row y + border + i. Where a row is pixel 0 or
    // the last one for every output, and so is its neighbour, the two may share their differences.
    const auto weight = [&](int32_t i) {
        return std::abs(i) <= reach ? kernel.weights[i + reach] : 0;
    };
    int64_t carried = 0;
    for (int32_t k = 0; k < plan.tableRows; ++k) {
        const int32_t pixel = k - border;  // from the later output; + 1 from the earlier one
        carried += all.at[k] - (int64_t{weight(pixel)} - weight(pixel + 1));
        const bool alikeInFront = length - 1 + pixel + 1 <= 0,
                   alikeBehind = 1 + pixel >= length - 1;
        if (!alikeInFront && !alikeBehind) {
            ASSERT_EQ(carried, 0) << "row " << k;
        }
    }
    ASSERT_EQ(carried, 0);
}

int64_t low(uint32_t pair) { return static_cast<int16_t>(pair); }
int64_t high(uint32_t pair) { return static_cast<int16_t>(pair >> 16); }

void certifyTaps(const FoldedKernel& kernel, const android::TapPlan& plan) {
    for (int32_t tap = 0; tap <= 2 * kernel.reach; ++tap) {
        int64_t even = 0, odd = 0;
        for (size_t round = 0; round < plan.rounds; ++round) {
            const uint32_t* const pairs = plan.weights.get() + 2 * plan.pairs * round;
            even += low(pairs[tap / 2 * 2] >> tap % 2 * 16);
            odd += low(pairs[(tap + 1) / 2 * 2 + 1] >> (tap + 1) % 2 * 16);
        }
        ASSERT_EQ(even, kernel.weights[tap]);
        ASSERT_EQ(odd, kernel.weights[tap]);
    }
}

// Each turn's two words, and the center's two, put back where their pixels lie.
void certifySymmetricTaps(const FoldedKernel& kernel, const android::SymmetricPlan& plan) {
    const int32_t turns = static_cast<int32_t>(plan.turns), reach = kernel.reach;
    std::vector<int64_t> even(2 * turns + 1), odd(2 * turns + 1);  // by the distance
    for (int32_t t = 0; t < turns; ++t) {
        even[2 * t + 1] += low(plan.weights[2 * t]);
        even[2 * t + 2] += high(plan.weights[2 * t]);
        odd[2 * t] += low(plan.weights[2 * t + 1]) * (t == 0 ? 2 : 1);  // both are the same pixel
        odd[2 * t + 1] += high(plan.weights[2 * t + 1]);
    }
    even[0] += high(plan.centerEven);
    odd[0] += low(plan.centerOdd);
    EXPECT_EQ(low(plan.centerEven), 0);
    EXPECT_EQ(high(plan.centerOdd), 0);
    for (int32_t distance = 0; distance <= 2 * turns; ++distance) {
        const int64_t weight = distance <= reach ? kernel.weights[reach + distance] : 0;
        ASSERT_EQ(even[distance], weight) << "distance " << distance;
        ASSERT_EQ(odd[distance], weight) << "distance " << distance;
        if (distance <= reach) {
            ASSERT_EQ(weight, kernel.weights[reach - distance]);
        }
    }
}

void certifySweep(const FoldedKernel& kernel, const android::SweepPlan& plan) {
    ASSERT_EQ(plan.reach, kernel.reach);
    certifyTaps(kernel, plan.rows);
    for (int32_t distance = 0; distance <= kernel.reach / 2 * 2 + 1; ++distance) {
        const uint32_t pair = plan.columns[distance / 2];
        const int64_t weight =
            distance <= kernel.reach ? kernel.weights[kernel.reach + distance] : 0;
        ASSERT_EQ(distance % 2 == 0 ? low(pair) : high(pair), weight) << "distance " << distance;
    }
}

// Makes every plan of a kernel and certifies it. Tells whether there is one by steps.
bool certify(const Weights& weights, int32_t length, int32_t room = 1 << 20) {
    SCOPED_TRACE(testing::Message()
                 << weights.size() << " taps, line of " << length << ", room " << room);
    FoldedKernel kernel;
    android::TapPlan taps;
    android::SymmetricPlan symmetric;
    android::SweepPlan sweep;
    StepPlan steps;
    const int32_t size = static_cast<int32_t>(weights.size());
    const int64_t sum = std::accumulate(weights.begin(), weights.end(), int64_t{0});
    EXPECT_TRUE(foldKernel(weights.data(), size, length, &kernel) && planTaps(kernel, &taps) &&
                planSymmetricTaps(kernel, &symmetric) && planSteps(kernel, length, room, &steps));
    EXPECT_TRUE(planSweep(weights.data(), size, 65536, length, length, &sweep));
    const int32_t* const begin = kernel.weights.get();
    const int32_t* const end = begin + 2 * kernel.reach + 1;
    EXPECT_EQ(std::accumulate(begin, end, int64_t{0}), sum);
    certifyTaps(kernel, taps);
    const bool fits = std::equal(begin, end, std::make_reverse_iterator(end)) &&
                      *std::max_element(begin, end) <= INT16_MAX;
    EXPECT_EQ(symmetric.turns > 0, fits);
    if (fits) certifySymmetricTaps(kernel, symmetric);
    if (sweep.reach > 0) certifySweep(kernel, sweep);
    EXPECT_EQ(sweep.reach > 0, fits && size > 1 && size <= 39 && size / 2 < length);
    if (steps.terms) certifySteps(kernel, length, room, steps);
    return steps.terms != nullptr;
}

TEST(PlanCertificate, HoldsForEveryRadius) {
    std::mt19937 random(41);
    int bySteps = 0, plans = 0;
    // Evenly on a scale of powers, down to kernels too steep for steps, up to the widest there is;
    // around the lengths at which a kernel begins to be wider than the line; and in any room from
    // two tables of twice what an output takes, less one word, to more than all tables take.
    for (float radius = 0.3f; radius < 23170; radius *= 1.002f) {
        const Weights kernel = reference::gauss(radius).weights;
        const int32_t half = static_cast<int32_t>(kernel.size()) / 2;
        const int32_t some = 2 + static_cast<int32_t>(random() % 400);
        for (const int32_t length : {some, half, half + 1, half + 2, 2 * half}) {
            if (length > 4000 || length < 2) continue;
            const int32_t least = 2 * (2 * std::min(length - 1, half) + 3);
            bySteps += certify(kernel, length, least * (2 + plans % 9) - plans % 2);
            ++plans;
            ASSERT_FALSE(testing::Test::HasFailure()) << "radius " << radius;
        }
    }
    EXPECT_GT(bySteps, plans / 2);
}

// Kernels that are no Gaussian's: any differences up to the steepest a step may take and one more,
// so many and so large that they need many pieces.
TEST(PlanCertificate, HoldsForHeavyKernels) {
    std::mt19937 random(43);
    int bySteps = 0;
    for (int round = 0; round < 2000; ++round) {
        const int32_t steepest = 1 << random() % 9, reach = 1 + static_cast<int32_t>(random() % 60);
        Weights kernel(2 * reach + 1);
        int32_t weight = 0;
        for (int32_t& w : kernel) {
            weight += static_cast<int32_t>(random() % (2 * steepest + 4)) - steepest - 1;
            w = weight = std::max(weight, 0);
        }
        bySteps += certify(kernel, 2 + static_cast<int32_t>(random() % (3 * reach)));
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << round;
    }
    EXPECT_GT(bySteps, 500);
}

}  // namespace
