#include "analysis/gray_level.h"
#include "jni/bitmap_frame.h"
#include "jni/native_methods.h"

namespace android {

jint getBitmapGray(JNIEnv* env, jobject, jobject bitmap) {
    return withLockedBitmap(env, bitmap, -1, [](BitmapStruct* view) { return RGB2Gray(view); });
}

}  // namespace android
