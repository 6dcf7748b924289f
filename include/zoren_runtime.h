#pragma once

// The exported image routines of libzoren_runtime.so for other native code, in one include. Each
// header below is the contract of what it declares: shapes, units, ranges, refusals and ownership.
//
// All routines lie in the namespace `android`, keep no state and take no lock, so they may run on
// any number of threads as long as no two of them write the same pixels. They allocate at most for
// the length of a call, throw nothing and log nothing.

#include <memory>
#include <new>

#include "analysis/color_cast.h"
#include "analysis/gray_level.h"
#include "analysis/hsb_to_rgb.h"
#include "blur/color_mask.h"
#include "blur/gaussian_blur.h"
#include "blur/gaussian_kernel.h"
#include "blur/region_fill.h"
#include "jni/bitmap_struct.h"
#if __has_include(<jni.h>)  // the routines above need no virtual machine
#include "jni/native_methods.h"
#endif

namespace android {

// Blurs `bitmap` in place with a Gaussian of standard deviation `radius` (pixels), then lays
// `color` (0xAARRGGBB) over it unless its alpha is 0: to the bit what getBlurEffect does to a Java
// bitmap.
//
//   std::vector<uint32_t> pixels(width * height);  // bytes R, G, B, A, rows packed
//   android::BitmapStruct view = {width, height, pixels.data()};
//   android::blurBitmap(&view, 10.0f, 0x40FF8800);
//
// The kernel has gaussianKernelSize(radius) taps: 4 * radius truncated, less one when that is even.
// A radius below 0.25, or NaN, does not blur; the colour is still applied. Afterwards every pixel
// that was blurred or tinted is opaque. A bitmap of one row or column comes back unchanged.
//
// Returns false and changes nothing when the radius is 23170.75 or more, or when memory for the
// kernel cannot be had. Memory that GaussianBlurEffect itself cannot have leaves only the blur out.
//
// REQUIRES: the pixels are locked and nobody else uses them during the call. Re-entrant.
inline bool blurBitmap(BitmapStruct* bitmap, float radius, uint32_t color = 0) {
    const int32_t size = gaussianKernelSize(radius);
    if (size > kMaxKernelSize) return false;
    if (size > 0) {
        const std::unique_ptr<int32_t[]> kernel(new (std::nothrow)
                                                    int32_t[static_cast<size_t>(size)]);
        if (!kernel) return false;
        const int32_t norm = calcuGaussianTemplate(kernel.get(), size, radius);
        if (norm == 0) return false;  // its scratch memory
        GaussianBlurEffect(bitmap, kernel.get(), size, norm);
    }
    if (color >> 24 != 0) addMask(bitmap, color);
    return true;
}

}  // namespace android
