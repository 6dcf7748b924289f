// Run with MemorySanitizer, which follows each byte that was never written: none may reach a
// picture or a result. What the library takes for scratch, kernels and tables starts so.

#include <hwy/highway.h>
#include <hwy/targets.h>
#include <sanitizer/msan_interface.h>
#include <zoren_runtime.h>

#include <cstdio>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using Pixels = std::vector<uint32_t>;

struct Kernel {
    const char* name;
    std::vector<int32_t> weights;
    int32_t norm;
};

// As the blur request derives it, weights and norm by the library.
Kernel gauss(const char* name, float radius) {
    const int32_t size = (static_cast<int32_t>(4 * radius) - 1) | 1;
    const std::unique_ptr<int32_t[]> weights(new int32_t[static_cast<size_t>(size)]);
    const int32_t norm = android::calcuGaussianTemplate(weights.get(), size, radius);
    return {name, {weights.get(), weights.get() + size}, norm};
}

// Weights as unlike their neighbours as steps can take them.
Kernel zigzag() {
    Kernel kernel = {"zigzag", std::vector<int32_t>(199, 0), 65536};
    for (size_t i = 1; i < kernel.weights.size(); i += 2) kernel.weights[i] = 257;
    return kernel;
}

int pictures = 0, wrong = 0;

void check(const char* routine, int64_t target, int32_t width, int32_t height, const char* kernel,
           const void* what, size_t bytes) {
    ++pictures;
    const intptr_t at = __msan_test_shadow(what, bytes);
    if (at < 0) return;
    ++wrong;
    std::printf("%s on %s, %d x %d, %s: byte %td was never written\n", routine,
                hwy::TargetName(target), width, height, kernel, at);
}

}  // namespace

int main() {
    const Kernel kernels[] = {gauss("radius 0.7", 0.7f),
                              gauss("radius 2.3", 2.3f),
                              gauss("radius 10", 10),
                              gauss("radius 60", 60),
                              gauss("radius 500", 500),
                              gauss("radius 1000", 1000),
                              zigzag(),
                              {"heavy", {40000, 20000, 5000}, 65000},
                              {"far from 65536", {100, 100, 100}, 300},
                              {"negative", {-1, 300, -1}, 300},
                              {"norm 0", {1, 1, 1}, 0}};
    // Narrower and wider than a vector, a tile and a group of tiles; lines short and long for
    // steps.
    const std::pair<int32_t, int32_t> sizes[] = {{2, 2},   {3, 17},   {7, 90},    {16, 130},
                                                 {33, 33}, {64, 5},   {81, 3},    {97, 140},
                                                 {130, 9}, {150, 70}, {1000, 19}, {41, 1000}};
    std::mt19937 random(8);
    std::printf("MemorySanitizer on");
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        std::printf(" %s", hwy::TargetName(target));
        std::fflush(stdout);
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        for (const auto& [width, height] : sizes) {
            Pixels source(static_cast<size_t>(width) * static_cast<size_t>(height));
            for (uint32_t& pixel : source) pixel = static_cast<uint32_t>(random());
            for (const Kernel& kernel : kernels) {
                Pixels pixels = source;
                android::BitmapStruct bitmap = {width, height, pixels.data()};
                android::GaussianBlurEffect(&bitmap, kernel.weights.data(),
                                            static_cast<int32_t>(kernel.weights.size()),
                                            kernel.norm);
                check("blur", target, width, height, kernel.name, pixels.data(), 4 * pixels.size());
            }
            android::BitmapStruct bitmap = {width, height, source.data()};
            const int32_t gray = android::RGB2Gray(&bitmap);
            check("gray", target, width, height, "", &gray, sizeof(gray));
            const int32_t cast = android::BitmaptoColorCast(&bitmap, 60, 90);
            check("cast", target, width, height, "", &cast, sizeof(cast));
            android::addMask(&bitmap, 0x40FF8800);
            check("mask", target, width, height, "", source.data(), 4 * source.size());
        }
    }
    std::printf("\n%d pictures and results, %d with a byte that was never written\n", pictures,
                wrong);
    return wrong == 0 ? 0 : 1;
}
