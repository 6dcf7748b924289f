#pragma once

#include <cstdint>

namespace android {

// The view of one locked bitmap that every image routine takes.
//
// `pixels` addresses width * height words, rows from the top with no gap between them: pixel (x, y)
// is word y * width + x. In memory a word is the bytes red, green, blue, alpha (RGBA_8888), so as a
// little-endian integer red is bits 0-7 and alpha bits 24-31. This is not the order of a colour int
// (0xAARRGGBB). width * height must fit a signed 32-bit integer.
//
// The view owns nothing. The caller keeps the pixels locked, or alive, for the length of a call; no
// routine keeps the view or the pointer.
struct BitmapStruct {
    int32_t width;     // pixels in a row
    int32_t height;    // rows
    uint32_t* pixels;  // the top-left pixel
};

// Other native code of the phone was compiled with this layout.
static_assert(sizeof(BitmapStruct) == 16 && __builtin_offsetof(BitmapStruct, width) == 0 &&
              __builtin_offsetof(BitmapStruct, height) == 4 &&
              __builtin_offsetof(BitmapStruct, pixels) == 8);

}  // namespace android
