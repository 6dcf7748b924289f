// Access to the pixels of an android.graphics.Bitmap, under the platform's own names.
#ifndef ANDROID_BITMAP_H
#define ANDROID_BITMAP_H

#include <jni.h>
#include <stdint.h>

// Results. Every failure is negative.
#define ANDROID_BITMAP_RESULT_SUCCESS 0
// A null argument, an object that is no bitmap, or an unlock without a lock.
#define ANDROID_BITMAP_RESULT_BAD_PARAMETER (-1)
// The lock of a recycled bitmap. An exception was pending on entry (it still is), or one came up
// inside (it has been cleared).
#define ANDROID_BITMAP_RESULT_JNI_EXCEPTION (-2)
#define ANDROID_BITMAP_RESULT_ALLOCATION_FAILED (-3)

enum AndroidBitmapFormat {
    ANDROID_BITMAP_FORMAT_NONE = 0,
    ANDROID_BITMAP_FORMAT_RGBA_8888 = 1,  // bytes in memory: red, green, blue, alpha
    ANDROID_BITMAP_FORMAT_RGB_565 = 4,    // 16-bit word: red in the top 5 bits, blue in the low 5
    ANDROID_BITMAP_FORMAT_RGBA_4444 = 7,
    ANDROID_BITMAP_FORMAT_A_8 = 8,
};

typedef struct {
    uint32_t width;   // pixels a row
    uint32_t height;  // rows
    uint32_t stride;  // bytes from one row to the next
    int32_t format;   // an AndroidBitmapFormat
    uint32_t flags;   // 0
} AndroidBitmapInfo;

// Any thread may call these with its own environment, on the same bitmap too. None of them leaves
// an exception pending that was not there before, nor a local reference.
#pragma GCC visibility push(default)
#ifdef __cplusplus
extern "C" {
#endif

// Fills `info`, for a recycled bitmap too, with what it was. On a failure `info` is left as it was.
int AndroidBitmap_getInfo(JNIEnv* env, jobject bitmap, AndroidBitmapInfo* info);

// Locks the pixels and stores the address of the first one. Locks nest; each is given back with one
// AndroidBitmap_unlockPixels. The address stays valid until the last of them is given back, even if
// the bitmap is recycled meanwhile, as long as the caller keeps a reference to the bitmap. Locking
// excludes nobody: Java and other threads can still read and write the pixels. On a failure nothing
// is locked and `*pixels` is left as it was.
int AndroidBitmap_lockPixels(JNIEnv* env, jobject bitmap, void** pixels);

// Gives one lock back. A bitmap without a lock is refused.
int AndroidBitmap_unlockPixels(JNIEnv* env, jobject bitmap);

#ifdef __cplusplus
}
#endif
#pragma GCC visibility pop

#endif  // ANDROID_BITMAP_H
