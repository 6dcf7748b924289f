#include "blur/dot_blur.h"

#include <arm_neon.h>

#include <cstring>

// Carries out a plan by dot products (blur/dot_plan.h). The picture is taken in strips of columns,
// from left to right, each from the top to the bottom a band of rows at a time:
//
//     lines    four rows of the strip with their neighbours on either side, a byte a channel
//     tile     the horizontal results of a band and of the rows above and below it that it needs
//
// Both passes take groups of four pixels, one 32-bit lane each. The horizontal pass finds them in a
// line as it lies: lane j of a vector holds pixels 4 j to 4 j + 3, and so output s of each lane is
// pixel 4 j + s. The results of four rows are joined to lanes of four bytes, one of each row, which
// are the groups of the vertical pass. There lane j of vector s is column 4 j + s, until the
// interleaving store of four vectors brings the columns back to their order.
//
// A group of rows may begin in front of the picture or end behind it, where its first or last row
// repeats. A row is laid out before a band that needs it is written. A strip writes the pixels that
// its right neighbour still needs, so these are kept.
//
// This file alone is compiled for processors with dot products. It calls no inline function of the
// C++ library's headers that it might share with another file: the linker would take either's.

namespace android {
namespace {

constexpr size_t kBlock = 16;          // columns taken together
constexpr size_t kShare = 4 * kBlock;  // bytes of a channel in a group of a block's rows
constexpr size_t kGroup = 3 * kShare;  // bytes of a group of a block's rows
constexpr size_t kStrip = 256;         // columns of a strip
constexpr size_t kBand = 64;           // rows of a band
constexpr size_t kAhead = 4;           // rows fetched ahead
constexpr size_t kWidestKept = 64;     // reach up to which a strip keeps pixels

__attribute__((always_inline)) inline size_t lesser(size_t a, size_t b) { return a < b ? a : b; }

// Where things lie in the scratch, in bytes.
struct Layout {
    size_t columns;   // of every strip but the last
    size_t blocks;    // of a strip
    size_t front;     // places of a line in front of the strip's first pixel
    size_t lineSize;  // of a channel of a line
    size_t band;      // rows
    size_t tileSize;  // of a block of the tile
    size_t keptSize;  // what is kept of a row for the next strip
    size_t tile, kept, end;

    Layout(const DotPlan& plan, size_t width, size_t height) {
        const size_t strips = plan.reach > kWidestKept ? 1 : (width + kStrip - 1) / kStrip;
        blocks = ((width + strips - 1) / strips + kBlock - 1) / kBlock;
        columns = blocks * kBlock;
        front = (plan.reach + kBlock - 1) / kBlock * kBlock;
        // Of the last group places may lie behind a line. They weigh nothing, and the tile follows.
        lineSize = front + columns + front;
        band = lesser((height + 3) / 4 * 4, plan.reach <= kWidestKept ? kBand : kBand / 4);
        // An odd number of groups, so that blocks do not collide in the cache.
        tileSize = ((band / 4 + plan.groups - 1) | 1) * kGroup;
        keptSize = columns < width ? 3 * plan.reach : 0;
        tile = 12 * lineSize;
        kept = tile + blocks * tileSize;
        end = kept + height * keptSize;
    }
};

struct Strip {
    uint32_t* pixels;  // of row 0
    size_t width;      // of the picture
    size_t height;
    size_t begin, end;  // columns
    uint8_t* kept;
};

// Puts 16 pixels into the planes at `line`.
void putPlanes(const uint32_t* pixels, uint8_t* line, size_t lineSize) {
    const uint8x16x4_t planes = vld4q_u8(reinterpret_cast<const uint8_t*>(pixels));
    for (size_t c = 0; c < 3; ++c) vst1q_u8(line + c * lineSize, planes.val[c]);
}

// Lays out row `y` of the strip, with `reach` pixels on its left and at least as many on its right.
void layOutRow(const Strip& strip, size_t y, size_t reach, const Layout& layout, uint8_t* line) {
    const uint32_t* row = strip.pixels + y * strip.width;
    const uint32_t* ahead = row + lesser(kAhead, strip.height - 1 - y) * strip.width;
    for (size_t x = strip.begin; x < strip.end; x += 16) __builtin_prefetch(ahead + x);

    uint8_t* const first = line + layout.front;
    const size_t places = layout.lineSize - layout.front, have = strip.width - strip.begin;
    size_t x = 0;
    for (; x < places && x + kBlock <= have; x += kBlock) {
        putPlanes(row + strip.begin + x, first + x, layout.lineSize);
    }
    if (x < places) {  // the row ends in this block or at its begin
        uint32_t edge[kBlock];
        for (size_t i = 0; i < kBlock; i += 4) {
            vst1q_u32(edge + i, vdupq_n_u32(row[strip.width - 1]));
        }
        std::memcpy(edge, row + strip.begin + x, (have - x) * sizeof(uint32_t));
        putPlanes(edge, first + x, layout.lineSize);
        x += kBlock;
        for (size_t c = 0; c < 3; ++c) {
            uint8_t* const end = first + c * layout.lineSize + x;
            std::memset(end, end[-1], places - x);
        }
    }
    uint8_t* kept = strip.kept + y * layout.keptSize;
    for (size_t c = 0; c < 3; ++c, kept += reach) {
        uint8_t* const plane = first + c * layout.lineSize;
        if (strip.begin == 0) {
            std::memset(plane - reach, plane[0], reach);
        } else {
            std::memcpy(plane - reach, kept, reach);
        }
        if (strip.end < strip.width) std::memcpy(kept, plane + layout.columns - reach, reach);
    }
}

// The sums of four outputs, in each of four lanes.
struct Sums {
    uint32x4_t high[4], low[4];
};

template <bool kHeavy>
__attribute__((always_inline)) inline void addGroup(uint8x16_t pixels, uint8x16_t high,
                                                    uint8x16_t low, Sums* sums) {
    if (kHeavy) {
        sums->high[0] = vdotq_laneq_u32(sums->high[0], pixels, high, 0);
        sums->high[1] = vdotq_laneq_u32(sums->high[1], pixels, high, 1);
        sums->high[2] = vdotq_laneq_u32(sums->high[2], pixels, high, 2);
        sums->high[3] = vdotq_laneq_u32(sums->high[3], pixels, high, 3);
    }
    sums->low[0] = vdotq_laneq_u32(sums->low[0], pixels, low, 0);
    sums->low[1] = vdotq_laneq_u32(sums->low[1], pixels, low, 1);
    sums->low[2] = vdotq_laneq_u32(sums->low[2], pixels, low, 2);
    sums->low[3] = vdotq_laneq_u32(sums->low[3], pixels, low, 3);
}

// Adds the groups from `begin` to `end` of kCount lines, `apart` bytes apart, whose groups follow
// each other after kStep bytes.
template <bool kHeavy, size_t kCount, size_t kStep>
__attribute__((always_inline)) inline void addGroups(const uint8_t* pixels, size_t apart,
                                                     const uint8_t* weights, size_t begin,
                                                     size_t end, Sums* sums) {
#pragma GCC unroll 2
    for (size_t group = begin; group < end; ++group) {
        const uint8x16_t high = vld1q_u8(weights + group * kDotGroupBytes);
        const uint8x16_t low = vld1q_u8(weights + group * kDotGroupBytes + 16);
        for (size_t i = 0; i < kCount; ++i) {
            addGroup<kHeavy>(vld1q_u8(pixels + i * apart + group * kStep), high, low, &sums[i]);
        }
    }
}

// Quotients, each in bits 16 to 23 of its lane: quotients[i][s] of output s of line i. Narrow
// kernels spend more on loops than on groups, so theirs have kGroups, and are unrolled whole.
template <size_t kGroups, size_t kCount, size_t kStep>
__attribute__((always_inline)) inline void weigh(const uint8_t* pixels, size_t apart,
                                                 const DotPlan& plan, uint16x8_t (*quotients)[4]) {
    Sums sums[kCount];
    for (size_t i = 0; i < kCount; ++i) {
        for (size_t s = 0; s < 4; ++s) sums[i].high[s] = sums[i].low[s] = vdupq_n_u32(0);
    }
    const uint8_t* const weights = plan.weights.get();
    if (kGroups > 0) {
        addGroups<true, kCount, kStep>(pixels, apart, weights, 0, kGroups, sums);
    } else {
        addGroups<false, kCount, kStep>(pixels, apart, weights, 0, plan.heavyBegin, sums);
        addGroups<true, kCount, kStep>(pixels, apart, weights, plan.heavyBegin, plan.heavyEnd,
                                       sums);
        addGroups<false, kCount, kStep>(pixels, apart, weights, plan.heavyEnd, plan.groups, sums);
    }
    const int32x2_t factors = vld1_s32(plan.factors);
    for (size_t i = 0; i < kCount; ++i) {
        for (size_t s = 0; s < 4; ++s) {
            const int32x4_t low = vreinterpretq_s32_u32(sums[i].low[s]);
            const int32x4_t high = vreinterpretq_s32_u32(sums[i].high[s]);
            const int32x4_t sum = vmlaq_lane_s32(low, high, factors, 1);
            quotients[i][s] = vreinterpretq_u16_s32(vqrdmlahq_lane_s32(sum, sum, factors, 0));
        }
    }
}

// Joins four quotients, of bits 16 to 23 each, to the bytes of a lane.
__attribute__((always_inline)) inline uint8x16_t join(uint16x8_t first, uint16x8_t second,
                                                      uint16x8_t third, uint16x8_t fourth) {
    return vtrn1q_u8(vreinterpretq_u8_u16(vtrn2q_u16(first, third)),
                     vreinterpretq_u8_u16(vtrn2q_u16(second, fourth)));
}

// Blurs four lines; the results go to the group at `group` in the tile's first block.
template <size_t kGroups>
void blurLines(const uint8_t* lines, const DotPlan& plan, const Layout& layout, size_t blocks,
               uint8_t* group) {
    const size_t row = 3 * layout.lineSize;
    for (size_t c = 0; c < 3; ++c) {
        const uint8_t* from = lines + c * layout.lineSize + layout.front - plan.reach;
        uint8_t* to = group + c * kShare;
        for (size_t b = 0; b < blocks; ++b, from += kBlock, to += layout.tileSize) {
            uint16x8_t even[2][4], odd[2][4];
            weigh<kGroups, 2, 4>(from, 2 * row, plan, even);
            weigh<kGroups, 2, 4>(from + row, 2 * row, plan, odd);
            for (size_t s = 0; s < 4; ++s) {
                vst1q_u8(to + s * kBlock, join(even[0][s], odd[0][s], even[1][s], odd[1][s]));
            }
        }
    }
}

// Blurs the columns of a block over `count` rows; `tile` is the first group that they need.
template <size_t kGroups>
void blurBlock(const uint8_t* tile, const DotPlan& plan, size_t count, size_t columns,
               uint32_t* out, size_t step) {
    const uint16x8_t opaque = vdupq_n_u16(0xFF);
    for (size_t y = 0; y < count; y += 4, tile += kGroup) {
        uint32x4x4_t words[4];
        for (size_t s = 0; s < 4; ++s) {
            uint16x8_t quotients[3][4];
            weigh<kGroups, 3, kGroup>(tile + s * kBlock, kShare, plan, quotients);
            for (size_t r = 0; r < 4; ++r) {
                words[r].val[s] = vreinterpretq_u32_u8(
                    join(quotients[0][r], quotients[1][r], quotients[2][r], opaque));
            }
        }
        for (size_t r = 0; r < 4 && y + r < count; ++r) {
            uint32_t* const to = out + (y + r) * step;
            if (columns >= kBlock) {
                vst4q_u32(to, words[r]);
            } else {
                uint32_t some[kBlock];
                vst4q_u32(some, words[r]);
                std::memcpy(to, some, columns * sizeof(uint32_t));
            }
        }
    }
}

// Fills a group with one of its neighbour's rows.
void repeatRow(const uint8_t* group, size_t row, uint8_t* to) {
    for (size_t i = 0; i < kGroup; i += 4) std::memset(to + i, group[i + row], 4);
}

template <size_t kGroups>
void blurStrip(const Strip& strip, const DotPlan& plan, const Layout& layout, uint8_t* scratch) {
    const size_t reach = plan.reach, height = strip.height, rowSize = 3 * layout.lineSize;
    const size_t blocks = (strip.end - strip.begin + kBlock - 1) / kBlock;
    uint8_t* const tile = scratch + layout.tile;
    // Group g holds rows 4 g - reach to 4 g + 3 - reach. These groups hold one of the picture's.
    const size_t firstGroup = reach / 4, lastGroup = (height - 1 + reach) / 4;
    const size_t groups = layout.band / 4 + plan.groups - 1;  // of the tile
    size_t made = firstGroup;
    for (size_t y0 = 0; y0 < height; y0 += layout.band) {
        const size_t base = y0 / 4;  // the tile's first group
        for (size_t b = 0; y0 > 0 && b < blocks; ++b) {
            std::memmove(tile + b * layout.tileSize,
                         tile + b * layout.tileSize + layout.band / 4 * kGroup,
                         (plan.groups - 1) * kGroup);
        }
        for (; made <= lastGroup && made < base + groups; ++made) {
            for (size_t i = 0; i < 4; ++i) {
                const size_t place = 4 * made + i;  // of row place - reach
                uint8_t* const line = scratch + i * rowSize;
                if (i > 0 && (place <= reach || place - reach >= height)) {
                    std::memcpy(line, line - rowSize, rowSize);
                } else {
                    layOutRow(strip, place < reach ? 0 : place - reach, reach, layout, line);
                }
            }
            blurLines<kGroups>(scratch, plan, layout, blocks, tile + (made - base) * kGroup);
        }
        for (size_t b = 0; b < blocks; ++b) {
            uint8_t* const block = tile + b * layout.tileSize;
            for (size_t g = 0; y0 == 0 && g < firstGroup; ++g) {
                repeatRow(block + firstGroup * kGroup, 0, block + g * kGroup);
            }
            for (size_t g = lastGroup + 1; g < base + groups; ++g) {
                repeatRow(block + (lastGroup - base) * kGroup, 3, block + (g - base) * kGroup);
            }
            const size_t x = strip.begin + b * kBlock;
            blurBlock<kGroups>(block, plan, lesser(layout.band, height - y0), strip.end - x,
                               strip.pixels + y0 * strip.width + x, strip.width);
        }
    }
}

template <size_t kGroups>
void blurStrips(const BitmapStruct& bitmap, const DotPlan& plan, uint32_t* scratch) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    const Layout layout(plan, width, height);
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(scratch);
    for (size_t x = 0; x < width; x += layout.columns) {
        const size_t end = lesser(width, x + layout.columns);
        const Strip strip = {bitmap.pixels, width, height, x, end, bytes + layout.kept};
        blurStrip<kGroups>(strip, plan, layout, bytes);
    }
}

}  // namespace

void blurByDots(const BitmapStruct& bitmap, const DotPlan& plan, uint32_t* scratch) {
    switch (plan.groups) {
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

size_t dotScratchWords(const DotPlan& plan, size_t width, size_t height) {
    return (Layout(plan, width, height).end + 3) / 4;
}

}  // namespace android
