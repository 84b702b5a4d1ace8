#include "engine/KelOgreBase.h"

#include <OgreConfigFile.h>
#include <OgreLogManager.h>
#include <OgreRenderSystem.h>
#include <OgreRenderWindow.h>
#include <OgreResourceGroupManager.h>
#include <OgreRoot.h>
#include <OgreStringVector.h>
#include <OgreWorkQueue.h>

#include <atomic>

#include "engine/EngineLog.h"
#include "engine/RenderSystemOptions.h"
#include "engine/SoftwareRenderer.h"
#include "engine/platform/EngineWindow.h"
#include "engine/platform/OpenGl.h"

using keladjust::logCurrentException;
using keladjust::logMessage;

namespace {

std::atomic<KelOgreBase*> engineThatIsUp{nullptr};
std::atomic<std::uint32_t> largestTexture{0};

// What every Direct3D 9 device can do; it is not asked.
constexpr std::uint32_t direct3dMaximumTextureSize = 16384;

constexpr const char* separators = "\t:=";

// A folder that begins with a dot, or none, is meant from where the file lies.
std::string pluginFolderOf(const Ogre::ConfigFile& file, const std::string& fileName) {
    std::string folder = file.getSetting("PluginFolder");
    if (folder.empty() || folder.front() == '.') {
        const std::size_t nameBegin = fileName.find_last_of("/\\") + 1;
        folder = fileName.substr(0, nameBegin) + folder;
    }
    if (!folder.empty() && folder.back() != '/' && folder.back() != '\\') folder += '/';
    return folder;
}

// Empty where the driver says nothing.
std::string openGlName(GLenum which) {
    const GLubyte* name = glGetString(which);
    return name != nullptr ? reinterpret_cast<const char*>(name) : "";
}

}  // namespace

KelOgreBase::KelOgreBase(const Start& start)
    : pluginsFile_(start.pluginsPrefix + "plugins.cfg"),
      configurationFile_("ogre.cfg"),
      logFile_(start.logPrefix + "Ogre.log"),
      resourcesFile_(start.resourcesPrefix + "resources.cfg"),
      renderSystemKind_(start.renderSystemKind) {}

KelOgreBase::~KelOgreBase() {
    KelOgreBase::teardown();
}

bool KelOgreBase::setup(unsigned width, unsigned height) {
    try {
        openLog();
        createRoot();
        Ogre::RenderSystem* renderSystem = findRenderSystem();
        if (!useConfigurationFile_) setOptions(*renderSystem, width, height);
        root_->setRenderSystem(renderSystem);
        openWindow(*renderSystem, width, height);
        readCapabilities(*renderSystem);
        engineThatIsUp = this;
        return true;
    } catch (...) {
        // Caught and dropped here: the text of a plugin's exception lies in the plugin.
        logCurrentException("The engine does not start");
        whyNotSetUp_ = keladjust::currentExceptionText();
    }
    setupSucceeded_ = false;
    return false;
}

void KelOgreBase::teardown() {
    KelOgreBase* self = this;
    engineThatIsUp.compare_exchange_strong(self, nullptr);
    renderWindow_ = nullptr;
    if (root_ != nullptr) {
        try {
            // The root's destructor does this, too, but an exception there would end the process.
            root_->shutdown();
            root_.reset();
        } catch (...) {
            logCurrentException("The engine does not stop in order");
            // Lost rather than destroyed: a later start finds an engine that it did not make.
            static_cast<void>(root_.release());
        }
    }
    keladjust::platform::engineWindowClosed();
    log_.reset();
}

void KelOgreBase::idle() {}

KelOgreBase* KelOgreBase::current() {
    return engineThatIsUp;
}

std::uint32_t KelOgreBase::maximumTextureSize() {
    return largestTexture;
}

void KelOgreBase::openLog() {
    if (Ogre::LogManager::getSingletonPtr() != nullptr) return;  // the host's own
    log_ = std::make_unique<Ogre::LogManager>();
    log_->createLog(logFile_, true, false);
}

void KelOgreBase::createRoot() {
    // The engine is a single object to the process, and a second one ends it.
    if (Ogre::Root::getSingletonPtr() != nullptr) {
        OGRE_EXCEPT(Ogre::Exception::ERR_DUPLICATE_ITEM, "The host runs an engine of its own",
                    "KelOgreBase::createRoot");
    }
    if (!keladjust::platform::displayAvailable()) {
        OGRE_EXCEPT(Ogre::Exception::ERR_RENDERINGAPI_ERROR, "There is no display",
                    "KelOgreBase::createRoot");
    }
    // The root would let the first plugin that fails end all; plugins are loaded one by one.
    root_ = std::make_unique<Ogre::Root>("", configurationFile_, "");
    // Its threads would write the log side by side with this one, without a lock, and do nothing
    // else here.
    if (auto* const queue = dynamic_cast<Ogre::DefaultWorkQueueBase*>(root_->getWorkQueue())) {
        queue->setWorkerThreadCount(0);
    }
    loadPlugins();
    restoreConfiguration();
    addResourceLocations();
}

void KelOgreBase::loadPlugins() {
    Ogre::ConfigFile file;
    try {
        file.load(pluginsFile_);
    } catch (const Ogre::FileNotFoundException&) {
        logMessage(pluginsFile_ + " not found, automatic plugin loading disabled.");
        return;
    }
    pluginFolder_ = pluginFolderOf(file, pluginsFile_);
    for (const std::string& plugin : file.getMultiSetting("Plugin")) {
        try {
            root_->loadPlugin(pluginFolder_ + plugin);
        } catch (...) {
            logCurrentException("Plugin not loaded");
        }
    }
}

void KelOgreBase::restoreConfiguration() {
    try {
        if (root_->restoreConfig()) return;
    } catch (...) {
        logCurrentException("ogre.cfg");
    }
    logMessage("ogre.cfg file not found, automatic config loading disabled.");
}

void KelOgreBase::addResourceLocations() {
    Ogre::ConfigFile file;
    try {
        file.load(resourcesFile_, Ogre::String(separators), true);
    } catch (const Ogre::FileNotFoundException&) {
        logMessage(resourcesFile_ + " not found, automatic resource loading disabled.");
        return;
    }
    auto& resources = Ogre::ResourceGroupManager::getSingleton();
    for (const auto& [section, entries] : file.getSettingsBySection()) {
        for (const auto& [type, location] : entries) {
            try {
                resources.addResourceLocation(location, type, section);
            } catch (...) {
                logCurrentException("Resource location not added");
            }
        }
    }
}

Ogre::RenderSystem* KelOgreBase::findRenderSystem() {
    const char* name = keladjust::renderSystemName(renderSystemKind_);
    Ogre::RenderSystem* renderSystem = root_->getRenderSystemByName(name);
    if (renderSystem == nullptr) {
        root_->loadPlugin(pluginFolder_ + keladjust::renderSystemPlugin(renderSystemKind_));
        renderSystem = root_->getRenderSystemByName(name);
    }
    if (renderSystem == nullptr) {
        OGRE_EXCEPT(Ogre::Exception::ERR_ITEM_NOT_FOUND, std::string("There is no ") + name,
                    "KelOgreBase::findRenderSystem");
    }
    return renderSystem;
}

void KelOgreBase::setOptions(Ogre::RenderSystem& renderSystem, unsigned width, unsigned height) {
    for (const auto& [name, value] :
         keladjust::renderSystemOptions(renderSystemKind_, width, height)) {
        // Which options there are depends on the system and the release.
        if (renderSystem.getConfigOptions().count(name) == 0) {
            logMessage("Option not offered by the render system: " + name);
            continue;
        }
        try {
            renderSystem.setConfigOption(name, value);
        } catch (...) {
            logCurrentException("Option not set");
        }
    }
}

void KelOgreBase::openWindow(Ogre::RenderSystem& renderSystem, unsigned width, unsigned height) {
    const char* title = renderSystemKind_ != keladjust::renderSystemOpenGl
                            ? "Kel DX9 Render Window"
                            : "Kel Ogre Render Window";
    renderWindow_ = keladjust::platform::openEngineWindow(*root_, title, width, height);
    // Nothing is ever drawn in it.
    renderWindow_->setAutoUpdated(false);

    const Ogre::ConfigOptionMap& options = renderSystem.getConfigOptions();
    const auto option = options.find("Hidden Window");
    if (option == options.end() || option->second.currentValue != "No") {
        hiddenWindow_ = true;
        keladjust::platform::hideEngineWindow(*renderWindow_);
    }
}

void KelOgreBase::readCapabilities(const Ogre::RenderSystem& renderSystem) {
    const Ogre::RenderSystemCapabilities* capabilities = renderSystem.getCapabilities();
    if (renderSystemKind_ != keladjust::renderSystemOpenGl) {
        largestTexture = direct3dMaximumTextureSize;
        hardware_ = !keladjust::isSoftwareRenderer(capabilities->getDeviceName(), "");
    } else {
        GLint size = 0;
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
        largestTexture = static_cast<std::uint32_t>(size);
        hardware_ = !keladjust::isSoftwareRenderer(openGlName(GL_RENDERER), openGlName(GL_VENDOR));
    }
    pixelBufferCapable_ = capabilities->hasCapability(Ogre::RSC_PBUFFER);
    intelGpu_ = capabilities->getVendor() == Ogre::GPU_INTEL;
    driverVersion_ = capabilities->getDriverVersion();
    volumeTextures_ = capabilities->hasCapability(Ogre::RSC_TEXTURE_3D);
}
