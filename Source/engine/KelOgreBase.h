#ifndef KELADJUST_ENGINE_KELOGREBASE_H
#define KELADJUST_ENGINE_KELOGREBASE_H

#include <OgreRenderSystemCapabilities.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Ogre {
class LogManager;
class RenderSystem;
class RenderWindow;
class Root;
}  // namespace Ogre

/// The 3D engine, brought up on the render thread: its log, plugins, resources, render system and
/// the hidden window that holds the graphics context. At most one is up at a time.
class KelOgreBase {
public:
    /// What stands before the names of the engine's files, and the graphics interface.
    struct Start {
        std::string resourcesPrefix;
        std::string pluginsPrefix;
        std::string logPrefix;
        std::uint32_t renderSystemKind = 0;
    };

    explicit KelOgreBase(const Start& start);
    virtual ~KelOgreBase();
    KelOgreBase(const KelOgreBase&) = delete;
    KelOgreBase& operator=(const KelOgreBase&) = delete;

    /// Brings the engine up with a window of that size.
    /// @return false, the reason being in the log, if anything on the way fails
    virtual bool setup(unsigned width, unsigned height);
    /// Takes the engine down; the log is closed last.
    virtual void teardown();
    /// Called while the render thread has nothing to do.
    virtual void idle();

    /// The engine that is up, for the effects that the factory makes without arguments; null while
    /// none is.
    static KelOgreBase* current();
    /// Largest width and height of a texture, once an engine has been up.
    static std::uint32_t maximumTextureSize();

    Ogre::Root* root() const { return root_.get(); }
    Ogre::RenderWindow* renderWindow() const { return renderWindow_; }
    std::uint32_t renderSystemKind() const { return renderSystemKind_; }
    bool isPixelBufferCapable() const { return pixelBufferCapable_; }
    bool isIntelGpu() const { return intelGpu_; }
    /// False if the processor does the work of a graphics card.
    bool isHardware() const { return hardware_; }
    bool hasSetupSucceeded() const { return setupSucceeded_; }
    /// Why setup() failed; empty while it has not.
    const std::string& whyNotSetUp() const { return whyNotSetUp_; }
    bool isWindowHidden() const { return hiddenWindow_; }
    const Ogre::DriverVersion& driverVersion() const { return driverVersion_; }
    bool hasVolumeTextures() const { return volumeTextures_; }

private:
    void openLog();
    void createRoot();
    void loadPlugins();
    void restoreConfiguration();
    void addResourceLocations();
    Ogre::RenderSystem* findRenderSystem();
    void setOptions(Ogre::RenderSystem& renderSystem, unsigned width, unsigned height);
    void openWindow(Ogre::RenderSystem& renderSystem, unsigned width, unsigned height);
    void readCapabilities(const Ogre::RenderSystem& renderSystem);

    /// The engine's log, opened before the root, which would else log to the standard output, and
    /// closed after it.
    std::unique_ptr<Ogre::LogManager> log_;
    std::unique_ptr<Ogre::Root> root_;
    std::string pluginsFile_;
    std::string configurationFile_;
    std::string logFile_;
    std::string resourcesFile_;
    Ogre::RenderWindow* renderWindow_ = nullptr;
    std::uint32_t renderSystemKind_;
    bool pixelBufferCapable_ = false;
    bool intelGpu_ = false;
    bool hardware_ = false;
    bool setupSucceeded_ = true;
    std::string whyNotSetUp_;
    /// When set, the render system keeps the options that ogre.cfg has given it.
    bool useConfigurationFile_ = false;
    bool hiddenWindow_ = false;
    Ogre::DriverVersion driverVersion_;
    bool volumeTextures_ = false;
    /// Where plugins.cfg says that plugins are; ends in a separator unless empty.
    std::string pluginFolder_;
};

#endif
