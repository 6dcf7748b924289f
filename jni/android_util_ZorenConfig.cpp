#include <android_runtime/AndroidRuntime.h>

#include <iterator>

#include "config/config_reader.h"
#include "jni/method_table.h"
#include "jni/native_methods.h"

namespace android {
namespace {

constexpr char kConfigPath[] = "/system/etc/jpsp";

// The configuration text as a new local reference; null when the reader refuses, or with the
// virtual machine's exception pending when there is no memory for the string.
jstring getConfigXML(JNIEnv* env, jobject) {
    const ConfigText config = readConfig(kConfigPath);
    if (config.text == nullptr) return nullptr;
    jstring xml = env->NewStringUTF(config.text);
    releaseConfig(config);
    return xml;
}

const JNINativeMethod kMethods[] = {
    {tableText("nativeGetConfigXML"), tableText("()Ljava/lang/String;"),
     reinterpret_cast<void*>(getConfigXML)},
};

}  // namespace

int register_android_util_ZorenConfig(JNIEnv* env) {
    return AndroidRuntime::registerNativeMethods(env, "android/util/ZorenConfig", kMethods,
                                                 std::size(kMethods));
}

}  // namespace android
