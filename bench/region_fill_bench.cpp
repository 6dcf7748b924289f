#include "blur/region_fill.h"

#include "bench/support.h"

namespace {

// The middle half of a picture, widened or heightened to the whole.
const Suite suite([] {
    for (const Size size : sizes()) {
        const int64_t bytes = int64_t{6} * size.width * size.height;
        add(
            "widen", "zoren", size, "",
            [=]() -> Work {
                return [=] {
                    android::BitmapStruct from = picture(size), to = canvas(size);
                    from.width /= 2;
                    android::fillBitmapRegionHorizontal(&from, &to);
                };
            },
            bytes);
        add(
            "heighten", "zoren", size, "",
            [=]() -> Work {
                return [=] {
                    android::BitmapStruct from = picture(size), to = canvas(size);
                    from.height /= 2;
                    android::fillBitmapRegionVertical(&from, &to);
                };
            },
            bytes);
    }
});

}  // namespace
