#include "blur/sweep_blur.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blur/sweep_blur.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"
//
#include "blur/lanes-inl.h"
#include "blur/plan_support.h"

// Carries out a sweep plan (blur/sweep_plan.h). The picture is taken in strips of columns, from
// left to right, each from the top to the bottom a band of rows at a time:
//
//     line    one row of the strip with its neighbours on either side, a plane of 16 bits a channel
//     tile    the horizontal results of a band and of the rows above and below it that it needs
//
// A row is laid out in planes once. Pairs of neighbouring pixels are multiplied as they lie there,
// at any address, so that nothing is turned over; then the rows of the tile that share a weight are
// added, two such sums interleaved, and weighed by one multiply-add. A row is laid out before any
// band that needs it is written, and never again. A strip writes the pixels that its right
// neighbour still needs, so these are kept beside.

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace {

constexpr bool kManyRegisters = kTileLines == 16 || HWY_ARCH_ARM;
constexpr size_t kSide = kManyRegisters ? 2 : 1;  // blocks of a row taken together
constexpr size_t kRows = kManyRegisters ? 4 : 2;  // rows of a block taken together
constexpr size_t kStrip = 512;                    // columns of a strip
constexpr size_t kBand = 64;                      // rows of a band
constexpr size_t kAhead = 4;                      // rows fetched ahead

constexpr size_t kBlock = kLines;  // pixels of a channel in a vector
// Beyond it symmetric taps are faster: measured with AVX-512 and AVX2, counted for ARM.
constexpr int32_t kWidestReach = kTileLines == 16 ? 19 : HWY_ARCH_ARM ? 13 : 9;
static_assert(kWidestReach <= kWidestSweep && 2 * kWidestReach <= static_cast<int32_t>(kBand));

HWY_INLINE PixelVector quotientOf(const SplitSum& sum, const Divisor& divisor) {
    return divide<true>(sum.whole(), divisor);
}

// Where things lie in the scratch, in 16-bit units, for strips of `columns` columns at most.
struct Layout {
    size_t strips, columns;  // of every strip but the last, which has fewer
    size_t blocks;           // of a strip
    size_t front;            // places of the line in front of the strip's first pixel
    size_t lineSize;         // of a plane of the line
    size_t band;             // rows
    size_t column;           // the rows of a block of a channel in the tile
    size_t channel;          // of the tile
    size_t height;

    HWY_INLINE Layout(const SweepPlan& plan, size_t width, size_t rows) : height(rows) {
        const auto whole = [](size_t size, size_t unit) { return (size + unit - 1) / unit * unit; };
        const size_t reach = static_cast<size_t>(plan.reach);
        strips = (width + kStrip - 1) / kStrip;
        columns = whole((width + strips - 1) / strips, kSide * kBlock);
        strips = (width + columns - 1) / columns;
        blocks = columns / kBlock;
        front = whole(reach, kBlock);
        lineSize = front + columns + whole(reach + 1, kBlock);
        band = std::min(whole(height, kRows), kBand);
        column =
            ((band + 2 * reach) | 1) * kBlock;  // odd, so that they do not collide in the cache
        channel = blocks * column;
    }
    HWY_INLINE size_t keptWords() const { return strips > 1 ? height * front : 0; }
    HWY_INLINE size_t words() const {
        return 16 + keptWords() + 3 * (lineSize + channel) * sizeof(uint16_t) / sizeof(uint32_t);
    }
};

struct Strip {
    uint32_t* pixels;  // of row 0
    size_t width;      // of the picture
    size_t height;
    size_t begin, end;  // columns
    uint32_t* kept;     // `front` words a row: the pixels in front of the next strip
};

// Puts two vectors of pixel words into the planes at `line`, from place `x` on.
HWY_INLINE void putPlanes(PixelVector low, PixelVector high, uint16_t* line, size_t lineSize) {
    const Lanes d16;
    const auto a = hn::BitCast(d16, low), b = hn::BitCast(d16, high);
    const auto redGreen = hn::ConcatEven(d16, b, a), blueAlpha = hn::ConcatOdd(d16, b, a);
    const auto byte = hn::Set(d16, 0xFF);
    hn::StoreU(hn::And(redGreen, byte), d16, line);
    hn::StoreU(hn::ShiftRight<8>(redGreen), d16, line + lineSize);
    hn::StoreU(hn::And(blueAlpha, byte), d16, line + 2 * lineSize);
}

// Lays out row `y` of the strip in planes: `front` pixels in front of it, its blocks, and what
// these need behind it. Beyond the picture its edge pixel repeats.
HWY_INLINE void layOutRow(const Strip& strip, size_t y, size_t blocks, size_t reach,
                          const Layout& layout, uint16_t* line) {
    const Pixels d;
    const uint32_t* const row = strip.pixels + y * strip.width;
    const uint32_t* const ahead = row + std::min(kAhead, strip.height - 1 - y) * strip.width;

    const auto put = [&](size_t place, const uint32_t* from) HWY_ATTR {
        putPlanes(hn::LoadU(d, from), hn::LoadU(d, from + kTileLines), line + place,
                  layout.lineSize);
    };
    uint32_t* const kept = layout.strips > 1 ? strip.kept + y * layout.front : nullptr;
    for (size_t place = 0; place < layout.front; place += kBlock) {
        if (strip.begin > 0) {
            put(place, kept + place);
        } else {
            const auto first = hn::Set(d, row[0]);
            putPlanes(first, first, line + place, layout.lineSize);
        }
    }

    const size_t places = blocks * kBlock + reach + 1, have = strip.width - strip.begin;
    size_t x = 0;
    for (; x < places && x + kBlock <= have; x += kBlock) {
        for (size_t p = 0; p < kBlock; p += 16) hwy::Prefetch(ahead + strip.begin + x + p);
        put(layout.front + x, row + strip.begin + x);
    }
    for (; x < places; x += kBlock) {
        HWY_ALIGN uint32_t edge[kBlock];
        const size_t some = x < have ? have - x : 0;
        std::copy_n(row + strip.width - some, some, edge);
        std::fill(edge + some, edge + kBlock, row[strip.width - 1]);
        put(layout.front + x, edge);
    }
    if (strip.end < strip.width) {
        const uint32_t* const last = row + strip.end - layout.front;
        for (size_t place = 0; place < layout.front; place += kTileLines) {
            hn::StoreU(hn::LoadU(d, last + place), d, kept + place);
        }
    }
}

// In a vector of 16-bit lanes, brings pixels 0 to 3 and kTileLines to kTileLines + 3 into the first
// 128 bits, the next four of each into the second, so that interleaving the lower and upper halves
// of these gives words in the order of the pixels.
HWY_INLINE LaneVector deal(LaneVector pixels) {
    if constexpr (kTileLines == 4) {
        return pixels;
    } else {
        const hn::Repartition<uint64_t, Lanes> d64;
        HWY_ALIGN static constexpr uint64_t kOrder[2][8] = {{0, 2, 1, 3}, {0, 4, 1, 5, 2, 6, 3, 7}};
        const auto order = hn::SetTableIndices(d64, kOrder[kTileLines == 16]);
        return hn::BitCast(Lanes(), hn::TableLookupLanes(hn::BitCast(d64, pixels), order));
    }
}

// Blurs the line; the results go to a row of the tile, which begins at `tile`.
template <size_t kReach>
HWY_INLINE void blurLine(const uint16_t* line, const SweepPlan& plan, const Layout& layout,
                         size_t blocks, uint16_t* HWY_RESTRICT tile) {
    const size_t reach = kReach > 0 ? kReach : static_cast<size_t>(plan.reach);
    const uint32_t* HWY_RESTRICT weights = plan.rows.weights.get();
    const Divisor divisor = plan.divisor;  // copies, which what is stored cannot change
    const SplitSum start = startOfSum<true>(divisor);
    const size_t lineSize = layout.lineSize, column = layout.column, channel = layout.channel;
    const uint16_t* const from = line + layout.front - reach;
    for (size_t b = 0; b < blocks; b += kSide) {
        SplitSum even[3 * kSide], odd[3 * kSide];
#pragma GCC unroll 12
        for (size_t i = 0; i < 3 * kSide; ++i) even[i] = odd[i] = start;
        const auto addPair = [&](size_t p) HWY_ATTR {
            const auto evenWeights = weightsOf(weights[2 * p]),
                       oddWeights = weightsOf(weights[2 * p + 1]);
#pragma GCC unroll 12
            for (size_t i = 0; i < 3 * kSide; ++i) {
                const uint16_t* at = from + i % 3 * lineSize + (b + i / 3) * kBlock + 2 * p;
                const auto pair = hn::LoadU(Lanes(), at);
                even[i].add(pair, evenWeights);
                odd[i].add(pair, oddWeights);
            }
        };
        if constexpr (kReach > 0) {
            for (size_t p = 0; p <= kReach; ++p) addPair(p);
        } else {
#pragma GCC unroll 2
            for (size_t p = 0; p <= reach; ++p) addPair(p);
        }
#pragma GCC unroll 12
        for (size_t i = 0; i < 3 * kSide; ++i) {
            const auto evenPixels = hn::ShiftRight<16>(quotientOf(even[i], divisor));
            const auto oddPixels = quotientOf(odd[i], divisor);
            const auto pixels =
                hn::OddEven(hn::BitCast(Lanes(), oddPixels), hn::BitCast(Lanes(), evenPixels));
            hn::Store(deal(pixels), Lanes(), tile + i % 3 * channel + (b + i / 3) * column);
        }
    }
}

// Sums of the rows of a block and a channel: kRows outputs from the one whose own row is `row` on.
template <size_t kReach>
HWY_INLINE void addRows(const uint16_t* HWY_RESTRICT row, const SweepPlan& plan, SplitSum* lower,
                        SplitSum* upper) {
    const Lanes d16;
    constexpr ptrdiff_t kKnown = kReach;
    const ptrdiff_t reach = kKnown > 0 ? kKnown : plan.reach;
    const auto start = startOfSum<true>(plan.divisor);
#pragma GCC unroll 12
    for (size_t r = 0; r < kRows; ++r) lower[r] = upper[r] = start;
    const auto load = [&](ptrdiff_t place) HWY_ATTR {
        return hn::Load(d16, row + place * static_cast<ptrdiff_t>(kBlock));
    };
    const auto two = [&](size_t r, ptrdiff_t distance) HWY_ATTR {
        const ptrdiff_t own = static_cast<ptrdiff_t>(r);
        return hn::Add(load(own - distance), load(own + distance));
    };
    const auto add = [&](size_t r, LaneVector a, LaneVector b, hn::Vec<Halves> weights) HWY_ATTR {
        lower[r].add(hn::InterleaveLower(d16, a, b), weights);
        upper[r].add(hn::InterleaveUpper(d16, a, b), weights);
    };
    const auto center = weightsOf(plan.columns[0]);
#pragma GCC unroll 12
    for (size_t r = 0; r < kRows; ++r) add(r, load(static_cast<ptrdiff_t>(r)), two(r, 1), center);
    const auto addDistance = [&](ptrdiff_t distance) HWY_ATTR {
        const auto weights = weightsOf(plan.columns[static_cast<size_t>(distance / 2)]);
#pragma GCC unroll 12
        for (size_t r = 0; r < kRows; ++r) {
            add(r, two(r, distance), two(r, distance + 1), weights);
        }
    };
    if constexpr (kReach > 0) {
#pragma GCC unroll 10
        for (ptrdiff_t distance = 2; distance < kKnown; distance += 2) addDistance(distance);
    } else {
#pragma GCC unroll 2
        for (ptrdiff_t distance = 2; distance < reach; distance += 2) addDistance(distance);
    }
    if (reach % 2 == 0) {
        const auto weights = weightsOf(plan.columns[static_cast<size_t>(reach / 2)]);
#pragma GCC unroll 12
        for (size_t r = 0; r < kRows; ++r) add(r, two(r, reach), hn::Zero(d16), weights);
    }
}

// Blurs the columns of a block over `count` rows; `tile` is the first of them in the red channel.
template <size_t kReach>
HWY_INLINE void blurBlock(const uint16_t* tile, const SweepPlan& plan, const Layout& layout,
                          size_t count, size_t columns, uint32_t* out, size_t step) {
    const Pixels d;
    const Divisor divisor = plan.divisor;
    for (size_t y = 0; y < count; y += kRows) {
        PixelVector words[kRows][2];
#pragma GCC unroll 12
        for (size_t c = 0; c < 3; ++c) {
            SplitSum lower[kRows], upper[kRows];
            addRows<kReach>(tile + c * layout.channel + y * kBlock, plan, lower, upper);
#pragma GCC unroll 12
            for (size_t r = 0; r < kRows; ++r) {
                const PixelVector quotients[] = {quotientOf(lower[r], divisor),
                                                 quotientOf(upper[r], divisor)};
#pragma GCC unroll 12
                for (size_t h = 0; h < 2; ++h) {
                    const auto q = quotients[h];
                    if (c == 0) {
                        words[r][h] = hn::ShiftRight<16>(q);
                    } else if (c == 1) {
                        words[r][h] =
                            hn::OrAnd(words[r][h], hn::ShiftRight<8>(q), hn::Set(d, 0xFF00));
                    } else {
                        words[r][h] = hn::OrAnd(hn::Or(words[r][h], hn::Set(d, 0xFF000000)), q,
                                                hn::Set(d, 0xFF0000));
                    }
                }
            }
        }
        for (size_t r = 0; r < kRows && y + r < count; ++r) {
            uint32_t* to = out + (y + r) * step;
            if (columns >= kBlock) {
                hn::StoreU(words[r][0], d, to);
                hn::StoreU(words[r][1], d, to + kTileLines);
            } else {
                HWY_ALIGN uint32_t some[kBlock];
                hn::Store(words[r][0], d, some);
                hn::Store(words[r][1], d, some + kTileLines);
                std::copy_n(some, columns, to);
            }
        }
    }
}

template <size_t kReach>
HWY_INLINE void blurStrip(const Strip& strip, const SweepPlan& plan, const Layout& layout,
                          uint16_t* line, uint16_t* tile) {
    const size_t reach = static_cast<size_t>(plan.reach), height = strip.height;
    size_t done = 0;  // rows
    const size_t blocks = (strip.end - strip.begin + kSide * kBlock - 1) / (kSide * kBlock) * kSide;
    // Row y of the picture is row y - y0 + reach of the tile.
    for (size_t y0 = 0; y0 < height; y0 += layout.band) {
        const size_t count = std::min(layout.band, height - y0);
        const auto copyRows = [&](size_t from, size_t to, size_t rows) {
            for (size_t i = 0; i < 3 * layout.blocks; ++i) {
                std::memmove(tile + i * layout.column + to * kBlock,
                             tile + i * layout.column + from * kBlock,
                             rows * kBlock * sizeof(uint16_t));
            }
        };
        if (y0 > 0) copyRows(layout.band, 0, 2 * reach);
        const size_t end = std::min(height, y0 + count + reach);
        for (; done < end; ++done) {
            layOutRow(strip, done, blocks, reach, layout, line);
            blurLine<kReach>(line, plan, layout, blocks, tile + (done + reach - y0) * kBlock);
        }
        if (y0 == 0) {
            for (size_t k = 0; k < reach; ++k) copyRows(reach, k, 1);
        }
        for (size_t k = height - y0; k < count + reach; ++k) {
            copyRows(k - 1 + reach, k + reach, 1);
        }
        for (size_t b = 0; b * kBlock < strip.end - strip.begin; ++b) {
            blurBlock<kReach>(tile + b * layout.column + reach * kBlock, plan, layout, count,
                              strip.end - strip.begin - b * kBlock,
                              strip.pixels + y0 * strip.width + strip.begin + b * kBlock,
                              strip.width);
        }
    }
}

template <size_t kReach>
HWY_NOINLINE void blurStrips(const BitmapStruct& bitmap, const SweepPlan& plan, uint32_t* scratch) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    const Layout layout(plan, width, height);
    uint16_t* line = reinterpret_cast<uint16_t*>(alignedScratch(scratch));
    uint16_t* tile = line + 3 * layout.lineSize;
    uint32_t* kept = reinterpret_cast<uint32_t*>(tile + 3 * layout.channel);
    for (size_t x = 0; x < width; x += layout.columns) {
        const Strip strip = {bitmap.pixels, width, height, x, std::min(width, x + layout.columns),
                             kept};
        blurStrip<kReach>(strip, plan, layout, line, tile);
    }
}

void blurBySweep(const BitmapStruct& bitmap, const SweepPlan& plan, uint32_t* scratch) {
    switch (plan.reach) {
        case 1:
            return blurStrips<1>(bitmap, plan, scratch);
        case 2:
            return blurStrips<2>(bitmap, plan, scratch);
        case 3:
            return blurStrips<3>(bitmap, plan, scratch);
        case 4:
            return blurStrips<4>(bitmap, plan, scratch);
        default:
            return blurStrips<0>(bitmap, plan, scratch);
    }
}

size_t sweepScratchWords(const SweepPlan& plan, const BitmapStruct& bitmap) {
    if (plan.reach < 1 || plan.reach > kWidestReach) return 0;
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    const size_t taps = 2 * static_cast<size_t>(plan.reach) + 1;
    const size_t words = Layout(plan, width, height).words();
    return words + kPlanWords * taps <= memoryBound(width, height, taps) ? words : 0;
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(blurBySweep);
HWY_EXPORT(sweepScratchWords);

void blurBySweep(const BitmapStruct& bitmap, const SweepPlan& plan, uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurBySweep)(bitmap, plan, scratch);
}

size_t sweepScratchWords(const SweepPlan& plan, const BitmapStruct& bitmap) {
    return HWY_DYNAMIC_DISPATCH(sweepScratchWords)(plan, bitmap);
}
}  // namespace android
#endif
