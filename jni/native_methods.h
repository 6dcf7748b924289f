#pragma once

#include <jni.h>

#include <cstdint>

// The image natives as the method tables name them, and the registration of each Java class. All of
// them run on the calling thread and share nothing between calls. `receiver` is never used.
//
// A bitmap that cannot be read or locked, is not RGBA_8888 with packed rows, or has more pixels
// than a signed 32-bit integer counts is refused: nothing is locked or changed. No image native
// raises a Java exception or writes to the log.

#pragma GCC visibility push(default)  // the exported surface: jni/exports.map
namespace android {

// Blurs `bitmap` in place with a Gaussian of standard deviation `radius` (pixels), cut off at
// twice the radius on each side, then lays `color` (0xAARRGGBB) over it unless its alpha is 0.
//
// Below a radius of 0.25, and for NaN, there is no blur; the colour is still applied. From a
// radius of 23170.75 on the request is refused. A bitmap of one row or column comes back
// unchanged. When memory runs out the bitmap is left untouched, without the colour.
void getBlurEffect(JNIEnv* env, jobject receiver, jobject bitmap, jfloat radius, uint32_t color);

// Returns what RGB2Gray (analysis/gray_level.h) returns for `bitmap`, or -1 when it is refused.
jint getBitmapGray(JNIEnv* env, jobject receiver, jobject bitmap);

// Returns what BitmaptoColorCast (analysis/color_cast.h) returns, or -1 when `bitmap` is
// refused.
jint getBitmapColorCast(JNIEnv* env, jobject receiver, jobject bitmap, jint saturation,
                        jint brightness);

// Each registers the natives of one Java class with the runtime and returns the runtime's own
// result, negative when it failed.
int register_zoren_util_BlurUtil(JNIEnv* env);
int register_zoren_util_BitmapGrayUtil(JNIEnv* env);
int register_android_util_ZorenConfig(JNIEnv* env);
int register_zoren_net_ZorenTrafficStats(JNIEnv* env);

}  // namespace android
#pragma GCC visibility pop
