// A plugin of qemu's user mode emulation: how many instructions a program has executed, when it
// ends. What is declared here is version 1 of qemu's plugin interface (docs/devel/tcg-plugins in
// its sources), for which Debian has no header.
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" {
struct qemu_plugin_tb; // instructions that are executed one after the other
void qemu_plugin_register_vcpu_tb_trans_cb(std::uint64_t id,
                                           void (*translated)(std::uint64_t id, qemu_plugin_tb*));
std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb*);
void qemu_plugin_register_vcpu_tb_exec_inline(qemu_plugin_tb*, int operation, void* counter,
                                              std::uint64_t added);
void qemu_plugin_register_atexit_cb(std::uint64_t id, void (*ended)(std::uint64_t id, void*),
                                    void*);

[[gnu::visibility("default")]] extern const int qemu_plugin_version = 1;
[[gnu::visibility("default")]] int qemu_plugin_install(std::uint64_t id, const void*, int, char**);
}

namespace
{
std::uint64_t executed = 0;

void countWhenExecuted(std::uint64_t /*id*/, qemu_plugin_tb* block)
{
    constexpr int add = 0; // the only operation that there is
    qemu_plugin_register_vcpu_tb_exec_inline(block, add, &executed, qemu_plugin_tb_n_insns(block));
}

void print(std::uint64_t /*id*/, void* /*unused*/)
{
    std::fprintf(stderr, "%" PRIu64 "\n", executed);
}
} // namespace

int qemu_plugin_install(std::uint64_t id, const void* /*info*/, int /*count*/, char** /*arguments*/)
{
    qemu_plugin_register_vcpu_tb_trans_cb(id, countWhenExecuted);
    qemu_plugin_register_atexit_cb(id, print, nullptr);
    return 0;
}
