#include <android_runtime/AndroidRuntime.h>

#include "jni/native_methods.h"

namespace android {
namespace {

// The casts: OpenJDK's record points to plain characters where Android's points to const ones;
// nobody writes them.
const JNINativeMethod kMethods[] = {
    {const_cast<char*>("getBitmapGray"), const_cast<char*>("(Landroid/graphics/Bitmap;)I"),
     reinterpret_cast<void*>(getBitmapGray)},
    {const_cast<char*>("getBitmapColorCast"), const_cast<char*>("(Landroid/graphics/Bitmap;II)I"),
     reinterpret_cast<void*>(getBitmapColorCast)},
};

}  // namespace

int register_zoren_util_BitmapGrayUtil(JNIEnv* env) {
    return AndroidRuntime::registerNativeMethods(env, "zoren/util/BitmapGrayUtil", kMethods, 2);
}

}  // namespace android
