#include <android_runtime/AndroidRuntime.h>

#include <iterator>

#include "jni/method_table.h"
#include "jni/native_methods.h"

namespace android {
namespace {

const JNINativeMethod kMethods[] = {
    {tableText("getBlurEffect"), tableText("(Landroid/graphics/Bitmap;FI)V"),
     reinterpret_cast<void*>(getBlurEffect)},
};

}  // namespace

int register_zoren_util_BlurUtil(JNIEnv* env) {
    return AndroidRuntime::registerNativeMethods(env, "zoren/util/BlurUtil", kMethods,
                                                 std::size(kMethods));
}

}  // namespace android
