#include <cstring>

#include "fuzz/targets.h"

// The entry of a libFuzzer program for the one target that the build named.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::Target run = [] {
        size_t i = 0;
        while (std::strcmp(fuzz::kTargets[i].name, ZOREN_FUZZ_TARGET) != 0) ++i;
        return fuzz::kTargets[i].run;
    }();
    run(data, size);
    return 0;
}
