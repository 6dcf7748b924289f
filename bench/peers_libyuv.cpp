// libyuv's blend of two pictures beside the mask. The colour laid over is one row that stays in the
// cache, its alpha multiplied in as the blend expects it.

#include <libyuv.h>

#include <vector>

#include "bench/support.h"

namespace {

const Suite suite([] {
    for (const Size size : sizes()) {
        add("mask", "libyuv::ARGBBlend", size, "", [=]() -> Work {
            const std::vector<uint32_t> color(static_cast<size_t>(size.width), 0x40002240);
            return [=] {
                const android::BitmapStruct bitmap = canvas(size);
                uint8_t* pixels = reinterpret_cast<uint8_t*>(bitmap.pixels);
                libyuv::ARGBBlend(reinterpret_cast<const uint8_t*>(color.data()), 0, pixels,
                                  4 * size.width, pixels, 4 * size.width, size.width, size.height);
            };
        });
    }
});

}  // namespace
