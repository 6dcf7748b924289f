#include "tests/support/import_patch.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

// The value of a dynamic section's entry; the loader has made the pointers among them absolute.
ElfW(Addr) entryOf(const link_map& library, ElfW(Sxword) tag) {
    for (const ElfW(Dyn)* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == tag) return entry->d_un.d_ptr;
    }
    return 0;
}

// Calls visit(symbol, name, slot) for each address that the loader puts into the library's table.
template <typename Visit>
void visitSlots(Visit visit) {
    const link_map* library = _r_debug.r_map;
    while (!std::strstr(library->l_name, "libzoren_runtime.so")) library = library->l_next;
    const auto* symbols = reinterpret_cast<const ElfW(Sym)*>(entryOf(*library, DT_SYMTAB));
    const auto* names = reinterpret_cast<const char*>(entryOf(*library, DT_STRTAB));
    for (const auto& [table, size] : {std::pair{DT_RELA, DT_RELASZ}, {DT_JMPREL, DT_PLTRELSZ}}) {
        const auto* rela = reinterpret_cast<const ElfW(Rela)*>(entryOf(*library, table));
        const auto* end = rela + entryOf(*library, size) / sizeof(*rela);
        for (; rela != end; ++rela) {
            const ElfW(Sym)& symbol = symbols[ELF64_R_SYM(rela->r_info)];
            if (symbol.st_name == 0) continue;  // an address of the library's own
            visit(symbol, names + symbol.st_name,
                  reinterpret_cast<void**>(library->l_addr + rela->r_offset));
        }
    }
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
    std::vector<std::string> functions;
    visitSlots([&](const ElfW(Sym) & symbol, const char* name, void**) {
        if (symbol.st_shndx == SHN_UNDEF && ELF64_ST_TYPE(symbol.st_info) != STT_OBJECT)
            functions.push_back(name);
    });
    return functions;
}

ImportPatch::ImportPatch(const char* symbol, void* replacement) {
    visitSlots([&](const ElfW(Sym)&, const char* name, void** slot) {
        if (std::strcmp(name, symbol) != 0) return;
        slots_.push_back({slot, *slot});
        store(slot, replacement);
    });
}

ImportPatch::~ImportPatch() {
    for (const auto& [slot, original] : slots_) store(slot, original);
}
