#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "blur/pass_plan.h"

namespace android {

// By one sweep: both passes of a narrow symmetric kernel in one walk over the picture, which reads
// and writes each pixel once. The horizontal results live only as long as the vertical pass needs
// them. For kernels whose weights fit the multiplication's 16 bits, whose complement is a near one,
// and that reach less far than a line is long, in both directions.
struct SweepPlan {
    Divisor divisor;
    int32_t reach = 0;  // 0 where there is no such plan
    TapPlan rows;       // of the horizontal pass
    // Of the vertical pass: words of two weights, of the distances 0 and 1, 2 and 3, ..., the last
    // one 0 where the reach is even.
    std::unique_ptr<uint32_t[]> columns;
};

constexpr int32_t kWidestSweep = 19;  // the widest reach that has a plan

// False when memory cannot be had. The kernel is a plain one (blur/folded_kernel.h).
bool planSweep(const int32_t* kernel, int32_t size, int32_t norm, int32_t width, int32_t height,
               SweepPlan* plan);

}  // namespace android
