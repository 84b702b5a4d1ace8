// A plugin under the name of the Direct3D 9 render system that writes what it is told into the
// engine's log. Whatever is drawn comes out as the negative of the texture it is drawn with. It
// shows what the library asks of that render system where there is none.

#include <OgreBlendMode.h>
#include <OgreDefaultHardwareBufferManager.h>
#include <OgreDepthBuffer.h>
#include <OgreGpuProgramManager.h>
#include <OgreLogManager.h>
#include <OgrePlugin.h>
#include <OgreRenderSystem.h>
#include <OgreRenderSystemCapabilities.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <OgreViewport.h>

#include <memory>
#include <vector>

#include "engine/NotedProgram.h"
#include "engine/RecordingTextures.h"

namespace {

using keladjust::test::MemoryTextureManager;
using keladjust::test::NotedProgramFactory;

void note(const Ogre::String& line) {
    Ogre::LogManager::getSingleton().logMessage("recorded: " + line);
}

class RecordingWindow : public Ogre::RenderWindow {
public:
    RecordingWindow(const Ogre::String& name, unsigned width, unsigned height) {
        mName = name;
        mWidth = width;
        mHeight = height;
        mActive = true;
    }
    void create(const Ogre::String&, unsigned, unsigned, bool,
                const Ogre::NameValuePairList*) override {}
    void destroy() override { closed_ = true; }
    void resize(unsigned, unsigned) override {}
    void reposition(int, int) override {}
    bool isClosed() const override { return closed_; }
    void copyContentsToMemory(const Ogre::Box&, const Ogre::PixelBox&, FrameBuffer) override {}
    void getCustomAttribute(const Ogre::String&, void*) override {}
    bool requiresTextureFlipping() const override { return false; }

private:
    bool closed_ = false;
};

class RecordingRenderSystem : public Ogre::RenderSystem {
public:
    RecordingRenderSystem() {
        for (const char* name :
             {"Allow DirectX9Ex", "Allow NVPerfHUD", "FSAA", "Fixed Pipeline Enabled",
              "Floating-point mode", "Full Screen", "Multi device memory hint",
              "Resource Creation Policy", "Use Multihead", "VSync", "VSync Interval", "Video Mode",
              "sRGB Gamma Conversion", "Hidden Window"}) {
            mOptions[name].name = name;
        }
        mOptions["Hidden Window"].currentValue = "No";
        mRealCapabilities = RecordingRenderSystem::createRenderSystemCapabilities();
        mCurrentCapabilities = mRealCapabilities;
    }
    ~RecordingRenderSystem() override { Ogre::RenderSystem::shutdown(); }

    const Ogre::String& getName() const override {
        static const Ogre::String name = "Direct3D9 Rendering Subsystem";
        return name;
    }
    void setConfigOption(const Ogre::String& name, const Ogre::String& value) override {
        note(name + " = " + value);
        mOptions[name].currentValue = value;
    }
    Ogre::String validateConfigOptions() override { return {}; }
    Ogre::RenderSystemCapabilities* createRenderSystemCapabilities() const override {
        auto* capabilities = new Ogre::RenderSystemCapabilities();
        Ogre::DriverVersion version;
        version.major = 9;
        version.minor = 18;
        capabilities->setDriverVersion(version);
        capabilities->setVendor(Ogre::GPU_INTEL);
        capabilities->setCapability(Ogre::RSC_PBUFFER);
        capabilities->setNumTextureUnits(8);
        return capabilities;
    }
    Ogre::RenderWindow* _createRenderWindow(const Ogre::String& name, unsigned width,
                                            unsigned height, bool fullScreen,
                                            const Ogre::NameValuePairList*) override {
        note("window " + name + (fullScreen ? " over the whole screen" : " on the desktop"));
        auto* window = new RecordingWindow(name, width, height);
        attachRenderTarget(*window);
        buffers_ = std::make_unique<Ogre::DefaultHardwareBufferManager>();
        textures_ = std::make_unique<MemoryTextureManager>();
        programs_ = std::make_unique<Ogre::GpuProgramManager>();
        Ogre::HighLevelGpuProgramManager::getSingleton().addFactory(&hlsl_);
        return window;
    }
    void shutdown() override {
        texture_.reset();
        Ogre::RenderSystem::shutdown();
        if (programs_ == nullptr) return;
        Ogre::HighLevelGpuProgramManager::getSingleton().removeAll();
        Ogre::HighLevelGpuProgramManager::getSingleton().removeFactory(&hlsl_);
        programs_.reset();
        textures_.reset();
        buffers_.reset();
    }

    void _setTexture(std::size_t unit, bool enabled, const Ogre::TexturePtr& texture) override {
        if (unit == 0) texture_ = enabled ? texture : nullptr;
    }
    void _setRenderTarget(Ogre::RenderTarget* target) override { mActiveRenderTarget = target; }
    void _setViewport(Ogre::Viewport* viewport) override {
        mActiveViewport = viewport;
        if (viewport != nullptr) _setRenderTarget(viewport->getTarget());
    }
    void bindGpuProgram(Ogre::GpuProgram* program) override {
        note("program " + program->getName() + ", " + program->getParameter("target") + ", " +
             program->getParameter("entry_point"));
        Ogre::RenderSystem::bindGpuProgram(program);
    }
    void _render(const Ogre::RenderOperation& operation) override {
        Ogre::RenderSystem::_render(operation);
        note("draws " + texture_->getName() + " on " + mActiveRenderTarget->getName());
        const auto& source = texture_->getBuffer();
        const Ogre::uint32 width = source->getWidth();
        const Ogre::uint32 height = source->getHeight();
        std::vector<unsigned char> colours(std::size_t{width} * height * 4);
        const Ogre::PixelBox box(width, height, 1, Ogre::PF_A8R8G8B8, colours.data());
        source->blitToMemory(box);
        for (std::size_t i = 0; i < colours.size(); ++i) {
            const bool isAlpha = i % 4 == 3;
            if (!isAlpha) colours[i] = static_cast<unsigned char>(255 - colours[i]);
        }
        Ogre::TextureManager::getSingleton()
            .getByName(mActiveRenderTarget->getName(),
                       Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME)
            ->getBuffer()
            ->blitFromMemory(box);
    }

    void initialiseFromRenderSystemCapabilities(Ogre::RenderSystemCapabilities*,
                                                Ogre::RenderTarget*) override {}
    Ogre::HardwareOcclusionQuery* createHardwareOcclusionQuery() override { return nullptr; }
    Ogre::MultiRenderTarget* createMultiRenderTarget(const Ogre::String&) override {
        return nullptr;
    }
    Ogre::DepthBuffer* _createDepthBufferFor(Ogre::RenderTarget*) override { return nullptr; }
    void _setSampler(std::size_t, Ogre::Sampler&) override {}
    void setColourBlendState(const Ogre::ColourBlendState&) override {}
    void _setAlphaRejectSettings(Ogre::CompareFunction, unsigned char, bool) override {}
    void _endFrame() override {}
    void _setCullingMode(Ogre::CullingMode) override {}
    void _setDepthBufferParams(bool, bool, Ogre::CompareFunction) override {}
    void _setDepthBufferCheckEnabled(bool) override {}
    void _setDepthBufferWriteEnabled(bool) override {}
    void _setDepthBufferFunction(Ogre::CompareFunction) override {}
    void _setDepthBias(float, float) override {}
    void _convertProjectionMatrix(const Ogre::Matrix4& from, Ogre::Matrix4& to, bool) override {
        to = from;
    }
    void _setPolygonMode(Ogre::PolygonMode) override {}
    void setStencilCheckEnabled(bool) override {}
    void setStencilBufferParams(Ogre::CompareFunction, Ogre::uint32, Ogre::uint32, Ogre::uint32,
                                Ogre::StencilOperation, Ogre::StencilOperation,
                                Ogre::StencilOperation, bool, bool) override {}
    void bindGpuProgramParameters(Ogre::GpuProgramType, const Ogre::GpuProgramParametersPtr&,
                                  Ogre::uint16) override {}
    void setScissorTest(bool, const Ogre::Rect&) override {}
    void clearFrameBuffer(unsigned, const Ogre::ColourValue&, Ogre::Real, unsigned short) override {
    }
    Ogre::Real getHorizontalTexelOffset() override { return 0; }
    Ogre::Real getVerticalTexelOffset() override { return 0; }
    Ogre::Real getMinimumDepthInputValue() override { return 0; }
    Ogre::Real getMaximumDepthInputValue() override { return 1; }
    void beginProfileEvent(const Ogre::String&) override {}
    void endProfileEvent() override {}
    void markProfileEvent(const Ogre::String&) override {}

private:
    NotedProgramFactory hlsl_;
    std::unique_ptr<Ogre::DefaultHardwareBufferManager> buffers_;
    std::unique_ptr<MemoryTextureManager> textures_;
    std::unique_ptr<Ogre::GpuProgramManager> programs_;
    /// What is drawn with.
    Ogre::TexturePtr texture_;
};

class RecordingPlugin : public Ogre::Plugin {
public:
    const Ogre::String& getName() const override {
        static const Ogre::String name = "Recording render system";
        return name;
    }
    void install() override {
        renderSystem_ = std::make_unique<RecordingRenderSystem>();
        Ogre::Root::getSingleton().addRenderSystem(renderSystem_.get());
    }
    void initialise() override {}
    void shutdown() override {}
    void uninstall() override { renderSystem_.reset(); }

private:
    std::unique_ptr<RecordingRenderSystem> renderSystem_;
};

RecordingPlugin plugin;

}  // namespace

extern "C" void dllStartPlugin() {
    Ogre::Root::getSingleton().installPlugin(&plugin);
}

extern "C" void dllStopPlugin() {
    Ogre::Root::getSingleton().uninstallPlugin(&plugin);
}
