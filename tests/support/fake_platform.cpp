#include "tests/support/fake_platform.h"

#include <android/log.h>
#include <android_runtime/AndroidRuntime.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

thread_local FakePlatform* active = nullptr;

// Names a call and marks one that came with another environment or object than the test gave.
FakePlatform& record(const char* call, JNIEnv* env, jobject bitmap) {
    const bool right = env == active->env() && bitmap == active->bitmap();
    active->calls.push_back(std::string(call) + (right ? "" : " with a wrong argument"));
    return *active;
}

}  // namespace

// These take precedence over the platform's libraries because the program comes first in the
// search for a symbol.
extern "C" {

int AndroidBitmap_getInfo(JNIEnv* env, jobject bitmap, AndroidBitmapInfo* info) {
    FakePlatform& platform = record("getInfo", env, bitmap);
    if (platform.fails("AndroidBitmap_getInfo")) return -1;
    if (platform.infoResult >= 0) *info = platform.info;
    return platform.infoResult;
}

int AndroidBitmap_lockPixels(JNIEnv* env, jobject bitmap, void** pixels) {
    FakePlatform& platform = record("lock", env, bitmap);
    if (platform.fails("AndroidBitmap_lockPixels")) return -1;
    if (platform.lockResult < 0) return platform.lockResult;
    *pixels = platform.pixels;
    ++platform.held;
    return platform.lockResult;
}

int AndroidBitmap_unlockPixels(JNIEnv* env, jobject bitmap) {
    FakePlatform& platform = record("unlock", env, bitmap);
    if (platform.atUnlock) platform.atUnlock();
    --platform.held;
    return platform.fails("AndroidBitmap_unlockPixels") ? -1 : 0;
}

int __android_log_print(int priority, const char* tag, const char* format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    active->log.push_back(std::to_string(priority) + " " + tag + ": " + text);
    return active->fails("__android_log_print") ? -1 : length;
}

// By its symbol: the headers differ in what its first argument is.
int throwNullPointer(void*, const char* message) __asm__("jniThrowNullPointerException");
int throwNullPointer(void*, const char* message) {
    active->calls.push_back(std::string("throw ") + (message ? message : "null"));
    return active->fails("jniThrowNullPointerException") ? -1 : 0;
}

}  // extern "C"

int android::AndroidRuntime::registerNativeMethods(JNIEnv* env, const char* className,
                                                   const JNINativeMethod* methods, int count) {
    active->classes.push_back(className);
    for (int i = 0; i < count; ++i) active->methods[methods[i].name] = methods[i].fnPtr;
    if (env != active->env()) return -2;
    return active->fails("registerNativeMethods") ? -1 : 0;
}

extern "C" jint JNI_OnLoad(JavaVM* vm, void* reserved);

FakePlatform::FakePlatform() : previous_(std::exchange(active, this)) {
    functions_.NewStringUTF = [](JNIEnv*, const char* text) {
        active->calls.push_back("NewStringUTF");
        active->newString = text;
        // A phone's machine before 2020 reads on where a text ends within a character.
        volatile char followers[4];
        std::copy_n(text + std::strlen(text), 4, followers);
        return active->fails("NewStringUTF") ? nullptr : string(active->newString);
    };
    functions_.GetStringUTFChars = [](JNIEnv*, jstring text, jboolean* isCopy) -> const char* {
        active->calls.push_back(isCopy ? "GetStringUTFChars isCopy" : "GetStringUTFChars");
        if (active->fails("GetStringUTFChars")) return nullptr;
        ++active->held;
        return strdup(reinterpret_cast<std::string*>(text)->c_str());  // a leak if not released
    };
    functions_.ReleaseStringUTFChars = [](JNIEnv*, jstring, const char* chars) {
        active->calls.push_back("ReleaseStringUTFChars");
        --active->held;
        std::free(const_cast<char*>(chars));
    };
    invocation_.GetEnv = [](JavaVM*, void** env, jint version) {
        active->calls.push_back("GetEnv " + std::to_string(version));
        const jint result = active->fails("GetEnv") ? JNI_EVERSION : active->getEnvResult;
        *env = result == JNI_OK ? active->env() : nullptr;
        return result;
    };
    env_.functions = &functions_;
    vm_.functions = &invocation_;
}

FakePlatform::~FakePlatform() { active = previous_; }

FakePlatform& FakePlatform::current() { return *active; }

bool FakePlatform::fails(const char* call) {
    const int number = ++reached[call];
    return failing == call && (failingCall == 0 || failingCall == number);
}

void FakePlatform::showBitmap(Image& image) {
    info = {static_cast<uint32_t>(image.width), static_cast<uint32_t>(image.height),
            4 * static_cast<uint32_t>(image.width), ANDROID_BITMAP_FORMAT_RGBA_8888, 0};
    pixels = image.pixels;
}

void* FakePlatform::nativeAddress(const char* name) {
    if (classes.empty()) {
        const std::string script = std::exchange(failing, "");
        JNI_OnLoad(vm(), nullptr);
        failing = script;
        calls.clear();
        reached.clear();
    }
    return methods[name];
}
