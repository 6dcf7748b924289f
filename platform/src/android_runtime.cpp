#include <android_runtime/AndroidRuntime.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace android {
namespace {

// Finds a class without initialising it, as the phone's FindClass does; null when there is none,
// with an exception pending or not. A desktop virtual machine's FindClass initialises. The
// framework classes load the library in their initialisers, so a thread that loads it and another
// that has begun to initialise a second class would wait for each other for good. An array class is
// found without its element class being initialised.
jclass findUninitialised(JNIEnv* env, const char* className) {
    const size_t size = strlen(className) + 4;  // [L, the name, ; and the terminating zero
    char* arrayName = static_cast<char*>(malloc(size));
    if (arrayName == nullptr) return nullptr;
    snprintf(arrayName, size, "[L%s;", className);
    const jclass arrayClass = env->FindClass(arrayName);
    free(arrayName);
    if (arrayClass == nullptr) return nullptr;

    jobject found = nullptr;
    const jclass classClass = env->GetObjectClass(arrayClass);
    const jmethodID getComponentType =
        env->GetMethodID(classClass, "getComponentType", "()Ljava/lang/Class;");
    if (getComponentType != nullptr) found = env->CallObjectMethod(arrayClass, getComponentType);
    env->DeleteLocalRef(classClass);
    env->DeleteLocalRef(arrayClass);
    return static_cast<jclass>(found);
}

}  // namespace

int AndroidRuntime::registerNativeMethods(JNIEnv* env, const char* className,
                                          const JNINativeMethod* gMethods, int numMethods) {
    if (env == nullptr || className == nullptr || gMethods == nullptr || numMethods < 0) return -1;
    if (env->ExceptionCheck()) return -1;
    const jclass javaClass = findUninitialised(env, className);
    if (env->ExceptionCheck() || javaClass == nullptr) {
        env->ExceptionClear();
        return -1;
    }
    const jint result = env->RegisterNatives(javaClass, gMethods, numMethods);
    if (env->ExceptionCheck()) env->ExceptionClear();
    env->DeleteLocalRef(javaClass);
    return result < 0 ? -1 : 0;
}

}  // namespace android
