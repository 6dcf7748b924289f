// What the ways of blurring share: lines as lanes, and the division. Included once per
// instruction set.

#if defined(ANDROID_BLUR_LANES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ANDROID_BLUR_LANES_INL_H_
#undef ANDROID_BLUR_LANES_INL_H_
#else
#define ANDROID_BLUR_LANES_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "blur/pass_plan.h"
#include "hwy/highway.h"
//
#include "blur/highway_target-inl.h"

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// A vector holds one pixel of each of its lanes' lines, a tile.
using Pixels = hn::CappedTag<uint32_t, 16>;
using PixelVector = hn::Vec<Pixels>;
constexpr size_t kTileLines = hn::MaxLanes(Pixels());

// The same bits as 16-bit numbers, twice as many.
using Lanes = hn::Repartition<uint16_t, Pixels>;
using LaneVector = hn::Vec<Lanes>;
using Halves = hn::RebindToSigned<Lanes>;
constexpr size_t kLines = hn::MaxLanes(Lanes());

// Turns a square of pixels, as many on each side as a vector has lanes, over its diagonal.
HWY_INLINE void transposeBlock(const uint32_t* from, size_t fromPitch, uint32_t* to,
                               size_t toPitch) {
    const Pixels d;
    const hn::Repartition<uint64_t, Pixels> d64;
    // First 2 x 2, then 4 x 4 within each 128 bits, then the 128-bit parts.
    PixelVector row[kTileLines], two[kTileLines], four[kTileLines];
    for (size_t i = 0; i < kTileLines; ++i) row[i] = hn::LoadU(d, from + i * fromPitch);
    for (size_t i = 0; i < kTileLines; i += 2) {
        two[i] = hn::InterleaveLower(d, row[i], row[i + 1]);
        two[i + 1] = hn::InterleaveUpper(d, row[i], row[i + 1]);
    }
    for (size_t i = 0; i < kTileLines; i += 4) {
        for (size_t h = 0; h < 2; ++h) {
            const auto a = hn::BitCast(d64, two[i + h]), b = hn::BitCast(d64, two[i + h + 2]);
            four[i + 2 * h] = hn::BitCast(d, hn::InterleaveLower(d64, a, b));
            four[i + 2 * h + 1] = hn::BitCast(d, hn::InterleaveUpper(d64, a, b));
        }
    }
    const auto store = [&](size_t i, PixelVector column)
                           HWY_ATTR { hn::StoreU(column, d, to + i * toPitch); };
    for (size_t i = 0; i < 4; ++i) {
        if constexpr (kTileLines == 16) {
            const PixelVector lower0 = hn::ConcatLowerLower(d, four[i + 8], four[i]);
            const PixelVector lower1 = hn::ConcatLowerLower(d, four[i + 12], four[i + 4]);
            const PixelVector upper0 = hn::ConcatUpperUpper(d, four[i + 8], four[i]);
            const PixelVector upper1 = hn::ConcatUpperUpper(d, four[i + 12], four[i + 4]);
            store(i, hn::OddEvenBlocks(hn::SwapAdjacentBlocks(lower1), lower0));
            store(i + 4, hn::OddEvenBlocks(lower1, hn::SwapAdjacentBlocks(lower0)));
            store(i + 8, hn::OddEvenBlocks(hn::SwapAdjacentBlocks(upper1), upper0));
            store(i + 12, hn::OddEvenBlocks(upper1, hn::SwapAdjacentBlocks(upper0)));
        } else if constexpr (kTileLines == 8) {
            store(i, hn::ConcatLowerLower(d, four[i + 4], four[i]));
            store(i + 4, hn::ConcatUpperUpper(d, four[i + 4], four[i]));
        } else {
            store(i, four[i]);
        }
    }
}

// Turns `lines` rows of `length` pixels, `step` words apart, into a tile of `lanes` words a pixel:
// word i * lanes + l is pixel i of row l. Lanes without a row keep what they held.
HWY_INLINE void gatherRows(const uint32_t* rows, size_t step, size_t lines, size_t length,
                           uint32_t* tile, size_t lanes) {
    for (size_t l = 0; l < lines; l += kTileLines) {
        const size_t some = std::min(kTileLines, lines - l);
        size_t i = 0;
        for (; some == kTileLines && i + kTileLines <= length; i += kTileLines) {
            transposeBlock(rows + l * step + i, step, tile + i * lanes + l, lanes);
        }
        for (; i < length; ++i) {
            for (size_t k = l; k < l + some; ++k) tile[i * lanes + k] = rows[k * step + i];
        }
    }
}

// The way back.
HWY_INLINE void scatterRows(const uint32_t* tile, size_t lanes, size_t lines, size_t length,
                            uint32_t* rows, size_t step) {
    for (size_t l = 0; l < lines; l += kTileLines) {
        const size_t some = std::min(kTileLines, lines - l);
        size_t i = 0;
        for (; some == kTileLines && i + kTileLines <= length; i += kTileLines) {
            transposeBlock(tile + i * lanes + l, lanes, rows + l * step + i, step);
        }
        for (; i < length; ++i) {
            for (size_t k = l; k < l + some; ++k) rows[k * step + i] = tile[i * lanes + k];
        }
    }
}

// Copies `length` rows of `lines` pixels between places whose rows lie `fromPitch` and `toPitch`
// apart.
HWY_INLINE void copyLines(const uint32_t* from, size_t fromPitch, size_t lines, size_t length,
                          uint32_t* to, size_t toPitch) {
    for (size_t i = 0; i < length; ++i) std::copy_n(from + i * fromPitch, lines, to + i * toPitch);
}

// The quotient of each lane, even and odd ones apart, as products are 64 bits wide.
HWY_INLINE PixelVector divideByReciprocal(PixelVector sum, const Divisor& divisor) {
    const Pixels d;
    const hn::Repartition<uint64_t, Pixels> d64;
    const auto reciprocal = hn::Set(d, divisor.reciprocal);
    const auto odd = hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(d64, sum)));
    const auto low = hn::ShiftRight<40>(hn::MulEven(sum, reciprocal));
    const auto high = hn::ShiftLeft<32>(hn::ShiftRight<40>(hn::MulEven(odd, reciprocal)));
    return hn::BitCast(d, hn::Or(low, high));
}

// The quotient of each lane in its bits 16 to 23, with nothing above and anything below (the upper
// half of the sum is at most 255: blur/pass_plan.h). Sums already hold the
// complement when it is a near one.
template <bool kNear>
HWY_INLINE PixelVector divide(PixelVector sum, const Divisor& divisor) {
    const Pixels d;
    if constexpr (!kNear) {
        return hn::ShiftLeft<16>(divideByReciprocal(sum, divisor));
    } else if constexpr (HWY_ARCH_ARM) {
        const auto high = hn::BitCast(Lanes(), hn::ShiftRight<16>(sum));
        const auto complement = hn::BitCast(Lanes(), hn::Set(d, divisor.complement));
        return hn::Add(sum, hn::BitCast(d, hn::Mul(high, complement)));
    } else {
        // The upper half of the sum times the complement, in one multiply-add; the lower half,
        // whatever its sign, meets a 0.
        const hn::RebindToSigned<Pixels> sums;
        const auto complement = hn::BitCast(Halves(), hn::Set(d, divisor.complement << 16));
        auto second = hn::Zero(sums);
        const auto first = hn::ReorderWidenMulAccumulate(sums, hn::BitCast(Halves(), sum),
                                                         complement, hn::Zero(sums), second);
        return hn::Add(sum, hn::BitCast(d, hn::RearrangeToOddPlusEven(first, second)));
    }
}

// The sum of a multiply-add over pairs of 16-bit numbers. Targets that add the two products of a
// lane at once leave `second` alone, and the portable one splits them into whole lanes. ARM keeps
// the products apart, the lower half's in `first` and the upper half's in `second`, and adds
// neighbours in the end.
struct SplitSum {
    hn::Vec<hn::RebindToSigned<Pixels>> first, second;
    HWY_INLINE void add(LaneVector pair, hn::Vec<Halves> weights) {
#if HWY_ARCH_ARM
        // As instructions, because clang multiplies lower halves alone where it sees that those of
        // the weights are alike, and first brings down the upper half of each pair.
        __asm__("smlal %0.4s, %1.4h, %2.4h" : "+w"(first.raw) : "w"(pair.raw), "w"(weights.raw));
        __asm__("smlal2 %0.4s, %1.8h, %2.8h" : "+w"(second.raw) : "w"(pair.raw), "w"(weights.raw));
#else
        first = hn::ReorderWidenMulAccumulate(hn::RebindToSigned<Pixels>(),
                                              hn::BitCast(Halves(), pair), weights, first, second);
#endif
    }
    HWY_INLINE PixelVector whole() const {
        return hn::BitCast(Pixels(), hn::RearrangeToOddPlusEven(first, second));
    }
};

// What a sum begins with: the complement, when it is a near one.
template <bool kNear>
HWY_INLINE SplitSum startOfSum(const Divisor& divisor) {
    const hn::RebindToSigned<Pixels> d;
    const uint32_t start = kNear ? divisor.complement : 0;
#if HWY_ARCH_ARM
    const auto first = hn::BitCast(d, hn::Set(hn::Repartition<uint64_t, Pixels>(), start));
    return {first, first};
#else
    return {hn::BitCast(d, hn::Set(Pixels(), start)), hn::Zero(d)};
#endif
}

// The same two weights for every pair.
HWY_INLINE hn::Vec<Halves> weightsOf(uint32_t halves) {
    return hn::BitCast(Halves(), hn::Set(Pixels(), halves));
}

// The first word at or behind `scratch` that starts a cache line.
HWY_INLINE uint32_t* alignedScratch(uint32_t* scratch) {
    return scratch + (0 - reinterpret_cast<uintptr_t>(scratch)) % 64 / sizeof(uint32_t);
}

}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per target
