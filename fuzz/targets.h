#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

// What is fuzzed. Each target reads its arguments from the bytes, calls the unmodified library and
// compares with the plain reference; a difference, a finding of a sanitizer or an access beyond a
// page ends the process.
namespace fuzz {

using Target = void (*)(const uint8_t* data, size_t size);

extern const std::map<std::string, Target> kTargets;  // by name

}  // namespace fuzz
