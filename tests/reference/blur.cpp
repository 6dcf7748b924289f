#include <algorithm>
#include <cmath>

#include "tests/reference/reference.h"

namespace reference {
namespace {

uint32_t byteOf(uint32_t pixel, int c) { return pixel >> (8 * c) & 0xFF; }

// The one quotient that 32 bits cannot hold wraps; a norm of 0 divides nothing.
int32_t quotient(int32_t sum, int32_t norm) {
    if (norm == 0) return 0;
    return norm == -1 ? static_cast<int32_t>(-static_cast<uint32_t>(sum)) : sum / norm;
}

// One pass: (stepX, stepY) is the direction of the taps, which end at the edge pixel.
void pass(BitmapStruct& bitmap, const int32_t* kernel, int32_t size, int32_t norm, int stepX,
          int stepY) {
    const size_t width = bitmap.width;
    const std::vector<uint32_t> old(bitmap.pixels, bitmap.pixels + width * bitmap.height);
    for (int32_t y = 0; y < bitmap.height; ++y) {
        for (int32_t x = 0; x < bitmap.width; ++x) {
            uint32_t sums[3] = {0, 0, 0};
            for (int32_t k = 0; k < size; ++k) {
                const int32_t offset = k - (size - 1) / 2;
                const int32_t tapX = std::clamp(x + stepX * offset, 0, bitmap.width - 1);
                const int32_t tapY = std::clamp(y + stepY * offset, 0, bitmap.height - 1);
                const uint32_t pixel = old[tapY * width + tapX];
                const uint32_t weight = static_cast<uint32_t>(kernel[k]);
                for (int c = 0; c < 3; ++c) sums[c] += weight * byteOf(pixel, c);
            }
            uint32_t word = 0xFF000000;
            for (int c = 0; c < 3; ++c) {
                const int32_t value = quotient(static_cast<int32_t>(sums[c]), norm);
                word |= static_cast<uint32_t>(value) << (8 * c);
            }
            bitmap.pixels[y * width + x] = word;
        }
    }
}

}  // namespace

Kernel calcuGaussianTemplate(int32_t size, float radius) {
    Kernel kernel = {{}, 0};
    if (size < 1 || size > 92681) return kernel;
    const float a = -1.0f / ((radius + radius) * radius);
    const float c = 1.0f / (radius * 2.5066283f);
    std::vector<float> w(size);
    float sum = 0;
    for (int32_t i = 0; i < size; ++i) {
        const int32_t d = i - size / 2;
        const float exponent = a * static_cast<float>(d * d);
        w[i] = c * static_cast<float>(std::exp(static_cast<double>(exponent)));
        sum += w[i];
    }
    for (float weight : w) {
        const float scaled = weight * 65536.0f / sum;
        kernel.weights.push_back(std::isnan(scaled) ? 0 : static_cast<int32_t>(scaled));
        kernel.norm += kernel.weights.back();
    }
    return kernel;
}

Kernel gauss(float radius) {
    return calcuGaussianTemplate((static_cast<int32_t>(4 * radius) - 1) | 1, radius);
}

void GaussianBlurEffect(BitmapStruct& bitmap, const int32_t* kernel, int32_t size, int32_t norm) {
    if (bitmap.width < 2 || bitmap.height < 2 || size < 1 || size % 2 == 0) return;
    pass(bitmap, kernel, size, norm, 1, 0);
    pass(bitmap, kernel, size, norm, 0, 1);
}

}  // namespace reference
