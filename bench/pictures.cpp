#include "bench/pictures.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <vector>

#include "blur/gaussian_blur.h"
#include "blur/gaussian_kernel.h"

namespace {

using Buffers = std::map<int64_t, std::unique_ptr<uint32_t[]>>;

size_t pixelCount(Size size) {
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// A page of its own, so that all sizes and users start alike.
uint32_t* buffer(Buffers& buffers, Size size) {
    auto& slot = buffers[int64_t{size.width} << 32 | size.height];
    if (!slot) slot.reset(new uint32_t[pixelCount(size) + 2048]());
    return reinterpret_cast<uint32_t*>((reinterpret_cast<uintptr_t>(slot.get()) + 4095) & ~4095ul);
}

}  // namespace

int32_t kernelSize(float sigma) {
    const int32_t taps = static_cast<int32_t>(4 * sigma);
    return taps % 2 == 0 ? taps - 1 : taps;
}

android::BitmapStruct canvas(Size size) {
    static Buffers buffers;
    return {size.width, size.height, buffer(buffers, size)};
}

android::BitmapStruct picture(Size size) {
    static Buffers buffers;
    uint32_t* pixels = buffer(buffers, size);
    if (pixels[0] == 0) {
        uint32_t noise = 37;
        for (int32_t i = 0; i < size.width * size.height; ++i) {
            noise = noise * 1664525 + 1013904223;
            const uint32_t x = static_cast<uint32_t>(i % size.width * 200 / size.width);
            const uint32_t y = static_cast<uint32_t>(i / size.width * 200 / size.height);
            const uint32_t red = x + (noise >> 27), green = y + (noise >> 22 & 31);
            const uint32_t blue = (x + y) / 2 + (noise >> 17 & 31);
            pixels[i] = 0xFF000000 | blue << 16 | green << 8 | red;
        }
    }
    return {size.width, size.height, pixels};
}

void blurWhole(const android::BitmapStruct& bitmap, float sigma) {
    std::vector<int32_t> kernel(static_cast<size_t>(kernelSize(sigma)));
    const int32_t taps = static_cast<int32_t>(kernel.size());
    const int32_t norm = android::calcuGaussianTemplate(kernel.data(), taps, sigma);
    android::BitmapStruct view = bitmap;
    android::GaussianBlurEffect(&view, kernel.data(), taps, norm);
}

Difference difference(const android::BitmapStruct& defined, const uint8_t* result,
                      int32_t channels) {
    const auto* expected = reinterpret_cast<const uint8_t*>(defined.pixels);
    const size_t count = pixelCount({defined.width, defined.height});
    int largest = 0;
    uint64_t sum = 0;
    for (size_t i = 0; i < count; ++i, expected += 4, result += channels) {
        for (int c = 0; c < 3; ++c) {
            const int distance = std::abs(expected[c] - result[c]);
            largest = std::max(largest, distance);
            sum += static_cast<uint64_t>(distance);
        }
    }
    return {static_cast<double>(largest),
            static_cast<double>(sum) / (3 * static_cast<double>(count))};
}

Difference blurDifference(Size size, float sigma, const uint8_t* result, int32_t channels) {
    const android::BitmapStruct from = picture(size);
    std::vector<uint32_t> pixels(from.pixels, from.pixels + pixelCount(size));
    const android::BitmapStruct defined = {size.width, size.height, pixels.data()};
    blurWhole(defined, sigma);
    return difference(defined, result, channels);
}
