#include <memory>
#include <new>

#include "blur/color_mask.h"
#include "blur/gaussian_kernel.h"
#include "blur/try_gaussian_blur.h"
#include "jni/bitmap_frame.h"
#include "jni/native_methods.h"

namespace android {
namespace {

// Blurs `view`; false when the radius is refused or memory cannot be had, with the pixels
// untouched. The kernel is handed to `kernel`, which outlives the lock.
bool blur(BitmapStruct* view, float radius, std::unique_ptr<int32_t[]>& kernel) {
    const int32_t size = gaussianKernelSize(radius);
    if (size == 0) return true;
    if (size > kMaxKernelSize) return false;
    kernel.reset(new (std::nothrow) int32_t[static_cast<size_t>(size)]);
    if (!kernel) return false;
    // No radius that gets here has a norm of 0: only scratch memory that cannot be had gives it.
    const int32_t norm = calcuGaussianTemplate(kernel.get(), size, radius);
    return norm != 0 && tryGaussianBlur(view, kernel.get(), size, norm);
}

}  // namespace

void getBlurEffect(JNIEnv* env, jobject, jobject bitmap, jfloat radius, uint32_t color) {
    // Declared outside the frame, so that the pixels are unlocked before the kernel is freed.
    std::unique_ptr<int32_t[]> kernel;
    withLockedBitmap(env, bitmap, false, [&](BitmapStruct* view) {
        if (!blur(view, radius, kernel)) return false;
        if (color >> 24 != 0) addMask(view, color);
        return true;
    });
}

}  // namespace android
