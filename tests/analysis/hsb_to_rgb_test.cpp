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
        {0, 1, 1, {255, 0, 0}},
        {30, 1, 1, {255, 127, 0}},
        {60, 1, 1, {255, 255, 0}},
        {120, 1, 1, {0, 255, 0}},
        {180, 1, 1, {0, 255, 255}},
        {240, 1, 1, {0, 0, 255}},
        {300, 1, 1, {255, 0, 255}},
        {359.9f, 1, 1, {255, 0, 0}},
        {0, 0, 0.5f, {127, 127, 127}},
        {200, 0.5f, 0.8f, {102, 170, 204}},
        {45, 0.5f, 1, {255, 223, 127}},
        // Outside the domain: nothing is reduced, clamped or undefined.
        {360, 1, 1, {255, 1530, 0}},
        {-30, 1, 1, {255, -127, 0}},
        {-60, 1, 1, {0, 0, 0}},
        {0, 0, 2, {510, 510, 510}},
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

}  // namespace
