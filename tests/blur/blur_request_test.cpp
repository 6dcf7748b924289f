#include <gtest/gtest.h>

#include <cmath>

#include "blur/color_mask.h"
#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

using Lines = std::vector<std::string>;
const Lines kBalanced = {"getInfo", "lock", "unlock"};

// The kernel size of a radius; 0 for no blur but the mask, -1 for neither.
const std::pair<float, int32_t> kSizes[] = {
    {0.25f, 1},      {0.5f, 1},          {0.74f, 1},     {0.75f, 3},     {1.0f, 3},
    {1.25f, 5},      {1.5f, 5},          {2.0f, 7},      {2.5f, 9},      {7.3f, 29},
    {10.0f, 39},     {25.0f, 99},        {0.2499f, 0},   {0.0f, 0},      {-0.3f, 0},
    {-5.0f, 0},      {-1e30f, 0},        {-INFINITY, 0}, {NAN, 0},       {23170.5f, 92681},
    {23170.75f, -1}, {536870912.0f, -1}, {1e30f, -1},    {INFINITY, -1},
};

TEST(BlurRequest, BlursThenMasks) {
    std::mt19937 random(26);
    for (const auto& [radius, size] : kSizes) {
        for (const uint32_t color : {0x40FF8800u, 0x00FF8800u, 0x01000000u, 0xFFFFFFFFu}) {
            SCOPED_TRACE(testing::Message() << "radius " << radius << " color " << color);
            Image image = Image::random(7, 5, random);
            Image expected(7, 5, image.words());
            const reference::Kernel kernel = reference::calcuGaussianTemplate(size, radius);
            reference::GaussianBlurEffect(expected, kernel.weights.data(), size, kernel.norm);
            if (size >= 0 && color >> 24 != 0) android::addMask(&expected, color);

            FakePlatform platform;
            FakeLibc libc;
            platform.showBitmap(image);
            size_t heldAtUnlock = 0;
            platform.atUnlock = [&] { heldAtUnlock = libc.heldBlocks(); };
            platform.blur(radius, color);
            EXPECT_EQ(image.words(), expected.words());
            EXPECT_EQ(platform.calls, kBalanced);
            EXPECT_EQ(heldAtUnlock, size > 0 ? 1u : 0u) << "the kernel is freed last";
            EXPECT_TRUE(libc.balanced());
        }
    }
}

}  // namespace
