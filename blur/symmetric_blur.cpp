#include "blur/symmetric_blur.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blur/symmetric_blur.cpp"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"
//
#include "blur/tiles-inl.h"

// Carries out a plan by symmetric taps (blur/symmetric_plan.h). Of each odd pixel 2v + 1 of a tile
// two pairs a channel are made, an entry: the one ahead, with pixel 2v + 2 in the upper half of a
// 32-bit lane, and the one behind, with pixel 2v there. The two outputs 2u and 2u + 1 then take, a
// turn t,
//
//     even   ahead(u + t) + behind(u - t - 1)        odd   ahead(u + t) + behind(u - t)
//
// and one multiply-add weighs four pixels. Each pair is loaded once for two outputs.

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace {

constexpr size_t kOutputs = 8;
// Twos of outputs whose sums are in flight together; sixteen registers hold no more.
constexpr size_t kTwos = kTileLines == 16 || HWY_ARCH_ARM ? 4 : 2;
constexpr size_t kChunk = 64;                   // outputs that entries are made for at a time
constexpr size_t kMostChunks = 4;               // that the buffer has room for
constexpr size_t kEntryWords = 2 * kPairWords;  // the pair ahead, then the one behind

HWY_INLINE LaneVector loadPair(const uint32_t* from) {
    return hn::BitCast(Lanes(), hn::Load(Pixels(), from));
}

// Outputs 2u to 2u + 7 of a channel; `entry` is that channel's pair ahead of entry u. Gives their
// quotients to put(output, quotient).
template <bool kNear, typename Put>
HWY_INLINE void blurEight(const uint32_t* HWY_RESTRICT entry, const PassPlan& plan, Put put) {
    const SplitSum start = startOfSum<kNear>(plan.divisor);
#pragma GCC unroll 2
    for (size_t o = 0; o < kOutputs; o += 2 * kTwos, entry += kTwos * kEntryWords) {
        const uint32_t* HWY_RESTRICT ahead = entry;
        const uint32_t* HWY_RESTRICT behind = entry + kPairWords;
        SplitSum even[kTwos], odd[kTwos];
#pragma GCC unroll 12
        for (size_t i = 0; i < kTwos; ++i) {
            even[i] = odd[i] = start;
            even[i].add(loadPair(behind + i * kEntryWords), weightsOf(plan.symmetric.centerEven));
            odd[i].add(loadPair(ahead + i * kEntryWords), weightsOf(plan.symmetric.centerOdd));
        }
        const uint32_t* HWY_RESTRICT weights = plan.symmetric.weights.get();
#pragma GCC unroll kTwos
        for (size_t t = 0; t < plan.symmetric.turns; ++t) {
            const auto evenWeights = weightsOf(weights[2 * t]),
                       oddWeights = weightsOf(weights[2 * t + 1]);
            const uint32_t* const far = ahead + t * kEntryWords;
            const uint32_t* const near = behind - t * kEntryWords;
#pragma GCC unroll 12
            for (size_t i = 0; i < kTwos; ++i) {
                const auto pair = loadPair(far + i * kEntryWords);
                const auto early = loadPair(near + i * kEntryWords - kEntryWords);
                const auto late = loadPair(near + i * kEntryWords);
                even[i].add(hn::Add(pair, early), evenWeights);
                odd[i].add(hn::Add(pair, late), oddWeights);
            }
        }
#pragma GCC unroll 12
        for (size_t i = 0; i < kTwos; ++i) {
            const auto quotient = [&](const SplitSum& sum)
                                      HWY_ATTR { return divide<kNear>(sum.whole(), plan.divisor); };
            put(o + 2 * i, quotient(even[i]));
            put(o + 2 * i + 1, quotient(odd[i]));
        }
    }
}

// The first `count` of eight outputs of a tile, from 2u on; `entry` is entry u.
template <bool kNear>
HWY_INLINE void blurChannels(const uint32_t* entry, const PassPlan& plan, uint32_t* out,
                             size_t step, size_t count) {
    const Pixels d;
    PixelVector words[kOutputs];
    blurEight<kNear>(entry, plan, [&](size_t o, PixelVector red) HWY_ATTR {
        words[o] = hn::And(hn::ShiftRight<16>(red), hn::Set(d, 0xFF));
    });
    blurEight<kNear>(entry + kTileLines, plan, [&](size_t o, PixelVector green) HWY_ATTR {
        words[o] = hn::OrAnd(words[o], hn::ShiftRight<8>(green), hn::Set(d, 0xFF00));
    });
    blurEight<kNear>(entry + 2 * kTileLines, plan, [&](size_t o, PixelVector blue) HWY_ATTR {
        const auto upper = hn::OrAnd(hn::Set(d, 0xFF000000), blue, hn::Set(d, 0xFF0000));
        if (o < count) hn::StoreU(hn::Or(words[o], upper), d, out + o * step);
    });
}

// The outputs, whole chunks of them, after which the entries that are still needed move to the
// front of the buffer. After each chunk that would be a tenth of the time; short lines, whose blur
// may hold little memory, bear it.
HWY_INLINE size_t outputsOfBuffer(size_t length) {
    return std::min(std::max<size_t>(length / 4 / kChunk, 1), kMostChunks) * kChunk;
}

// The words that hold the entries of one tile.
HWY_INLINE size_t entryWords(const PassPlan& plan, size_t length) {
    const size_t some = std::min(outputsOfBuffer(length), length);
    const size_t outputs = (some + kOutputs - 1) / kOutputs * kOutputs;
    return (outputs / 2 + 2 * plan.symmetric.turns) * kEntryWords;
}

// Blurs tiles side by side, in place (blur/tiles-inl.h). Entry e of the buffers is that of pixel
// 2 (e - turns) + 1, so that entry 0 is the first that output 0 takes. Entries not yet made are of
// pixels `turns` pairs beyond the chunk, or repeat the line's last one, which the last chunk
// writes; those that repeat the first are all made in the first chunk. So a pixel is taken before
// it is written.
template <bool kNear, typename Fetch, typename Deliver>
HWY_INLINE void blurTiles(const Tiles& tiles, const PassPlan& plan, uint32_t* entries, Fetch fetch,
                          Deliver deliver) {
    const Pixels d;
    const size_t turns = plan.symmetric.turns, words = entryWords(plan, tiles.length);
    const size_t outputs = outputsOfBuffer(tiles.length);
    const auto pixel = [&](size_t at) {  // 2 * turns more than the pixel's number
        return tiles.lines +
               std::min(std::max(at, 2 * turns) - 2 * turns, tiles.length - 1) * tiles.step;
    };
    size_t first = 0, made = 0;  // the entries that are kept
    for (size_t x = 0; x < tiles.length; x += kChunk) {
        const size_t end = std::min(tiles.length, x + kChunk);
        if (x > 0 && x % outputs == 0) {
            for (size_t t = 0; t < tiles.count; ++t) {
                uint32_t* front = entries + t * words;
                std::memmove(front, front + (x / 2 - first) * kEntryWords,
                             (made - x / 2) * kEntryWords * sizeof(uint32_t));
            }
            first = x / 2;
        }
        const size_t last = x / 2 + (end - x + kOutputs - 1) / kOutputs * kOutputs / 2 + 2 * turns;
        fetch(std::min(tiles.length, 2 * (last - turns) + 1));
        for (; made < last; ++made) {
            const uint32_t* const behind = pixel(2 * made);
            const uint32_t* const middle = pixel(2 * made + 1);
            const uint32_t* const ahead = pixel(2 * made + 2);
            if (tiles.count > 1)
                prefetchPixels(tiles, pixel(2 * made + kAhead + 1), pixel(2 * made + kAhead + 2));
            uint32_t* entry = entries + (made - first) * kEntryWords;
            for (size_t t = 0; t < tiles.count; ++t) {
                const auto odd = hn::LoadU(d, middle + t * kTileLines);
                makePair(odd, hn::LoadU(d, ahead + t * kTileLines), entry + t * words);
                makePair(odd, hn::LoadU(d, behind + t * kTileLines),
                         entry + t * words + kPairWords);
            }
        }
        for (size_t t = 0; t < tiles.count; ++t) {
            for (size_t o = x; o < end; o += kOutputs) {
                const size_t entry = o / 2 - first + turns;
                blurChannels<kNear>(entries + t * words + entry * kEntryWords, plan,
                                    tiles.lines + o * tiles.step + t * kTileLines, tiles.step,
                                    end - o);
            }
        }
        deliver(x, end);
    }
}

template <bool kNear>
HWY_NOINLINE void blurRows(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    blurTilesOfRows(bitmap, scratch,
                    [&](const Tiles& tiles, uint32_t* entries, auto fetch, auto deliver)
                        HWY_ATTR { blurTiles<kNear>(tiles, plan, entries, fetch, deliver); });
}

template <bool kNear>
HWY_NOINLINE void blurColumns(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    const size_t group = groupOf(plan, height, width, entryWords(plan, height));
    blurTilesOfColumns(bitmap, group, scratch,
                       [&](const Tiles& tiles, uint32_t* entries, auto fetch, auto deliver)
                           HWY_ATTR { blurTiles<kNear>(tiles, plan, entries, fetch, deliver); });
}

void blurRowsBySymmetricTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    const bool near = plan.divisor.complement <= kNearComplement;
    (near ? blurRows<true> : blurRows<false>)(bitmap, plan, scratch);
}

void blurColumnsBySymmetricTaps(const BitmapStruct& bitmap, const PassPlan& plan,
                                uint32_t* scratch) {
    const bool near = plan.divisor.complement <= kNearComplement;
    (near ? blurColumns<true> : blurColumns<false>)(bitmap, plan, scratch);
}

size_t symmetricScratchWords(const PassPlan& plan, size_t length, size_t lines) {
    return tileScratchWords(plan, length, lines, entryWords(plan, length));
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(blurRowsBySymmetricTaps);
HWY_EXPORT(blurColumnsBySymmetricTaps);
HWY_EXPORT(symmetricScratchWords);

void blurRowsBySymmetricTaps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurRowsBySymmetricTaps)(bitmap, plan, scratch);
}

void blurColumnsBySymmetricTaps(const BitmapStruct& bitmap, const PassPlan& plan,
                                uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurColumnsBySymmetricTaps)(bitmap, plan, scratch);
}

size_t symmetricScratchWords(const PassPlan& plan, size_t length, size_t lines) {
    return HWY_DYNAMIC_DISPATCH(symmetricScratchWords)(plan, length, lines);
}
}  // namespace android
#endif
