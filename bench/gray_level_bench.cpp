#include "analysis/gray_level.h"

#include "bench/support.h"

namespace {

const Suite suite([] {
    for (const Size size : sizes()) {
        add(
            "gray", "zoren", size, "",
            [=]() -> Work {
                return [bitmap = picture(size)] {
                    benchmark::DoNotOptimize(android::RGB2Gray(&bitmap));
                };
            },
            int64_t{4} * size.width * size.height);
    }
});

}  // namespace
