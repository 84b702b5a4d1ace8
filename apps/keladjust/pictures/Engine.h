#ifndef KELADJUST_APP_PICTURES_ENGINE_H
#define KELADJUST_APP_PICTURES_ENGINE_H

#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "files/ScratchFolder.h"

namespace keladjust::app {

/// The library between initOgreRunTime() and releaseOgre(). What becomes of the rendering engine
/// stands in the engine's log alone, so that is read here; it lies where no user finds it.
class Engine {
public:
    enum class Configuration {
        ofTheProgram,  ///< installed with the program, or beside it
        none           ///< the engine stays down; colour tables are made without it
    };

    explicit Engine(Configuration configuration);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /// Why adjustments take the CPU path; nothing if they take the GPU path.
    const std::optional<std::string>& obstacle() const { return obstacle_; }

    /// The name of the graphics driver; empty if it is not known.
    const std::string& driver() const { return driver_; }

    /// Why pictures were not rendered since this was last asked; nothing if all were.
    std::optional<std::string> refusal();

private:
    std::vector<std::string> newLines();
    std::optional<std::string> obstacleAfterStart(bool started);

    ScratchFolder folder_;
    std::ifstream log_;
    std::optional<std::string> obstacle_;
    std::string driver_;
};

}  // namespace keladjust::app

#endif
