#include <android_runtime/AndroidRuntime.h>

#include "jni/native_methods.h"

namespace android {
namespace {

// The casts: OpenJDK's record points to plain characters where Android's points to const ones;
// nobody writes them.
const JNINativeMethod kMethods[] = {
    {const_cast<char*>("getBlurEffect"), const_cast<char*>("(Landroid/graphics/Bitmap;FI)V"),
     reinterpret_cast<void*>(getBlurEffect)},
};

}  // namespace

int register_zoren_util_BlurUtil(JNIEnv* env) {
    return AndroidRuntime::registerNativeMethods(env, "zoren/util/BlurUtil", kMethods, 1);
}

}  // namespace android
