#include <asm/hwcap.h>
#include <sys/auxv.h>

#include "blur/dot_blur.h"

// Apart from blur/dot_blur.cpp, whose code not every processor understands.

namespace android {

bool hasDotProducts() {
    constexpr unsigned long kBoth = HWCAP_ASIMDDP | HWCAP_ASIMDRDM;  // the second is for quotients
    return (getauxval(AT_HWCAP) & kBoth) == kBoth;
}

}  // namespace android
