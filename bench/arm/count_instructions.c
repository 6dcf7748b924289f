// A plugin for qemu-aarch64: counts the instructions that are executed and, when the program ends,
// writes their number to the file that the argument out=FILE names. Debian has no package of the
// interface's header, so what is used of it is declared here.

#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

typedef uint64_t PluginId;
struct qemu_plugin_tb;
void qemu_plugin_register_vcpu_tb_trans_cb(PluginId id,
                                           void (*callback)(PluginId, struct qemu_plugin_tb*));
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation,
                                              void* counter, uint64_t value);
void qemu_plugin_register_atexit_cb(PluginId id, void (*callback)(PluginId, void*), void* data);

int qemu_plugin_version = 1;

enum { kAdd = 0 };  // the one inline operation
static uint64_t executed;
static char path[4096];

// A block runs from its first instruction to its last, so one addition counts them all.
static void translated(PluginId id, struct qemu_plugin_tb* block) {
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, kAdd, &executed,
                                             qemu_plugin_tb_n_insns(block));
}

static void ended(PluginId id, void* data) {
    (void)id, (void)data;
    FILE* file = fopen(path, "w");
    if (file == NULL) return;  // whoever wanted the number misses it
    fprintf(file, "%" PRIu64 "\n", executed);
    fclose(file);
}

int qemu_plugin_install(PluginId id, const void* info, int argc, char** argv) {
    (void)info;
    if (argc != 1 || strncmp(argv[0], "out=", 4) != 0) return 1;
    snprintf(path, sizeof path, "%s", argv[0] + 4);
    qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
    qemu_plugin_register_atexit_cb(id, ended, NULL);
    return 0;
}
