#pragma once

#include <string>
#include <utility>
#include <vector>

// While it lives, every call that libzoren_runtime.so makes to the imported function `symbol` goes
// to `replacement`: the library's own global offset table is rewritten, so the test program and the
// other libraries keep the real function. Does nothing for a function that is not imported. Not for
// use while another thread is in the library.
class ImportPatch {
  public:
    static std::vector<std::string> functions();  // all that the library imports

    ImportPatch(const char* symbol, void* replacement);
    ImportPatch(ImportPatch&& other) noexcept : slots_(std::exchange(other.slots_, {})) {}
    ~ImportPatch();

  private:
    std::vector<std::pair<void**, void*>> slots_;  // where, and what was there
};
