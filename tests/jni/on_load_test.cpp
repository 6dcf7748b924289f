#include <gtest/gtest.h>

#include "jni/native_methods.h"
#include "tests/support/fake_platform.h"

extern "C" jint JNI_OnLoad(JavaVM* vm, void* reserved);

namespace {

using Lines = std::vector<std::string>;

// "class: name signature, ..." per registration, in order.
Lines tables(const FakePlatform& platform) {
    Lines lines;
    for (const FakePlatform::Registration& registration : platform.registrations) {
        std::string line = registration.className + ":";
        for (const JNINativeMethod& method : registration.methods) {
            line += std::string(" ") + method.name + " " + method.signature;
        }
        lines.push_back(line);
    }
    return lines;
}

const Lines kTables = {
    "zoren/util/BlurUtil: getBlurEffect (Landroid/graphics/Bitmap;FI)V",
    "zoren/util/BitmapGrayUtil: getBitmapGray (Landroid/graphics/Bitmap;)I"
    " getBitmapColorCast (Landroid/graphics/Bitmap;II)I",
    "android/util/ZorenConfig: nativeGetConfigXML ()Ljava/lang/String;",
    "zoren/net/ZorenTrafficStats: nativeGetIfaceUidStat (Ljava/lang/String;II)J",
};

// Whether all succeed, all fail or one of them does.
TEST(OnLoad, RegistersTheFourClassesInOrder) {
    for (int failing = 0; failing <= 5; ++failing) {
        FakePlatform platform;
        platform.failing = "registerNativeMethods";
        platform.failingCall = failing;
        EXPECT_EQ(JNI_OnLoad(platform.vm(), nullptr), 0x00010004) << failing;
        EXPECT_EQ(platform.calls, Lines{"GetEnv 65540"}) << failing;
        EXPECT_EQ(tables(platform), kTables) << failing;
        EXPECT_EQ(platform.log, Lines{}) << failing;
    }
}

TEST(OnLoad, FailsWithoutAnEnvironment) {
    for (const jint result : {JNI_EVERSION, JNI_EDETACHED, 1}) {
        FakePlatform platform;
        platform.getEnvResult = result;
        EXPECT_EQ(JNI_OnLoad(platform.vm(), nullptr), JNI_ERR) << result;
        EXPECT_EQ(tables(platform), Lines{}) << result;
    }
}

TEST(Registration, TellsFailure) {
    int (*const functions[])(JNIEnv*) = {
        android::register_zoren_util_BlurUtil, android::register_zoren_util_BitmapGrayUtil,
        android::register_android_util_ZorenConfig, android::register_zoren_net_ZorenTrafficStats};
    for (int i = 0; i < 4; ++i) {
        FakePlatform platform;
        EXPECT_GE(functions[i](platform.env()), 0) << i;
        EXPECT_EQ(tables(platform), Lines{kTables[i]});
        platform.failing = "registerNativeMethods";
        EXPECT_LT(functions[i](platform.env()), 0) << i;
    }
}

}  // namespace
