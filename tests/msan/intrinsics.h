// Included in front of every source under MemorySanitizer, which does not know some instructions of
// AVX-512 and demands that all their lanes be written. Lanes without a line of the picture are not,
// and what comes of them is dropped. So operations that it knows stand in.

#pragma once

#include <immintrin.h>

// In two halves.
#define ZOREN_BY_HALVES(name, half)                                                                \
    __attribute__((always_inline, target("avx512bw"))) inline __m512i name(__m512i a, __m512i b) { \
        const __m256i lower = half(_mm512_castsi512_si256(a), _mm512_castsi512_si256(b));          \
        const __m256i upper =                                                                      \
            half(_mm512_extracti64x4_epi64(a, 1), _mm512_extracti64x4_epi64(b, 1));                \
        return _mm512_inserti64x4(_mm512_castsi256_si512(lower), upper, 1);                        \
    }
ZOREN_BY_HALVES(multiplyAddHalves, _mm256_madd_epi16)
ZOREN_BY_HALVES(packHalves, _mm256_packs_epi32)
#define _mm512_madd_epi16 multiplyAddHalves
#define _mm512_packs_epi32 packHalves

// Bit abc of the table is what becomes of bits a, b and c: a sum of products.
#define ZOREN_PRODUCT(table, abc)                                                         \
    ((table) >> (abc)&1                                                                   \
         ? ((abc)&4 ? of_a : ~of_a) & ((abc)&2 ? of_b : ~of_b) & ((abc)&1 ? of_c : ~of_c) \
         : decltype(of_a){})
#define ZOREN_TERNARY(a, b, c, table)                                                     \
    ({                                                                                    \
        const auto of_a = (a), of_b = (b), of_c = (c);                                    \
        ZOREN_PRODUCT(table, 0) | ZOREN_PRODUCT(table, 1) | ZOREN_PRODUCT(table, 2) |     \
            ZOREN_PRODUCT(table, 3) | ZOREN_PRODUCT(table, 4) | ZOREN_PRODUCT(table, 5) | \
            ZOREN_PRODUCT(table, 6) | ZOREN_PRODUCT(table, 7);                            \
    })
#undef _mm_ternarylogic_epi32
#undef _mm_ternarylogic_epi64
#undef _mm256_ternarylogic_epi32
#undef _mm256_ternarylogic_epi64
#undef _mm512_ternarylogic_epi32
#undef _mm512_ternarylogic_epi64
#define _mm_ternarylogic_epi32 ZOREN_TERNARY
#define _mm_ternarylogic_epi64 ZOREN_TERNARY
#define _mm256_ternarylogic_epi32 ZOREN_TERNARY
#define _mm256_ternarylogic_epi64 ZOREN_TERNARY
#define _mm512_ternarylogic_epi32 ZOREN_TERNARY
#define _mm512_ternarylogic_epi64 ZOREN_TERNARY
