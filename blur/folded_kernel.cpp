#include "blur/folded_kernel.h"

#include <algorithm>
#include <cstddef>

#include "blur/plan_support.h"

namespace android {

bool isPlainKernel(const int32_t* kernel, int32_t size, int32_t norm) {
    if (norm < 257 || norm > 65536) return false;
    int64_t sum = 0;
    for (int32_t k = 0; k < size; ++k) {
        if (kernel[k] < 0) return false;
        sum += kernel[k];
    }
    return sum <= norm;
}

bool isSymmetric(const FoldedKernel& kernel) {
    const int32_t* const center = kernel.weights.get() + kernel.reach;
    for (int32_t i = 0; i <= kernel.reach; ++i) {
        if (center[i] != center[-i] || center[i] > INT16_MAX) return false;
    }
    return true;
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

}  // namespace android
