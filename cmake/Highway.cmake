# Highway, for kernels that are written once and compiled for each instruction set. Whatever
# includes its headers links zoren_highway, so that all of it means the same targets.
if(NOT ZOREN_PLATFORM STREQUAL device)
    find_path(ZOREN_HIGHWAY_INCLUDE hwy/highway.h REQUIRED)  # where the compiler looks anyway
endif()
add_library(zoren_highway INTERFACE)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)")
    # NEON is always there: nothing to choose, so no libhwy and no state.
    target_compile_definitions(zoren_highway INTERFACE HWY_COMPILE_ONLY_STATIC)
else()
    # AVX-512 with its multiply-add to a sum, AVX2, SSE4 and the portable target are compiled, and the
    # processor chooses. SSSE3 is no faster than SSE4, and the first AVX-512 measured no faster than
    # AVX2.
    target_compile_definitions(zoren_highway INTERFACE
        HWY_WANT_AVX3_DL "HWY_DISABLED_TARGETS=(HWY_SSSE3|HWY_AVX3)")
    find_library(ZOREN_HIGHWAY_LIBRARY hwy REQUIRED)
    target_link_libraries(zoren_highway INTERFACE ${ZOREN_HIGHWAY_LIBRARY})
    # Highway compiles its AVX-512 target for processors with AVX-VNNI, which some that have AVX-512
    # lack. The kernels never use those instructions, and a compiler that makes no vectors by itself
    # does not either.
    target_compile_options(zoren_highway INTERFACE -fno-tree-vectorize)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU OR ZOREN_SANITIZE)
        # SSE4 takes the place of the portable target: GCC's lacks the shuffles that the kernels
        # need, and under the sanitizers it takes minutes to compile.
        target_compile_options(zoren_highway INTERFACE -msse4.2 -maes -mpclmul)
    endif()
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
        target_compile_options(zoren_highway INTERFACE -fno-slp-vectorize)
    endif()
endif()
