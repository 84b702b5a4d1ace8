#include "host/GpuEngine.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "platform/ModuleReference.h"
#include "shaders/Programs.h"

namespace keladjust {

namespace {

// A log with one line, where the engine, which else writes it, is not even there.
void writeLog(const char* prefix, const char* line) {
    std::ofstream log(std::string(prefix) + "Ogre.log");
    log << line << '\n';
}

}  // namespace

bool GpuEngine::isRunning() const {
    return file.module != nullptr && file.module->isRunning();
}

bool GpuEngine::canAdjust() const {
    return isRunning() && file.module->hasEffect(basicAdjustEffect) &&
           file.module->hasEffect(rangeEffect) && file.module->hasEffect(lensEffect);
}

GpuEngine startGpuEngine(const char* resourcePrefix, const char* pluginPrefix,
                         const char* logPrefix, EngineReason& reason) {
    const std::string combined = std::string(shaders::combinedDeclarations) + shaders::combinedMain;
    const char* const programs[] = {shaders::adjustProgram, shaders::rangeProgram,
                                    shaders::lensProgram, combined.c_str()};
    auto library = std::make_unique<platform::ModuleReference>();
    GpuEngine engine;
    engine.file = openEngineFile(reason);
    if (engine.file.module == nullptr) {
        writeLog(logPrefix, (std::string("The engine does not start: ") + reason.text).c_str());
        return engine;
    }
    if (!engine.file.module->start(
            {resourcePrefix, pluginPrefix, logPrefix, programs, std::size(programs)}, reason)) {
        closeEngineFile(engine.file);
        return engine;
    }
    engine.library = library.release();
    if (!engine.canAdjust()) {
        reason.set("Effects are missing, adjustments run on the CPU");
        engine.file.module->log(reason.text);
    }
    return engine;
}

bool isDriverTooOld(const GpuEngine& engine, EngineReason& reason) noexcept {
    EngineModule& module = *engine.file.module;
    EngineDriver driver{};
    if (!module.readDriver(driver)) {
        reason.set("The engine has stopped");
        return true;
    }
    char version[64];
    std::snprintf(version, sizeof version, "GL version is: %d.%d.%d.%d", driver.major, driver.minor,
                  driver.release, driver.build);
    module.log(version);
    if (driver.major <= 2) {
        reason.set(
            "GL version is too low, Program requires OpenGL 2.0 or higherra."
            " Please upgrade the driver of your video card!");
    } else if (driver.major == 3 && driver.minor < 2) {
        reason.set("Using C algorithm to running!");
    } else {
        return false;
    }
    module.log(reason.text);
    return true;
}

void stopGpuEngine(GpuEngine& engine) noexcept {
    if (engine.file.module != nullptr) engine.file.module->stop();
    closeEngineFile(engine.file);
    delete engine.library;
    engine = {};
}

}  // namespace keladjust
