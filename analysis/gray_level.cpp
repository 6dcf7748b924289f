#include "analysis/gray_level.h"

namespace android {
namespace {

struct ChannelSums {
    uint64_t red, green, blue;
};

ChannelSums sumChannels(const uint32_t* pixels, int32_t count) {
    ChannelSums sums = {0, 0, 0};
    for (int32_t i = 0; i < count; ++i) {
        sums.red += pixels[i] & 0xFF;
        sums.green += pixels[i] >> 8 & 0xFF;
        sums.blue += pixels[i] >> 16 & 0xFF;
    }
    return sums;
}

}  // namespace

int32_t RGB2Gray(const BitmapStruct* bitmap) {
    if (bitmap->width < 2 || bitmap->height < 2) return -1;
    // Unsigned, because the count of a view beyond the data model wraps.
    const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(bitmap->width) *
                                               static_cast<uint32_t>(bitmap->height));
    if (count < 1) return 0;
    const ChannelSums sums = sumChannels(bitmap->pixels, count);
    const float red = static_cast<float>(sums.red) * 0.299f;
    const float green = static_cast<float>(sums.green) * 0.587f;
    const float blue = static_cast<float>(sums.blue) * 0.114f;
    const float luma = blue + (green + red);  // in this order: the last bit of the sum counts
    return static_cast<int32_t>(luma / static_cast<float>(count));
}

}  // namespace android
