#include <android/bitmap.h>

// The native side of android.graphics.Bitmap. The Java object keeps two direct byte buffers,
// `header` and `pixels`; both stay at their address for life, so native code reads and writes them
// in place.

namespace {

// The words of `header`; Bitmap.java knows the same layout.
struct Header {
    uint32_t width;
    uint32_t height;
    uint32_t stride;
    int32_t format;
    // Bit 31: recycled. Bits 0 to 30: how many locks are held. One word, so that neither a lock
    // after the recycling nor a release of pixels under a lock can slip in between.
    uint32_t state;
};

constexpr uint32_t kRecycled = 0x80000000u;
constexpr uint32_t kLockCount = 0x7FFFFFFFu;

// The address of the direct buffer in a field, or null when there is none or the look-up fails, in
// which case an exception may be pending.
void* bufferAddress(JNIEnv* env, jobject bitmap, jclass bitmapClass, const char* fieldName) {
    const jfieldID field = env->GetFieldID(bitmapClass, fieldName, "Ljava/nio/ByteBuffer;");
    if (field == nullptr) return nullptr;
    const jobject buffer = env->GetObjectField(bitmap, field);
    if (buffer == nullptr) return nullptr;
    void* address = env->GetDirectBufferAddress(buffer);
    env->DeleteLocalRef(buffer);
    return address;
}

// Finds the header of a bitmap and, where `pixels` is given, its pixels (null once they are
// released). The class is looked up anew each time: a fraction of a microsecond, and nothing can go
// stale.
int openBitmap(JNIEnv* env, jobject bitmap, Header** header, void** pixels) {
    if (env == nullptr || bitmap == nullptr) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    if (env->ExceptionCheck()) return ANDROID_BITMAP_RESULT_JNI_EXCEPTION;

    const jclass bitmapClass = env->FindClass("android/graphics/Bitmap");
    int result = ANDROID_BITMAP_RESULT_SUCCESS;
    if (bitmapClass == nullptr) {
        result = ANDROID_BITMAP_RESULT_JNI_EXCEPTION;
    } else if (!env->IsInstanceOf(bitmap, bitmapClass)) {
        result = ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    } else {
        *header = static_cast<Header*>(bufferAddress(env, bitmap, bitmapClass, "header"));
        if (*header == nullptr) {
            result = ANDROID_BITMAP_RESULT_JNI_EXCEPTION;
        } else if (pixels != nullptr) {
            *pixels = bufferAddress(env, bitmap, bitmapClass, "pixels");
        }
    }
    if (env->ExceptionCheck()) {
        env->ExceptionClear();
        result = ANDROID_BITMAP_RESULT_JNI_EXCEPTION;
    }
    if (bitmapClass != nullptr) env->DeleteLocalRef(bitmapClass);
    return result;
}

}  // namespace

int AndroidBitmap_getInfo(JNIEnv* env, jobject bitmap, AndroidBitmapInfo* info) {
    if (info == nullptr) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    Header* header = nullptr;
    const int result = openBitmap(env, bitmap, &header, nullptr);
    if (result < 0) return result;
    *info = {header->width, header->height, header->stride, header->format, 0};
    return ANDROID_BITMAP_RESULT_SUCCESS;
}

int AndroidBitmap_lockPixels(JNIEnv* env, jobject bitmap, void** pixels) {
    if (pixels == nullptr) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    Header* header = nullptr;
    void* address = nullptr;
    const int result = openBitmap(env, bitmap, &header, &address);
    if (result < 0) return result;
    // Recycling is final, so a lock that still gets in proves that `address`, read before, is good.
    uint32_t state = __atomic_load_n(&header->state, __ATOMIC_ACQUIRE);
    do {
        if ((state & kRecycled) != 0) return ANDROID_BITMAP_RESULT_JNI_EXCEPTION;
        if ((state & kLockCount) == kLockCount) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    } while (!__atomic_compare_exchange_n(&header->state, &state, state + 1, true, __ATOMIC_ACQ_REL,
                                          __ATOMIC_ACQUIRE));
    *pixels = address;
    return ANDROID_BITMAP_RESULT_SUCCESS;
}

int AndroidBitmap_unlockPixels(JNIEnv* env, jobject bitmap) {
    Header* header = nullptr;
    const int result = openBitmap(env, bitmap, &header, nullptr);
    if (result < 0) return result;
    uint32_t state = __atomic_load_n(&header->state, __ATOMIC_ACQUIRE);
    do {
        if ((state & kLockCount) == 0) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    } while (!__atomic_compare_exchange_n(&header->state, &state, state - 1, true, __ATOMIC_ACQ_REL,
                                          __ATOMIC_ACQUIRE));
    return ANDROID_BITMAP_RESULT_SUCCESS;
}
