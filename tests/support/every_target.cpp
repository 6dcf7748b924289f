#include "tests/support/every_target.h"

#include <sys/auxv.h>

#include <cstdio>
#include <optional>
#include <string>

#include "tests/support/import_patch.h"

namespace {

#ifdef HWY_COMPILE_ONLY_STATIC

enum : int64_t { kDots = 1, kNoDots = 2, kAll = kDots | kNoDots };

const char* nameOf(int64_t target) { return target == kDots ? "NEON_DOTS" : "NEON"; }

int64_t lacking() { return (getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0 ? 0 : kDots; }

unsigned long withoutDots(unsigned long type) {
    const unsigned long dots = type == AT_HWCAP ? HWCAP_ASIMDDP : 0;
    return getauxval(type) & ~dots;
}

#else

constexpr int64_t kAll = HWY_TARGETS;

const char* nameOf(int64_t target) { return hwy::TargetName(target); }

int64_t lacking() { return kAll & ~hwy::SupportedTargets(); }

#endif

int64_t tried = 0;

std::string namesOf(int64_t targets) {
    std::string names;
    for (int64_t target = 1; target > 0; target <<= 1) {
        if ((targets & target) != 0) names += std::string(" ") + nameOf(target);
    }
    return names.empty() ? " none" : names;
}

// Says at the end which instruction sets were tried, and which the processor lacks, so that nobody
// takes the ones for the others.
class TellTargets : public testing::Environment {
    void TearDown() override {
        useInstructionSet(0);
        std::printf("[ TARGETS  ] tried:%s\n", namesOf(tried).c_str());
        std::printf("[ TARGETS  ] lacking:%s\n", namesOf(lacking() & ~tried).c_str());
    }
};

const testing::Environment* const kTellTargets = testing::AddGlobalTestEnvironment(new TellTargets);

}  // namespace

const std::vector<int64_t>& instructionSets() {
    // Asked once: while one is used alone, no other seems to be there.
    static const std::vector<int64_t> sets = [] {
        std::vector<int64_t> there;
        for (int64_t target = 1; target > 0; target <<= 1) {
            if ((kAll & ~lacking() & target) != 0) there.push_back(target);
        }
        return there;
    }();
    return sets;
}

const char* nameOfTried(int64_t target) {
    tried |= target;
    return nameOf(target);
}

void useInstructionSet(int64_t target) {
#ifdef HWY_COMPILE_ONLY_STATIC
    static std::optional<ImportPatch> patch;
    patch.reset();
    if (target == kNoDots) patch.emplace("getauxval", reinterpret_cast<void*>(withoutDots));
#else
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
#endif
}
