// Linked into a module that is unloaded: it answers to these functions of its own, hidden from all
// others, instead of the fuzzer's, which would go on counting where the module has been.

#include <cstdint>

extern "C" {
[[gnu::visibility("hidden")]] void __sanitizer_cov_8bit_counters_init(char*, char*) {}
[[gnu::visibility("hidden")]] void __sanitizer_cov_pcs_init(const std::uintptr_t*,
                                                            const std::uintptr_t*) {}
[[gnu::visibility("hidden")]] void __sanitizer_cov_trace_pc_indir(std::uintptr_t) {}
}
