#include <gtest/gtest.h>

#include "jni/native_methods.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

// What the three image natives share: reading, locking and unlocking a bitmap.

namespace {

using Lines = std::vector<std::string>;
const Lines kNotLocked = {"getInfo"}, kLockTried = {"getInfo", "lock"},
            kBalanced = {"getInfo", "lock", "unlock"};

struct Native {
    const char* name;
    jint result;  // for a 4 x 3 bitmap of (200, 0, 0)
    jint (*call)(FakePlatform& platform);
};

const Native kNatives[] = {
    {"getBlurEffect", -1,
     [](FakePlatform& platform) {
         platform.native<decltype(android::getBlurEffect)>("getBlurEffect")(
             platform.env(), nullptr, platform.bitmap(), 1.0f, 0xFF000000);
         return jint{-1};
     }},
    {"getBitmapGray", 59,
     [](FakePlatform& platform) {
         return platform.native<decltype(android::getBitmapGray)>("getBitmapGray")(
             platform.env(), nullptr, platform.bitmap());
     }},
    {"getBitmapColorCast", static_cast<jint>(0xFFCC7F66),
     [](FakePlatform& platform) {
         return platform.native<decltype(android::getBitmapColorCast)>("getBitmapColorCast")(
             platform.env(), nullptr, platform.bitmap(), 50, 80);
     }},
};

struct Row {
    const char* name;
    AndroidBitmapInfo info;
    int infoResult, lockResult;
    const Lines& calls;
    bool works = false;  // otherwise -1, or a silent return
};

constexpr int32_t kRgba = ANDROID_BITMAP_FORMAT_RGBA_8888;
const Row kRows[] = {
    {"works", {4, 3, 16, kRgba, 0}, 0, 0, kBalanced, true},
    {"no sign, no failure; no flags read", {4, 3, 16, kRgba, ~0u}, 1, 1, kBalanced, true},
    {"info fails hard", {4, 3, 16, kRgba, 0}, INT32_MIN, 0, kNotLocked},
    {"lock fails", {4, 3, 16, kRgba, 0}, 0, -3, kLockTried},
    {"count wraps to 0", {65536, 65536, 262144, kRgba, 0}, 0, 0, kNotLocked},
    {"count wraps to 65536", {65537, 65536, 262148, kRgba, 0}, 0, 0, kNotLocked},
    {"count just too large", {46341, 46341, 185364, kRgba, 0}, 0, 0, kNotLocked},
    {"one column", {1, 12, 4, kRgba, 0}, 0, 0, kBalanced},
    {"one row", {12, 1, 48, kRgba, 0}, 0, 0, kBalanced},
};

// Every format in every stride that one of them has, and around: one of them all is read.
TEST(BitmapFrame, ReadsOneFormatInOneStride) {
    Image image(4, 3, 0x12345678);
    for (const Native& native : kNatives) {
        for (const int32_t format :
             {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 256 + kRgba, INT32_MAX}) {
            for (const uint32_t stride : {0u, 1u, 4u, 8u, 12u, 15u, 16u, 17u, 20u, 32u, ~0u - 15}) {
                FakePlatform platform;
                platform.showBitmap(image);
                platform.info.format = format;
                platform.info.stride = stride;
                native.call(platform);
                EXPECT_EQ(platform.calls == kBalanced, format == kRgba && stride == 16)
                    << native.name << " format " << format << " stride " << stride;
            }
        }
    }
}

// Sides at every limit. What is locked has no pixel to touch or only one row or column, and its
// one word stands at a page's end.
TEST(BitmapFrame, NoSideLeadsOutOfThePixels) {
    const uint32_t sides[] = {0, 1, INT32_MAX, 0x80000000, UINT32_MAX};
    for (const Native& native : kNatives) {
        for (const uint32_t width : sides) {
            for (const uint32_t height : sides) {
                SCOPED_TRACE(testing::Message() << native.name << ' ' << width << " x " << height);
                FakePlatform platform;
                Image image(1, 1, 0x12345678);
                platform.showBitmap(image);
                platform.info.width = width;
                platform.info.height = height;
                platform.info.stride = 4 * width;
                EXPECT_EQ(native.call(platform), -1);
                const bool fits = width < UINT32_MAX / 4 && uint64_t{width} * height <= INT32_MAX;
                EXPECT_EQ(platform.calls, fits ? kBalanced : kNotLocked);
                EXPECT_EQ(image.words()[0], 0x12345678u);
            }
        }
    }
}

TEST(BitmapFrame, LocksWorksAndUnlocksOnce) {
    const std::vector<uint32_t> red(12, 0x800000C8);
    for (const Native& native : kNatives) {
        for (const Row& row : kRows) {
            SCOPED_TRACE(std::string(native.name) + " " + row.name);
            FakePlatform platform;
            FakeLibc libc;
            Image image(4, 3, red);
            platform.showBitmap(image);
            platform.info = row.info;
            platform.infoResult = row.infoResult;
            platform.lockResult = row.lockResult;
            platform.unlockResult = -1;  // nobody looks
            EXPECT_EQ(native.call(platform), row.works ? native.result : -1);
            EXPECT_EQ(image.words() != red, row.works && native.result == -1);
            EXPECT_EQ(platform.calls, row.calls);
            EXPECT_EQ(platform.log, Lines{});
            EXPECT_TRUE(row.calls == kBalanced || libc.allocations == 0);
            EXPECT_TRUE(libc.balanced());
        }
    }
}

}  // namespace
