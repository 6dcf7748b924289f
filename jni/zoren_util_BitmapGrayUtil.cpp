#include <android_runtime/AndroidRuntime.h>

#include <iterator>

#include "jni/method_table.h"
#include "jni/native_methods.h"

namespace android {
namespace {

const JNINativeMethod kMethods[] = {
    {tableText("getBitmapGray"), tableText("(Landroid/graphics/Bitmap;)I"),
     reinterpret_cast<void*>(getBitmapGray)},
    {tableText("getBitmapColorCast"), tableText("(Landroid/graphics/Bitmap;II)I"),
     reinterpret_cast<void*>(getBitmapColorCast)},
};

}  // namespace

int register_zoren_util_BitmapGrayUtil(JNIEnv* env) {
    return AndroidRuntime::registerNativeMethods(env, "zoren/util/BitmapGrayUtil", kMethods,
                                                 std::size(kMethods));
}

}  // namespace android
