#include <gtest/gtest.h>

#include <algorithm>

#include "blur/pass_plan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tests/blur/quotient_test.cpp"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"
//
#include "blur/lanes-inl.h"
#include "tests/support/every_target.h"

// The two divisions of the kernels, as the kernels use them, over every sum where a quotient
// changes. Quotients do not fall as a sum grows, so what is right on both sides of every change is
// right everywhere.

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace {

constexpr size_t kSums = 512;

// Whether the sums give their quotients; 0 to 255 twice, from either side.
template <bool kNear>
bool divides(const Divisor& divisor, const uint32_t* sums, const uint32_t* quotients) {
    const Pixels d;
    const uint32_t start = kNear ? divisor.complement : 0;
    HWY_ALIGN uint32_t actual[kSums];
    for (size_t i = 0; i < kSums; i += kTileLines) {
        const auto sum = hn::Add(hn::LoadU(d, sums + i), hn::Set(d, start));
        const auto quotient = divide<kNear>(sum, divisor);
        hn::StoreU(hn::And(hn::ShiftRight<16>(quotient), hn::Set(d, 0xFF)), d, actual + i);
    }
    return std::equal(actual, actual + kSums, quotients);
}

// The first norm whose quotients are wrong; 0 when all are right.
int32_t firstWrongNorm() {
    for (int32_t norm = 257; norm <= 65536; ++norm) {
        const uint32_t n = static_cast<uint32_t>(norm);
        uint32_t sums[kSums], quotients[kSums];
        for (uint32_t q = 0; q < 256; ++q) {
            sums[2 * q] = q * n;
            sums[2 * q + 1] = std::min(q * n + n - 1, 255 * n);
            quotients[2 * q] = quotients[2 * q + 1] = q;
        }
        const Divisor divisor = divisorOf(norm);
        if (!divides<false>(divisor, sums, quotients)) return norm;
        if (divisor.complement > kNearComplement) continue;
        if (!divides<true>(divisor, sums, quotients)) return norm;
    }
    return 0;
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
namespace {

HWY_EXPORT(firstWrongNorm);

TEST(Quotient, IsThatOfADivisionForEveryNorm) {
    onEveryTarget([] { EXPECT_EQ(HWY_DYNAMIC_DISPATCH(firstWrongNorm)(), 0); });
}

}  // namespace
}  // namespace android
#endif
