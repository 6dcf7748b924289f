#include "blur/gaussian_blur.h"

#include <gtest/gtest.h>

#include <numeric>

#include "tests/reference/reference.h"
#include "tests/support/blur_way.h"
#include "tests/support/every_target.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

using android::GaussianBlurEffect;
using Pixels = std::vector<uint32_t>;
using Weights = std::vector<int32_t>;

const Weights kThree = {17961, 29613, 17961};
const Weights kRadius10 = reference::calcuGaussianTemplate(39, 10.0f).weights;

// As the blur request derives it.
reference::Kernel gauss(float radius) {
    return reference::calcuGaussianTemplate((static_cast<int32_t>(4 * radius) - 1) | 1, radius);
}

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
    // One less than 255 times a norm for which multiplying by the reciprocal is not exact any more.
    {"norm too large", {0xFF, 0xFE, 0xFF, 0xFE}, {0, 65794, 1}, 65795, Pixels(4, 0xFE)},
    {"just negative", {0xFF, 0, 0xFF, 0}, {-1, 300, -1}, 300, {0xFC, 0, 0xFC, 0}},
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
    // By taps, by steps, and under a kernel of neither.
    ASSERT_EQ(blurWayOf(gauss(500), 140, 2), "by steps");
    for (const Weights& kernel : {kThree, gauss(500).weights, Weights{-1, 3, -1}}) {
        const int tries = failEachAllocation([&](FakeLibc& libc) {
            Image image(140, 2, Pixels(280, 0x12345678));
            GaussianBlurEffect(&image, kernel.data(), static_cast<int32_t>(kernel.size()), 65535);
            EXPECT_EQ(image.words() == Pixels(280, 0x12345678), libc.allocationFailed());
        });
        EXPECT_GT(tries, 1);
    }
}

// Beyond the picture at most 64 words for each row, column and tap.
TEST(GaussianBlur, KeepsToItsMemory) {
    Weights zigzag(199, 0);  // changes as many and as large as steps can take
    for (size_t i = 1; i < zigzag.size(); i += 2) zigzag[i] = 257;
    const Weights kernels[] = {kThree,
                               zigzag,
                               gauss(2.5f).weights,
                               gauss(10).weights,
                               gauss(60).weights,
                               gauss(400).weights};
    for (const Weights& kernel : kernels) {
        const int32_t size = static_cast<int32_t>(kernel.size());
        for (const auto& [width, height] : {std::pair(2, 2),
                                            {17, 3},
                                            {100, 100},
                                            {33, 64},
                                            {64, 100},
                                            {600, 40},
                                            {56, 1000},
                                            {1100, 30}}) {
            FakePlatform platform;
            FakeLibc libc;
            Image image(width, height, 0x336699);
            GaussianBlurEffect(&image, kernel.data(), size, 65536);
            EXPECT_LE(libc.peakBytes / 4, 64u * (width + height + size))
                << width << " x " << height << " under " << size;
        }
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

// Every remainder of every vector length, in both directions, under light and heavy weights.
TEST(GaussianBlur, EqualsReferenceAtEverySize) {
    onEveryTarget([] {
        std::mt19937 random(22);
        const reference::Kernel kernels[] = {gauss(0.3f), gauss(0.76f), gauss(1), gauss(2.3f)};
        for (int32_t n = 2; n <= 130; ++n) {
            const reference::Kernel& kernel = kernels[n % 4];
            expectEqualsReference(Image::random(n, 3 + n % 7, random), kernel.weights, kernel.norm);
            expectEqualsReference(Image::random(3 + n % 7, n, random), kernel.weights, kernel.norm);
        }
    });
}

// The same under kernels that long lines meet by steps.
TEST(GaussianBlur, EqualsReferenceByStepsAtEverySize) {
    onEveryTarget([] {
        std::mt19937 random(27);
        const reference::Kernel kernels[] = {gauss(60), gauss(140), gauss(500), gauss(56.5f)};
        for (int32_t n = 60; n <= 150; ++n) {
            // Among them one pixel less than a kernel of 225 taps, at 112 and around it.
            const reference::Kernel& kernel = kernels[n / 112 % 2 == 1 && n < 117 ? 3 : n % 3];
            expectEqualsReference(Image::random(n, 3, random), kernel.weights, kernel.norm);
            expectEqualsReference(Image::random(3, n, random), kernel.weights, kernel.norm);
        }
    });
}

// Around the strips, bands and chunks that the ways of blurring take a picture in.
TEST(GaussianBlur, EqualsReferenceAroundItsParts) {
    onEveryTarget([] {
        std::mt19937 random(28);
        const reference::Kernel kernels[] = {gauss(1), gauss(2.5f), gauss(5), gauss(9.6f),
                                             gauss(14)};
        int round = 0;
        for (const auto& [from, to] :
             {std::pair(127, 131), {509, 548}, {1021, 1027}, {1500, 1502}}) {
            for (int32_t n = from; n <= to; ++n) {
                const reference::Kernel& kernel = kernels[round++ % 5];
                expectEqualsReference(Image::random(n, 41, random), kernel.weights, kernel.norm);
            }
        }
        for (const auto& [from, to] : {std::pair(61, 70), {127, 134}, {191, 195}}) {
            for (int32_t n = from; n <= to; ++n) {
                const reference::Kernel& kernel = kernels[round++ % 5];
                expectEqualsReference(Image::random(45, n, random), kernel.weights, kernel.norm);
            }
        }
    });
}

// Narrow kernels and wide ones, around the radius from which a line is blurred by steps, and wider
// than the image by far; on noise, and on black and white, whose sums are the largest.
TEST(GaussianBlur, EqualsReferenceAtEveryRadius) {
    onEveryTarget([] {
        std::mt19937 random(24);
        for (const float radius : {5.0f, 10.0f, 25.0f, 28.0f, 31.0f, 34.0f, 37.0f, 40.0f, 47.0f,
                                   61.0f, 100.0f, 129.0f, 215.0f, 700.0f}) {
            const reference::Kernel kernel = gauss(radius);
            for (const auto& [width, height] : {std::pair(157, 9), {5, 149}, {61, 67}}) {
                Image image = Image::random(width, height, random);
                expectEqualsReference(image, kernel.weights, kernel.norm);
                for (uint32_t& word : image.storage) word = word % 2 * 0xFFFFFF;
                expectEqualsReference(image, kernel.weights, kernel.norm);
            }
        }
        const reference::Kernel widest = gauss(23170.5f);
        expectEqualsReference(Image::random(9, 5, random), widest.weights, widest.norm);
    });
}

// Lopsided kernels that add up to their norm or less, from few heavy taps to many light ones, with
// norms up to the limits of the division without dividing.
TEST(GaussianBlur, EqualsReferenceForAnyPositiveKernel) {
    onEveryTarget([] {
        std::mt19937 random(26);
        // A norm whose complement is just too far; sums beyond the norm, of 17 bits and of 33; a
        // norm beyond 16 bits, whose rounded reciprocal would be one too much for some sums.
        const reference::Kernel kernels[] = {{{20000, 25277, 20000}, 65277},
                                             {{43690, 43690, 43691}, 65536},
                                             {{300, 300, 300}, 600},
                                             {{INT32_MAX, INT32_MAX, 1003}, 1001},
                                             {{43690, 43690, 43691}, 131071}};
        for (const reference::Kernel& kernel : kernels) {
            expectEqualsReference(Image::random(23, 9, random), kernel.weights, kernel.norm);
        }
        for (const int32_t taps : {9, 41}) {  // rising all the way: heavier on the right throughout
            Weights ramp(taps);
            for (int32_t i = 0; i < taps; ++i) ramp[i] = i * (65536 / (taps * (taps - 1) / 2));
            const int32_t sum = std::accumulate(ramp.begin(), ramp.end(), 0);
            expectEqualsReference(Image::random(130, 101, random), ramp, sum);
        }
        for (const uint32_t norm : {65536u, 65535u, 65279u, 65278u, 40000u, 257u, 256u, 1u}) {
            for (const uint32_t size : {1u, 3u, 21u, 149u, 299u}) {
                Weights kernel(size);
                uint32_t left = norm;
                for (int32_t& weight : kernel) {
                    weight = static_cast<int32_t>(random() % (2 * norm / size + 2));
                    weight = static_cast<int32_t>(std::min<uint32_t>(weight, left));
                    left -= static_cast<uint32_t>(weight);
                }
                kernel[random() % size] += static_cast<int32_t>(left * (random() % 2));
                const Image image = Image::random(23, 155, random);
                expectEqualsReference(image, kernel, static_cast<int32_t>(norm));
            }
        }
    });
}

}  // namespace
