#include "analysis/gray_level.h"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "analysis/gray_level.cpp"
#include "hwy/cache_control.h"
#include "hwy/foreach_target.h"  // compiles the rest of this file once per instruction set
#include "hwy/highway.h"

#ifndef ANDROID_ANALYSIS_GRAY_LEVEL_SUMS_
#define ANDROID_ANALYSIS_GRAY_LEVEL_SUMS_
namespace android {

struct ChannelSums {
    uint64_t red, green, blue;
};

// A picture that no cache holds arrives a third sooner when its lines are fetched 8 KiB before they
// are read; for one that is in a cache the fetches are a twentieth more to do.
constexpr size_t kAhead = 2048, kLarge = size_t{1} << 22;  // words

}  // namespace android
#endif

HWY_BEFORE_NAMESPACE();
namespace android::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace {

// The exact sums of `count` packed pixels. A word is two lanes of 16 bits, red under green and blue
// under alpha; the lower and the upper bytes are added up as lanes, which takes four instructions a
// vector and overflows after 257 of them. So the lanes are emptied after every 256.
ChannelSums sumChannels(const uint32_t* pixels, size_t count) {
    ChannelSums sums = {0, 0, 0};
    size_t i = 0;
    const hn::ScalableTag<uint32_t> d;
    const hn::Repartition<uint16_t, decltype(d)> d16;
    const auto lowerBytes = hn::Set(d16, 0xFF);
    const auto lowerLanes = hn::Set(d, 0xFFFF);
    const size_t lanes = hn::Lanes(d);
    const bool isLarge = count >= kLarge;
    while (count - i >= lanes) {
        auto redBlue = hn::Zero(d16), green = redBlue;
        const auto add = [&](const uint32_t* from) {
            const auto words = hn::BitCast(d16, hn::LoadU(d, from));
            redBlue = hn::Add(redBlue, hn::And(words, lowerBytes));
            green = hn::Add(green, hn::ShiftRight<8>(words));
        };
        const size_t end = i + std::min((count - i) / lanes, size_t{256}) * lanes;
        const size_t ahead = std::min(kAhead, count - end);
        for (; end - i >= 4 * lanes; i += 4 * lanes) {
            if (isLarge) {
                for (size_t w = 0; w < 4 * lanes; w += 16) hwy::Prefetch(pixels + i + ahead + w);
            }
            for (size_t v = 0; v < 4; ++v) add(pixels + i + v * lanes);
        }
        for (; i < end; i += lanes) add(pixels + i);
        const auto total = [&](auto sum) { return hn::GetLane(hn::SumOfLanes(d, sum)); };
        sums.red += total(hn::And(hn::BitCast(d, redBlue), lowerLanes));
        sums.green += total(hn::And(hn::BitCast(d, green), lowerLanes));
        sums.blue += total(hn::ShiftRight<16>(hn::BitCast(d, redBlue)));
    }
    for (; i < count; ++i) {  // fewer pixels than one vector holds
        sums.red += pixels[i] & 0xFF;
        sums.green += pixels[i] >> 8 & 0xFF;
        sums.blue += pixels[i] >> 16 & 0xFF;
    }
    return sums;
}

}  // namespace
}  // namespace android::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace android {
HWY_EXPORT(sumChannels);

int32_t RGB2Gray(const BitmapStruct* bitmap) {
    if (bitmap->width < 2 || bitmap->height < 2) return -1;
    // Unsigned, because the count of a view beyond the data model wraps.
    const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(bitmap->width) *
                                               static_cast<uint32_t>(bitmap->height));
    if (count < 1) return 0;
    const ChannelSums sums =
        HWY_DYNAMIC_DISPATCH(sumChannels)(bitmap->pixels, static_cast<size_t>(count));
    const float red = static_cast<float>(sums.red) * 0.299f;
    const float green = static_cast<float>(sums.green) * 0.587f;
    const float blue = static_cast<float>(sums.blue) * 0.114f;
    const float luma = blue + (green + red);  // in this order: the last bit of the sum counts
    return static_cast<int32_t>(luma / static_cast<float>(count));
}

}  // namespace android
#endif
