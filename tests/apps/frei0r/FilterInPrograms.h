#ifndef KELADJUST_TESTS_FILTERINPROGRAMS_H
#define KELADJUST_TESTS_FILTERINPROGRAMS_H

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "frei0r/Frames.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "support/Variable.h"

namespace keladjust::test {

/// Runs programs that find the filter where it has been built and write raw video.
class FilterInPrograms : public testing::Test {
protected:
    static constexpr FrameSize usual = {320, 180};

    /// What the program writes to written(). It must succeed; what it says is kept.
    std::vector<Frame> framesBy(const char* program, const std::vector<std::string>& arguments,
                                FrameSize size);
    /// The same once it has run.
    std::vector<Frame> framesAfter(const Outcome& outcome, FrameSize size);
    std::filesystem::path written() const { return folder_ / "out.raw"; }

    const TemporaryFolder folder_;
    std::string messages_;

private:
    const Variable path_{"FREI0R_PATH",
                         std::filesystem::path(KELADJUST_FREI0R_FILTER).parent_path().c_str()};
};

}  // namespace keladjust::test

#endif
