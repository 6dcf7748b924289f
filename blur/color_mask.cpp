#include "blur/color_mask.h"

namespace android {

void addMask(BitmapStruct* bitmap, uint32_t color) {
    if (bitmap->width < 2 || bitmap->height < 2) return;
    // Unsigned, because the count of a view beyond the data model wraps.
    const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(bitmap->width) *
                                               static_cast<uint32_t>(bitmap->height));

    const uint32_t alpha = color >> 24;
    const uint32_t keep = 255 - alpha;
    const uint32_t red = alpha * (color >> 16 & 0xFF);
    const uint32_t green = alpha * (color >> 8 & 0xFF);
    const uint32_t blue = alpha * (color & 0xFF);
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t old = bitmap->pixels[i];
        bitmap->pixels[i] = (keep * (old & 0xFF) + red) >> 8 |
                            (keep * (old >> 8 & 0xFF) + green) >> 8 << 8 |
                            (keep * (old >> 16 & 0xFF) + blue) >> 8 << 16 | 0xFF000000;
    }
}

}  // namespace android
