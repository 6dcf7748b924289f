// What the ways of blurring that take a tile of lines at a time share: how a pass walks over the
// picture, and the pairs of pixels. Included once per instruction set.

#if defined(ANDROID_BLUR_TILES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ANDROID_BLUR_TILES_INL_H_
#undef ANDROID_BLUR_TILES_INL_H_
#else
#define ANDROID_BLUR_TILES_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "blur/lanes-inl.h"
#include "blur/plan_support.h"
#include "hwy/cache_control.h"
#include "hwy/highway.h"
#include "jni/bitmap_struct.h"

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {

constexpr size_t kGroup = 64 / kTileLines;  // tiles side by side in a column pass, four cache lines
constexpr size_t kAhead = 16;  // rows fetched ahead in a column pass, whose rows lie pages apart

constexpr size_t kPairWords = 3 * kTileLines;

HWY_INLINE void makePair(PixelVector early, PixelVector late, uint32_t* pair) {
    const Pixels d;
    const hn::Repartition<uint16_t, Pixels> d16;
    const auto join = [&](PixelVector upper, PixelVector lower) HWY_ATTR {
        return hn::OddEven(hn::BitCast(d16, upper), hn::BitCast(d16, lower));
    };
    const auto redGreen = join(hn::ShiftLeft<16>(late), early);
    const auto blueAlpha = join(late, hn::ShiftRight<16>(early));
    const auto byte = hn::Set(d16, 0xFF);
    hn::Store(hn::BitCast(d, hn::And(redGreen, byte)), d, pair);
    hn::Store(hn::BitCast(d, hn::ShiftRight<8>(redGreen)), d, pair + kTileLines);
    hn::Store(hn::BitCast(d, hn::And(blueAlpha, byte)), d, pair + 2 * kTileLines);
}

// The tiles of a pass: pixel i of tile t is the vector at lines + i * step + t * kTileLines.
struct Tiles {
    uint32_t* lines;
    size_t length;
    size_t step;
    size_t count;
};

HWY_INLINE void prefetchPixels(const Tiles& tiles, const uint32_t* some, const uint32_t* others) {
    for (size_t w = 0; w < tiles.count * kTileLines; w += 16) {
        hwy::Prefetch(some + w);
        hwy::Prefetch(others + w);
    }
}

// The tiles that a column pass may take side by side where each holds `words` besides the picture:
// whole cache lines where that fits the memory that a blur may hold.
HWY_INLINE size_t groupOf(const PassPlan& plan, size_t length, size_t lines, size_t words) {
    const size_t taps = 2 * static_cast<size_t>(plan.taps.reach) + 1;
    const size_t room = memoryBound(length, lines, taps) - length * kTileLines;
    return std::max<size_t>(1, std::min({kGroup, lines / kTileLines, room / 2 / words}));
}

HWY_INLINE size_t tileScratchWords(const PassPlan& plan, size_t length, size_t lines,
                                   size_t words) {
    return 16 + length * kTileLines + groupOf(plan, length, lines, words) * words;
}

// Takes every row of the picture through blur(tiles, pairs, fetch, deliver), a tile of them at a
// time, turned into lanes and back. Before pixels up to `end` are read, blur calls fetch(end); once
// the outputs from `begin` to `end` are written, deliver(begin, end). `scratch` holds what
// tileScratchWords says.
template <typename Blur>
HWY_INLINE void blurTilesOfRows(const BitmapStruct& bitmap, uint32_t* scratch, Blur blur) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    uint32_t* tile = alignedScratch(scratch);
    uint32_t* pairs = tile + width * kTileLines;
    for (size_t y = 0; y < height; y += kTileLines) {
        const size_t lines = std::min(kTileLines, height - y);
        uint32_t* rows = bitmap.pixels + y * width;
        // Turned over little by little, while the first-level cache still holds the pixels.
        size_t fetched = 0;
        const auto fetch = [&](size_t end) HWY_ATTR {
            end = std::min(width, (end + kTileLines - 1) / kTileLines * kTileLines);
            if (end <= fetched) return;
            gatherRows(rows + fetched, width, lines, end - fetched, tile + fetched * kTileLines,
                       kTileLines);
            fetched = end;
        };
        const auto deliver = [&](size_t begin, size_t end) HWY_ATTR {
            scatterRows(tile + begin * kTileLines, kTileLines, lines, end - begin, rows + begin,
                        width);
        };
        blur(Tiles{tile, width, kTileLines, 1}, pairs, fetch, deliver);
    }
}

// The same for every column, which are lanes already, `group` tiles at a time.
template <typename Blur>
HWY_INLINE void blurTilesOfColumns(const BitmapStruct& bitmap, size_t group, uint32_t* scratch,
                                   Blur blur) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    uint32_t* tile = alignedScratch(scratch);
    uint32_t* pairs = tile + height * kTileLines;
    const auto nothing = [](auto...) {};
    size_t x = 0;
    for (size_t count; (count = std::min(group, (width - x) / kTileLines)) > 0;
         x += count * kTileLines) {
        blur(Tiles{bitmap.pixels + x, height, width, count}, pairs, nothing, nothing);
    }
    if (x == width) return;
    copyLines(bitmap.pixels + x, width, width - x, height, tile, kTileLines);
    blur(Tiles{tile, height, kTileLines, 1}, pairs, nothing, nothing);
    copyLines(tile, kTileLines, width - x, height, bitmap.pixels + x, width);
}

}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // per target
