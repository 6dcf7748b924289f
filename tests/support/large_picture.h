#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "jni/bitmap_struct.h"

// A picture of up to 2^31 pixels in a few MiB of memory: one block of pixels, the body, is mapped
// again and again, and memory of its own, the tail, holds the last pixels. What is written to the
// body shows everywhere in it; what a routine does at the end shows in the tail alone.
class LargePicture {
  public:
    static constexpr size_t kBlockWords = size_t{1} << 19;

    // The tail holds at least the last tailWords pixels.
    LargePicture(int32_t width, int32_t height, size_t tailWords = kBlockWords)
        : count_(static_cast<size_t>(width) * static_cast<size_t>(height)),
          blocks_(count_ / kBlockWords),
          tailBlock_((count_ - tailWords) / kBlockWords) {
        const int file = memfd_create("body", 0);
        if (file < 0 || ftruncate(file, kBlock) != 0) std::abort();
        base_ = mapping(nullptr, (blocks_ + 2) * kBlock, MAP_PRIVATE | MAP_ANONYMOUS, -1);
        for (size_t b = 0; b < tailBlock_; ++b) {
            mapping(base_ + b * kBlock, kBlock, MAP_SHARED | MAP_FIXED, file);
        }
        close(file);
        view_ = {width, height, reinterpret_cast<uint32_t*>(base_)};
    }
    LargePicture(const LargePicture&) = delete;
    ~LargePicture() { munmap(base_, (blocks_ + 2) * kBlock); }

    android::BitmapStruct* view() { return &view_; }
    size_t count() const { return count_; }
    uint32_t* body() { return view_.pixels; }  // kBlockWords words
    uint32_t* tail() { return view_.pixels + tailBlock_ * kBlockWords; }
    size_t tailCount() const { return count_ - tailBlock_ * kBlockWords; }
    uint32_t* behind() { return view_.pixels + count_; }  // words that are not the picture's

    // Gives pixel i of each block, the tail's included, the colour pixelAt(i).
    template <typename PixelAt>
    void fill(PixelAt pixelAt) {
        for (size_t i = 0; i < kBlockWords; ++i) body()[i] = pixelAt(i);
        for (size_t i = 0; i < tailCount(); ++i) tail()[i] = pixelAt(i % kBlockWords);
    }

  private:
    static constexpr size_t kBlock = kBlockWords * sizeof(uint32_t);

    static uint8_t* mapping(void* where, size_t bytes, int flags, int file) {
        void* map = mmap(where, bytes, PROT_READ | PROT_WRITE, flags | MAP_NORESERVE, file, 0);
        if (map == MAP_FAILED) std::abort();
        return static_cast<uint8_t*>(map);
    }

    size_t count_, blocks_, tailBlock_;
    uint8_t* base_;
    android::BitmapStruct view_;
};
