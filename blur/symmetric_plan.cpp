#include "blur/symmetric_plan.h"

#include "blur/plan_support.h"

namespace android {

bool planSymmetricTaps(const FoldedKernel& kernel, SymmetricPlan* plan) {
    if (!isSymmetric(kernel)) return true;
    const int32_t* const center = kernel.weights.get() + kernel.reach;
    plan->turns = static_cast<size_t>(kernel.reach) / 2 + 1;
    if (!allocate(plan->weights, 2 * plan->turns)) return false;
    const auto weight = [&](int32_t i) {
        return i > kernel.reach ? 0 : i == 0 ? center[0] / 2 : center[i];
    };
    uint32_t* out = plan->weights.get();
    for (int32_t i = 0; i <= kernel.reach; i += 2) {
        *out++ = halves(weight(i + 1), weight(i + 2));
        *out++ = halves(weight(i), weight(i + 1));
    }
    plan->centerEven = halves(0, center[0]);
    plan->centerOdd = halves(center[0] % 2, 0);
    return true;
}

}  // namespace android
