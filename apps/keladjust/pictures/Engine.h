#ifndef KELADJUST_APP_PICTURES_ENGINE_H
#define KELADJUST_APP_PICTURES_ENGINE_H

#include <string>

#include "files/ScratchFolder.h"

namespace keladjust::app {

/// The library's rendering engine between its start and its end, with the configuration that is
/// installed with the program or lies beside it. Its log lies where no user finds it.
class Engine {
public:
    /// @throws Failure for a folder whose name the library cannot be told
    Engine();
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// Why pictures cannot take the GPU path; empty if they can.
    ///
    /// @param hardwareOnly whether a driver that renders in software counts as none
    static std::string obstacle(bool hardwareOnly);

private:
    ScratchFolder folder_;
};

}  // namespace keladjust::app

#endif
