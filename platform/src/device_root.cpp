// Preloaded into a process (LD_PRELOAD), lets the two files that lie at fixed places on a phone be
// kept in a folder: with ZOREN_DEVICE_ROOT set and not empty, opening or testing exactly one of the
// two paths reaches the file of that path below the folder. Every other path and call is untouched.

#undef _FILE_OFFSET_BITS  // fopen and fopen64 are two symbols here
#include <dlfcn.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace {

constexpr const char* kDevicePaths[] = {"/system/etc/jpsp", "/proc/net/xt_qtaguid/stats"};

// Finds the path to use for `path`: itself, or its place below the device root, spelled into
// `mapped`. Returns false, with errno set, when that does not fit. A null path is left for the
// wrapped function to refuse.
bool mapPath(const char* path, char (&mapped)[PATH_MAX], const char** target) {
    *target = path;
    if (path == nullptr) return true;
    bool fixed = false;
    for (const char* devicePath : kDevicePaths) fixed = fixed || strcmp(path, devicePath) == 0;
    const char* root = getenv("ZOREN_DEVICE_ROOT");
    if (!fixed || root == nullptr || root[0] == '\0') return true;

    const size_t rootLength = strlen(root);
    const size_t pathSize = strlen(path) + 1;  // with the terminating zero
    if (rootLength + pathSize > sizeof(mapped)) {
        errno = ENAMETOOLONG;
        return false;
    }
    memcpy(mapped, root, rootLength);
    memcpy(mapped + rootLength, path, pathSize);
    *target = mapped;
    return true;
}

// The function that this library stands in front of, or null with errno set. Looked up anew each
// time, which costs little beside the system call that follows and needs no global state.
template <typename Function>
Function nextFunction(const char* name) {
    void* address = dlsym(RTLD_NEXT, name);
    if (address == nullptr) errno = ENOSYS;
    return reinterpret_cast<Function>(address);
}

FILE* openMapped(const char* function, const char* path, const char* mode) {
    char mapped[PATH_MAX];
    const char* target = nullptr;
    if (!mapPath(path, mapped, &target)) return nullptr;
    const auto next = nextFunction<FILE* (*)(const char*, const char*)>(function);
    return next != nullptr ? next(target, mode) : nullptr;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

FILE* fopen(const char* path, const char* mode) { return openMapped("fopen", path, mode); }

FILE* fopen64(const char* path, const char* mode) { return openMapped("fopen64", path, mode); }

int access(const char* path, int type) noexcept {
    char mapped[PATH_MAX];
    const char* target = nullptr;
    // The C library declares that the path is never null, and compilers drop the test for it.
    const char* const volatile given = path;
    if (!mapPath(given, mapped, &target)) return -1;
    const auto next = nextFunction<int (*)(const char*, int)>("access");
    return next != nullptr ? next(target, type) : -1;
}

}  // extern "C"
#pragma GCC visibility pop
