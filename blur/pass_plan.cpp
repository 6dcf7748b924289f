#include "blur/pass_plan.h"

#include <algorithm>

#include "blur/plan_support.h"

namespace android {
namespace {

// Symmetric taps pay from this reach on, and need a line this long: on shorter ones their entries
// would be more memory than a blur may hold.
constexpr int32_t kSymmetricReach = 10;
constexpr int32_t kSymmetricLength = 96;
// Gaussians narrower than this have no plan by steps: their outermost difference is too large.
// Short lines under wide kernels may have one, which saves little.
constexpr int32_t kNarrowReach = 24;

// A table costs a row an output, and two or three where the border is as long as the line or twice.
// Not counted are the first output and what the window of the widest kernels saves.
bool stepsAreCheaper(const PassPlan& plan, const PassCosts& costs, int32_t length) {
    const StepPlan& steps = plan.steps;
    const size_t rows = static_cast<size_t>(
        (int64_t{length} + 2 * int64_t{steps.border} + kStepOutputs - 2) / length);
    const size_t stepCost = costs.term * steps.termCount + costs.piece * steps.pieceCount +
                            costs.tableRow * tableCount(steps) * rows + costs.stepsRest;
    const size_t pair = plan.bySymmetricTaps() ? costs.symmetricPair : costs.pair;
    return stepCost < pair * plan.taps.pairs * plan.taps.rounds + costs.tapsRest;
}

}  // namespace

Divisor divisorOf(int32_t norm) {
    const uint64_t divisor = static_cast<uint64_t>(norm);
    return {65536 - static_cast<uint32_t>(norm),
            static_cast<uint32_t>(((uint64_t{1} << 40) + divisor - 1) / divisor)};
}

bool makePassPlan(const int32_t* kernel, int32_t size, int32_t norm, int32_t length, int32_t lines,
                  const PassCosts& costs, PassPlan* plan) {
    FoldedKernel folded;
    plan->divisor = divisorOf(norm);
    if (!foldKernel(kernel, size, length, &folded) || !planTaps(folded, &plan->taps)) return false;
    if (folded.reach >= kSymmetricReach && length >= kSymmetricLength &&
        !planSymmetricTaps(folded, &plan->symmetric)) {
        return false;
    }
    if (folded.reach < kNarrowReach) return true;
    // In rows of 32 lanes of 16 bits, beside a tile of 32 lines.
    const size_t taps = static_cast<size_t>(size), pixels = static_cast<size_t>(length);
    const size_t words =
        memoryBound(pixels, static_cast<size_t>(lines), taps) - kPlanWords * taps - 32 * pixels;
    const int32_t room = static_cast<int32_t>(std::min<size_t>(words / 16, INT32_MAX));
    if (!planSteps(folded, length, room, &plan->steps)) return false;
    if (plan->bySteps() && !stepsAreCheaper(*plan, costs, length)) {
        plan->steps = StepPlan();
    }
    return true;
}

}  // namespace android
