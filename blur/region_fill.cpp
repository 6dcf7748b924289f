#include "blur/region_fill.h"

#include <algorithm>
#include <cstddef>

namespace android {
namespace {

bool overlap(const uint32_t* a, size_t aWords, const uint32_t* b, size_t bWords) {
    const uintptr_t aBegin = reinterpret_cast<uintptr_t>(a),
                    bBegin = reinterpret_cast<uintptr_t>(b);
    return aBegin < bBegin + bWords * sizeof *b && bBegin < aBegin + aWords * sizeof *a;
}

}  // namespace

void fillBitmapRegionHorizontal(const BitmapStruct* source, BitmapStruct* destination) {
    if (source->height < 1 || source->width < 1 || destination->width < source->width) return;
    const size_t width = static_cast<size_t>(source->width);
    const size_t height = static_cast<size_t>(source->height);
    const size_t wide = static_cast<size_t>(destination->width);
    if (overlap(source->pixels, height * width, destination->pixels, height * wide)) return;
    const size_t margin = (wide - width) / 2;
    for (size_t y = 0; y < height; ++y) {
        const uint32_t* from = source->pixels + y * width;
        uint32_t* to = destination->pixels + y * wide;
        std::fill_n(to, margin, from[0]);
        std::copy_n(from, width, to + margin);
        std::fill_n(to + wide - margin, margin, from[width - 1]);
    }
}

void fillBitmapRegionVertical(const BitmapStruct* source, BitmapStruct* destination) {
    if (source->height < 1 || source->width < 1 || destination->height < source->height) return;
    const size_t width = static_cast<size_t>(source->width);
    const size_t height = static_cast<size_t>(source->height);
    const size_t high = static_cast<size_t>(destination->height);
    if (high * width > INT32_MAX ||
        overlap(source->pixels, height * width, destination->pixels, high * width)) {
        return;
    }
    const size_t margin = (high - height) / 2;
    const uint32_t* last = source->pixels + (height - 1) * width;
    uint32_t* to = destination->pixels;
    for (size_t y = 0; y < margin; ++y) to = std::copy_n(source->pixels, width, to);
    to = std::copy_n(source->pixels, height * width, to);
    for (size_t y = 0; y < margin; ++y) to = std::copy_n(last, width, to);
}

}  // namespace android
