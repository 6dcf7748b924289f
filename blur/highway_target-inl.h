// What a file of kernels that multiply and add to sums includes behind Highway itself, once per
// instruction set, so no guard: the instruction set's features, where Highway's own list lacks one.

#include "hwy/highway.h"

#if HWY_TARGET == HWY_AVX3_DL
// Highway's list for this target lacks the instruction that multiplies and adds to the sums. It has
// its twin for narrower vectors, which not every processor of this target knows: those must not
// meet a multiply-add and an addition of its sum.
#undef HWY_TARGET_STR
#define HWY_TARGET_STR  \
    HWY_TARGET_STR_AVX3 \
    ",vpclmulqdq,avx512vbmi,avx512vbmi2,vaes,avxvnni,avx512bitalg,avx512vpopcntdq,avx512vnni"
#endif
