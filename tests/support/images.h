#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "jni/bitmap_struct.h"

// An array that ends exactly at the end of a page, with a page behind it that nobody may touch: one
// element read or written too many ends the test program. It starts at no better an alignment than
// its element's. What is written in front of it shows in intact().
template <typename T>
class GuardedArray {
  public:
    explicit GuardedArray(size_t count) {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t bytes = count * sizeof(T);
        room_ = (bytes + page - 1) / page * page;
        bytes_ = room_ + page;
        void* map =
            mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map == MAP_FAILED) std::abort();
        base_ = static_cast<uint8_t*>(map);
        if (mprotect(base_ + room_, page, PROT_NONE) != 0) std::abort();
        slack_ = room_ - bytes;
        std::fill_n(base_, slack_, kCanary);
        begin_ = reinterpret_cast<T*>(base_ + slack_);
        end_ = begin_ + count;
    }
    explicit GuardedArray(const std::vector<T>& values) : GuardedArray(values.size()) {
        std::copy(values.begin(), values.end(), begin_);
    }
    GuardedArray(const GuardedArray&) = delete;
    ~GuardedArray() { munmap(base_, bytes_); }

    T* begin() const { return begin_; }
    T* end() const { return end_; }
    size_t size() const { return static_cast<size_t>(end_ - begin_); }
    bool intact() const {
        return std::all_of(base_, base_ + slack_, [](uint8_t byte) { return byte == kCanary; });
    }

  private:
    static constexpr uint8_t kCanary = 0xA5;
    uint8_t* base_;
    size_t room_, bytes_, slack_;
    T *begin_, *end_;
};

// A bitmap with guarded pixels.
struct Image : android::BitmapStruct {
    GuardedArray<uint32_t> storage;

    // cppcheck-suppress uninitDerivedMemberVar ; the base is initialized as an aggregate
    Image(int32_t w, int32_t h, const std::vector<uint32_t>& words)
        : BitmapStruct{w, h, nullptr}, storage(words) {
        pixels = storage.begin();
    }
    // cppcheck-suppress uninitDerivedMemberVar ; as above
    Image(int32_t w, int32_t h, uint32_t fill = 0)
        : Image(w, h, std::vector<uint32_t>(static_cast<size_t>(w) * h, fill)) {}

    static Image random(int32_t w, int32_t h, std::mt19937& generator) {
        std::vector<uint32_t> words(static_cast<size_t>(w) * h);
        for (uint32_t& word : words) word = static_cast<uint32_t>(generator());
        return {w, h, words};
    }
    std::vector<uint32_t> words() const { return {storage.begin(), storage.end()}; }
};
