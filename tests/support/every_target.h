#pragma once

#include <gtest/gtest.h>

#include <hwy/highway.h>
#include <hwy/targets.h>

// Runs `check` once for every instruction set that the library is compiled for and this processor
// has, named in what a failure prints. Where the library knows only one, once.
template <typename Check>
void onEveryTarget(Check check) {
#ifdef HWY_COMPILE_ONLY_STATIC
    check();
#else
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
#endif
}
