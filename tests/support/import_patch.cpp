#include "tests/support/import_patch.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

#if defined(__x86_64__)
constexpr unsigned kJumpSlot = R_X86_64_JUMP_SLOT, kGlobalData = R_X86_64_GLOB_DAT;
#elif defined(__aarch64__)
constexpr unsigned kJumpSlot = R_AARCH64_JUMP_SLOT, kGlobalData = R_AARCH64_GLOB_DAT;
#endif

const link_map* runtimeLibrary() {
    const link_map* library = _r_debug.r_map;
    while (std::strstr(library->l_name, "libzoren_runtime.so") == nullptr)
        library = library->l_next;
    return library;
}

// The value of a dynamic section's entry; the loader has made the pointers among them absolute.
ElfW(Addr) entryOf(const link_map& library, ElfW(Sxword) tag) {
    for (const ElfW(Dyn)* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == tag) return entry->d_un.d_ptr;
    }
    return 0;
}

// The table is read-only once the loader is done with it (full RELRO); it stays writable after.
void store(void** slot, void* value) {
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    void* start = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(slot) & ~(page - 1));
    if (mprotect(start, page, PROT_READ | PROT_WRITE) != 0) std::abort();
    *slot = value;
}

}  // namespace

std::vector<std::string> ImportPatch::functions() {
    const link_map* library = runtimeLibrary();
    const auto* symbols = reinterpret_cast<const ElfW(Sym)*>(entryOf(*library, DT_SYMTAB));
    const auto* names = reinterpret_cast<const char*>(entryOf(*library, DT_STRTAB));
    // Its second word: the first symbol that can be looked up here; those before it are imported.
    const uint32_t count = reinterpret_cast<const uint32_t*>(entryOf(*library, DT_GNU_HASH))[1];
    std::vector<std::string> functions;
    for (uint32_t i = 1; i < count; ++i) {
        const auto type = ELF64_ST_TYPE(symbols[i].st_info);
        if (symbols[i].st_shndx == SHN_UNDEF && type != STT_OBJECT && type != STT_TLS)
            functions.push_back(names + symbols[i].st_name);
    }
    return functions;
}

ImportPatch::ImportPatch(const char* symbol, void* replacement) {
    const link_map* library = runtimeLibrary();
    const auto* symbols = reinterpret_cast<const ElfW(Sym)*>(entryOf(*library, DT_SYMTAB));
    const auto* names = reinterpret_cast<const char*>(entryOf(*library, DT_STRTAB));
    for (const auto& [table, size] : {std::pair{DT_RELA, DT_RELASZ}, {DT_JMPREL, DT_PLTRELSZ}}) {
        const auto* rela = reinterpret_cast<const ElfW(Rela)*>(entryOf(*library, table));
        const auto* end = rela + entryOf(*library, size) / sizeof(*rela);
        for (; rela != end; ++rela) {
            const auto type = ELF64_R_TYPE(rela->r_info);
            if (type != kJumpSlot && type != kGlobalData) continue;
            const char* name = names + symbols[ELF64_R_SYM(rela->r_info)].st_name;
            if (std::strcmp(name, symbol) != 0) continue;
            auto* slot = reinterpret_cast<void**>(library->l_addr + rela->r_offset);
            slots_.push_back({slot, *slot});
            store(slot, replacement);
        }
    }
}

ImportPatch::~ImportPatch() {
    for (const auto& [slot, original] : slots_) store(slot, original);
}
