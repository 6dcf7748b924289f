#include "blur/sweep_plan.h"

#include <algorithm>

#include "blur/plan_support.h"

namespace android {

bool planSweep(const int32_t* kernel, int32_t size, int32_t norm, int32_t width, int32_t height,
               SweepPlan* plan) {
    const int32_t reach = (size - 1) / 2;
    plan->divisor = divisorOf(norm);
    if (reach < 1 || reach > kWidestSweep || reach >= std::min(width, height) ||
        plan->divisor.complement > kNearComplement) {
        return true;
    }
    FoldedKernel folded;
    if (!foldKernel(kernel, size, width, &folded)) return false;
    if (!isSymmetric(folded)) return true;
    const size_t words = static_cast<size_t>(reach) / 2 + 1;
    if (!planTaps(folded, &plan->rows) || !allocate(plan->columns, words)) return false;
    const int32_t* const center = folded.weights.get() + reach;
    for (int32_t i = 0; i <= reach; i += 2) {
        plan->columns[static_cast<size_t>(i / 2)] =
            halves(center[i], i < reach ? center[i + 1] : 0);
    }
    plan->reach = reach;
    return true;
}

}  // namespace android
