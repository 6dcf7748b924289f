#include "blur/gaussian_kernel.h"

#include <vector>

#include "bench/support.h"

namespace {

const Suite suite([] {
    for (const float sigma : {1.f, 10.f, 100.f, 1000.f, 20000.f}) {
        const int32_t taps = kernelSize(sigma);
        add("kernel", "zoren", {taps, 1}, sigmaName(sigma), [=]() -> Work {
            auto kernel = std::vector<int32_t>(static_cast<size_t>(taps));
            return [=]() mutable {
                benchmark::DoNotOptimize(
                    android::calcuGaussianTemplate(kernel.data(), taps, sigma));
            };
        });
    }
});

}  // namespace
