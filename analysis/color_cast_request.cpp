#include "analysis/color_cast.h"
#include "jni/bitmap_frame.h"
#include "jni/native_methods.h"

namespace android {

jint getBitmapColorCast(JNIEnv* env, jobject, jobject bitmap, jint saturation, jint brightness) {
    return withLockedBitmap(env, bitmap, -1, [=](BitmapStruct* view) {
        return BitmaptoColorCast(view, saturation, brightness);
    });
}

}  // namespace android
