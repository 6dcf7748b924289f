#pragma once

#include <cstddef>

namespace android {

// The decrypted configuration: zero-terminated text in a heap buffer of `size` bytes, or a null
// `text`. Whoever holds it hands it to releaseConfig.
struct ConfigText {
    char* text;
    size_t size;
};

// Opens the encrypted configuration file at `path` (docs/formats.md) for a process that runs as
// uid 0 and returns its text, up to the first zero byte; null for any other uid, which never
// touches the file, and for a file that cannot be read or is no such configuration. The log tells
// which (priority INFO, tag "zorenconfig"); it never carries configuration text.
//
// A key schedule that cannot be set up ends the process with exit(-1). Re-entrant.
ConfigText readConfig(const char* path);

// Wipes and frees. Takes a null text too.
void releaseConfig(ConfigText config);

}  // namespace android
