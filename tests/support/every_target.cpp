#include "tests/support/every_target.h"

#include <cstdio>
#include <string>

namespace {

std::string namesOf(int64_t targets) {
    std::string names;
    for (int64_t target = 1; target > 0; target <<= 1) {
        if ((targets & target) != 0) names += std::string(" ") + hwy::TargetName(target);
    }
    return names.empty() ? " none" : names;
}

// Says at the end which instruction sets were tried, and which the processor lacks, so that nobody
// takes the ones for the others.
class TellTargets : public testing::Environment {
    void TearDown() override {
        const int64_t tried = triedInstructionSets();
        std::printf("[ TARGETS  ] tried:%s\n", namesOf(tried).c_str());
#ifdef HWY_COMPILE_ONLY_STATIC
        const int64_t lacking = 0;
#else
        const int64_t lacking = HWY_TARGETS & ~tried & ~hwy::SupportedTargets();
#endif
        std::printf("[ TARGETS  ] lacking:%s\n", namesOf(lacking).c_str());
    }
};

const testing::Environment* const kTellTargets = testing::AddGlobalTestEnvironment(new TellTargets);

}  // namespace
