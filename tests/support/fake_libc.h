#pragma once

#include <string>
#include <vector>

#include "tests/support/import_patch.h"

// While it lives, the library's memory, file and process calls come here instead: they fail where
// the script says and every path is the file the test gave. Needs a FakePlatform, whose script and
// list of calls they share. A read fails as "fread", a byte short, and as "fread nothing".
class FakeLibc {
  public:
    FakeLibc();  // the latest one counts
    ~FakeLibc();

    // The script.
    std::string file;   // the path that takes the place of any other
    unsigned uid = 0;   // of the process
    long position = 0;  // what ftell says; 0 for the truth

    // What came in.
    int openFiles = 0;
    bool plaintextWiped = true;  // false while it lies in memory
    bool keysWiped() const;
    size_t heldBlocks() const;
    size_t peakBytes = 0;  // the most that was held at a time

    // Nothing is held, open or left readable.
    bool balanced() const {
        return heldBlocks() == 0 && openFiles == 0 && keysWiped() && plaintextWiped;
    }

  private:
    template <typename Function>
    void patch(const char* symbol, Function function) {
        patches_.emplace_back(symbol, reinterpret_cast<void*>(+function));
    }
    void patchMemory();
    void patchFiles();
    void patchCipher();

    FakeLibc* const previous_;
    std::vector<ImportPatch> patches_;
};

// Puts `content` in a file that lasts as long as the object.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& content);
    ~TemporaryFile();
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};
