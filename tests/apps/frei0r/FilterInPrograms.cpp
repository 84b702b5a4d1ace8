#include "frei0r/FilterInPrograms.h"

namespace keladjust::test {

std::vector<Frame> FilterInPrograms::framesBy(const char* program,
                                              const std::vector<std::string>& arguments,
                                              FrameSize size) {
    return framesAfter(runProgram(program, arguments), size);
}

std::vector<Frame> FilterInPrograms::framesAfter(const Outcome& outcome, FrameSize size) {
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    messages_ = outcome.errors;
    return readFrames(written(), size);
}

}  // namespace keladjust::test
