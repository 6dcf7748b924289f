#pragma once

#include <cstdint>

namespace android {

// Adds up one counter of the statistics file at `path` (docs/formats.md) over the lines of
// `interface` and `uid` whose tag is 0, modulo 2^64: `selector` 0 received bytes, 1 received
// packets, 2 transmitted bytes, 3 transmitted packets; 4 and 5 give 0.
//
// Returns -1 when the file cannot be opened or closed, and for any other selector, after the whole
// file has been read. Takes no memory but the stream's. Re-entrant.
int64_t readIfaceUidStat(const char* path, const char* interface, uint32_t uid, uint32_t selector);

}  // namespace android
