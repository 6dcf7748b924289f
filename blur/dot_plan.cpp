#include "blur/dot_plan.h"

#include <algorithm>

#include "blur/folded_kernel.h"
#include "blur/plan_support.h"

namespace android {
namespace {

// Groups, those with upper bytes counted twice. So many cost about 230 instructions a pixel; steps
// cost 250 to 310 however wide the kernel is.
constexpr size_t kMostWork = 96;

}  // namespace

bool planDots(const int32_t* kernel, int32_t size, int32_t norm, int32_t width, int32_t height,
              DotPlan* plan) {
    FoldedKernel folded;
    // What lies beyond the longer lines lies beyond the shorter ones too.
    if (!foldKernel(kernel, size, std::max(width, height), &folded)) return false;
    const int32_t taps = 2 * folded.reach + 1;
    int32_t doubled = 0;  // how often
    while (norm << doubled <= 32768) ++doubled;
    const auto weight = [&](int32_t tap) {
        return tap < 0 || tap >= taps ? 0 : folded.weights[static_cast<size_t>(tap)] << doubled;
    };
    int32_t firstHeavy = taps, lastHeavy = -4;
    for (int32_t tap = 0; tap < taps; ++tap) {
        if (weight(tap) > 65535) return true;
        if (weight(tap) < 256) continue;
        firstHeavy = std::min(firstHeavy, tap);
        lastHeavy = tap;
    }
    // Tap k is three places farther on in output 3.
    const size_t groups = (static_cast<size_t>(taps) + 3 + 3) / 4;
    plan->heavyEnd = static_cast<size_t>((lastHeavy + 3 + 4) / 4);
    plan->heavyBegin = std::min(static_cast<size_t>(firstHeavy) / 4, plan->heavyEnd);
    if (folded.reach < 1 || groups + (plan->heavyEnd - plan->heavyBegin) > kMostWork) return true;
    if (!allocate(plan->weights, groups * kDotGroupBytes)) return false;
    uint8_t* out = plan->weights.get();
    for (size_t group = 0; group < groups; ++group, out += kDotGroupBytes) {
        for (int32_t i = 0; i < 16; ++i) {
            const int32_t tap = static_cast<int32_t>(4 * group) + i % 4 - i / 4;
            out[i] = static_cast<uint8_t>(weight(tap) >> 8);
            out[16 + i] = static_cast<uint8_t>(weight(tap) & 0xFF);
        }
    }
    const int64_t divisor = int64_t{norm} << doubled;
    plan->factors[0] = static_cast<int32_t>(((65536 - divisor) << 31) / divisor);
    plan->factors[1] = 256;
    plan->reach = static_cast<size_t>(folded.reach);
    plan->groups = groups;
    return true;
}

}  // namespace android
