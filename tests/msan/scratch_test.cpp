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
    std::vector<int32_t> weights;
    int32_t norm;
};

// As the blur request derives it, weights and norm by the library.
Kernel gauss(float radius) {
    const int32_t size = (static_cast<int32_t>(4 * radius) - 1) | 1;
    const std::unique_ptr<int32_t[]> weights(new int32_t[static_cast<size_t>(size)]);
    const int32_t norm = android::calcuGaussianTemplate(weights.get(), size, radius);
    return {{weights.get(), weights.get() + size}, norm};
}

int pictures = 0, wrong = 0;

void check(const char* routine, int64_t target, int32_t width, int32_t height, const void* what,
           size_t bytes) {
    ++pictures;
    const intptr_t at = __msan_test_shadow(what, bytes);
    if (at < 0) return;
    ++wrong;
    std::printf("%s on %s, %d x %d: byte %td was never written\n", routine, hwy::TargetName(target),
                width, height, at);
}

}  // namespace

int main() {
    Kernel zigzag = {std::vector<int32_t>(199, 0), 65536};  // as unlike as steps can take them
    for (size_t i = 1; i < zigzag.weights.size(); i += 2) zigzag.weights[i] = 257;
    // The last ones: heavy, far from 65536, negative, and of norm 0.
    const Kernel kernels[] = {gauss(0.7f),
                              gauss(2.3f),
                              gauss(10),
                              gauss(60),
                              gauss(500),
                              gauss(1000),
                              zigzag,
                              {{40000, 20000, 5000}, 65000},
                              {{100, 100, 100}, 300},
                              {{-1, 300, -1}, 300},
                              {{1, 1, 1}, 0}};
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
            for (const auto& [weights, norm] : kernels) {
                Pixels pixels = source;
                android::BitmapStruct bitmap = {width, height, pixels.data()};
                const int32_t size = static_cast<int32_t>(weights.size());
                android::GaussianBlurEffect(&bitmap, weights.data(), size, norm);
                check("blur", target, width, height, pixels.data(), 4 * pixels.size());
            }
            android::BitmapStruct bitmap = {width, height, source.data()};
            const int32_t results[] = {android::RGB2Gray(&bitmap),
                                       android::BitmaptoColorCast(&bitmap, 60, 90)};
            check("gray or cast", target, width, height, results, sizeof(results));
            android::addMask(&bitmap, 0x40FF8800);
            check("mask", target, width, height, source.data(), 4 * source.size());
        }
    }
    std::printf("\n%d pictures and results, %d with a byte that was never written\n", pictures,
                wrong);
    return wrong == 0 ? 0 : 1;
}
