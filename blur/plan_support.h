#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace android {

// Gives `array` room for `count` zeros; false when memory cannot be had.
template <typename T>
bool allocate(std::unique_ptr<T[]>& array, size_t count) {
    array.reset(new (std::nothrow) T[count]());
    return array != nullptr;
}

// A word of two 16-bit halves. A negative number takes its lower 16 bits.
inline uint32_t halves(int32_t low, int32_t high) {
    return (static_cast<uint32_t>(low) & 0xFFFF) | static_cast<uint32_t>(high) << 16;
}

}  // namespace android
