#include "blur/gaussian_blur.h"

#include <gtest/gtest.h>

#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

using android::GaussianBlurEffect;
using reference::gauss;
using reference::Kernel;
using Pixels = std::vector<uint32_t>;
using Weights = std::vector<int32_t>;

const Weights kThree = {17961, 29613, 17961};
const Weights kRadius10 = gauss(10).weights;

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
    const auto check = [](int32_t width, int32_t height, int32_t size) {
        Image image(width, height, 0x12345678);
        GaussianBlurEffect(&image, kRadius10.data(), size, 65536);
        EXPECT_EQ(image.words(), Pixels(image.storage.size(), 0x12345678))
            << width << " x " << height << ", size " << size;
    };
    for (const auto& [width, height] : {std::pair(1, 12), {12, 1}, {0, 0}}) check(width, height, 3);
    for (const int32_t size : {4, 0, -1, -3, -4, INT32_MIN, INT32_MIN + 1}) check(9, 9, size);
}

// Under a kernel of no plan; those with one are in the fault sweep.
TEST(GaussianBlur, LeavesUntouchedWithoutMemory) {
    bool failed = true;
    for (int failing = 1; failed; ++failing) {
        FakePlatform platform;
        FakeLibc libc;
        platform.failing = "_ZnamRKSt9nothrow_t";
        platform.failingCall = failing;
        Image image(140, 2, 0x12345678);
        GaussianBlurEffect(&image, Weights{-1, 3, -1}.data(), 3, 65535);
        failed = platform.reached[platform.failing] >= failing;
        EXPECT_EQ(image.words() == Pixels(280, 0x12345678), failed);
        EXPECT_TRUE(libc.balanced());
        EXPECT_TRUE(failed || failing > 1);
    }
}

// Beyond the picture at most 64 words for each row, column and tap.
TEST(GaussianBlur, KeepsToItsMemory) {
    Weights zigzag(199, 0);  // changes as many and as large as steps can take
    for (size_t i = 1; i < zigzag.size(); i += 2) zigzag[i] = 257;
    const std::pair<int32_t, int32_t> sizes[] = {{2, 2},    {17, 3},   {100, 100}, {33, 64},
                                                 {64, 100}, {600, 40}, {56, 1000}, {1100, 30},
                                                 {147, 94}, {96, 2}};
    for (const float radius : {0.0f, 1.0f, 2.5f, 10.0f, 60.0f, 400.0f}) {
        const Weights kernel = radius > 0 ? gauss(radius).weights : zigzag;
        const int32_t size = static_cast<int32_t>(kernel.size());
        for (const auto& [width, height] : sizes) {
            onEveryTarget([&, width = width, height = height] {
                FakePlatform platform;
                FakeLibc libc;
                Image image(width, height, 0x336699);
                GaussianBlurEffect(&image, kernel.data(), size, 65536);
                EXPECT_LE(libc.peakBytes / 4, 64u * (width + height + size))
                    << width << " x " << height << " under " << size;
            });
        }
    }
}

void expectEqualsReference(const Image& source, const Kernel& kernel) {
    const GuardedArray<int32_t> weights(kernel.weights);
    const int32_t size = static_cast<int32_t>(weights.size());
    Image expected(source.width, source.height, source.words());
    reference::GaussianBlurEffect(expected, weights.begin(), size, kernel.norm);
    onEveryTarget([&] {
        Image actual(source.width, source.height, source.words());
        GaussianBlurEffect(&actual, weights.begin(), size, kernel.norm);
        ASSERT_EQ(actual.words(), expected.words())
            << source.width << " x " << source.height << ", size " << size << ", norm "
            << kernel.norm;
        ASSERT_TRUE(actual.storage.intact());
    });
}

// Noise, or black and white, whose sums are the largest.
Image noise(int32_t width, int32_t height, std::mt19937& random) {
    Image image = Image::random(width, height, random);
    if (random() % 2 == 0) {
        for (uint32_t& word : image.storage) word = word % 2 * 0xFFFFFF;
    }
    return Image(width, height, image.words());
}

// Every remainder of every vector, tile, strip, band and chunk that a picture is taken in, in both
// directions: `length` pixels by at least `across`, under one of the radii after the other. 56.5 is
// 225 taps, one pixel less than which is a length of its own.
TEST(GaussianBlur, EqualsReferenceAtEverySize) {
    const struct {
        int32_t from, to, across;
        std::vector<float> radii;
    } rows[] = {{2, 130, 3, {0.3f, 0.76f, 1, 2.3f, 5}},
                {60, 150, 3, {60, 140, 500}},
                {110, 116, 3, {56.5f}},
                {126, 134, 41, {1, 2.5f, 5, 9.6f, 14}},
                {191, 195, 41, {2.5f, 5, 9.6f}},
                {255, 275, 3, {1, 2.5f, 8, 8.5f, 32.5f, 33}},
                {509, 548, 41, {1, 2.5f, 5, 9.6f, 14}},
                {767, 785, 3, {1, 8.5f, 32.5f, 33}},
                {1021, 1027, 41, {1, 2.5f, 5, 9.6f, 14}}};
    std::mt19937 random(22);
    for (const auto& [from, to, across, radii] : rows) {
        for (int32_t n = from; n <= to; ++n) {
            const Kernel kernel = gauss(radii[n % radii.size()]);
            expectEqualsReference(noise(n, across + n % 7, random), kernel);
            expectEqualsReference(noise(across + n % 7, n, random), kernel);
            if (HasFatalFailure()) return;
        }
    }
}

// Every reach, and kernels wider than the picture by far.
TEST(GaussianBlur, EqualsReferenceAtEveryRadius) {
    std::mt19937 random(24);
    for (float radius = 0.75f; radius < 1000; radius += radius < 36 ? 0.5f : radius / 10) {
        expectEqualsReference(noise(157, 9, random), gauss(radius));
        expectEqualsReference(noise(19, 61 + static_cast<int32_t>(random() % 140), random),
                              gauss(radius));
        if (HasFatalFailure()) return;
    }
    expectEqualsReference(noise(9, 5, random), gauss(23170.5f));
}

// Lopsided kernels that add up to their norm or less, from few heavy taps to many light ones, with
// norms up to the limits of the division without dividing.
TEST(GaussianBlur, EqualsReferenceForAnyPositiveKernel) {
    std::mt19937 random(26);
    // A norm whose complement is just too far; sums beyond the norm, of 17 bits and of 33; a norm
    // beyond 16 bits, whose rounded reciprocal would be one too much for some sums.
    for (const Kernel& kernel : {Kernel{{20000, 25277, 20000}, 65277},
                                 {{43690, 43690, 43691}, 65536},
                                 {{300, 300, 300}, 600},
                                 {{INT32_MAX, INT32_MAX, 1003}, 1001},
                                 {{43690, 43690, 43691}, 131071}}) {
        expectEqualsReference(noise(23, 9, random), kernel);
    }
    for (const int32_t taps : {9, 41, 121}) {  // rising: heavier on the right throughout
        Kernel ramp = {Weights(taps), 0};
        for (int32_t i = 0; i < taps; ++i) {
            ramp.norm += ramp.weights[i] = i * (65536 / (taps * (taps - 1) / 2));
        }
        expectEqualsReference(noise(130, 101, random), ramp);
    }
}

}  // namespace
