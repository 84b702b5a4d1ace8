// The entry points of the library, apart from its stages.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "host/BusyLock.h"
#include "host/GpuEngine.h"
#include "host/GpuPipeline.h"
#include "host/LibraryState.h"
#include "host/Pipeline.h"
#include "host/Record.h"
#include "lut/LibraryLut.h"
#include "platform/Event.h"
#include "platform/FloatingPoint.h"
#include "platform/Parallel.h"

using keladjust::BusyLock;
using keladjust::libraryState;
using keladjust::LibraryState;

static_assert(sizeof(_AdjustParam) == 4 * KELADJUST_SLOT_COUNT,
              "hosts pass the record slot by slot");

namespace {

void createBusyEvent(LibraryState& state) {
    if (state.busyEvent()) return;
    auto busy = std::make_shared<keladjust::platform::Event>();
    busy->signal();
    state.setBusyEvent(std::move(busy));
}

bool startEngine(const char* resourcePrefix, const char* pluginPrefix) {
    LibraryState& state = libraryState();
    const std::lock_guard life(state.life);
    // What the engine and its driver compute as they are loaded is theirs, too.
    const keladjust::platform::DefaultFloatingPoint scope;
    // The colour table needs no engine: it is there even if the engine does not come up.
    keladjust::buildLibraryLut();
    if (state.gpu.isRunning()) return true;
    createBusyEvent(state);
    const BusyLock busy;
    keladjust::stopGpuEngine(state.gpu);  // it may have stopped by itself
    state.whyNotOnGpu = {};
    state.gpu = keladjust::startGpuEngine(resourcePrefix, pluginPrefix, state.logPath.data(),
                                          state.whyNotOnGpu);
    const bool running = state.gpu.isRunning();
    state.cpuOnly = !running || keladjust::isDriverTooOld(state.gpu, state.whyNotOnGpu);
    return running;
}

}  // namespace

bool initOgreRunTime(const char* resourcePrefix, const char* pluginPrefix) {
    try {
        return startEngine(resourcePrefix, pluginPrefix);
    } catch (...) {
        // Out of memory, handles or threads.
        libraryState().cpuOnly = true;
        return false;
    }
}

void releaseOgre() {
    LibraryState& state = libraryState();
    const std::lock_guard life(state.life);
    const BusyLock busy;
    const keladjust::platform::DefaultFloatingPoint scope;
    keladjust::destroyLibraryLut();
    state.setBusyEvent(nullptr);
    keladjust::stopGpuEngine(state.gpu);
}

const char* setLogPath(const char* path) {
    std::array<char, 512>& stored = libraryState().logPath;
    stored.fill(0);
    if (path != nullptr) std::memcpy(stored.data(), path, strnlen(path, stored.size() - 1));
    return stored.data();
}

void setMaxThreads(int count) {
    keladjust::platform::setThreadLimit(count);
}

CxImage* createCxImage(unsigned char** ppBits, unsigned int width, unsigned int height,
                       unsigned int bpp, _ImagePixelFormat format) {
    return new (std::nothrow) CxImage(ppBits, width, height, bpp, format);
}

CxImage* createCxImageFromFile(const char* fileName) {
    LibraryState& state = libraryState();
    const std::lock_guard life(state.life);
    return state.filePicture.load(state.gpu.file.module, fileName);
}

void releaseCxImage(CxImage* image) {
    delete image;
}

void keladjustFree(void* memory) {
    std::free(memory);
}

CxImage* doAdjust(CxImage* image, _AdjustParam parameters) {
    const _AdjustParam record = keladjust::recordByValue(parameters);
    const BusyLock lock;
    const LibraryState& state = libraryState();
    if (lock.isHeld() && !state.cpuOnly && state.gpu.canAdjust()) {
        return keladjust::runGpuPipeline(image, record, state.gpu, nullptr);
    }
    return keladjust::runCpuPipeline(image, record);
}

float* getLut3dData(_AdjustParam parameters) {
    return keladjust::bakeLibraryLut(keladjust::recordByValue(parameters));
}

bool writeLut3DFile(_AdjustParam parameters, const char* path) {
    return keladjust::writeLibraryLut(keladjust::recordByValue(parameters), path);
}
