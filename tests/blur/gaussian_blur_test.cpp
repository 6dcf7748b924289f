#include "blur/gaussian_blur.h"

#include <gtest/gtest.h>

#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

using android::GaussianBlurEffect;
using Pixels = std::vector<uint32_t>;
using Weights = std::vector<int32_t>;

const Weights kThree = {17961, 29613, 17961};
const Weights kRadius10 = reference::calcuGaussianTemplate(39, 10.0f).weights;

struct Row {
    const char* name;
    Pixels before;  // rows of two
    Weights kernel;
    int32_t norm;
    Pixels after;  // and opaque
};

const Row kRows[] = {
    {"one tap", {0x01020304, 0, 0x80FFFFFF, 0xFF}, {65536}, 65536, {0x020304, 0, 0xFFFFFF, 0xFF}},
    {"light", {0xFFFFFF, 0, 0, 0}, kThree, 65535, {0x868686, 0x323232, 0x323232, 0x121212}},
    {"far taps", {0xFFFFFF, 0, 0, 0}, kRadius10, 65521, {0x444444, 0x3F3F3F, 0x3F3F3F, 0x3A3A3A}},
    {"red column", {0xFF, 0, 0xFF, 0}, kThree, 65535, {0xB9, 0x45, 0xB9, 0x45}},
    {"uniform", Pixels(6, 0x1E140A), kRadius10, 65521, Pixels(6, 0x1E140A)},
    {"transparent", Pixels(4, 0), kThree, 65535, Pixels(4, 0)},
    {"norm 0", Pixels(4, 0xFFFFFFFF), kThree, 0, Pixels(4, 0)},
    {"first tap: from the left and above", {1, 2, 3, 4}, {1, 0, 0}, 1, Pixels(4, 1)},
    {"last tap: from the right and below", {1, 2, 3, 4, 5, 6}, {0, 0, 1}, 1, {4, 4, 6, 6, 6, 6}},
    // 128 * 2^24 wraps to the one sum whose quotient by -1 does not fit.
    {"quotient wraps", Pixels(4, 0x808080), {1 << 24}, -1, Pixels(4, 0)},
    // Green 800 runs into blue, then blue 600 into the alpha byte.
    {"quotients spill", Pixels(4, 0x000401), {1000}, 5, Pixels(4, 0x599C40)},
};

TEST(GaussianBlur, GivesThesePixels) {
    for (const Row& row : kRows) {
        Image image(2, static_cast<int32_t>(row.before.size() / 2), row.before);
        const GuardedArray<int32_t> kernel(row.kernel);
        GaussianBlurEffect(&image, kernel.begin(), static_cast<int32_t>(kernel.size()), row.norm);
        Pixels opaque = row.after;
        for (uint32_t& word : opaque) word |= 0xFF000000;
        EXPECT_EQ(image.words(), opaque) << row.name;
    }
}

TEST(GaussianBlur, LeavesUntouched) {
    const int32_t rows[][3] = {{1, 12, 3},
                               {12, 1, 3},
                               {1, 1, 1},
                               {0, 0, 3},
                               {9, 9, 4},
                               {9, 9, 0},
                               {9, 9, -1},
                               {9, 9, -3},
                               {9, 9, -4},
                               {9, 9, INT32_MIN},
                               {9, 9, INT32_MIN + 1}};
    for (const auto& [width, height, size] : rows) {
        Image image(width, height, 0x12345678);
        GaussianBlurEffect(&image, kRadius10.data(), size, 65536);
        EXPECT_EQ(image.words(), Pixels(image.storage.size(), 0x12345678))
            << width << " x " << height << ", size " << size;
    }
}

// Memory is taken before the first pixel is written, and sizes do not wrap at 32 bits.
TEST(GaussianBlur, LeavesUntouchedWithoutMemory) {
    FakePlatform platform;
    const Pixels before = {1, 2, 3, 4, 5, 6};
    const int tries = failEachAllocation([&](FakeLibc& libc) {
        Image image(2, 3, before);
        GaussianBlurEffect(&image, kThree.data(), 3, 65535);
        EXPECT_EQ(image.words() == before, libc.allocationFailed());
    });
    EXPECT_GT(tries, 1);

    FakeLibc libc;
    for (const int32_t size : {INT32_MAX, 0x3FFFFFFF, 0x33333333}) {  // no weight is read
        Image square(4, 4, 0x12345678);
        GaussianBlurEffect(&square, kThree.data(), size, 65535);
        EXPECT_EQ(square.words(), Pixels(16, 0x12345678)) << size;
    }
}

void expectEqualsReference(const Image& source, const Weights& weights, int32_t norm) {
    const GuardedArray<int32_t> kernel(weights);
    const int32_t size = static_cast<int32_t>(weights.size());
    Image actual(source.width, source.height, source.words());
    Image expected(source.width, source.height, source.words());
    GaussianBlurEffect(&actual, kernel.begin(), size, norm);
    reference::GaussianBlurEffect(expected, kernel.begin(), size, norm);
    ASSERT_EQ(actual.words(), expected.words())
        << source.width << " x " << source.height << ", size " << size << ", norm " << norm;
    ASSERT_TRUE(actual.storage.intact());
}

TEST(GaussianBlur, EqualsReference) {
    std::mt19937 random(22);
    for (const auto& [width, height] : sweepSizes()) {
        const Image image = Image::random(width, height, random);
        for (const int32_t size : {1, 3, 5, 9, 15, 17, 19, 33, 39}) {
            const float radius = static_cast<float>(size + 1) / 4;
            const reference::Kernel gauss = reference::calcuGaussianTemplate(size, radius);
            expectEqualsReference(image, gauss.weights, gauss.norm);
        }
    }
    const reference::Kernel wide = reference::calcuGaussianTemplate(99, 25.0f);
    expectEqualsReference(Image::random(517, 9, random), wide.weights, wide.norm);
    expectEqualsReference(Image::random(9, 517, random), wide.weights, wide.norm);
    expectEqualsReference(Image(131, 97, 0xFFFFFFFF), wide.weights, wide.norm);
}

// Kernels of other callers: lopsided, negative, sums that wrap, any divisor.
TEST(GaussianBlur, EqualsReferenceForAnyKernel) {
    std::mt19937 random(23);
    const auto upTo = [&](uint32_t n) { return static_cast<int32_t>(random() % n); };
    for (int round = 0; round < 200; ++round) {
        const Image image = Image::random(2 + upTo(40), 2 + upTo(20), random);
        Weights kernel(2 * upTo(24) + 1);
        const int shift = upTo(32);  // from weights of any size to single bits
        for (int32_t& weight : kernel) weight = static_cast<int32_t>(random()) >> shift;
        const int32_t norms[] = {1, -1, 65521, -3, INT32_MIN, static_cast<int32_t>(random())};
        expectEqualsReference(image, kernel, norms[upTo(6)]);
    }
}

}  // namespace
