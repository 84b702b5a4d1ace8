// The entry points of the library, apart from its stages.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "filters/LensCorrection.h"
#include "host/LibraryState.h"
#include "host/Pipeline.h"
#include "lut/LibraryLut.h"
#include "platform/Event.h"
#include "platform/Parallel.h"

using keladjust::libraryState;
using keladjust::LibraryState;

static_assert(sizeof(_AdjustParam) == 65 * 4, "hosts pass the record by value, slot by slot");

namespace {

/// Keeps adjustments apart, once the busy event exists.
class BusyLock {
public:
    BusyLock() : busy_(libraryState().busyEvent()) {
        if (busy_) busy_->wait();
    }
    ~BusyLock() {
        if (busy_) busy_->signal();
    }
    BusyLock(const BusyLock&) = delete;
    BusyLock& operator=(const BusyLock&) = delete;

private:
    std::shared_ptr<keladjust::platform::Event> busy_;
};

void createBusyEvent(LibraryState& state) {
    if (state.busyEvent()) return;
    auto busy = std::make_shared<keladjust::platform::Event>();
    busy->signal();
    state.setBusyEvent(std::move(busy));
}

}  // namespace

bool initOgreRunTime(const char*, const char*) {
    // The colour table needs no engine: it is there even if the engine does not come up.
    keladjust::buildLibraryLut();
    LibraryState& state = libraryState();
    try {
        createBusyEvent(state);
    } catch (...) {
        // Out of memory or handles: adjustments are then not kept apart, as before this call.
    }
    state.cpuOnly = true;
    return false;
}

void releaseOgre() {
    keladjust::destroyLibraryLut();
    libraryState().setBusyEvent(nullptr);
    keladjust::releaseLensMaps();
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

CxImage* createCxImageFromFile(const char*) {
    // Files are loaded by the engine; without it the image stays empty.
    return new (std::nothrow) CxImage();
}

void releaseCxImage(CxImage* image) {
    delete image;
}

CxImage* doAdjust(CxImage* image, _AdjustParam parameters) {
    const BusyLock lock;
    return keladjust::runCpuPipeline(image, parameters);
}

float* getLut3dData(_AdjustParam parameters) {
    return keladjust::bakeLibraryLut(parameters);
}

bool writeLut3DFile(_AdjustParam parameters, const char* path) {
    return keladjust::writeLibraryLut(parameters, path);
}
