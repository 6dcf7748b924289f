# Highway, for kernels that are written once and compiled for each instruction set.
find_path(ZOREN_HIGHWAY_INCLUDE hwy/highway.h REQUIRED)  # where the compiler looks anyway
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)")
    # NEON is always there: nothing to choose, so no libhwy and no state.
    set(ZOREN_HIGHWAY_DEFINITIONS HWY_COMPILE_ONLY_STATIC)
    set(ZOREN_HIGHWAY_LIBRARY "")
else()
    # AVX-512 with its multiply-add to a sum, AVX2, SSE4 and the portable target are compiled, and the
    # processor chooses. SSSE3 is no faster than SSE4, and the first AVX-512 measured no faster than
    # AVX2.
    set(ZOREN_HIGHWAY_DEFINITIONS
        HWY_WANT_AVX3_DL "HWY_DISABLED_TARGETS=(HWY_SSSE3|HWY_AVX3)")
    find_library(ZOREN_HIGHWAY_LIBRARY hwy REQUIRED)
    # Highway compiles its AVX-512 target for processors with AVX-VNNI, which some that have AVX-512
    # lack. The kernels never use those instructions, and a compiler that makes no vectors by itself
    # does not either.
    set(ZOREN_HIGHWAY_OPTIONS -fno-tree-vectorize -fno-slp-vectorize)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        # GCC's portable target lacks the shuffles that the kernels need, so SSE4 takes its place.
        set(ZOREN_HIGHWAY_OPTIONS -fno-tree-vectorize -msse4.2 -maes -mpclmul)
    endif()
endif()
