#include "blur/gaussian_blur.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>

#include "blur/dot_blur.h"
#include "blur/folded_kernel.h"
#include "blur/pass_plan.h"
#include "blur/plan_support.h"
#include "blur/step_blur.h"
#include "blur/sweep_blur.h"
#include "blur/symmetric_blur.h"
#include "blur/tap_blur.h"
#include "blur/try_gaussian_blur.h"

namespace android {
namespace {

// A signed 32-bit division that truncates. In 64 bits the one quotient that
// does not fit, -2^31 / -1, wraps instead of trapping.
uint32_t quotient(uint32_t sum, int32_t norm) {
    return static_cast<uint32_t>(static_cast<int64_t>(static_cast<int32_t>(sum)) / norm);
}

// Blurs one row or column of `count` pixels, `step` words apart, in place, under any kernel.
// `bordered` holds count + 2 * reach words: the line's own pixels with its first and last repeated
// on either side. Sums are unsigned because they may wrap.
void blurLine(uint32_t* line, size_t step, size_t count, const FoldedKernel& kernel, int32_t norm,
              uint32_t* bordered) {
    const size_t reach = static_cast<size_t>(kernel.reach);
    std::fill_n(bordered, reach, line[0]);
    for (size_t i = 0; i < count; ++i) bordered[reach + i] = line[i * step];
    std::fill_n(bordered + reach + count, reach, line[(count - 1) * step]);

    for (size_t i = 0; i < count; ++i) {
        uint32_t red = 0, green = 0, blue = 0;
        for (size_t k = 0; k <= 2 * reach; ++k) {
            const uint32_t pixel = bordered[i + k];
            const uint32_t weight = static_cast<uint32_t>(kernel.weights[k]);
            red += weight * (pixel & 0xFF);
            green += weight * (pixel >> 8 & 0xFF);
            blue += weight * (pixel >> 16 & 0xFF);
        }
        line[i * step] = quotient(blue, norm) << 16 | quotient(green, norm) << 8 |
                         quotient(red, norm) | 0xFF000000;
    }
}

bool blurAnyKernel(BitmapStruct* bitmap, const int32_t* kernel, int32_t size, int32_t norm) {
    const size_t width = static_cast<size_t>(bitmap->width);
    const size_t height = static_cast<size_t>(bitmap->height);
    FoldedKernel rowKernel, columnKernel;
    if (!foldKernel(kernel, size, bitmap->width, &rowKernel) ||
        !foldKernel(kernel, size, bitmap->height, &columnKernel)) {
        return false;
    }
    const size_t words = std::max(width + 2 * static_cast<size_t>(rowKernel.reach),
                                  height + 2 * static_cast<size_t>(columnKernel.reach));
    const std::unique_ptr<uint32_t[]> bordered(new (std::nothrow) uint32_t[words]);
    if (!bordered) return false;

    for (size_t y = 0; y < height; ++y) {
        blurLine(bitmap->pixels + y * width, 1, width, rowKernel, norm, bordered.get());
    }
    for (size_t x = 0; x < width; ++x) {
        blurLine(bitmap->pixels + x, width, height, columnKernel, norm, bordered.get());
    }
    return true;
}

struct Method {
    void (*blurRows)(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);
    void (*blurColumns)(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch);
    size_t (*scratchWords)(const PassPlan& plan, size_t length, size_t lines);
};

Method methodOf(const PassPlan& plan) {
    if (plan.bySteps()) return {blurRowsBySteps, blurColumnsBySteps, stepScratchWords};
    if (plan.bySymmetricTaps()) {
        return {blurRowsBySymmetricTaps, blurColumnsBySymmetricTaps, symmetricScratchWords};
    }
    return {blurRowsByTaps, blurColumnsByTaps, tapScratchWords};
}

// Carries out a plan of both passes at once with `words` of scratch; false when they cannot be had.
template <typename Plan>
bool blurAtOnce(BitmapStruct* bitmap, const Plan& plan, size_t words,
                void (*blur)(const BitmapStruct&, const Plan&, uint32_t*)) {
    const std::unique_ptr<uint32_t[]> scratch(new (std::nothrow) uint32_t[words]);
    if (scratch) blur(*bitmap, plan, scratch.get());
    return scratch != nullptr;
}

bool blurInTwoPasses(BitmapStruct* bitmap, const int32_t* kernel, int32_t size, int32_t norm) {
    const PassCosts costs = passCosts();
    PassPlan rowPlan, columnPlan;
    if (!makePassPlan(kernel, size, norm, bitmap->width, bitmap->height, costs, &rowPlan) ||
        !makePassPlan(kernel, size, norm, bitmap->height, bitmap->width, costs, &columnPlan)) {
        return false;
    }
    const size_t width = static_cast<size_t>(bitmap->width);
    const size_t height = static_cast<size_t>(bitmap->height);
    const Method rows = methodOf(rowPlan), columns = methodOf(columnPlan);
    const size_t words = std::max(rows.scratchWords(rowPlan, width, height),
                                  columns.scratchWords(columnPlan, height, width));
    const std::unique_ptr<uint32_t[]> scratch(new (std::nothrow) uint32_t[words]);
    if (!scratch) return false;

    rows.blurRows(*bitmap, rowPlan, scratch.get());
    columns.blurColumns(*bitmap, columnPlan, scratch.get());
    return true;
}

}  // namespace

bool tryGaussianBlur(BitmapStruct* bitmap, const int32_t* kernel, int32_t size, int32_t norm) {
    if (bitmap->width < 2 || size % 2 != 1 || bitmap->height < 2) return true;
    if (norm == 0) {  // every quotient is 0
        std::fill_n(bitmap->pixels,
                    static_cast<size_t>(bitmap->width) * static_cast<size_t>(bitmap->height),
                    0xFF000000);
        return true;
    }
    if (!isPlainKernel(kernel, size, norm)) return blurAnyKernel(bitmap, kernel, size, norm);

    const size_t width = static_cast<size_t>(bitmap->width);
    const size_t height = static_cast<size_t>(bitmap->height);
    if (hasDotProducts()) {
        DotPlan dots;
        if (!planDots(kernel, size, norm, bitmap->width, bitmap->height, &dots)) return false;
        const size_t words = dots.groups > 0 ? dotScratchWords(dots, width, height) : 0;
        const size_t held = words + dots.groups * kDotGroupBytes / sizeof(uint32_t);
        if (words > 0 && held <= memoryBound(width, height, static_cast<size_t>(size))) {
            return blurAtOnce(bitmap, dots, words, blurByDots);
        }
    }
    SweepPlan sweep;
    if (!planSweep(kernel, size, norm, bitmap->width, bitmap->height, &sweep)) return false;
    const size_t words = sweepScratchWords(sweep, *bitmap);
    return words > 0 ? blurAtOnce(bitmap, sweep, words, blurBySweep)
                     : blurInTwoPasses(bitmap, kernel, size, norm);
}

void GaussianBlurEffect(BitmapStruct* bitmap, const int32_t* kernel, int32_t size, int32_t norm) {
    tryGaussianBlur(bitmap, kernel, size, norm);
}

}  // namespace android
