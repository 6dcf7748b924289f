// What the processor can do at most, measured in the same run: bytes copied, read, and changed in
// place, and 16-bit multiply-adds.

#include <cstddef>
#include <vector>

#include "bench/support.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/limits_bench.cpp"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"
//
#include "blur/highway_target-inl.h"

HWY_BEFORE_NAMESPACE();
namespace bench::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The widest vectors, which the kernels use too: no loop may have less than they.
using Words = hn::ScalableTag<uint32_t>;
constexpr size_t kVectors = 4;  // a step; a picture's words are a multiple of it, 64 at most

void copyWords(const uint32_t* from, uint32_t* to, size_t count) {
    const Words d;
    const size_t lanes = hn::Lanes(d);
    for (size_t i = 0; i < count; i += kVectors * lanes) {
        for (size_t v = i; v < i + kVectors * lanes; v += lanes) {
            hn::Store(hn::Load(d, from + v), d, to + v);
        }
    }
}

uint32_t readWords(const uint32_t* from, size_t count) {
    const Words d;
    const size_t lanes = hn::Lanes(d);
    hn::Vec<Words> sums[kVectors];
    for (auto& sum : sums) sum = hn::Zero(d);
    for (size_t i = 0; i < count; i += kVectors * lanes) {
        for (size_t v = 0; v < kVectors; ++v) {
            sums[v] = hn::Xor(sums[v], hn::Load(d, from + i + v * lanes));
        }
    }
    return hn::GetLane(hn::Xor(hn::Xor(sums[0], sums[1]), hn::Xor(sums[2], sums[3])));
}

void changeWords(uint32_t* words, size_t count) {
    const Words d;
    const size_t lanes = hn::Lanes(d);
    const auto change = hn::Set(d, 0x00010101);
    for (size_t i = 0; i < count; i += kVectors * lanes) {
        for (size_t v = i; v < i + kVectors * lanes; v += lanes) {
            hn::Store(hn::Xor(hn::Load(d, words + v), change), d, words + v);
        }
    }
}

// Twelve independent sums of products over `count` values in the first-level cache, each loaded
// vector used twice: enough in flight to keep every multiplier busy. Returns the multiply-adds.
size_t multiplyAdd(const int16_t* values, size_t count, int32_t* out) {
    const hn::ScalableTag<int16_t> d16;
    const hn::RepartitionToWide<decltype(d16)> d;
    const size_t lanes = hn::Lanes(d16);
    const auto even = hn::Load(d16, values), odd = hn::Load(d16, values + lanes);
    auto a = hn::Zero(d), b = a, c = a, e = a, f = a, g = a, h = a, i = a, j = a, k = a, l = a,
         m = a;
    auto a1 = a, b1 = a, c1 = a, e1 = a, f1 = a, g1 = a, h1 = a, i1 = a, j1 = a, k1 = a, l1 = a,
         m1 = a;
    const auto both = [&](size_t at, auto& sum, auto& sum1, auto& other, auto& other1) {
        const auto value = hn::Load(d16, values + at * lanes);
        sum = hn::ReorderWidenMulAccumulate(d, value, even, sum, sum1);
        other = hn::ReorderWidenMulAccumulate(d, value, odd, other, other1);
    };
    size_t n = 0;
    for (; n + 6 * lanes <= count; n += 6 * lanes) {
        const size_t at = n / lanes;
        both(at, a, a1, b, b1);
        both(at + 1, c, c1, e, e1);
        both(at + 2, f, f1, g, g1);
        both(at + 3, h, h1, i, i1);
        both(at + 4, j, j1, k, k1);
        both(at + 5, l, l1, m, m1);
    }
    auto sum =
        hn::Add(hn::Add(hn::Add(a, b), hn::Add(c, e)), hn::Add(hn::Add(f, g), hn::Add(h, i)));
    auto sum1 = hn::Add(hn::Add(hn::Add(a1, b1), hn::Add(c1, e1)),
                        hn::Add(hn::Add(f1, g1), hn::Add(h1, i1)));
    sum = hn::Add(sum, hn::Add(hn::Add(j, k), hn::Add(l, m)));
    sum1 = hn::Add(sum1, hn::Add(hn::Add(j1, k1), hn::Add(l1, m1)));
    hn::StoreU(hn::Add(sum, sum1), d, out);
    return 2 * n;
}

}  // namespace bench::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace bench {
namespace {

HWY_EXPORT(copyWords);
HWY_EXPORT(readWords);
HWY_EXPORT(changeWords);
HWY_EXPORT(multiplyAdd);

const Suite suite([] {
    for (const Size size : sizes()) {
        const size_t count = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
        const int64_t bytes = int64_t{4} * size.width * size.height;
        const auto limit = [=](const char* name, int64_t moved, auto work) {
            add(
                "limit", name, size, "", [=]() -> Work { return work; }, moved);
        };
        limit("copy", 2 * bytes, [=] {
            HWY_DYNAMIC_DISPATCH(copyWords)(picture(size).pixels, canvas(size).pixels, count);
        });
        limit("read", bytes, [=] {
            benchmark::DoNotOptimize(HWY_DYNAMIC_DISPATCH(readWords)(picture(size).pixels, count));
        });
        limit("change", 2 * bytes, [=] {
            HWY_DYNAMIC_DISPATCH(changeWords)(canvas(size).pixels, count);
        });
    }
    // "Bytes" here are multiply-adds.
    constexpr size_t kValues = 12288;  // 24 KiB, a multiple of six vectors
    constexpr int kRounds = 64;
    add(
        "limit", "multiply-add", {kValues, kRounds}, "",
        []() -> Work {
            alignas(64) static int16_t values[kValues];
            for (size_t i = 0; i < kValues; ++i) values[i] = static_cast<int16_t>(i % 251);
            return [] {
                alignas(64) int32_t out[16];
                for (int round = 0; round < kRounds; ++round) {
                    HWY_DYNAMIC_DISPATCH(multiplyAdd)(values, kValues, out);
                    benchmark::DoNotOptimize(out);
                }
            };
        },
        int64_t{2} * kValues * kRounds);
});

}  // namespace
}  // namespace bench
#endif
