#pragma once

#include <string>

#include "blur/pass_plan.h"
#include "blur/sweep_plan.h"
#include "tests/reference/reference.h"

// How lines of `length` pixels, `lines` of them, are blurred where taps cost the least, which is
// where steps are chosen last. A test that means one way asks, lest another cost takes it away.
inline std::string blurWayOf(const reference::Kernel& kernel, int32_t length, int32_t lines) {
    constexpr android::PassCosts kCheapTaps = {22, 13, 600, 18, 90, 15, 1000};  // with AVX-512
    const int32_t size = static_cast<int32_t>(kernel.weights.size());
    const int32_t* const weights = kernel.weights.data();
    android::SweepPlan sweep;
    android::PassPlan pass;
    if (!android::planSweep(weights, size, kernel.norm, length, lines, &sweep) ||
        !android::makePassPlan(weights, size, kernel.norm, length, lines, kCheapTaps, &pass)) {
        return "no memory";
    }
    return sweep.reach > 0          ? "in one sweep"
           : pass.bySteps()         ? "by steps"
           : pass.bySymmetricTaps() ? "by symmetric taps"
                                    : "by taps";
}
