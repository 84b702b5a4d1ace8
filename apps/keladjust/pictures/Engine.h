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
    static std::string obstacle();

    /// The name of the graphics driver; empty if it is not known.
    const std::string& driver() const { return driver_; }

private:
    ScratchFolder folder_;
    std::string driver_;
};

}  // namespace keladjust::app

#endif
