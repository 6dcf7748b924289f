#pragma once

#include <android/bitmap.h>
#include <jni.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/images.h"

// The test program's own version of what the platform's libraries and the virtual machine offer the
// library: it does as a test's script says and keeps what it was asked for.
class FakePlatform {
  public:
    struct Registration {
        std::string className;
        std::vector<JNINativeMethod> methods;
    };

    FakePlatform();  // at most one lives at a time
    ~FakePlatform();

    // The script.
    jint getEnvResult = JNI_OK;
    int failingRegistration = -1;  // counted from 0
    AndroidBitmapInfo info = {};
    int infoResult = 0, lockResult = 0, unlockResult = 0;
    uint32_t* pixels = nullptr;
    std::function<void()> atUnlock;
    std::string failing;  // "NewStringUTF" or "GetStringUTFChars"

    // What came in: every call in order, the log ("<priority> <tag>: <text>"), the tables.
    std::vector<std::string> calls;
    std::vector<std::string> log;
    std::vector<Registration> registrations;
    std::string newString;

    void showBitmap(Image& image);  // as a packed RGBA_8888 bitmap
    JNIEnv* env() { return &env_; }
    JavaVM* vm() { return &vm_; }
    jobject bitmap() { return reinterpret_cast<jobject>(&info); }
    static jstring string(std::string& text) { return reinterpret_cast<jstring>(&text); }

    // The native method `name` as JNI_OnLoad registers it; null when it does not.
    template <typename Function>
    Function* native(const char* name) {
        return reinterpret_cast<Function*>(nativeAddress(name));
    }

    static FakePlatform& current();

  private:
    void* nativeAddress(const char* name);

    JNINativeInterface_ functions_ = {};
    JNIInvokeInterface_ invocation_ = {};
    JNIEnv env_ = {};
    JavaVM vm_ = {};
};
