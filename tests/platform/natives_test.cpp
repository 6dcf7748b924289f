#include <android/bitmap.h>
#include <android_runtime/AndroidRuntime.h>
#include <gtest/gtest.h>
#include <nativehelper/JNIHelp.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/support/local_references.h"

// What the virtual machine itself keeps, for LeakSanitizer.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libjvm.so\nleak:libjava.so\nleak:libzip.so\nleak:libjimage.so\n";
}

namespace {

constexpr uint32_t kRecycled = 0x80000000u;
constexpr const char* kBitmap = "android/graphics/Bitmap";

// The framework classes are on the class path of this virtual machine and their library is not to
// be found, so that initialising one of them throws.
JNIEnv* startMachine() {
    JavaVMOption options[] = {
        {const_cast<char*>("-Xcheck:jni"), nullptr},
        {const_cast<char*>("-Djava.class.path=" ZOREN_JARS), nullptr},
        {const_cast<char*>("-Djava.library.path=/nowhere"), nullptr},
    };
    JavaVMInitArgs arguments = {JNI_VERSION_1_8, 3, options, JNI_FALSE};
    JavaVM* vm = nullptr;
    JNIEnv* env = nullptr;
    if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&env), &arguments) != 0) abort();
    static JNINativeInterface_ table = *env->functions;
    local_references::count(&table);
    env->functions = &table;
    return env;
}

class Natives : public testing::Test {
  protected:
    // A call into Java must be followed by a look for its exception.
    template <typename Result>
    Result checked(Result result) {
        EXPECT_FALSE(env->ExceptionCheck());
        return result;
    }

    jobject createPadded() {  // 2 x 3 pixels in rows of 8 bytes
        const char* type = "Landroid/graphics/Bitmap$Config;";
        const jclass configs = env->FindClass("android/graphics/Bitmap$Config");
        const jfieldID rgb565 = env->GetStaticFieldID(configs, "RGB_565", type);
        const jmethodID create = env->GetStaticMethodID(
            bitmapClass, "createPadded",
            "(IILandroid/graphics/Bitmap$Config;I)Landroid/graphics/Bitmap;");
        return checked(env->CallStaticObjectMethod(bitmapClass, create, 2, 3,
                                                   env->GetStaticObjectField(configs, rgb565), 8));
    }

    void* address(jfieldID field) {
        const jobject buffer = env->GetObjectField(bitmap, field);
        return buffer != nullptr ? env->GetDirectBufferAddress(buffer) : nullptr;
    }

    void recycle() {
        env->CallVoidMethod(bitmap, env->GetMethodID(bitmapClass, "recycle", "()V"));
        checked(0);
        const jmethodID isRecycled = env->GetMethodID(bitmapClass, "isRecycled", "()Z");
        EXPECT_TRUE(checked(env->CallBooleanMethod(bitmap, isRecycled)));
    }

    // What info, lock and unlock return; a failure leaves what it would have filled alone.
    std::string results(JNIEnv* callEnv, jobject object) {
        AndroidBitmapInfo info = {9, 9, 9, 9, 9};
        void* pixels = &info;
        const jlong held = local_references::held;
        const int got = AndroidBitmap_getInfo(callEnv, object, &info);
        EXPECT_EQ(info.width == 9, got < 0);
        const int locked = AndroidBitmap_lockPixels(callEnv, object, &pixels);
        EXPECT_EQ(pixels == &info, locked < 0);
        const int unlocked = AndroidBitmap_unlockPixels(callEnv, object);
        EXPECT_EQ(local_references::held, held);
        return std::to_string(got) + " " + std::to_string(locked) + " " + std::to_string(unlocked);
    }

    inline static JNIEnv* const env = startMachine();
    const jclass bitmapClass = env->FindClass(kBitmap);
    const jfieldID headerField = env->GetFieldID(bitmapClass, "header", "Ljava/nio/ByteBuffer;");
    const jfieldID pixelsField = env->GetFieldID(bitmapClass, "pixels", "Ljava/nio/ByteBuffer;");
    const jobject bitmap = createPadded();
    uint32_t& state = static_cast<uint32_t*>(address(headerField))[4];
};

TEST_F(Natives, KeepLockedPixelsOfARecycledBitmap) {
    AndroidBitmapInfo info = {9, 9, 9, 9, 9};
    EXPECT_EQ(AndroidBitmap_getInfo(env, bitmap, &info), 0);
    const uint32_t expected[] = {2, 3, 8, ANDROID_BITMAP_FORMAT_RGB_565, 0};
    EXPECT_EQ(memcmp(&info, expected, sizeof info), 0);
    void* pixels = nullptr;
    EXPECT_EQ(AndroidBitmap_lockPixels(env, bitmap, &pixels), 0);
    recycle();
    recycle();
    EXPECT_EQ(state, kRecycled | 1);
    EXPECT_EQ(AndroidBitmap_unlockPixels(env, bitmap), 0);
    EXPECT_EQ(pixels, address(pixelsField));
    recycle();
    EXPECT_EQ(nullptr, address(pixelsField));
}

TEST_F(Natives, CountLocksToTheLimit) {
    const std::tuple<uint32_t, const char*, uint32_t> rows[] = {
        {0xFFFF, "0 0 0", 0xFFFF},
        {0x7FFFFFFE, "0 0 0", 0x7FFFFFFE},
        {0x7FFFFFFF, "0 -1 0", 0x7FFFFFFE},
        {kRecycled, "0 -2 -1", kRecycled},
        {kRecycled | 0x7FFFFFFF, "0 -2 0", kRecycled | 0x7FFFFFFE},
    };
    for (const auto& [before, expected, after] : rows) {
        state = before;
        EXPECT_EQ(results(env, bitmap), expected) << before;
        EXPECT_EQ(state, after);
    }
    state = 0;
    EXPECT_EQ(AndroidBitmap_unlockPixels(env, bitmap), -1);
    EXPECT_EQ(state, 0u);
}

TEST_F(Natives, RefuseWithoutATrace) {
    EXPECT_EQ(results(nullptr, bitmap), "-1 -1 -1");
    EXPECT_EQ(results(env, nullptr), "-1 -1 -1");
    EXPECT_EQ(results(env, bitmapClass), "-1 -1 -1");
    EXPECT_EQ(AndroidBitmap_getInfo(env, bitmap, nullptr), -1);
    EXPECT_EQ(AndroidBitmap_lockPixels(env, bitmap, nullptr), -1);
    const jlong held = local_references::held;
    for (const char* message : {"replaced", "why"}) {
        EXPECT_EQ(jniThrowNullPointerException(env, message), 0);
    }
    EXPECT_EQ(results(env, bitmap), "-2 -2 -2");
    EXPECT_EQ(local_references::held, held);
    const jthrowable thrown = env->ExceptionOccurred();
    ASSERT_NE(thrown, nullptr);
    env->ExceptionClear();
    const jmethodID getMessage =
        env->GetMethodID(env->GetObjectClass(thrown), "getMessage", "()Ljava/lang/String;");
    const auto why = static_cast<jstring>(checked(env->CallObjectMethod(thrown, getMessage)));
    EXPECT_EQ(env->GetStringUTFLength(why), 3);
    EXPECT_EQ(state, 0u);
    env->SetObjectField(bitmap, headerField, nullptr);
    EXPECT_EQ(results(env, bitmap), "-2 -2 -2");
}

TEST_F(Natives, AreRegisteredOrMissing) {
    const auto method = [](const char* name, const char* signature) {
        return JNINativeMethod{const_cast<char*>(name), const_cast<char*>(signature),
                               reinterpret_cast<void*>(startMachine)};
    };
    const JNINativeMethod gray = method("getBitmapGray", "(Landroid/graphics/Bitmap;)I");
    const JNINativeMethod other = method("getBitmapGray", "()I");
    const JNINativeMethod plain = method("getConfigXML", "()Ljava/lang/String;");  // not native
    const auto registered = android::AndroidRuntime::registerNativeMethods;
    const std::tuple<const char*, std::vector<JNINativeMethod>, int, int> rows[] = {
        {"zoren/util/NoSuchUtil", {gray}, 1, -1},
        {"zoren/util/BitmapGrayUtil", {gray, other}, 2, -1},
        {"android/util/ZorenConfig", {plain}, 1, -1},
        {"zoren/util/BitmapGrayUtil", {gray, other}, 1, 0},
        {"zoren/util/BitmapGrayUtil", {gray}, -1, -1},
        {nullptr, {gray}, 1, -1},
    };
    for (const auto& [className, methods, count, result] : rows) {
        jlong held = 0;
        for (int i = 0; i < 2; ++i) {  // loading a class the machine makes references of its own
            held = local_references::held;
            EXPECT_EQ(registered(env, className, methods.data(), count), result);
            EXPECT_FALSE(env->ExceptionCheck());
        }
        EXPECT_EQ(local_references::held, held);
    }
    EXPECT_EQ(registered(nullptr, kBitmap, &gray, 0), -1);
    EXPECT_EQ(registered(env, kBitmap, nullptr, 0), -1);
    jniThrowNullPointerException(env, "pending");
    EXPECT_EQ(registered(env, kBitmap, &gray, 0), -1);
    EXPECT_TRUE(env->ExceptionCheck());
    env->ExceptionClear();
}

}  // namespace
