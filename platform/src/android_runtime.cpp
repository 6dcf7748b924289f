#include <android_runtime/AndroidRuntime.h>

namespace android {

int AndroidRuntime::registerNativeMethods(JNIEnv* env, const char* className,
                                          const JNINativeMethod* gMethods, int numMethods) {
    if (env == nullptr || className == nullptr || gMethods == nullptr || numMethods < 0) return -1;
    if (env->ExceptionCheck()) return -1;
    const jclass javaClass = env->FindClass(className);
    if (javaClass == nullptr) {
        env->ExceptionClear();
        return -1;
    }
    const jint result = env->RegisterNatives(javaClass, gMethods, numMethods);
    if (env->ExceptionCheck()) env->ExceptionClear();
    env->DeleteLocalRef(javaClass);
    return result < 0 ? -1 : 0;
}

}  // namespace android
