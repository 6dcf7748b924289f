#pragma once

#include <android/bitmap.h>
#include <jni.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/images.h"

// The test program's own version of what the platform's libraries and the virtual machine offer the
// library: it does as a test's script says and keeps what it was asked for.
class FakePlatform {
  public:
    FakePlatform();  // the latest one of its thread counts
    ~FakePlatform();

    // The script.
    jint getEnvResult = JNI_OK;
    AndroidBitmapInfo info = {};
    int infoResult = 0, lockResult = 0;
    uint32_t* pixels = nullptr;
    std::function<void()> atUnlock;
    std::string failing;  // the call that reports failure, also one of the C library or libcrypto
    int failingCall = 0;  // which one of them, counted from 1; 0 for every one

    // What came in: every call in order, the log ("<priority> <tag>: <text>"), the classes whose
    // methods were registered and all those methods.
    std::vector<std::string> calls;
    std::vector<std::string> log;
    std::vector<std::string> classes;
    std::map<std::string, void*> methods;
    std::string newString;
    std::map<std::string, int> reached;  // how often what can fail was called
    int held = 0;                        // locks and strings that were not given back

    bool fails(const char* call);   // counts it; whether the script lets this one fail
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

    // The natives, called as Java calls them: on the bitmap that is shown, and with a name or null.
    void blur(jfloat radius, uint32_t color) {
        native<void(JNIEnv*, jobject, jobject, jfloat, uint32_t)>("getBlurEffect")(
            env(), nullptr, bitmap(), radius, color);
    }
    jint gray() {
        return native<jint(JNIEnv*, jobject, jobject)>("getBitmapGray")(env(), nullptr, bitmap());
    }
    jint cast(jint saturation, jint brightness) {
        return native<jint(JNIEnv*, jobject, jobject, jint, jint)>("getBitmapColorCast")(
            env(), nullptr, bitmap(), saturation, brightness);
    }
    std::optional<std::string> config() {
        const bool given = native<jstring(JNIEnv*, jobject)>("nativeGetConfigXML")(env(), nullptr);
        return given ? std::optional(newString) : std::nullopt;
    }
    jlong traffic(std::optional<std::string> interface, jint uid, jint selector) {
        return native<jlong(JNIEnv*, jclass, jstring, jint, jint)>("nativeGetIfaceUidStat")(
            env(), nullptr, interface ? string(*interface) : nullptr, uid, selector);
    }

    static FakePlatform& current();

  private:
    void* nativeAddress(const char* name);

    FakePlatform* const previous_;
    // A phone's jni.h has other names for the tables than the JDK's.
    std::remove_const_t<std::remove_pointer_t<decltype(JNIEnv::functions)>> functions_ = {};
    std::remove_const_t<std::remove_pointer_t<decltype(JavaVM::functions)>> invocation_ = {};
    JNIEnv env_ = {};
    JavaVM vm_ = {};
};
