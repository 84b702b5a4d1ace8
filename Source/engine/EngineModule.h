#ifndef KELADJUST_ENGINE_ENGINEMODULE_H
#define KELADJUST_ENGINE_ENGINEMODULE_H

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

/// All that the library and its engine, which is a file of its own, know of each other. Memory
/// stays with the side that allocated it, and no exception crosses.
namespace keladjust {

/// Why something was not done, in a few words.
struct EngineReason {
    char text[128] = {};

    /// Keeps what fits.
    void set(std::string_view reason) noexcept {
        const std::size_t length = std::min(reason.size(), sizeof text - 1);
        std::copy_n(reason.data(), length, text);
        std::fill(text + length, text + sizeof text, '\0');
    }
};

struct EngineStart {
    const char* resourcesPrefix;  ///< stands before "resources.cfg"; null is empty, here and below
    const char* pluginsPrefix;    ///< stands before "plugins.cfg"
    const char* logPrefix;        ///< stands before "Ogre.log"
    /// Fragment programs. Each makes an effect, whose number is its place here.
    const char* const* programs;
    std::uint32_t programCount;
};

struct EngineDriver {
    std::int32_t major, minor, release, build;
    bool isHardware;  ///< false if the processor does the work of a graphics card
};

/// Values of a program's uniforms, by name.
struct EngineInt {
    const char* name;
    std::int32_t value;
};
struct EngineFloat {
    const char* name;
    float value;
};

/// One pass of an effect over a picture, in place. Rows are padded to four bytes.
struct EngineRender {
    std::uint32_t effect;
    unsigned char* pixels;
    std::uint32_t width, height, bitsPerPixel;
    _ImagePixelFormat format;
    /// Set in this order, before the floats.
    const EngineInt* ints;
    std::uint32_t intCount;
    const EngineFloat* floats;
    std::uint32_t floatCount;
};

/// A picture that was read from a file. Rows are tight.
struct EnginePicture {
    const unsigned char* pixels;
    std::uint32_t width, height, bitsPerPixel;
    std::uint64_t byteSize;
    _ImagePixelFormat format;
};

/// Takes a picture over, on the engine's thread, before the pixels are gone.
class EnginePictureTaker {
public:
    virtual void take(const EnginePicture& picture) noexcept = 0;

protected:
    ~EnginePictureTaker() = default;
};

/// The engine. Starts and stops are called by one thread at a time, the others between them, from
/// any.
class EngineModule {
public:
    /// Starts the engine and makes the effects. Not called while it runs.
    /// @return false, and why, if it did not come up
    virtual bool start(const EngineStart& start, EngineReason& reason) noexcept = 0;
    /// Takes the engine down, effects and all; harmless if it has stopped by itself.
    virtual void stop() noexcept = 0;
    /// True from the start until it is stopped or stops by itself, because its window is gone.
    virtual bool isRunning() const noexcept = 0;
    /// True if that effect could be made and its program compiled or may still compile.
    virtual bool hasEffect(std::uint32_t effect) const noexcept = 0;
    /// @return false if the engine does not run
    virtual bool readDriver(EngineDriver& driver) const noexcept = 0;
    /// @return false, the pixels being untouched, and why, if the picture was not rendered
    virtual bool render(const EngineRender& render, EngineReason& reason) noexcept = 0;
    /// Reads a picture file, which goes to `taker`.
    /// @return false if there is no such picture
    virtual bool loadPicture(const char* path, EnginePictureTaker& taker) noexcept = 0;
    /// Writes a line into the engine's log.
    virtual void log(const char* line) noexcept = 0;

protected:
    ~EngineModule() = default;
};

/// What the module's one exported function gives.
struct EngineModuleEntry {
    /// Of the module; looked at before anything else, because all else may change with it.
    const char* version;
    EngineModule* module;
};

using EngineModuleFunction = const EngineModuleEntry* (*)();
inline constexpr const char* engineModuleFunctionName = "keladjustEngineModule";

}  // namespace keladjust

#if defined(_MSC_VER) && defined(KELADJUST_ENGINE_BUILD)
#define KELADJUST_ENGINE_API __declspec(dllexport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define KELADJUST_ENGINE_API __attribute__((visibility("default")))
#else
#define KELADJUST_ENGINE_API
#endif

extern "C" KELADJUST_ENGINE_API const keladjust::EngineModuleEntry* keladjustEngineModule();

#endif
