#pragma once

#include <gtest/gtest.h>

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <type_traits>
#include <vector>

// The instruction sets that the library is compiled for and this processor has, the best first. On
// 64-bit ARM: by dot products of bytes, where it has those, and as if it had not.
const std::vector<int64_t>& instructionSets();

// Lets the library use this one of them alone; 0 for the best.
void useInstructionSet(int64_t target);

// Its name; what ran is told at the end of the tests.
const char* nameOfTried(int64_t target);

// Runs check(target), or check(), under each of them, named in what a failure prints.
template <typename Check>
void onEveryTarget(Check check) {
    for (const int64_t target : instructionSets()) {
        SCOPED_TRACE(nameOfTried(target));
        useInstructionSet(target);
        if constexpr (std::is_invocable_v<Check, int64_t>) {
            check(target);
        } else {
            check();
        }
    }
    useInstructionSet(0);
}

// Whether this build is as fast as a release on its own machine: not emulated, no sanitizer.
#ifndef __has_feature
#define __has_feature(feature) 0
#endif
constexpr bool kFastBuild =
#if defined(__x86_64__) && defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && \
    !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer)
    true;
#else
    false;
#endif
