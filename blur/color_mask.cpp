#include "blur/color_mask.h"

#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "blur/color_mask.cpp"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"

// A word is two lanes of 16 bits, whose lower bytes are red and blue and whose upper ones green and
// alpha. Products and sums of bytes that add up to at most 65025 stay in such a lane, and the upper
// bytes' results already stand where they belong:
//
//     red, blue       ((255 - a) * (lane & 255) + a * colour) >> 8
//     green           ((255 - a) * (lane >> 8)  + a * colour) & 0xFF00
//     alpha                   0  * (lane >> 8)  + 0xFF00

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace {

void blendColor(uint32_t* pixels, size_t count, uint32_t color) {
    const uint32_t alpha = color >> 24;
    const uint32_t keep = 255 - alpha;
    const uint32_t red = alpha * (color >> 16 & 0xFF);
    const uint32_t green = alpha * (color >> 8 & 0xFF);
    const uint32_t blue = alpha * (color & 0xFF);
    size_t i = 0;
    const hn::ScalableTag<uint32_t> d;
    const hn::Repartition<uint16_t, decltype(d)> d16;
    const auto pair = [&](uint32_t upper, uint32_t lower) {
        return hn::BitCast(d16, hn::Set(d, upper << 16 | lower));
    };
    const auto keepLower = pair(keep, keep), addLower = pair(blue, red);
    const auto keepUpper = pair(0, keep), addUpper = pair(0xFF00, green);
    const auto lowerBytes = pair(0xFF, 0xFF), upperBytes = pair(0xFF00, 0xFF00);
    const auto blend = [&](uint32_t* at) {
        const auto old = hn::BitCast(d16, hn::LoadU(d, at));
        const auto lower = hn::Add(hn::Mul(hn::And(old, lowerBytes), keepLower), addLower);
        const auto upper = hn::Add(hn::Mul(hn::ShiftRight<8>(old), keepUpper), addUpper);
        const auto both = hn::Or(hn::ShiftRight<8>(lower), hn::And(upper, upperBytes));
        hn::StoreU(hn::BitCast(d, both), d, at);
    };
    const size_t lanes = hn::Lanes(d);
    for (; count - i >= 4 * lanes; i += 4 * lanes) {
        for (size_t v = 0; v < 4; ++v) blend(pixels + i + v * lanes);
    }
    for (; count - i >= lanes; i += lanes) blend(pixels + i);
    for (; i < count; ++i) {  // fewer pixels than one vector holds
        const uint32_t old = pixels[i];
        pixels[i] = (keep * (old & 0xFF) + red) >> 8 |
                    (keep * (old >> 8 & 0xFF) + green) >> 8 << 8 |
                    (keep * (old >> 16 & 0xFF) + blue) >> 8 << 16 | 0xFF000000;
    }
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(blendColor);

void addMask(BitmapStruct* bitmap, uint32_t color) {
    if (bitmap->width < 2 || bitmap->height < 2) return;
    // Unsigned, because the count of a view beyond the data model wraps.
    const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(bitmap->width) *
                                               static_cast<uint32_t>(bitmap->height));
    if (count < 1) return;
    HWY_DYNAMIC_DISPATCH(blendColor)(bitmap->pixels, static_cast<size_t>(count), color);
}

}  // namespace android
#endif
