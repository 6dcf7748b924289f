// The bytes held at a time, as Google Benchmark asks for them. Every allocation of the program and
// its libraries passes here; the C library's own functions do the work.

#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "bench/support.h"

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);
}

namespace {

struct Memory {
    bool on = false;
    int64_t held = 0, peak = 0, allocations = 0;
} memory;

void* taken(void* block) {
    if (memory.on && block != nullptr) {
        memory.held += static_cast<int64_t>(malloc_usable_size(block));
        memory.peak = std::max(memory.peak, memory.held);
        ++memory.allocations;
    }
    return block;
}

void released(void* block) {
    if (memory.on && block != nullptr) {
        memory.held -= static_cast<int64_t>(malloc_usable_size(block));
    }
}

struct Manager : benchmark::MemoryManager {
    void Start() override {
        memory = {};
        memory.on = true;
    }
    void Stop(Result* result) override {
        memory.on = false;
        result->num_allocs = memory.allocations;
        result->max_bytes_used = memory.peak;
    }
};

}  // namespace

extern "C" {
void* malloc(size_t bytes) { return taken(__libc_malloc(bytes)); }
void* calloc(size_t count, size_t bytes) { return taken(__libc_calloc(count, bytes)); }
void* memalign(size_t alignment, size_t bytes) { return taken(__libc_memalign(alignment, bytes)); }
void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }
int posix_memalign(void** block, size_t alignment, size_t bytes) {
    *block = memalign(alignment, bytes);
    return *block != nullptr ? 0 : ENOMEM;
}
void* realloc(void* block, size_t bytes) {
    released(block);
    return taken(__libc_realloc(block, bytes));
}
void free(void* block) {
    released(block);
    __libc_free(block);
}
}

benchmark::MemoryManager* memoryManager() {
    static Manager manager;
    return &manager;
}
