#include <android_runtime/AndroidRuntime.h>
#include <nativehelper/JNIHelp.h>

#include <iterator>

#include "jni/method_table.h"
#include "jni/native_methods.h"
#include "net/traffic_counter.h"

namespace android {
namespace {

constexpr char kStatsPath[] = "/proc/net/xt_qtaguid/stats";

// The uid and the selector are compared by their bits, so negative ones are large unsigned ones.
jlong getIfaceUidStat(JNIEnv* env, jclass, jstring interface, jint uid, jint selector) {
    if (interface == nullptr) {
        jniThrowNullPointerException(env, nullptr);
        return -1;
    }
    const char* name = env->GetStringUTFChars(interface, nullptr);
    if (name == nullptr) return -1;  // the virtual machine's exception is pending
    const jlong total = readIfaceUidStat(kStatsPath, name, static_cast<uint32_t>(uid),
                                         static_cast<uint32_t>(selector));
    env->ReleaseStringUTFChars(interface, name);
    return total;
}

const JNINativeMethod kMethods[] = {
    {tableText("nativeGetIfaceUidStat"), tableText("(Ljava/lang/String;II)J"),
     reinterpret_cast<void*>(getIfaceUidStat)},
};

}  // namespace

int register_zoren_net_ZorenTrafficStats(JNIEnv* env) {
    return AndroidRuntime::registerNativeMethods(env, "zoren/net/ZorenTrafficStats", kMethods,
                                                 std::size(kMethods));
}

}  // namespace android
