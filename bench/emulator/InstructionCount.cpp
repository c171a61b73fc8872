// A plugin of qemu that counts the instructions of a program with one thread, and prints how many there have been each
// time the program asks for its parent (getppid, on 32-bit ARM).
//
// Debian's qemu loads plugins and comes without the header that declares what they may call; here is what is needed of
// version 1 of that interface (https://www.qemu.org/docs/master/devel/tcg-plugins.html).
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" {

using PluginId = std::uint64_t;
struct TranslationBlock;
enum InlineOperation { addToCounter };

void qemu_plugin_register_vcpu_tb_trans_cb(PluginId id, void (*translated)(PluginId, TranslationBlock*));
std::size_t qemu_plugin_tb_n_insns(const TranslationBlock* block);
void qemu_plugin_register_vcpu_tb_exec_inline(TranslationBlock* block, InlineOperation operation, void* counter,
                                              std::uint64_t amount);
void qemu_plugin_register_vcpu_syscall_cb(PluginId id,
                                          void (*called)(PluginId, unsigned processor, std::int64_t number,
                                                         std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                                                         std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t));
void qemu_plugin_outs(const char* text);

extern const int qemu_plugin_version;
const int qemu_plugin_version = 1;

int qemu_plugin_install(PluginId id, const void* info, int argc, char** argv);
}

namespace {

constexpr std::int64_t getParent = 64;

std::uint64_t executed = 0;

void onTranslated(PluginId, TranslationBlock* block) {
    qemu_plugin_register_vcpu_tb_exec_inline(block, addToCounter, &executed, qemu_plugin_tb_n_insns(block));
}

void onSystemCall(PluginId, unsigned, std::int64_t number, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                  std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t) {
    if (number == getParent) {
        char line[32];
        std::snprintf(line, sizeof line, "%" PRIu64 "\n", executed);
        qemu_plugin_outs(line);
    }
}

} // namespace

int qemu_plugin_install(PluginId id, const void*, int, char**) {
    qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslated);
    qemu_plugin_register_vcpu_syscall_cb(id, onSystemCall);
    return 0;
}
