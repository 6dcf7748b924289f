#pragma once

namespace android {

// A name or a signature in a method table. OpenJDK's record points to plain characters where
// Android's points to const ones; nobody writes them.
constexpr char* tableText(const char* text) { return const_cast<char*>(text); }

}  // namespace android
