#include "analysis/color_cast.h"

#include <algorithm>
#include <cstdlib>

#include "analysis/hsb_to_rgb.h"

namespace android {
namespace {

constexpr int32_t kSpans = 24;
constexpr int32_t kBinDegrees = 15;  // a span is two bins

// counter[k] counts the coloured pixels with a hue from 15 k to 15 k + 29 degrees.
struct HueCounts {
    int32_t counter[kSpans];
    int32_t coloured;
};

// Degrees, 0 to 359, truncated toward zero in each sector. Ties go to the first channel in the
// order red, green, blue.
int32_t hueOf(int32_t r, int32_t g, int32_t b, int32_t max, int32_t delta) {
    if (max == r) return (60 * (g - b) / delta + (g >= b ? 0 : 360)) % 360;
    if (max == g) return 60 * (b - r) / delta + 120;
    return 60 * (r - g) / delta + 240;
}

HueCounts countHues(const uint32_t* pixels, int32_t count) {
    HueCounts hues = {};
    for (int32_t i = 0; i < count; ++i) {
        const int32_t r = static_cast<int32_t>(pixels[i] & 0xFF);
        const int32_t g = static_cast<int32_t>(pixels[i] >> 8 & 0xFF);
        const int32_t b = static_cast<int32_t>(pixels[i] >> 16 & 0xFF);
        const int32_t max = std::max({r, g, b});
        const int32_t delta = max - std::min({r, g, b});
        if (max * 100 < 5355 || delta * 100 / max < 13) continue;
        const int32_t bin = hueOf(r, g, b, max, delta) / kBinDegrees;
        ++hues.counter[bin];
        ++hues.counter[(bin + kSpans - 1) % kSpans];
        ++hues.coloured;
    }
    return hues;
}

struct Ranking {
    int32_t leader, runnerUp;
};

// One pass in ascending order. A leader that is overtaken is dropped: it does not become the
// runner-up.
Ranking rankSpans(const HueCounts& hues) {
    Ranking rank = {0, 1};
    if (hues.counter[0] < hues.counter[1]) rank = {1, 0};
    for (int32_t k = 2; k < kSpans; ++k) {
        if (hues.counter[k] > hues.counter[rank.leader]) {
            rank.leader = k;
        } else if (hues.counter[k] > hues.counter[rank.runnerUp]) {
            rank.runnerUp = k;
        }
    }
    return rank;
}

float share(int32_t part, int32_t whole) {
    return static_cast<float>(part) / static_cast<float>(whole);
}

bool isAccepted(const HueCounts& hues, const Ranking& rank, int32_t pixelCount) {
    // The shares are single precision and the limits double, so a share of exactly 5 % passes.
    if (static_cast<double>(share(hues.coloured, pixelCount)) < 0.05) return false;
    const float leader = share(hues.counter[rank.leader], hues.coloured);
    if (static_cast<double>(leader) < 0.4) return false;
    const float lead = leader - share(hues.counter[rank.runnerUp], hues.coloured);
    const int32_t distance = std::abs(rank.leader - rank.runnerUp);
    const bool adjacent = distance == 1 || distance == kSpans - 1;
    return adjacent || !(static_cast<double>(lead) < 0.2);
}

float fraction(int32_t percent) { return static_cast<float>(percent / 100.0); }

}  // namespace

int32_t BitmaptoColorCast(const BitmapStruct* bitmap, int32_t saturation, int32_t brightness) {
    if (bitmap->width < 2 || bitmap->height < 2) return -1;
    const int64_t count = static_cast<int64_t>(bitmap->width) * bitmap->height;
    if (count > INT32_MAX) return -1;
    const int32_t pixelCount = static_cast<int32_t>(count);

    const HueCounts hues = countHues(bitmap->pixels, pixelCount);
    const Ranking rank = rankSpans(hues);
    if (!isAccepted(hues, rank, pixelCount)) return -1;

    const int32_t hue = (kBinDegrees * rank.leader + kBinDegrees) % 360;
    int32_t red, green, blue;
    HSBtoRGB(red, green, blue, static_cast<float>(hue), fraction(saturation), fraction(brightness));
    return static_cast<int32_t>(0xFF000000 | static_cast<uint32_t>(red) << 16 |
                                static_cast<uint32_t>(green) << 8 | static_cast<uint32_t>(blue));
}

}  // namespace android
