#pragma once

#include <android/bitmap.h>
#include <jni.h>

#include <cstdint>

#include "jni/bitmap_struct.h"

namespace android {

// Whether a BitmapStruct can describe the bitmap: 4-byte pixels, no gap between rows, and a pixel
// count that a signed 32-bit integer holds.
inline bool isPackedRgba8888(const AndroidBitmapInfo& info) {
    const uint64_t width = info.width;
    return info.format == ANDROID_BITMAP_FORMAT_RGBA_8888 && info.stride == 4 * width &&
           width * info.height <= INT32_MAX;
}

// Locks a Java bitmap, runs `work` on its view, unlocks exactly once and returns what `work`
// returned. Returns `refused` when the bitmap can't be read or locked, or is not packed RGBA_8888:
// then nothing was touched and nothing is unlocked. Raises no Java exception, writes no log.
//
//   return withLockedBitmap(env, bitmap, -1, [](BitmapStruct* view) { return RGB2Gray(view); });
template <typename Result, typename Work>
Result withLockedBitmap(JNIEnv* env, jobject bitmap, Result refused, Work work) {
    AndroidBitmapInfo info;
    if (AndroidBitmap_getInfo(env, bitmap, &info) < 0 || !isPackedRgba8888(info)) return refused;
    void* pixels = nullptr;
    if (AndroidBitmap_lockPixels(env, bitmap, &pixels) < 0) return refused;
    BitmapStruct view = {static_cast<int32_t>(info.width), static_cast<int32_t>(info.height),
                         static_cast<uint32_t*>(pixels)};
    const Result result = work(&view);
    AndroidBitmap_unlockPixels(env, bitmap);
    return result;
}

}  // namespace android
