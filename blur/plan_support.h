#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace android {

// The 32-bit words that a blur may hold besides the picture: 64 for each row, column and tap. The
// plans take at most kPlanWords of them a tap, the passes' scratch the rest.
inline size_t memoryBound(size_t rows, size_t columns, size_t taps) {
    return 64 * (rows + columns + taps);
}
constexpr size_t kPlanWords = 24;

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
