# Highway, for kernels that are written once and compiled for each instruction set.
find_path(ZOREN_HIGHWAY_INCLUDE hwy/highway.h REQUIRED)  # where the compiler looks anyway
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)")
    # NEON is always there: nothing to choose, so no libhwy and no state.
    set(ZOREN_HIGHWAY_DEFINITIONS HWY_COMPILE_ONLY_STATIC)
    set(ZOREN_HIGHWAY_LIBRARY "")
else()
    # AVX2, SSE4 and the portable target are compiled, and the processor chooses. SSSE3 is no faster
    # than SSE4, and AVX-512 measured no faster than AVX2 here.
    set(ZOREN_HIGHWAY_DEFINITIONS "HWY_DISABLED_TARGETS=(HWY_SSSE3|HWY_AVX3)")
    find_library(ZOREN_HIGHWAY_LIBRARY hwy REQUIRED)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        # GCC's portable target lacks the shuffles that the kernels need, so SSE4 takes its place.
        set(ZOREN_HIGHWAY_OPTIONS -msse4.2 -maes -mpclmul)
    endif()
endif()
