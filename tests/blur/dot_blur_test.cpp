#include <gtest/gtest.h>
#include <sys/auxv.h>

#include "blur/gaussian_blur.h"
#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

// What blurring by dot products has of its own, on 64-bit ARM. Each blur is computed twice, the
// second time as if the processor had no dot products.

namespace {

using Weights = std::vector<int32_t>;

unsigned long withoutDots(unsigned long type) {
    return type == AT_HWCAP ? getauxval(type) & ~static_cast<unsigned long>(HWCAP_ASIMDDP)
                            : getauxval(type);
}

void expectEqualsReference(const Image& source, const Weights& kernel, int32_t norm) {
    const int32_t size = static_cast<int32_t>(kernel.size());
    Image expected(source.width, source.height, source.words());
    reference::GaussianBlurEffect(expected, kernel.data(), size, norm);
    for (const char* symbol : {"nothing", "getauxval"}) {
        const ImportPatch patch(symbol, reinterpret_cast<void*>(withoutDots));
        Image actual(source.width, source.height, source.words());
        GaussianBlurEffect(&actual, kernel.data(), size, norm);
        ASSERT_EQ(actual.words(), expected.words())
            << source.width << " x " << source.height << ", size " << size << ", norm " << norm;
        ASSERT_TRUE(actual.storage.intact());
    }
}

reference::Kernel gauss(int32_t reach) {
    return reference::calcuGaussianTemplate(2 * reach + 1, static_cast<float>(reach + 1) / 2);
}

// Noise, or black and white, whose sums are the largest.
Image noise(int32_t width, int32_t height, std::mt19937& random) {
    const bool extreme = random() % 2 == 0;
    std::vector<uint32_t> words(static_cast<size_t>(width) * height);
    for (uint32_t& word : words) {
        word = static_cast<uint32_t>(random());
        if (extreme) word = word % 2 * 0xFFFFFF;
    }
    return Image(width, height, words);
}

// Tells which way the processor took the other tests.
TEST(DotBlur, IsChosenByTheProcessor) {
    const bool there = (getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0;
    const auto peakBytes = [](const char* symbol) {
        const ImportPatch patch(symbol, reinterpret_cast<void*>(withoutDots));
        FakePlatform platform;
        FakeLibc libc;
        Image image(200, 200, 0x336699);
        const reference::Kernel kernel = gauss(20);
        GaussianBlurEffect(&image, kernel.weights.data(), 41, kernel.norm);
        return libc.peakBytes;
    };
    EXPECT_EQ(peakBytes("nothing") != peakBytes("getauxval"), there);
    RecordProperty("dot_products", there ? "used" : "not there");
    std::printf("[ TARGETS  ] dot products: %s\n", there ? "used" : "not there");
}

// Every remainder of the blocks and of the groups of rows.
TEST(DotBlur, EqualsReferenceAtEverySize) {
    std::mt19937 random(72);
    for (int32_t n = 2; n <= 130; ++n) {
        const reference::Kernel kernel = gauss(1 + n % 11);
        expectEqualsReference(noise(n, 2 + n % 13, random), kernel.weights, kernel.norm);
        expectEqualsReference(noise(2 + n % 13, n, random), kernel.weights, kernel.norm);
    }
}

// Around one, two and three strips, by reaches that do and do not keep pixels for the next one.
TEST(DotBlur, EqualsReferenceAroundTheStrips) {
    std::mt19937 random(73);
    for (const int32_t reach : {1, 4, 15, 16, 33, 64, 65}) {
        const reference::Kernel kernel = gauss(reach);
        for (const int32_t edge : {256, 512, 768}) {
            for (const int32_t more : {-1, 0, 1, 15, 17}) {
                const int32_t height = 2 + static_cast<int32_t>(random() % 9);
                expectEqualsReference(noise(edge + more, height, random), kernel.weights,
                                      kernel.norm);
            }
        }
    }
}

// Every reach, across the edges of the bands; the widest have both kinds of groups or are not
// taken.
TEST(DotBlur, EqualsReferenceAtEveryReach) {
    std::mt19937 random(74);
    for (int32_t reach = 1; reach <= 140; reach += reach < 70 ? 1 : 7) {
        const reference::Kernel kernel = gauss(reach);
        const int32_t height = 64 * (1 + reach % 3) + static_cast<int32_t>(random() % 7) - 3;
        expectEqualsReference(noise(19 + reach % 16, height, random), kernel.weights, kernel.norm);
        expectEqualsReference(noise(20, reach + 2, random), kernel.weights, kernel.norm);
    }
}

// Lopsided kernels of any norm, whose heavy groups lie anywhere.
TEST(DotBlur, EqualsReferenceForAnyPlainKernel) {
    std::mt19937 random(75);
    for (int round = 0; round < 300; ++round) {
        Weights kernel(3 + 2 * (random() % 40));
        const uint32_t norm = 257 + random() % (65280u >> random() % 8);
        uint32_t left = norm - random() % 2;
        for (size_t i = random() % kernel.size(); i < kernel.size(); i += 1 + random() % 3) {
            const uint32_t weight = std::min<uint32_t>(left, random() % (1u << random() % 17));
            kernel[i] = static_cast<int32_t>(weight);
            left -= weight;
        }
        expectEqualsReference(noise(270, 3, random), kernel, static_cast<int32_t>(norm));
        expectEqualsReference(noise(17, 71, random), kernel, static_cast<int32_t>(norm));
    }
}

}  // namespace
