#include "analysis/hsb_to_rgb.h"

namespace android {
namespace {

// Toward zero, saturating, NaN to 0: what a 64-bit ARM conversion gives, spelled out because C++
// leaves it undefined.
int32_t truncated(double value) {
    if (value != value) return 0;
    if (value <= INT32_MIN) return INT32_MIN;
    if (value >= INT32_MAX) return INT32_MAX;
    return static_cast<int32_t>(value);
}

int32_t channel(float fraction) { return truncated(static_cast<double>(fraction) * 255.0); }

}  // namespace

void HSBtoRGB(int32_t& red, int32_t& green, int32_t& blue, float h, float s, float v) {
    const float position = h / 60.0f;  // divided: a product with 1/60 rounds differently
    const int32_t sector = truncated(static_cast<double>(position)) % 6;
    const float f = position - static_cast<float>(sector);
    const float p = (1.0f - s) * v;
    const float q = (1.0f - f * s) * v;
    const float t = (1.0f - (1.0f - f) * s) * v;

    float r = 0.0f, g = 0.0f, b = 0.0f;
    switch (sector) {
        case 0:
            r = v, g = t, b = p;
            break;
        case 1:
            r = q, g = v, b = p;
            break;
        case 2:
            r = p, g = v, b = t;
            break;
        case 3:
            r = p, g = q, b = v;
            break;
        case 4:
            r = t, g = p, b = v;
            break;
        case 5:
            r = v, g = p, b = q;
            break;
        default:
            break;  // a sector below 0: black
    }
    red = channel(r);
    green = channel(g);
    blue = channel(b);
}

}  // namespace android
