#pragma once

// The exported image routines of libzoren_runtime.so for other native code, in one include. Each
// header below is the contract of what it declares: shapes, units, ranges, refusals and ownership.
//
// All routines lie in the namespace `android`, keep no state and take no lock, so they may run on
// any number of threads as long as no two of them write the same pixels. They allocate at most for
// the length of a call, throw nothing and log nothing.

#include "analysis/color_cast.h"
#include "analysis/gray_level.h"
#include "analysis/hsb_to_rgb.h"
#include "blur/color_mask.h"
#include "blur/gaussian_blur.h"
#include "blur/gaussian_kernel.h"
#include "blur/region_fill.h"
#include "jni/bitmap_struct.h"
#include "jni/native_methods.h"
