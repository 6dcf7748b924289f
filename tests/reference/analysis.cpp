#include <algorithm>
#include <cstdlib>
#include <limits>

#include "analysis/hsb_to_rgb.h"
#include "tests/reference/reference.h"

namespace reference {

int32_t hueOf(uint32_t pixel) {
    const int32_t r = pixel & 0xFF, g = pixel >> 8 & 0xFF, b = pixel >> 16 & 0xFF;
    const int32_t max = std::max({r, g, b}), delta = max - std::min({r, g, b});
    if (max < 54 || delta * 100 / max < 13) return -1;
    if (max == r) return (60 * (g - b) / delta + (g < b ? 360 : 0)) % 360;
    if (max == g) return 60 * (b - r) / delta + 120;
    return 60 * (r - g) / delta + 240;
}

int32_t RGB2Gray(const BitmapStruct& bitmap) {
    if (bitmap.width < 2 || bitmap.height < 2) return -1;
    const int32_t n = bitmap.width * bitmap.height;
    uint64_t sums[3] = {0, 0, 0};
    for (int32_t i = 0; i < n; ++i) {
        for (int c = 0; c < 3; ++c) sums[c] += bitmap.pixels[i] >> (8 * c) & 0xFF;
    }
    const float r = static_cast<float>(sums[0]) * 0.299f;
    const float g = static_cast<float>(sums[1]) * 0.587f;
    const float b = static_cast<float>(sums[2]) * 0.114f;
    return static_cast<int32_t>((b + (g + r)) / static_cast<float>(n));
}

int32_t BitmaptoColorCast(const BitmapStruct& bitmap, int32_t saturation, int32_t brightness) {
    if (bitmap.width < 2 || bitmap.height < 2) return -1;
    const int64_t n = static_cast<int64_t>(bitmap.width) * bitmap.height;
    if (n > std::numeric_limits<int32_t>::max()) return -1;
    int32_t spans[24] = {}, count = 0;
    for (int64_t i = 0; i < n; ++i) {
        const int32_t hue = hueOf(bitmap.pixels[i]);
        if (hue < 0) continue;
        ++spans[hue / 15];
        ++spans[(hue / 15 + 23) % 24];
        ++count;
    }
    int leader = spans[0] < spans[1] ? 1 : 0, runnerUp = 1 - leader;
    for (int k = 2; k < 24; ++k) {
        if (spans[k] > spans[leader]) {
            leader = k;  // the old leader does not become runner-up
        } else if (spans[k] > spans[runnerUp]) {
            runnerUp = k;
        }
    }
    const float colored = static_cast<float>(count) / static_cast<float>(n);
    if (static_cast<double>(colored) < 0.05) return -1;
    const float first = static_cast<float>(spans[leader]) / static_cast<float>(count);
    if (static_cast<double>(first) < 0.4) return -1;
    const float second = static_cast<float>(spans[runnerUp]) / static_cast<float>(count);
    const int distance = std::abs(leader - runnerUp);
    const float lead = first - second;
    if (static_cast<double>(lead) < 0.2 && distance > 1 && distance < 23) return -1;

    int32_t red, green, blue;
    android::HSBtoRGB(red, green, blue, static_cast<float>((15 * leader + 15) % 360),
                      static_cast<float>(saturation / 100.0),
                      static_cast<float>(brightness / 100.0));
    const uint32_t color = 0xFF000000 | static_cast<uint32_t>(red) << 16 |
                           static_cast<uint32_t>(green) << 8 | static_cast<uint32_t>(blue);
    return static_cast<int32_t>(color);
}

}  // namespace reference
