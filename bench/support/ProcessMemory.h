#ifndef KELADJUST_BENCH_SUPPORT_PROCESSMEMORY_H
#define KELADJUST_BENCH_SUPPORT_PROCESSMEMORY_H

#include <fstream>
#include <string>

namespace keladjust::bench {

/// How far the memory of this process rises above what it is when this is made.
class MemoryRise {
public:
    MemoryRise() : before_(bytesOf("VmRSS")) { std::ofstream("/proc/self/clear_refs") << "5"; }

    /// Bytes of the peak since then.
    double peak() const { return bytesOf("VmHWM") - before_; }

private:
    /// A line of the kernel's account of this process.
    static double bytesOf(const std::string& what) {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind(what + ":", 0) == 0) {
                return std::stod(line.substr(what.size() + 1)) * 1024;
            }
        }
        return 0;
    }

    double before_;
};

}  // namespace keladjust::bench

#endif
