#include <jni.h>

#include "jni/native_methods.h"

// Registers the natives of the four Java classes. A class that fails to register stops neither the
// others nor the load: its natives stay unresolved and Java meets that at their first call.
extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    JNIEnv* env = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) return JNI_ERR;
    android::register_zoren_util_BlurUtil(env);
    android::register_zoren_util_BitmapGrayUtil(env);
    android::register_android_util_ZorenConfig(env);
    android::register_zoren_net_ZorenTrafficStats(env);
    return JNI_VERSION_1_4;
}
