#include <gtest/gtest.h>

#include "jni/native_methods.h"
#include "tests/support/fake_platform.h"

extern "C" jint JNI_OnLoad(JavaVM* vm, void* reserved);

namespace {

using Lines = std::vector<std::string>;

// With which methods, a real virtual machine checks.
const Lines kClasses = {"zoren/util/BlurUtil", "zoren/util/BitmapGrayUtil",
                        "android/util/ZorenConfig", "zoren/net/ZorenTrafficStats"};

TEST(OnLoad, RegistersTheFourClassesInOrder) {
    FakePlatform platform;
    platform.failing = "registerNativeMethods";
    EXPECT_EQ(JNI_OnLoad(platform.vm(), nullptr), 0x00010004);
    EXPECT_EQ(platform.calls, Lines{"GetEnv 65540"});
    EXPECT_EQ(platform.classes, kClasses);
}

TEST(OnLoad, FailsWithoutAnEnvironment) {
    for (const jint result : {JNI_EVERSION, JNI_EDETACHED, 1}) {
        FakePlatform platform;
        platform.getEnvResult = result;
        EXPECT_EQ(JNI_OnLoad(platform.vm(), nullptr), JNI_ERR) << result;
        EXPECT_EQ(platform.classes, Lines{}) << result;
    }
}

TEST(Registration, TellsFailure) {
    int (*const functions[])(JNIEnv*) = {
        android::register_zoren_util_BlurUtil, android::register_zoren_util_BitmapGrayUtil,
        android::register_android_util_ZorenConfig, android::register_zoren_net_ZorenTrafficStats};
    for (int i = 0; i < 4; ++i) {
        FakePlatform platform;
        EXPECT_GE(functions[i](platform.env()), 0) << i;
        EXPECT_EQ(platform.classes, Lines{kClasses[i]});
        platform.failing = "registerNativeMethods";
        EXPECT_LT(functions[i](platform.env()), 0) << i;
    }
}

}  // namespace
