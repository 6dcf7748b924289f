// libyuv's blend of two pictures beside the mask. The colour laid over is one row that stays in the
// cache, its alpha multiplied in as the blend expects it.

#include <libyuv.h>

#include <algorithm>
#include <vector>

#include "bench/support.h"
#include "blur/color_mask.h"

namespace {

void blend(const android::BitmapStruct& bitmap, const std::vector<uint32_t>& color) {
    uint8_t* pixels = reinterpret_cast<uint8_t*>(bitmap.pixels);
    libyuv::ARGBBlend(reinterpret_cast<const uint8_t*>(color.data()), 0, pixels, 4 * bitmap.width,
                      pixels, 4 * bitmap.width, bitmap.width, bitmap.height);
}

Difference blendDifference(Size size, const std::vector<uint32_t>& color) {
    const android::BitmapStruct from = picture(size), blended = canvas(size);
    const int64_t count = int64_t{size.width} * size.height;
    std::vector<uint32_t> pixels(from.pixels, from.pixels + count);
    std::copy(from.pixels, from.pixels + count, blended.pixels);
    blend(blended, color);
    android::BitmapStruct defined = {size.width, size.height, pixels.data()};
    android::addMask(&defined, 0x40FF8800);
    return difference(defined, reinterpret_cast<const uint8_t*>(blended.pixels), 4);
}

const Suite suite([] {
    for (const Size size : sizes()) {
        const std::vector<uint32_t> color(static_cast<size_t>(size.width), 0x40002240);
        add(
            "mask", "libyuv::ARGBBlend", size, "",
            [=]() -> Work { return [=] { blend(canvas(size), color); }; }, 0,
            [=] { return blendDifference(size, color); });
    }
});

}  // namespace
