#include "fuzz/targets.h"

// The entry of a libFuzzer program for the one target that the build named.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::Target run = fuzz::kTargets.at(ZOREN_FUZZ_TARGET);
    run(data, size);
    return 0;
}
