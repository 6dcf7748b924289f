#include "analysis/color_cast.h"

#include "bench/support.h"

namespace {

const Suite suite([] {
    for (const Size size : sizes()) {
        add(
            "cast", "zoren", size, "",
            [=]() -> Work {
                return [bitmap = picture(size)] {
                    benchmark::DoNotOptimize(android::BitmaptoColorCast(&bitmap, 60, 90));
                };
            },
            int64_t{4} * size.width * size.height);
    }
});

}  // namespace
