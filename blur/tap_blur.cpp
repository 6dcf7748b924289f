#include "blur/tap_blur.h"

#include <cstring>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blur/tap_blur.cpp"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"
//
#include "blur/tiles-inl.h"

// A pass takes a tile of lines at a time, one a lane, and walks along them. Of each two pixels that
// follow each other on a line it makes a pair a channel, the earlier pixel in the lower half of a
// 32-bit lane, the later one in the upper half. Five taps, outputs 0 and 1:
//
//     pixels   p0 p1 | p2 p3 | p4 p5 | ...
//     even     k0 k1 | k2 k3 | k4  0      A0 = k0 p0 + k1 p1 + k2 p2 + k3 p3 + k4 p4
//     odd       0 k0 | k1 k2 | k3 k4      A1 = k0 p1 + k1 p2 + k2 p3 + k3 p4 + k4 p5
//
// One multiply-add takes a pair with its two weights, and each pair is loaded once for two outputs.
// The lanes stay 32 bits wide from the pixel word to the sum, the quotient and the pixel word
// again, so nothing is shuffled but the rows of the horizontal pass, which are turned into lanes
// and back.

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace {

constexpr size_t kChunk = 32;  // outputs between two moves of the pairs; even, like a pair's

// Two outputs of a tile that start at the same pair; the second one is dropped when `two` is false.
template <bool kNear, size_t kPairs>
HWY_INLINE void blurTwo(const uint32_t* HWY_RESTRICT pairs, const PassPlan& plan,
                        uint32_t* HWY_RESTRICT out, size_t step, bool two) {
    const Pixels d;
    SplitSum even[3], odd[3];  // red, green, blue
    for (size_t c = 0; c < 3; ++c) even[c] = odd[c] = startOfSum<kNear>(plan.divisor);
    const uint32_t* weights = plan.taps.weights.get();
    const auto addPair = [&](const uint32_t* pair, const uint32_t* both) HWY_ATTR {
        const auto evenWeights = weightsOf(both[0]), oddWeights = weightsOf(both[1]);
        for (size_t c = 0; c < 3; ++c) {
            const auto pixels = hn::BitCast(Lanes(), hn::Load(d, pair + c * kTileLines));
            even[c].add(pixels, evenWeights);
            odd[c].add(pixels, oddWeights);
        }
    };
    if constexpr (kPairs > 0) {
        for (size_t i = 0; i < kPairs; ++i) addPair(pairs + i * kPairWords, weights + 2 * i);
    } else {
        for (size_t round = 0; round < plan.taps.rounds; ++round) {
#pragma GCC unroll 4
            for (size_t i = 0; i < plan.taps.pairs; ++i, weights += 2) {
                addPair(pairs + i * kPairWords, weights);
            }
        }
    }
    const auto word = [&](const SplitSum sums[3]) HWY_ATTR {
        const auto quotient = [&](size_t c)
                                  HWY_ATTR { return divide<kNear>(sums[c].whole(), plan.divisor); };
        const auto upper = hn::OrAnd(hn::Set(d, 0xFF000000), quotient(2), hn::Set(d, 0x00FF0000));
        const auto lower = hn::OrAnd(hn::ShiftRight<16>(quotient(0)),
                                     hn::ShiftRight<8>(quotient(1)), hn::Set(d, 0xFF00));
        return hn::Or(upper, lower);
    };
    hn::StoreU(word(even), d, out);
    if (two) hn::StoreU(word(odd), d, out + step);
}

// The pairs that are kept of each tile, from number `first` to made - 1, at pairs + t * words.
struct PairBuffers {
    uint32_t* pairs;
    size_t words;
    size_t first;
    size_t made;
};

// The words that hold the pairs of one tile.
HWY_INLINE size_t pairWords(const PassPlan& plan, size_t length) {
    return (std::min(kChunk, length + 1) / 2 + plan.taps.pairs) * kPairWords;
}

// Makes pairs up to `end`. A pixel in front of a line or behind it is its first or its last one.
HWY_INLINE void makePairs(const Tiles& tiles, size_t reach, size_t end, PairBuffers& buffers) {
    const Pixels d;
    const auto make = [&](const uint32_t* early, const uint32_t* late) HWY_ATTR {
        uint32_t* pair = buffers.pairs + (buffers.made - buffers.first) * kPairWords;
        for (size_t t = 0; t < tiles.count; ++t) {
            makePair(hn::LoadU(d, early + t * kTileLines), hn::LoadU(d, late + t * kTileLines),
                     pair + t * buffers.words);
        }
        ++buffers.made;
    };
    const auto pixel = [&](size_t entry) {
        return tiles.lines +
               std::min(std::max(entry, reach) - reach, tiles.length - 1) * tiles.step;
    };
    const size_t inside = (reach + 1) / 2, outside = (reach + tiles.length) / 2;
    while (buffers.made < std::min(inside, end)) {
        make(pixel(2 * buffers.made), pixel(2 * buffers.made + 1));
    }
    while (buffers.made < std::min(outside, end)) {
        const uint32_t* early = tiles.lines + (2 * buffers.made - reach) * tiles.step;
        if (tiles.count > 1) {
            prefetchPixels(tiles, pixel(2 * buffers.made + kAhead),
                           pixel(2 * buffers.made + kAhead + 1));
        }
        make(early, early + tiles.step);
    }
    while (buffers.made < end) make(pixel(2 * buffers.made), pixel(2 * buffers.made + 1));
}

// Blurs tiles side by side, in place (blur/tiles-inl.h). Pairs are made ahead of the outputs: those
// not yet made begin at least `reach` pixels behind the chunk, or repeat the line's last pixel,
// which the last chunk writes; those that repeat the first one are all made in the first chunk. So
// a pixel is taken before it is written. One pixel more than the taps reach is fetched: the last
// pair's second.
template <bool kNear, size_t kPairs, typename Fetch, typename Deliver>
HWY_INLINE void blurTiles(const Tiles& tiles, const PassPlan& plan, uint32_t* pairs, Fetch fetch,
                          Deliver deliver) {
    const size_t reach = static_cast<size_t>(plan.taps.reach);
    PairBuffers buffers = {pairs, pairWords(plan, tiles.length), 0, 0};
    for (size_t x = 0; x < tiles.length; x += kChunk) {
        const size_t end = std::min(tiles.length, x + kChunk);
        for (size_t t = 0; x > 0 && t < tiles.count; ++t) {
            uint32_t* front = pairs + t * buffers.words;
            std::memmove(front, front + (x / 2 - buffers.first) * kPairWords,
                         (buffers.made - x / 2) * kPairWords * sizeof(uint32_t));
        }
        buffers.first = x / 2;
        fetch(std::min(tiles.length, end + reach + 1));
        makePairs(tiles, reach, (end + 1) / 2 + plan.taps.pairs - 1, buffers);
        for (size_t t = 0; t < tiles.count; ++t) {
            for (size_t o = x; o < end; o += 2) {
                const uint32_t* pair = pairs + (o - x) / 2 * kPairWords;
                blurTwo<kNear, kPairs>(pair + t * buffers.words, plan,
                                       tiles.lines + o * tiles.step + t * kTileLines, tiles.step,
                                       o + 1 < end);
            }
        }
        deliver(x, end);
    }
}

// Narrow kernels spend more on loops than on taps, so theirs are unrolled whole.
template <typename Pass>
HWY_INLINE void withPairs(const PassPlan& plan, Pass pass) {
    const std::true_type near;
    const std::integral_constant<size_t, 0> any;
    if (plan.divisor.complement > kNearComplement) return pass(std::false_type(), any);
    switch (plan.taps.rounds == 1 ? plan.taps.pairs : 0) {
        case 2:
            return pass(near, std::integral_constant<size_t, 2>());
        case 3:
            return pass(near, std::integral_constant<size_t, 3>());
        case 4:
            return pass(near, std::integral_constant<size_t, 4>());
        case 5:
            return pass(near, std::integral_constant<size_t, 5>());
        default:
            return pass(near, any);
    }
}

template <bool kNear, size_t kPairs>
HWY_NOINLINE void blurRows(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    blurTilesOfRows(bitmap, scratch,
                    [&](const Tiles& tiles, uint32_t* pairs, auto fetch, auto deliver)
                        HWY_ATTR { blurTiles<kNear, kPairs>(tiles, plan, pairs, fetch, deliver); });
}

template <bool kNear, size_t kPairs>
HWY_NOINLINE void blurColumns(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    const size_t group = groupOf(plan, height, width, pairWords(plan, height));
    blurTilesOfColumns(bitmap, group, scratch,
                       [&](const Tiles& tiles, uint32_t* pairs, auto fetch, auto deliver) HWY_ATTR {
                           blurTiles<kNear, kPairs>(tiles, plan, pairs, fetch, deliver);
                       });
}

void blurRowsByTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    withPairs(plan,
              [&](auto near, auto pairs) { blurRows<near(), pairs()>(bitmap, plan, scratch); });
}

void blurColumnsByTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    withPairs(plan,
              [&](auto near, auto pairs) { blurColumns<near(), pairs()>(bitmap, plan, scratch); });
}

size_t tapScratchWords(const PassPlan& plan, size_t length, size_t lines) {
    return tileScratchWords(plan, length, lines, pairWords(plan, length));
}

// Measured beforehand in hundredths of a nanosecond for 16 outputs of a channel, with AVX2 and with
// AVX-512; for ARM in instructions executed, which were counted.
PassCosts passCosts() {
#if HWY_ARCH_ARM
    return {40, 24, 300, 18, 114, 37, 170};
#else
    const bool wide = kTileLines == 16;
    return {wide ? 22u : 32u, wide ? 12u : 26u, 600, 18, 90, 15, 1000};
#endif
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(blurRowsByTaps);
HWY_EXPORT(blurColumnsByTaps);
HWY_EXPORT(tapScratchWords);
HWY_EXPORT(passCosts);

void blurRowsByTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurRowsByTaps)(bitmap, plan, scratch);
}

void blurColumnsByTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurColumnsByTaps)(bitmap, plan, scratch);
}

size_t tapScratchWords(const PassPlan& plan, size_t length, size_t lines) {
    return HWY_DYNAMIC_DISPATCH(tapScratchWords)(plan, length, lines);
}

PassCosts passCosts() { return HWY_DYNAMIC_DISPATCH(passCosts)(); }
}  // namespace android
#endif
