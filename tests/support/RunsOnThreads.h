#ifndef KELADJUST_TESTS_SUPPORT_RUNSONTHREADS_H
#define KELADJUST_TESTS_SUPPORT_RUNSONTHREADS_H

#include <keladjust/keladjust.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "support/HostPicture.h"

namespace keladjust::test {

/// Eight threads that adjust pictures and bake tables: every stage of the record by itself, and all
/// at once.
class RunsOnThreads {
public:
    /// Every other thread leaves the path to the library; the others insist on the CPU's.
    /// Adjusts each picture once by itself, on the CPU and on the path that `keladjustRun` takes.
    RunsOnThreads();

    /// Has the threads adjust while `work` runs, and expects of each adjustment what it gave by
    /// itself.
    void during(const std::function<void()>& work) const;

private:
    struct Case {
        _AdjustParam record;
        HostPicture picture;
        std::vector<std::uint8_t> onCpu;
        std::vector<std::uint8_t> onGpu;  ///< empty where no engine runs, or it has no part in it
        std::vector<float> table;
    };
    static void adjust(const Case& each, std::int32_t path, std::int32_t maxThreads);

    std::vector<Case> cases_;
};

}  // namespace keladjust::test

#endif
