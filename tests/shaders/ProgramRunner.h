#ifndef KELADJUST_TESTS_SHADERS_PROGRAMRUNNER_H
#define KELADJUST_TESTS_SHADERS_PROGRAMRUNNER_H

#include <map>
#include <memory>
#include <string>
#include <variant>

#include "models/gpu/Texture.h"

namespace keladjust::test {

/// Values of a program's settings by name. A name that the program does not have is an error.
using ProgramSettings = std::map<std::string, std::variant<int, float>>;

/// Runs fragment programs over pictures on the machine's OpenGL driver, without engine and without
/// display.
class ProgramRunner {
public:
    /// @throws std::runtime_error if there is no driver that draws without a display
    ProgramRunner();
    ~ProgramRunner();
    ProgramRunner(const ProgramRunner&) = delete;
    ProgramRunner& operator=(const ProgramRunner&) = delete;

    /// Settings not given keep the values of the program's last run, at first 0.
    /// @throws std::runtime_error with the driver's words if the program does not compile
    gpu::Texture render(const std::string& fragmentProgram, const ProgramSettings& settings,
                        const gpu::Texture& picture);

private:
    struct Context;
    std::unique_ptr<Context> context_;
};

}  // namespace keladjust::test

#endif
