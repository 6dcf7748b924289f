#pragma once

#include <gtest/gtest.h>

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <type_traits>
#include <vector>

// The instruction sets that the library is compiled for and this processor has.
inline std::vector<int64_t> instructionSets() {
#ifdef HWY_COMPILE_ONLY_STATIC
    return {0};
#else
    return hwy::SupportedAndGeneratedTargets();
#endif
}

// Lets the library use this one of them alone; 0 for the best.
inline void useInstructionSet(int64_t target) {
#ifndef HWY_COMPILE_ONLY_STATIC
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
#else
    (void)target;
#endif
}

// The instruction sets under which something ran.
inline int64_t& triedInstructionSets() {
    static int64_t tried = 0;
    return tried;
}

// Runs check(target), or check(), under each of them, named in what a failure prints.
template <typename Check>
void onEveryTarget(Check check) {
    for (const int64_t target : instructionSets()) {
        SCOPED_TRACE(target == 0 ? "the only one" : hwy::TargetName(target));
        useInstructionSet(target);
        triedInstructionSets() |= target == 0 ? HWY_STATIC_TARGET : target;
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
