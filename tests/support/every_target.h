#pragma once

#include <gtest/gtest.h>

#include <hwy/highway.h>
#include <hwy/targets.h>

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

// Runs `check` under each of them, named in what a failure prints.
template <typename Check>
void onEveryTarget(Check check) {
    for (const int64_t target : instructionSets()) {
        SCOPED_TRACE(target == 0 ? "the only one" : hwy::TargetName(target));
        useInstructionSet(target);
        check();
    }
    useInstructionSet(0);
}
