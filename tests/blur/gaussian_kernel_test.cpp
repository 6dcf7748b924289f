#include "blur/gaussian_kernel.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace {

using android::calcuGaussianTemplate;
using Weights = std::vector<int32_t>;

struct Row {
    float radius;
    int32_t norm;
    Weights weights;
};

const Row kRows[] = {
    {0.5f, 65536, {65536}},
    {1.0f, 65535, {17961, 29613, 17961}},
    {-1.0f, 65535, {17961, 29613, 17961}},
    {1.0f, 65534, {3776, 16926, 27906, 16926}},
    {1.0f, 65532, {3570, 16003, 26386, 16003, 3570}},
    {2.0f, 65532, {4597, 8590, 12498, 14162, 12498, 8590, 4597}},
    {2.75f, 65532, {1905, 3454, 5486, 7636, 9311, 9948, 9311, 7636, 5486, 3454, 1905}},
    {0.3f, 65535, {251, 65033, 251}},
    {1000.0f, 65535, {13107, 13107, 13107, 13107, 13107}},
    {0.0f, 0, {0, 0, 0}},
    {3e-20f, 0, {0, 0, 0}},  // its square underflows
    {INFINITY, 0, {0, 0, 0}},
    {NAN, 0, {0, 0, 0}},
};

TEST(GaussianKernel, HasTheseWeights) {
    for (const Row& row : kRows) {
        const GuardedArray<int32_t> kernel(Weights(row.weights.size(), -1));
        const int32_t size = static_cast<int32_t>(kernel.size());
        EXPECT_EQ(calcuGaussianTemplate(kernel.begin(), size, row.radius), row.norm);
        EXPECT_EQ(Weights(kernel.begin(), kernel.end()), row.weights) << row.radius;
    }
    // At these an exponential that is one unit in the last place off shows in two weights.
    EXPECT_EQ(calcuGaussianTemplate(Weights(91).data(), 91, 22.9216061f), 65493);
    EXPECT_EQ(calcuGaussianTemplate(Weights(119).data(), 119, 29.9425697f), 65482);
}

TEST(GaussianKernel, IsRefusedWhole) {
    for (const int32_t size : {0, -1, -3, INT32_MIN, 92682, 92683, INT32_MAX}) {
        int32_t untouched = -7;
        EXPECT_EQ(calcuGaussianTemplate(&untouched, size, 30000.0f), 0) << size;
        EXPECT_EQ(untouched, -7) << size;
    }
    FakePlatform platform;
    FakeLibc libc;
    platform.failing = "_ZnamRKSt9nothrow_t";
    platform.failingCall = 1;
    Weights kernel(7, -7);
    EXPECT_EQ(calcuGaussianTemplate(kernel.data(), 7, 2.0f), 0);
    EXPECT_EQ(kernel, Weights(7, -7));
    EXPECT_EQ(calcuGaussianTemplate(kernel.data(), 7, 2.0f), 65532);
    EXPECT_TRUE(libc.balanced());
}

TEST(GaussianKernel, EqualsReference) {
    const auto check = [](int32_t size, float radius) {
        const GuardedArray<int32_t> kernel(static_cast<size_t>(size));
        const reference::Kernel expected = reference::calcuGaussianTemplate(size, radius);
        ASSERT_EQ(calcuGaussianTemplate(kernel.begin(), size, radius), expected.norm) << radius;
        ASSERT_EQ(Weights(kernel.begin(), kernel.end()), expected.weights) << radius;
    };
    for (float radius = 0.25f; radius < 50.0f; radius += 0.0371f) {
        check((static_cast<int32_t>(4 * radius) - 1) | 1, radius);
        check(18, radius);
    }
    check(92681, 23170.25f);
    check(92681, 1.0f);
}

}  // namespace
