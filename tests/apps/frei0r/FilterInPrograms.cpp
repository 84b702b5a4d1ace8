#include "frei0r/FilterInPrograms.h"

#include "support/Program.h"

namespace keladjust::test {

std::vector<Frame> FilterInPrograms::framesBy(const char* program,
                                              const std::vector<std::string>& arguments,
                                              FrameSize size) {
    const Outcome outcome = runProgram(program, arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    messages_ = outcome.errors;
    return readFrames(written(), size);
}

}  // namespace keladjust::test
