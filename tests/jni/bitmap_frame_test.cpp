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
    {"info fails", {4, 3, 16, kRgba, 0}, -1, 0, kNotLocked},
    {"info fails hard", {4, 3, 16, kRgba, 0}, INT32_MIN, 0, kNotLocked},
    {"lock fails", {4, 3, 16, kRgba, 0}, 0, -3, kLockTried},
    {"565", {4, 3, 8, ANDROID_BITMAP_FORMAT_RGB_565, 0}, 0, 0, kNotLocked},
    {"alpha in wide rows", {4, 3, 16, ANDROID_BITMAP_FORMAT_A_8, 0}, 0, 0, kNotLocked},
    {"rows apart", {4, 3, 20, kRgba, 0}, 0, 0, kNotLocked},
    {"rows too short", {4, 3, 12, kRgba, 0}, 0, 0, kNotLocked},
    {"count wraps to 0", {65536, 65536, 262144, kRgba, 0}, 0, 0, kNotLocked},
    {"count wraps to 65536", {65537, 65536, 262148, kRgba, 0}, 0, 0, kNotLocked},
    {"count just too large", {46341, 46341, 185364, kRgba, 0}, 0, 0, kNotLocked},
    {"largest count", {1, INT32_MAX, 4, kRgba, 0}, 0, 0, kBalanced},
    {"one column", {1, 12, 4, kRgba, 0}, 0, 0, kBalanced},
    {"one row", {12, 1, 48, kRgba, 0}, 0, 0, kBalanced},
    {"empty", {0, 0, 0, kRgba, 0}, 0, 0, kBalanced},
};

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
