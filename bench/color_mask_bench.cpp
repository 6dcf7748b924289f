#include "blur/color_mask.h"

#include "bench/support.h"

namespace {

const Suite suite([] {
    for (const Size size : sizes()) {
        add(
            "mask", "zoren", size, "",
            [=]() -> Work {
                return [=] {
                    android::BitmapStruct bitmap = canvas(size);
                    android::addMask(&bitmap, 0x40FF8800);
                };
            },
            int64_t{8} * size.width * size.height);
    }
});

}  // namespace
