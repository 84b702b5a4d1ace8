// An adjustment that tells how far it is, can be cancelled, and says where it took place.

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <optional>

#include "ImageFormat/Geometry.h"
#include "host/BusyLock.h"
#include "host/GpuPipeline.h"
#include "host/LibraryState.h"
#include "host/Pipeline.h"
#include "host/Record.h"
#include "host/Uniforms.h"
#include "platform/CallScope.h"
#include "platform/UnsetArray.h"

namespace keladjust {

namespace {

/// The host's structure, of which an older host has only the first members.
class HostRun {
public:
    explicit HostRun(KeladjustRun* given) : given_(given) {
        if (given_ == nullptr) return;
        size_ = std::min<std::size_t>(given_->size, sizeof wishes);
        std::memcpy(&wishes, given_, size_);
    }

    /// Without what lies behind the host's end.
    void tell(KeladjustPath path, const EngineReason& reason) {
        KeladjustRun told{};
        told.pathTaken = path;
        static_assert(sizeof told.reason == sizeof reason.text);
        std::memcpy(told.reason, reason.text, sizeof told.reason);
        copyBack(told, offsetof(KeladjustRun, pathTaken), sizeof told.pathTaken);
        copyBack(told, offsetof(KeladjustRun, reason), sizeof told.reason);
    }

    KeladjustRun wishes{};

private:
    void copyBack(const KeladjustRun& told, std::size_t offset, std::size_t bytes) {
        if (offset + bytes > size_) return;
        std::memcpy(reinterpret_cast<char*>(given_) + offset,
                    reinterpret_cast<const char*>(&told) + offset, bytes);
    }

    KeladjustRun* given_;
    std::size_t size_ = 0;
};

/// The pixels of a picture as they were, where rendering may fail after they have changed.
class Backup {
public:
    /// @throws std::bad_alloc
    Backup(CxImage& image, const _AdjustParam& record) : image_(image) {
        // A render does all or nothing: what matters is what comes before the last one.
        const bool changesBefore =
            startsProgram(Program::tone, record) || readSlot<float>(record, claritySlot) != 0.0f;
        if (!startsProgram(Program::range, record) || !changesBefore || !hasPixels(&image)) return;
        pixels_ = platform::makeUnsetArray<std::uint8_t>(image.size);
        std::memcpy(pixels_.get(), image.pBits, image.size);
    }
    void restore() {
        if (pixels_) std::memcpy(image_.pBits, pixels_.get(), image_.size);
    }

private:
    static constexpr int claritySlot = offsetof(_AdjustParam, clarity) / 4;

    CxImage& image_;
    std::unique_ptr<std::uint8_t[]> pixels_;
};

bool isEmpty(const EngineReason& reason) {
    return reason.text[0] == '\0';
}

void renderOrRestore(CxImage& image, const _AdjustParam& record, const GpuEngine& engine,
                     EngineReason& reason) {
    try {
        Backup backup(image, record);
        runGpuPipeline(&image, record, engine, &reason);
        if (!isEmpty(reason)) backup.restore();
    } catch (const std::bad_alloc&) {
        reason.set("memory is short");
    }
}

bool rendersInSoftware(const GpuEngine& engine) {
    EngineDriver driver{};
    return engine.file.module->readDriver(driver) && !driver.isHardware;
}

// What the last start said, or these words if it said nothing.
const char* reasonOr(const LibraryState& state, const char* words) {
    return isEmpty(state.whyNotOnGpu) ? words : state.whyNotOnGpu.text;
}

/// Adjusts on the GPU; the reason says why not, the picture then being as it was.
void adjustOnGpu(CxImage& image, const _AdjustParam& record, bool hardwareOnly,
                 EngineReason& reason) {
    LibraryState& state = libraryState();
    if (state.cpuOnly) {
        // Known without waiting for adjustments that run.
        const std::lock_guard life(state.life);
        reason.set(reasonOr(state, "there is no engine, or its graphics driver is too old"));
        return;
    }
    const BusyLock lock;
    if (!lock.isHeld()) {
        reason.set("the engine is not running");
    } else if (state.cpuOnly || !state.gpu.canAdjust()) {
        reason.set(reasonOr(state, "the engine is not running"));
    } else if (hardwareOnly && rendersInSoftware(state.gpu)) {
        reason.set("the driver renders in software");
    } else {
        renderOrRestore(image, record, state.gpu, reason);
    }
}

KeladjustResult run(CxImage& image, const _AdjustParam& record, HostRun& host,
                    platform::CallScope& call) {
    if (call.tell(0.0f)) {
        host.tell(KELADJUST_AUTO, {});
        return KELADJUST_CANCELLED;
    }
    const std::int32_t path = host.wishes.path;
    EngineReason reason;
    const bool hardwareOnly = path == KELADJUST_AUTO && host.wishes.hardwareOnly != 0;
    if (path != KELADJUST_CPU) adjustOnGpu(image, record, hardwareOnly, reason);
    const bool onGpu = path != KELADJUST_CPU && isEmpty(reason);
    if (!onGpu && path == KELADJUST_GPU) {
        host.tell(KELADJUST_AUTO, reason);
        return KELADJUST_REFUSED;
    }
    if (!onGpu) runCpuPipeline(&image, record);
    host.tell(onGpu ? KELADJUST_GPU : KELADJUST_CPU, reason);
    if (call.isCancelled()) return KELADJUST_CANCELLED;
    call.tell(1.0f);
    return KELADJUST_DONE;
}

}  // namespace

}  // namespace keladjust

KeladjustResult keladjustRun(CxImage* image, const _AdjustParam* record, size_t recordBytes,
                             KeladjustRun* run) {
    using namespace keladjust;
    HostRun host(run);
    const auto refuse = [&](const char* words) {
        EngineReason reason;
        reason.set(words);
        host.tell(KELADJUST_AUTO, reason);
        return KELADJUST_REFUSED;
    };
    const std::optional<_AdjustParam> settings = readRecord(record, recordBytes);
    if (image == nullptr) return refuse("no picture");
    if (record == nullptr) return refuse("no record");
    if (!settings) return refuse("the record has settings that this version does not know");
    if (host.wishes.path < KELADJUST_AUTO || host.wishes.path > KELADJUST_GPU) {
        return refuse("no such path");
    }
    try {
        platform::CallScope call(host.wishes.maxThreads, host.wishes.progress, host.wishes.user);
        return keladjust::run(*image, *settings, host, call);
    } catch (...) {
        return refuse("memory is short");
    }
}
