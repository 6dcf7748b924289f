#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"

// What the three image natives share: reading, locking and unlocking a bitmap.

namespace {

using Lines = std::vector<std::string>;
const Lines kNotLocked = {"getInfo"}, kLockTried = {"getInfo", "lock"},
            kBalanced = {"getInfo", "lock", "unlock"};

const struct Native {
    const char* name;
    jint result;  // for a 4 x 3 bitmap of (200, 0, 0)
    jint (*call)(FakePlatform& platform);
} kNatives[] = {
    {"blur", -1, [](FakePlatform& platform) { return platform.blur(1, 0xFF000000), -1; }},
    {"gray", 59, [](FakePlatform& platform) { return platform.gray(); }},
    {"cast", -0x33809A, [](FakePlatform& platform) { return platform.cast(50, 80); }},
};

constexpr int32_t kRgba = ANDROID_BITMAP_FORMAT_RGBA_8888;

Lines callsOf(const Native& native, Image& image, const AndroidBitmapInfo& info) {
    FakePlatform platform;
    platform.showBitmap(image);
    platform.info = info;
    native.call(platform);
    return platform.calls;
}

// Every format in every stride that one of them has, and around: one of them all is read.
TEST(BitmapFrame, ReadsOneFormatInOneStride) {
    Image image(4, 3, 0x12345678);
    for (const Native& native : kNatives) {
        for (const int32_t format :
             {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 256 + kRgba, INT32_MAX}) {
            for (const uint32_t stride : {0u, 1u, 4u, 8u, 12u, 15u, 16u, 17u, 20u, 32u, ~0u - 15}) {
                const bool read = callsOf(native, image, {4, 3, stride, format, 0}) == kBalanced;
                EXPECT_EQ(read, format == kRgba && stride == 16)
                    << native.name << " format " << format << " stride " << stride;
            }
        }
    }
}

// Sides at every limit, products that wrap among them. What is locked has no pixel to touch or only
// one row or column, and its one word stands at a page's end.
TEST(BitmapFrame, NoSideLeadsOutOfThePixels) {
    const uint32_t sides[] = {0, 1, 46341, 65536, 65537, INT32_MAX, 0x80000000, UINT32_MAX};
    for (const Native& native : kNatives) {
        for (const uint32_t width : sides) {
            for (const uint32_t height : sides) {
                Image image(1, 1, 0x12345678);
                const bool fits = width < UINT32_MAX / 4 && uint64_t{width} * height <= INT32_MAX;
                EXPECT_EQ(callsOf(native, image, {width, height, 4 * width, kRgba, 0}),
                          fits ? kBalanced : kNotLocked)
                    << native.name << ' ' << width << " x " << height;
                EXPECT_EQ(image.words()[0], 0x12345678u);
            }
        }
    }
}

// Only a result below 0 is a failure, and the flags are nobody's.
TEST(BitmapFrame, LocksWorksAndUnlocksOnce) {
    const std::vector<uint32_t> red(12, 0x800000C8);
    const std::tuple<int, int, Lines> rows[] = {
        {0, 0, kBalanced}, {1, 1, kBalanced}, {INT32_MIN, 0, kNotLocked}, {0, -3, kLockTried}};
    for (const Native& native : kNatives) {
        for (const auto& [info, lock, calls] : rows) {
            SCOPED_TRACE(testing::Message() << native.name << ' ' << info << ' ' << lock);
            FakePlatform platform;
            Image image(4, 3, red);
            platform.showBitmap(image);
            platform.info.flags = ~0u;
            platform.infoResult = info;
            platform.lockResult = lock;
            const bool works = calls == kBalanced;
            EXPECT_EQ(native.call(platform), works ? native.result : -1);
            EXPECT_EQ(image.words() != red, works && native.result == -1);
            EXPECT_EQ(platform.calls, calls);
        }
    }
}

}  // namespace
