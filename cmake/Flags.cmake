# Flags of everything that is compiled here.
add_compile_options(
    # GCC and clang both fuse a multiply and an add on 64-bit ARM by default. A fused result is not
    # rounded in between: a uniform gray of 37 would measure 37 there and 36 elsewhere.
    -ffp-contract=off
    -Wall -Wextra -Wconversion -Wshadow
)
if(ZOREN_WERROR)
    add_compile_options(-Werror)
endif()

if(ZOREN_SANITIZE)
    add_compile_options(-fsanitize=${ZOREN_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZOREN_SANITIZE})
    if(ZOREN_SANITIZE MATCHES memory)
        add_compile_options("SHELL:-include ${PROJECT_SOURCE_DIR}/tests/msan/intrinsics.h")
    endif()
endif()

# Hardening: what an attacker finds writable, executable or unchecked. Sanitizers bring their own
# checks of the C library's calls, and those of _FORTIFY_SOURCE need optimization.
add_compile_options(-fstack-protector-strong)
add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
if(NOT ZOREN_SANITIZE AND NOT CMAKE_BUILD_TYPE STREQUAL Debug)
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)")
    add_compile_options(-mbranch-protection=standard)
    add_link_options(-Wl,-z,max-page-size=16384)  # phones have pages of 4 KiB, new ones of 16
endif()

# The library alone: failures are return values.
set(ZOREN_LIBRARY_FLAGS -fno-exceptions -fno-rtti)
