#include "blur/dot_plan.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

#include "blur/folded_kernel.h"
#include "tests/reference/reference.h"

// Certificates of the plans by dot products, as in tests/blur/plan_certificate_test.cpp.

namespace {

using android::DotPlan;
using Weights = std::vector<int32_t>;

// What the instruction makes of a sum and a factor.
int64_t roundedUpperHalf(int64_t sum, int64_t factor) {
    return sum + ((2 * sum * factor + (int64_t{1} << 31)) >> 32);
}

// How often the norm and the weights are doubled.
int timesOf(int32_t norm) {
    int times = 1;
    while (norm * times <= 32768) times *= 2;
    return times;
}

// Tells whether there is a plan.
bool certify(const Weights& weights, int32_t norm, int32_t width, int32_t height) {
    SCOPED_TRACE(testing::Message() << weights.size() << " taps, norm " << norm);
    const int32_t size = static_cast<int32_t>(weights.size());
    DotPlan plan;
    android::FoldedKernel kernel;
    EXPECT_TRUE(android::isPlainKernel(weights.data(), size, norm));
    EXPECT_TRUE(planDots(weights.data(), size, norm, width, height, &plan));
    EXPECT_TRUE(foldKernel(weights.data(), size, std::max(width, height), &kernel));
    if (plan.groups == 0) return false;
    EXPECT_EQ(plan.reach, static_cast<size_t>(kernel.reach));
    const int32_t taps = 2 * kernel.reach + 1;
    // No output takes a place behind these: so far do lines need neighbours.
    EXPECT_LE(4 * plan.groups, static_cast<size_t>(taps + 6));
    EXPECT_GE(4 * plan.groups, static_cast<size_t>(taps + 3));
    for (int32_t output = 0; output < 4; ++output) {
        for (int32_t place = 0; place < static_cast<int32_t>(4 * plan.groups); ++place) {
            const int32_t group = place / 4, tap = place - output;
            const uint8_t* const upper = &plan.weights[32 * group + 4 * output + place % 4];
            const bool heavy = static_cast<size_t>(group) >= plan.heavyBegin &&
                               static_cast<size_t>(group) < plan.heavyEnd;
            EXPECT_TRUE(heavy || *upper == 0) << "group " << group;
            const int32_t weight = tap < 0 || tap >= taps ? 0 : kernel.weights[tap];
            EXPECT_EQ(plan.factors[1] * *upper + upper[16], weight * timesOf(norm));
        }
    }
    return true;
}

int32_t sumOf(const Weights& weights) { return std::accumulate(weights.begin(), weights.end(), 0); }

// The quotient never falls as the sum grows, so that it is right for every sum when it is where it
// changes.
TEST(DotPlan, DividesEverySumByEveryNorm) {
    for (int32_t norm = 257; norm <= 65536; ++norm) {
        const int32_t kernel[] = {1, 1, 1};
        DotPlan plan;
        ASSERT_TRUE(planDots(kernel, 3, norm, 9, 9, &plan));
        ASSERT_GE(plan.factors[0], 0);
        const int64_t times = timesOf(norm);
        for (int64_t quotient = 0; quotient <= 255; ++quotient) {
            const int64_t sum = quotient * norm;
            ASSERT_EQ(roundedUpperHalf(sum * times, plan.factors[0]) >> 16, quotient) << norm;
            if (quotient < 255) {
                const int64_t last = roundedUpperHalf((sum + norm - 1) * times, plan.factors[0]);
                ASSERT_EQ(last >> 16, quotient) << norm;
            }
        }
    }
}

// Gaussians of every size that has a plan, at times folded; heavy weights in any place, alone and
// many, and norms that are doubled.
TEST(DotPlan, HoldsForAnyPlainKernel) {
    std::mt19937 random(71);
    for (float radius = 0.75f; radius < 120; radius *= 1.01f) {
        const Weights kernel = reference::gauss(radius).weights;
        certify(kernel, sumOf(kernel), 2 + static_cast<int32_t>(random() % 700), 2);
        ASSERT_FALSE(testing::Test::HasFailure()) << "radius " << radius;
    }
    for (int round = 0; round < 3000; ++round) {
        Weights kernel(3 + 2 * (random() % 30));
        for (int32_t& weight : kernel) {
            weight = static_cast<int32_t>(random() % 4 == 0 ? random() % 900 : random() % 300);
        }
        const int32_t norm = std::max(257, sumOf(kernel) + static_cast<int32_t>(random() % 3));
        ASSERT_TRUE(certify(kernel, norm, 100, 100));
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << round;
    }
    EXPECT_TRUE(certify({1, 65535, 0}, 65536, 100, 100));
    EXPECT_FALSE(certify({0, 65536, 0}, 65536, 100, 100));  // does not fit two bytes
    EXPECT_FALSE(certify({257}, 257, 100, 100));
}

}  // namespace
