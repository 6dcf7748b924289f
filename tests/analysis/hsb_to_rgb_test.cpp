#include "analysis/hsb_to_rgb.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace {

using Channels = std::array<int32_t, 3>;

Channels convert(float h, float s, float v) {
    Channels c = {-7, -7, -7};
    android::HSBtoRGB(c[0], c[1], c[2], h, s, v);
    return c;
}

TEST(HsbToRgb, GivesTheseChannels) {
    struct Row {
        float h, s, v;
        Channels channels;
    };
    const Row rows[] = {
        {359.9f, 1, 1, {255, 0, 0}},
        // Outside the domain: nothing is reduced, clamped or undefined.
        {360, 1, 1, {255, 1530, 0}},
        {-30, 1, 1, {255, -127, 0}},
        {-60, 1, 1, {0, 0, 0}},
        {0, 0, 2, {510, 510, 510}},
        {0, 0, 33333.332f, {8499999, 8499999, 8499999}},  // a whole number in single precision
        {0, 2, 1, {255, -255, -255}},
        {INFINITY, 1, 1, {INT32_MIN, 255, 0}},
        {-INFINITY, 1, 1, {0, 0, 0}},
        {1e30f, 1, 1, {INT32_MIN, 255, 0}},
        {NAN, 1, 1, {255, 0, 0}},
        {0, NAN, 1, {255, 0, 0}},
        {0, INFINITY, 1, {255, INT32_MIN, INT32_MIN}},
        {0, 0, NAN, {0, 0, 0}},
        {0, 0, 1e10f, {INT32_MAX, INT32_MAX, INT32_MAX}},
        {0, 0, -1e10f, {INT32_MIN, INT32_MIN, INT32_MIN}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(convert(row.h, row.s, row.v), row.channels)
            << "h " << row.h << " s " << row.s << " v " << row.v;
    }
}

// Every whole hue and percent against exact numbers: fractions of 600000, in which 60 degrees and
// both percents are whole. Truncation hides the rounding of single precision wherever a channel is
// no whole number. Where it is one, it may come out one less, and does so in 1841 places, fixed by
// their digest: in the least channel at every hue of three saturations and brightnesses, in one
// that depends on the hue elsewhere.
TEST(HsbToRgb, IsExactButWhereRoundingDecides) {
    enum { kV, kP, kQ, kT };
    constexpr int kOrder[6][3] = {{kV, kT, kP}, {kQ, kV, kP}, {kP, kV, kT},
                                  {kP, kQ, kV}, {kT, kP, kV}, {kV, kP, kQ}};
    int places = 0;
    uint32_t digest = 2166136261u;  // FNV-1a
    for (int h = 0; h < 360; ++h) {
        for (int s = 0; s <= 100; ++s) {
            for (int v = 0; v <= 100; ++v) {
                const Channels channels =
                    convert(static_cast<float>(h), static_cast<float>(s / 100.0),
                            static_cast<float>(v / 100.0));
                const int f = h % 60;
                const int64_t exact[] = {255 * v * 6000, 255 * v * (6000 - 60 * s),
                                         255 * v * (6000 - f * s), 255 * v * (6000 - (60 - f) * s)};
                for (int c = 0; c < 3; ++c) {
                    const int kind = kOrder[h / 60][c];
                    if (channels[c] == exact[kind] / 600000) continue;
                    ASSERT_EQ(600000 * (channels[c] + 1), exact[kind]) << h << ' ' << s << ' ' << v;
                    ++places;
                    for (const int byte : {h >> 8, h & 255, s, v, kind}) {
                        digest = (digest ^ static_cast<uint32_t>(byte)) * 16777619u;
                    }
                }
            }
        }
    }
    EXPECT_EQ(places, 1841);
    EXPECT_EQ(digest, 2192276728u);
}

}  // namespace
