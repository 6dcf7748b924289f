#include "analysis/hue_counts.h"

#include <algorithm>
#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "analysis/hue_counts.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"

// The hue of a coloured pixel lies at most 60 degrees above or below its pure brightest channel:
//
//     hue = base +- trunc(60 s / d),  base 0 or 360, 120, 240,  s = mid - min,  d = max - min
//
// so 0 <= s <= d. In bins of 15 degrees, with B = base / 15, that is for a hue above its base
//
//     B + floor(4 s / d)                        = B - 1 + k,  k the j of 0 to 3 with 4 s >= j d
//
// but for s = d, where two channels are brightest and the hue is counted below the next base. Below
// it, truncation leaves the first degree to bin B, and bin B - k is met from 15 (k - 1) + 1
// degrees:
//
//     60 s >= (15 j + 1) d, or 4 s >= j d + d / 15    for k of the j from 0 to 3
//
// All of these are whole numbers, so d / 15 may be rounded up, to c, and with c = 0 above the base
// one test serves both: s >= ceil((j d + c) / 4). A rounding average is ceil((x + y) / 2), and
// ceil(ceil(x / 2) / 2) = ceil(x / 4), so six averages give the four bounds and nothing leaves its
// 8-bit lane. d is at least 8 in a coloured pixel; what comes out for the others is dropped.
//
// A sector, the half of the circle's third that the order of the channels picks, and its k make up
// a code. Three sectors fit a table of 16 codes, hence two tables, and a code of the other one or
// of a pixel without colour has its top bit set, which looks up 0:
//
//     kLower   below green  bins  8 -  k    code     k          k from 0 below a base, 1 above it
//              above green        7 +  k         4 + k
//              above red         -1 +  k         8 + k
//     kUpper   below blue        16 -  k             k
//              above blue        15 +  k         4 + k
//              below red         24 -  k         9 + k          bin 24 is bin 0
//
// A look-up then yields 1 for one bin, 16 for a second one and 0 for the others: two counts of four
// bits in a byte, which 15 vectors cannot overflow.

#ifndef ANDROID_ANALYSIS_HUE_COUNTS_TABLES_
#define ANDROID_ANALYSIS_HUE_COUNTS_TABLES_
namespace android {

using CodeTable = std::array<uint8_t, 16>;

constexpr uint8_t kNone = 0x80;  // no code, and no bin
constexpr size_t kAhead = 2048;  // words from those that are read to those that are fetched
constexpr size_t kRounds = 15;   // vectors of codes between two emptyings of the counts

constexpr CodeTable kLowerBins = {8, 7, 6, 5, 4, 8, 9, 10, 11, 0, 1, 2, 3, kNone, kNone, kNone};
constexpr CodeTable kUpperBins = {16, 15, 14, 13, 12, 16, 17,    18,
                                  19, 24, 23, 22, 21, 20, kNone, kNone};
constexpr size_t kLowerPairs = 6, kUpperPairs = 7;  // of bins, from 0 and from 12 on

template <size_t kPairs>
constexpr std::array<CodeTable, kPairs> pairTables(const CodeTable& bins, uint8_t first) {
    std::array<CodeTable, kPairs> tables = {};
    for (size_t pair = 0; pair < kPairs; ++pair) {
        for (size_t code = 0; code < 16; ++code) {
            if (bins[code] == first + 2 * pair) tables[pair][code] = 1;
            if (bins[code] == first + 2 * pair + 1) tables[pair][code] = 16;
        }
    }
    return tables;
}

alignas(16) constexpr auto kLowerTables = pairTables<kLowerPairs>(kLowerBins, 0);
alignas(16) constexpr auto kUpperTables = pairTables<kUpperPairs>(kUpperBins, 12);

// The first code of each sector, less the least k. Bit 0 of a sector is green >= red, bit 1 is blue
// >= green, bit 2 is blue = mid; 4 does not occur. Where the two lower channels are equal, s is 0
// and the sectors on both sides of the base lead to its bin.
//
//     above red  below green  above blue  below blue  -  above green  below red  below blue
alignas(16) constexpr CodeTable kLowerCodes = {8, 0, kNone, kNone, kNone, 4, kNone, kNone};
alignas(16) constexpr CodeTable kUpperCodes = {kNone, kNone, 4, 0, kNone, kNone, 9, 0};
alignas(16) constexpr CodeTable kBelow = {0, 0x1F, 0, 0x1F, 0, 0, 0x1F, 0x1F};  // c is below 32

}  // namespace android
#endif

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace {

using Bytes = hn::ScalableTag<uint8_t>;
using ByteVector = hn::Vec<Bytes>;
using Sums = hn::Repartition<uint64_t, Bytes>;
constexpr size_t kBytes = hn::MaxLanes(Bytes());

// The channels of kBytes pixels. Their order is of no account, so no byte crosses 128 bits.
HWY_INLINE void loadChannels(const uint32_t* pixels, ByteVector& red, ByteVector& green,
                             ByteVector& blue) {
    const Bytes d;
    const hn::Repartition<uint32_t, Bytes> d32;
    const Sums d64;
    alignas(16) constexpr CodeTable kByChannel = {0, 4, 8,  12, 1, 5, 9,  13,
                                                  2, 6, 10, 14, 3, 7, 11, 15};
    const auto byChannel = hn::LoadDup128(d, kByChannel.data());
    const auto load = [&](size_t i) {
        const auto words = hn::LoadU(d32, pixels + i * kBytes / 4);
        return hn::BitCast(d32, hn::TableLookupBytes(hn::BitCast(d, words), byChannel));
    };
    const auto v0 = load(0), v1 = load(1), v2 = load(2), v3 = load(3);
    const auto redGreen0 = hn::BitCast(d64, hn::InterleaveLower(d32, v0, v1));
    const auto redGreen1 = hn::BitCast(d64, hn::InterleaveLower(d32, v2, v3));
    const auto blue0 = hn::BitCast(d64, hn::InterleaveUpper(d32, v0, v1));
    const auto blue1 = hn::BitCast(d64, hn::InterleaveUpper(d32, v2, v3));
    red = hn::BitCast(d, hn::InterleaveLower(d64, redGreen0, redGreen1));
    green = hn::BitCast(d, hn::InterleaveUpper(d64, redGreen0, redGreen1));
    blue = hn::BitCast(d, hn::InterleaveLower(d64, blue0, blue1));
}

// All ones where they are equal.
HWY_INLINE ByteVector isEqual(ByteVector x, ByteVector y) {
    return hn::VecFromMask(Bytes(), hn::Eq(x, y));
}

// All ones where x >= y.
HWY_INLINE ByteVector notLess(ByteVector x, ByteVector y) { return isEqual(hn::Max(x, y), x); }

// All ones where a pixel is too dark or too pale: max < 54, or 100 d < 13 max. The quotient
// 8519 / 65536 falls short of 13 / 100 by so little that its truncated product is the largest d
// that is too small, for any max.
HWY_INLINE ByteVector uncoloured(ByteVector max, ByteVector range) {
    const Bytes d;
    const hn::Repartition<uint16_t, Bytes> d16;
    const auto max16 = hn::BitCast(d16, max), scale = hn::Set(d16, 8519);
    const auto even = hn::MulHigh(hn::And(max16, hn::Set(d16, 0xFF)), scale);
    const auto odd = hn::MulHigh(hn::ShiftRight<8>(max16), scale);
    const auto pale = hn::BitCast(d, hn::Or(even, hn::ShiftLeft<8>(odd)));
    const auto both = hn::Min(hn::SaturatedSub(range, pale), hn::SaturatedSub(max, hn::Set(d, 53)));
    return isEqual(both, hn::Zero(d));
}

HWY_INLINE void findCodes(const uint32_t* pixels, uint8_t* lower, uint8_t* upper) {
    const Bytes d;
    const auto zero = hn::Zero(d);
    ByteVector red, green, blue;
    loadChannels(pixels, red, green, blue);
    const auto less = hn::Min(red, green), more = hn::Max(red, green);
    const auto min = hn::Min(less, blue), max = hn::Max(more, blue);
    const auto mid = hn::Max(less, hn::Min(more, blue));
    const auto range = hn::Sub(max, min), s = hn::Sub(mid, min);

    const auto sector =
        hn::Sub(hn::Or(hn::IfThenElseZero(hn::Eq(hn::Max(blue, green), blue), hn::Set(d, 2)),
                       hn::IfThenElseZero(hn::Eq(blue, mid), hn::Set(d, 4))),
                isEqual(more, green));

    // With x = range - 1, c is floor(x / 15) + 1 = floor((x + floor(x / 16) + 1) / 16) + 1. What a
    // shift brings in from the neighbouring byte is masked with the sectors above a base.
    const hn::Repartition<uint16_t, Bytes> d16;
    const auto x = hn::Sub(range, hn::Set(d, 1));
    const auto twice = hn::Add(hn::AverageRound(x, hn::ShiftRight<4>(x)), hn::Set(d, 8));
    const auto c = hn::And(hn::BitCast(d, hn::ShiftRight<3>(hn::BitCast(d16, twice))),
                           hn::TableLookupBytes(hn::LoadDup128(d, kBelow.data()), sector));
    const auto c2 = hn::AverageRound(c, zero), rangeC = hn::AverageRound(range, c);
    const auto k = hn::Add(
        hn::Add(notLess(s, hn::AverageRound(c2, zero)), notLess(s, hn::AverageRound(rangeC, zero))),
        hn::Add(notLess(s, hn::AverageRound(range, c2)),
                notLess(s, hn::AverageRound(range, rangeC))));  // as -k

    const auto none = uncoloured(max, range);
    const auto code = [&](const CodeTable& codes) {
        const auto first = hn::TableLookupBytes(hn::LoadDup128(d, codes.data()), sector);
        return hn::Or(hn::Sub(first, k), none);
    };
    hn::Store(code(kLowerCodes), d, lower);
    hn::Store(code(kUpperCodes), d, upper);
}

// Adds `rounds` vectors of codes, at most kRounds, to the sums of the bytes of each pair of bins
// and of their lower halves.
template <size_t kPairs>
HWY_INLINE void countCodes(const uint8_t* codes, size_t rounds,
                           const std::array<CodeTable, kPairs>& tables, uint64_t* sums) {
    const Bytes d;
    const Sums d64;
    ByteVector table[kPairs], pair[kPairs];
    for (size_t p = 0; p < kPairs; ++p) {
        table[p] = hn::LoadDup128(d, tables[p].data());
        pair[p] = hn::Zero(d);
    }
    for (size_t i = 0; i < rounds; ++i) {
        const auto code = hn::Load(d, codes + i * kBytes);
        for (size_t p = 0; p < kPairs; ++p) {
            pair[p] = hn::Add(pair[p], hn::TableLookupBytesOr0(table[p], code));
        }
    }
    const auto add = [&](ByteVector bytes, uint64_t* to) {
        hn::Store(hn::Add(hn::Load(d64, to), hn::SumsOf8(bytes)), d64, to);
    };
    for (size_t p = 0; p < kPairs; ++p) {
        add(pair[p], sums + 2 * p * kBytes / 8);
        add(hn::And(pair[p], hn::Set(d, 15)), sums + (2 * p + 1) * kBytes / 8);
    }
}

void countHues(const uint32_t* pixels, size_t count, int32_t bins[kHueBins]) {
    HWY_ALIGN uint8_t lower[kRounds * kBytes], upper[kRounds * kBytes];
    HWY_ALIGN uint64_t sums[2 * (kLowerPairs + kUpperPairs) * kBytes / 8] = {};
    uint64_t* upperSums = sums + 2 * kLowerPairs * kBytes / 8;
    for (size_t i = 0; i < count;) {
        size_t rounds = 0;
        for (; rounds < kRounds && count - i >= kBytes; ++rounds, i += kBytes) {
            const uint32_t* const ahead = pixels + std::min(i + kAhead, count - kBytes);
            for (size_t word = 0; word < kBytes; word += 16) hwy::Prefetch(ahead + word);
            findCodes(pixels + i, lower + rounds * kBytes, upper + rounds * kBytes);
        }
        if (rounds < kRounds && i < count) {  // black has no colour, so it may fill up
            uint32_t last[kBytes] = {};
            std::copy(pixels + i, pixels + count, last);
            findCodes(last, lower + rounds * kBytes, upper + rounds * kBytes);
            ++rounds;
            i = count;
        }
        countCodes(lower, rounds, kLowerTables, sums);
        countCodes(upper, rounds, kUpperTables, upperSums);
    }
    int32_t totals[kHueBins + 2] = {};
    for (size_t p = 0; p < kLowerPairs + kUpperPairs; ++p) {
        uint64_t both = 0, first = 0;
        for (size_t lane = 0; lane < kBytes / 8; ++lane) {
            both += sums[2 * p * kBytes / 8 + lane];
            first += sums[(2 * p + 1) * kBytes / 8 + lane];
        }
        totals[2 * p] = static_cast<int32_t>(first);
        totals[2 * p + 1] = static_cast<int32_t>((both - first) / 16);
    }
    totals[0] += totals[kHueBins];
    std::copy_n(totals, kHueBins, bins);
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(countHues);

void countHues(const uint32_t* pixels, size_t count, int32_t bins[kHueBins]) {
    HWY_DYNAMIC_DISPATCH(countHues)(pixels, count, bins);
}
}  // namespace android
#endif
