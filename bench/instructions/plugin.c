/* A plugin of qemu's user emulation: counts the instructions that the program executes, and
 * logs their number at its end. */
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

/* Version 1 of the plugin interface, as far as it is used here: Debian has no header of it. */
struct qemu_plugin_tb;
enum { QEMU_PLUGIN_INLINE_ADD_U64 };
void qemu_plugin_register_vcpu_tb_trans_cb(uint64_t id,
                                           void (*translated)(uint64_t id,
                                                              struct qemu_plugin_tb *block));
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *block);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb *block, int operation,
                                              void *counter, uint64_t operand);
void qemu_plugin_register_atexit_cb(uint64_t id, void (*at_exit)(uint64_t id, void *data),
                                    void *data);
void qemu_plugin_outs(const char *text);

int qemu_plugin_version = 1;

static uint64_t executed;

/* A block has one way in and is executed to its end: all of it counts whenever it is begun. */
static void count_block(uint64_t id, struct qemu_plugin_tb *block) {
  (void)id;
  qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &executed,
                                           qemu_plugin_tb_n_insns(block));
}

static void report(uint64_t id, void *data) {
  char text[32];
  (void)id;
  (void)data;
  snprintf(text, sizeof text, "executed %" PRIu64 "\n", executed);
  qemu_plugin_outs(text);
}

int qemu_plugin_install(uint64_t id, const void *machine, int argc, char **argv) {
  (void)machine;
  (void)argc;
  (void)argv;
  qemu_plugin_register_vcpu_tb_trans_cb(id, count_block);
  qemu_plugin_register_atexit_cb(id, report, NULL);
  return 0;
}
