#include "blur/step_blur.h"

#include <cstring>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blur/step_blur.cpp"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"
//
#include "blur/lanes-inl.h"

// Carries out a step plan (blur/step_plan.h, which begins with an example). A pass takes as many
// lines as a vector has 16-bit lanes, and one channel of them at a time. It lays out the tables:
// the channel's bytes along the lines, with the first and the last one repeated in front and
// behind, their prefix sums, and the sums of two. The first output is the weighted sum itself; each
// further one adds the plan's terms to the one before:
//
//     sum(y) = sum(y - 1) + pieces of { term.weight * tables[y + term.row] }
//
// where the biases of the pieces go in and out again, and with a near norm every sum holds the
// complement. kStepOutputs outputs that follow each other share the fetching of a term.
//
// The tables hold all bytes of a channel that an output takes before it is written, so a pass works
// in place. Lanes without a line hold anything, and are not copied back.

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace {

constexpr size_t kOutputs = kStepOutputs;

// The lanes of two tiles' vectors, in two vectors or in one: sums of 32 bits and values of 16. Both
// ways work within 128 bits, in the same order on every target, so that a lane comes back as
// itself.
struct WideVector {
    PixelVector lower, upper;
};

HWY_INLINE WideVector widen(LaneVector lanes) {
    const Pixels d;
    const Lanes d16;
    const auto zero = hn::Zero(d16);
    return {hn::BitCast(d, hn::InterleaveLower(d16, lanes, zero)),
            hn::BitCast(d, hn::InterleaveUpper(d16, lanes, zero))};
}

HWY_INLINE LaneVector narrow(WideVector wide) {
    const hn::RebindToSigned<Pixels> di;
    return hn::BitCast(Lanes(), hn::ReorderDemote2To(Halves(), hn::BitCast(di, wide.lower),
                                                     hn::BitCast(di, wide.upper)));
}

// One channel of the pixel words at `words`.
template <int kChannel>
HWY_INLINE LaneVector channelOf(const uint32_t* words) {
    const Pixels d;
    const auto byte = hn::Set(d, 0xFF);
    const auto part = [&](PixelVector v) { return hn::And(hn::ShiftRight<8 * kChannel>(v), byte); };
    return narrow({part(hn::LoadU(d, words)), part(hn::LoadU(d, words + kTileLines))});
}

// Puts the quotients of `sum` into one channel of the pixel words at `words`. The first channel
// sets alpha.
template <bool kNear, int kChannel>
HWY_INLINE void putChannel(WideVector sum, const Divisor& divisor, uint32_t* words) {
    const Pixels d;
    const auto byte = hn::Set(d, uint32_t{0xFF} << 8 * kChannel);
    const auto put = [&](PixelVector v, uint32_t* at) HWY_ATTR {
        const auto kept = hn::AndNot(byte, hn::LoadU(d, at));
        const auto opaque = kChannel == 0 ? hn::Or(kept, hn::Set(d, 0xFF000000)) : kept;
        const auto quotient = hn::ShiftRight<16 - 8 * kChannel>(divide<kNear>(v, divisor));
        hn::StoreU(hn::OrAnd(opaque, quotient, byte), d, at);
    };
    put(sum.lower, words);
    put(sum.upper, words + kTileLines);
}

// Whether terms that meet the border alone are left out (Window).
HWY_INLINE bool hasWindow(const StepPlan& plan) { return plan.pieceCount == 1; }

// The first and the last pixel of the lines, which repeat in front and behind.
struct Ends {
    LaneVector first, last;
};

// Lays out rows `kept` to tableRows - 1 of the tables of one channel, where row 0 is row `base` of
// the bordered line. The rows below `kept` are there already.
template <int kChannel>
HWY_INLINE void layOut(const uint32_t* lines, size_t step, size_t length, const StepPlan& plan,
                       const Ends& ends, size_t base, size_t kept, uint16_t* tables) {
    const Lanes d16;
    const size_t border = static_cast<size_t>(plan.border);
    const size_t tableRows = static_cast<size_t>(plan.tableRows);
    // Where only pixels are taken, a window leaves out what lies farther away than an output's
    // neighbours.
    const bool far = tableCount(plan) > 1 || !hasWindow(plan);
    const auto local = [&](size_t row) {
        return std::min(std::max(row, base + kept) - base, tableRows);
    };
    size_t i = far ? kept : local(border - std::min(border, kOutputs));
    for (const size_t end = local(border); i < end; ++i) {
        hn::Store(ends.first, d16, tables + i * kLines);
    }
    for (const size_t end = local(border + length); i < end; ++i) {
        hn::Store(channelOf<kChannel>(lines + (base + i - border) * step), d16,
                  tables + i * kLines);
    }
    for (const size_t end = far ? tableRows : local(border + length + kOutputs); i < end; ++i) {
        hn::Store(ends.last, d16, tables + i * kLines);
    }
    for (size_t t = 0; t < plan.distanceCount; ++t) {
        const size_t distance = static_cast<size_t>(plan.distances[t]);
        uint16_t* table = tables + (1 + t) * tableRows * kLines;
        for (i = std::max(kept, distance) - distance; i + distance < tableRows; ++i) {
            const auto early = hn::Load(d16, tables + i * kLines);
            const auto late = hn::Load(d16, tables + (i + distance) * kLines);
            hn::Store(hn::Add(early, late), d16, table + i * kLines);
        }
    }
    if (!plan.prefixSums) return;
    uint16_t* const sums = tables + (1 + plan.distanceCount) * tableRows * kLines;
    auto sum = kept > 0 ? hn::Load(d16, sums + (kept - 1) * kLines) : hn::Zero(d16);
    for (i = kept; i < tableRows; ++i) {
        sum = hn::Add(sum, hn::Load(d16, tables + i * kLines));
        hn::Store(sum, d16, sums + i * kLines);
    }
}

HWY_INLINE WideVector firstSum(const StepPlan& plan, const uint16_t* tables) {
    const Pixels d;
    WideVector sum = {hn::Zero(d), hn::Zero(d)};
    for (size_t i = 0; i <= static_cast<size_t>(plan.reach); ++i) {
        const size_t row = static_cast<size_t>(plan.border) + i;
        const WideVector bytes = widen(hn::Load(Lanes(), tables + row * kLines));
        const auto weight = hn::Set(d, plan.start[i]);
        sum.lower = hn::Add(sum.lower, hn::Mul(bytes.lower, weight));
        sum.upper = hn::Add(sum.upper, hn::Mul(bytes.upper, weight));
    }
    return sum;
}

// At and beyond the ends of a line all pixels are alike, so the terms of pixels that take those add
// up to a multiple of one pixel, modulo 65536 like the terms themselves. A kernel as wide as the
// line has half of its terms there. Kept for plans of a single piece: those of kernels whose
// largest weight is 128 at most, of a radius beyond two hundred.
struct Window {
    StepTerms within[3];  // of the piece, added, subtracted and weighted: from `pixels` to `end`
    uint32_t before, behind;  // what the terms beyond either end weigh together
};

HWY_INLINE uint32_t weightOf(const StepPlan& plan, size_t term) {
    return plan.terms[term].weight & 0xFFFF;
}

// In front of the first output, with all terms before the line.
HWY_INLINE Window windowOf(const StepPlan& plan) {
    const StepPiece& piece = plan.pieces[0];
    Window window = {{piece.added, piece.subtracted, piece.weighted}, 0, 0};
    for (StepTerms& terms : window.within) {
        for (size_t t = terms.pixels; t < terms.end; ++t) window.before += weightOf(plan, t);
        terms.pixels = terms.end;
    }
    return window;
}

// Takes the window on to the outputs y to y + kOutputs - 1; y only grows. Rows grow with it, so
// terms come in from the highest row down and go out the same way. In front is a term whose last
// row is pixel 0's or before; behind, one whose first row lies past the last pixel's.
HWY_INLINE void moveWindow(const StepPlan& plan, size_t length, size_t y, Window& window) {
    const StepPiece& piece = plan.pieces[0];
    const size_t first[] = {piece.added.pixels, piece.subtracted.pixels, piece.weighted.pixels};
    const size_t border = static_cast<size_t>(plan.border);
    const auto row = [&](size_t term) { return static_cast<size_t>(plan.terms[term].row) + y; };
    for (size_t k = 0; k < 3; ++k) {
        StepTerms& terms = window.within[k];
        for (; terms.pixels > first[k]; --terms.pixels) {
            if (row(terms.pixels - 1) + kOutputs <= border + 1) break;
            window.before -= weightOf(plan, terms.pixels - 1);
        }
        for (; terms.end > terms.pixels; --terms.end) {
            if (row(terms.end - 1) < border + length) break;
            window.behind += weightOf(plan, terms.end - 1);
        }
    }
}

// What a piece adds to kOutputs sums: parts[o] to that of output y + o, from 0 to 65535 with the
// bias. `first` is the row of the tables that output y's terms count from.
HWY_INLINE void partsOf(const StepPlan& plan, const StepPiece& piece, const uint16_t* first,
                        const Ends& ends, size_t length, size_t y, Window& window,
                        LaneVector parts[kOutputs]) {
    const Lanes d16;
    const auto forTerms = [&](size_t begin, size_t end, auto operation) HWY_ATTR {
        for (size_t t = begin; t < end; ++t) {
            const StepTerm& term = plan.terms[t];
            const uint16_t* row = first + static_cast<size_t>(term.row) * kLines;
            for (size_t o = 0; o < kOutputs; ++o) {
                parts[o] = operation(parts[o], hn::Load(d16, row + o * kLines), term);
            }
        }
    };
    const auto add = [](LaneVector part, LaneVector row, const StepTerm&)
                         HWY_ATTR { return hn::Add(part, row); };
    const auto subtract = [](LaneVector part, LaneVector row, const StepTerm&)
                              HWY_ATTR { return hn::Sub(part, row); };
    const auto addWeighted = [](LaneVector part, LaneVector row, const StepTerm& term) HWY_ATTR {
        const auto weight = hn::BitCast(Lanes(), hn::Set(Pixels(), term.weight));
        return hn::Add(part, hn::Mul(weight, row));
    };
    const auto start = hn::BitCast(d16, hn::Set(Pixels(), piece.bias));
    for (size_t o = 0; o < kOutputs; ++o) parts[o] = start;
    if (!hasWindow(plan)) {
        forTerms(piece.added.begin, piece.added.end, add);
        forTerms(piece.subtracted.begin, piece.subtracted.end, subtract);
        forTerms(piece.weighted.begin, piece.weighted.end, addWeighted);
        return;
    }
    moveWindow(plan, length, y, window);
    const auto times = [&](LaneVector pixels, uint32_t weight) HWY_ATTR {
        return hn::Mul(pixels, hn::Set(d16, static_cast<uint16_t>(weight)));
    };
    const auto beyond = hn::Add(times(ends.first, window.before), times(ends.last, window.behind));
    for (size_t o = 0; o < kOutputs; ++o) parts[o] = hn::Add(parts[o], beyond);
    forTerms(piece.added.begin, piece.added.pixels, add);
    forTerms(window.within[0].pixels, window.within[0].end, add);
    forTerms(piece.subtracted.begin, piece.subtracted.pixels, subtract);
    forTerms(window.within[1].pixels, window.within[1].end, subtract);
    forTerms(piece.weighted.begin, piece.weighted.pixels, addWeighted);
    forTerms(window.within[2].pixels, window.within[2].end, addWeighted);
}

// The differences of kOutputs sums to the ones before them, from output `y` on.
HWY_INLINE void differencesOf(const StepPlan& plan, const uint16_t* first, const Ends& ends,
                              size_t length, size_t y, Window& window,
                              WideVector difference[kOutputs]) {
    const Pixels d;
    for (size_t o = 0; o < kOutputs; ++o) {
        difference[o].lower = difference[o].upper = hn::Set(d, 0u - plan.bias);
    }
    for (size_t p = 0; p < plan.pieceCount; ++p) {
        LaneVector parts[kOutputs];
        partsOf(plan, plan.pieces[p], first, ends, length, y, window, parts);
        for (size_t o = 0; o < kOutputs; ++o) {
            const WideVector wide = widen(parts[o]);
            difference[o].lower = hn::Add(difference[o].lower, wide.lower);
            difference[o].upper = hn::Add(difference[o].upper, wide.upper);
        }
    }
}

template <bool kNear, int kChannel>
HWY_INLINE void blurChannel(uint32_t* lines, size_t step, size_t length, const PassPlan& plan,
                            uint16_t* tables) {
    const StepPlan& steps = plan.steps;
    const size_t chunk = static_cast<size_t>(steps.chunk);
    const size_t tableRows = static_cast<size_t>(steps.tableRows), kept = tableRows - chunk;
    const Ends ends = {channelOf<kChannel>(lines),
                       channelOf<kChannel>(lines + (length - 1) * step)};
    layOut<kChannel>(lines, step, length, steps, ends, 0, 0, tables);
    WideVector sum = firstSum(steps, tables);
    if (kNear) {  // once: every later sum is this one plus differences
        const auto complement = hn::Set(Pixels(), plan.divisor.complement);
        sum = {hn::Add(sum.lower, complement), hn::Add(sum.upper, complement)};
    }
    putChannel<kNear, kChannel>(sum, plan.divisor, lines);
    Window window = windowOf(steps);
    for (size_t base = 0; base + 1 < length; base += chunk) {
        if (base > 0) {
            for (size_t t = 0; t < tableCount(steps); ++t) {
                uint16_t* const table = tables + t * tableRows * kLines;
                std::memmove(table, table + chunk * kLines, kept * kLines * sizeof(uint16_t));
            }
            layOut<kChannel>(lines, step, length, steps, ends, base, kept, tables);
        }
        const size_t end = std::min(length, base + chunk + 1);
        for (size_t y = base + 1; y < end; y += kOutputs) {
            WideVector difference[kOutputs];
            differencesOf(steps, tables + (y - base) * kLines, ends, length, y, window, difference);
            for (size_t o = 0; o < kOutputs && y + o < length; ++o) {
                sum.lower = hn::Add(sum.lower, difference[o].lower);
                sum.upper = hn::Add(sum.upper, difference[o].upper);
                putChannel<kNear, kChannel>(sum, plan.divisor, lines + (y + o) * step);
            }
        }
    }
}

// Blurs kLines lines, in place: pixel i of the lines is the kLines words at lines + i * step.
HWY_NOINLINE void blurLines(uint32_t* lines, size_t step, size_t length, const PassPlan& plan,
                            uint16_t* tables) {
    const auto blur = [&](auto near) HWY_ATTR {
        blurChannel<near(), 0>(lines, step, length, plan, tables);
        blurChannel<near(), 1>(lines, step, length, plan, tables);
        blurChannel<near(), 2>(lines, step, length, plan, tables);
    };
    plan.divisor.complement <= kNearComplement ? blur(std::true_type()) : blur(std::false_type());
}

void blurRowsBySteps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    uint32_t* tile = alignedScratch(scratch);
    uint16_t* tables = reinterpret_cast<uint16_t*>(tile + width * kLines);
    for (size_t y = 0; y < height; y += kLines) {
        const size_t lines = std::min(kLines, height - y);
        uint32_t* from = bitmap.pixels + y * width;
        gatherRows(from, width, lines, width, tile, kLines);
        blurLines(tile, kLines, width, plan, tables);
        scatterRows(tile, kLines, lines, width, from, width);
    }
}

void blurColumnsBySteps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    const size_t width = static_cast<size_t>(bitmap.width);
    const size_t height = static_cast<size_t>(bitmap.height);
    uint32_t* tile = alignedScratch(scratch);
    uint16_t* tables = reinterpret_cast<uint16_t*>(tile + height * kLines);
    for (size_t x = 0; x < width; x += kLines) {
        const size_t lines = std::min(kLines, width - x);
        copyLines(bitmap.pixels + x, width, lines, height, tile, kLines);
        blurLines(tile, kLines, height, plan, tables);
        copyLines(tile, kLines, lines, height, bitmap.pixels + x, width);
    }
}

size_t stepScratchWords(const PassPlan& plan, size_t length, size_t) {
    const size_t rows = tableCount(plan.steps) * static_cast<size_t>(plan.steps.tableRows);
    return 16 + length * kLines + rows * kLines / 2;
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(blurRowsBySteps);
HWY_EXPORT(blurColumnsBySteps);
HWY_EXPORT(stepScratchWords);

void blurRowsBySteps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurRowsBySteps)(bitmap, plan, scratch);
}

void blurColumnsBySteps(const BitmapStruct& bitmap, const PassPlan& plan, uint32_t* scratch) {
    HWY_DYNAMIC_DISPATCH(blurColumnsBySteps)(bitmap, plan, scratch);
}

size_t stepScratchWords(const PassPlan& plan, size_t length, size_t lines) {
    return HWY_DYNAMIC_DISPATCH(stepScratchWords)(plan, length, lines);
}
}  // namespace android
#endif
