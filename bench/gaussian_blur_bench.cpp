#include "blur/gaussian_blur.h"

#include <vector>

#include "bench/support.h"
#include "blur/gaussian_kernel.h"

namespace {

void addBlur(Size size, float sigma) {
    add("blur", "zoren", size, sigmaName(sigma), [=]() -> Work {
        std::vector<int32_t> kernel(static_cast<size_t>(kernelSize(sigma)));
        const int32_t taps = static_cast<int32_t>(kernel.size());
        const int32_t norm = android::calcuGaussianTemplate(kernel.data(), taps, sigma);
        return [=] {
            android::BitmapStruct bitmap = canvas(size);
            android::GaussianBlurEffect(&bitmap, kernel.data(), taps, norm);
        };
    });
}

const Suite suite([] {
    for (const Size size : sizes()) {
        for (const float sigma : sigmas(size)) addBlur(size, sigma);
        for (const float sigma : furtherSigmas(size)) addBlur(size, sigma);
    }
    const Size size = sizes().back();
    for (const float sigma : {1.f, 10.f, 25.f, 100.f, 1000.f, 20000.f}) {
        addMemory("zoren", size, sigma, [=] { blurWhole(canvas(size), sigma); });
    }
});

}  // namespace
