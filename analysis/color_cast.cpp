#include "analysis/color_cast.h"

#include <cstdlib>

#include "analysis/hsb_to_rgb.h"
#include "analysis/hue_counts.h"

namespace android {
namespace {

constexpr int32_t kSpans = kHueBins;  // a span is two bins
constexpr int32_t kBinDegrees = 360 / kHueBins;

// counter[k] counts the coloured pixels with a hue from 15 k to 15 k + 29 degrees.
struct SpanCounts {
    int32_t counter[kSpans];
    int32_t coloured;
};

SpanCounts countSpans(const uint32_t* pixels, size_t count) {
    int32_t bins[kHueBins];
    countHues(pixels, count, bins);
    SpanCounts spans = {};
    for (int32_t k = 0; k < kSpans; ++k) {
        spans.counter[k] = bins[k] + bins[(k + 1) % kSpans];
        spans.coloured += bins[k];
    }
    return spans;
}

struct Ranking {
    int32_t leader, runnerUp;
};

// One pass in ascending order. A leader that is overtaken is dropped: it does not become the
// runner-up.
Ranking rankSpans(const SpanCounts& spans) {
    Ranking rank = {0, 1};
    if (spans.counter[0] < spans.counter[1]) rank = {1, 0};
    for (int32_t k = 2; k < kSpans; ++k) {
        if (spans.counter[k] > spans.counter[rank.leader]) {
            rank.leader = k;
        } else if (spans.counter[k] > spans.counter[rank.runnerUp]) {
            rank.runnerUp = k;
        }
    }
    return rank;
}

float share(int32_t part, int32_t whole) {
    return static_cast<float>(part) / static_cast<float>(whole);
}

bool isAccepted(const SpanCounts& spans, const Ranking& rank, int32_t pixelCount) {
    // The shares are single precision and the limits double, so a share of exactly 5 % passes.
    if (static_cast<double>(share(spans.coloured, pixelCount)) < 0.05) return false;
    const float leader = share(spans.counter[rank.leader], spans.coloured);
    if (static_cast<double>(leader) < 0.4) return false;
    const float lead = leader - share(spans.counter[rank.runnerUp], spans.coloured);
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

    const SpanCounts spans = countSpans(bitmap->pixels, static_cast<size_t>(count));
    const Ranking rank = rankSpans(spans);
    if (!isAccepted(spans, rank, pixelCount)) return -1;

    const int32_t hue = (kBinDegrees * rank.leader + kBinDegrees) % 360;
    int32_t red, green, blue;
    HSBtoRGB(red, green, blue, static_cast<float>(hue), fraction(saturation), fraction(brightness));
    return static_cast<int32_t>(0xFF000000 | static_cast<uint32_t>(red) << 16 |
                                static_cast<uint32_t>(green) << 8 | static_cast<uint32_t>(blue));
}

}  // namespace android
