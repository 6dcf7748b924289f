#include "blur/tap_plan.h"

#include <algorithm>

#include "blur/plan_support.h"

namespace android {
namespace {

constexpr int32_t kMaxWeight = 32767;  // of one multiplication

}  // namespace

bool planTaps(const FoldedKernel& kernel, TapPlan* plan) {
    const int32_t taps = 2 * kernel.reach + 1;
    const int32_t* const folded = kernel.weights.get();
    const int32_t heaviest = *std::max_element(folded, folded + taps);
    plan->reach = kernel.reach;
    plan->pairs = static_cast<size_t>(kernel.reach) + 1;
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

}  // namespace android
