#include <gtest/gtest.h>
#include <sys/auxv.h>

#include "blur/gaussian_blur.h"
#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

// Blurring by dot products, which takes other memory than what stands in for it, is chosen by the
// processor's own word, at each call.
TEST(DotBlur, IsChosenByTheProcessor) {
    std::vector<size_t> peaks;
    onEveryTarget([&] {
        FakePlatform platform;
        FakeLibc libc;
        Image image(200, 200, 0x336699);
        const reference::Kernel kernel = reference::gauss(10.5f);
        GaussianBlurEffect(&image, kernel.weights.data(), 41, kernel.norm);
        peaks.push_back(libc.peakBytes);
    });
    const bool there = (getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0;
    EXPECT_EQ(peaks.size(), there ? 2u : 1u);
    EXPECT_EQ(peaks.front() != peaks.back(), there);
}
