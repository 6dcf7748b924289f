#include <nativehelper/JNIHelp.h>

int jniThrowNullPointerException(JNIEnv* env, const char* msg) {
    env->ExceptionClear();
    const jclass exceptionClass = env->FindClass("java/lang/NullPointerException");
    if (exceptionClass == nullptr) return -1;
    const jint result = env->ThrowNew(exceptionClass, msg);
    env->DeleteLocalRef(exceptionClass);
    return result == JNI_OK ? 0 : -1;
}
