// One effect on the real engine: what goes in comes out rendered, or stays as it was.

#include <OgreCamera.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreMaterial.h>
#include <OgrePass.h>
#include <OgreRenderTargetListener.h>
#include <OgreRenderTexture.h>
#include <OgreRenderWindow.h>
#include <OgreRoot.h>
#include <OgreSceneManager.h>
#include <OgreSceneNode.h>
#include <OgreTechnique.h>
#include <OgreTextureManager.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/RunningEngine.h"
#include "shaders/Programs.h"

namespace {

using keladjust::test::copyProgram;
using keladjust::test::HostPicture;
using keladjust::test::invertProgram;
using keladjust::test::PixelFormat;
using keladjust::test::RunningEngine;
using Bytes = std::vector<std::uint8_t>;

constexpr PixelFormat renderableFormats[] = {
    {8, IMAGE_FORMAT_GRAY},  {24, IMAGE_FORMAT_RGB},  {24, IMAGE_FORMAT_BGR},
    {32, IMAGE_FORMAT_RGBA}, {32, IMAGE_FORMAT_BGRA},
};
constexpr std::pair<unsigned, unsigned> sizes[] = {{1, 1},     {2, 3},     {5, 7},   {640, 427},
                                                   {8192, 16}, {3, 16384}, {61, 47}, {64, 64}};

// A render comes back as blue, green, red, alpha, also where the host has red first.
Bytes asReadBack(const HostPicture& picture, PixelFormat format) {
    Bytes bytes = picture.bytes();
    if (format.format != IMAGE_FORMAT_RGBA) return bytes;
    for (std::size_t i = 0; i < bytes.size(); i += 4) std::swap(bytes[i], bytes[i + 2]);
    return bytes;
}

class Effect : public RunningEngine {};

TEST_F(Effect, CopiesEveryFormatAndSizeToTheByteInEveryReadBackMode) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    EXPECT_EQ(effect.readBackMode(), KelOgreEffectBase::readBackThroughBuffer);
    for (const auto mode :
         {KelOgreEffectBase::readBackByEngine, KelOgreEffectBase::readBackDirectly,
          KelOgreEffectBase::readBackThroughBuffer}) {
        effect.setReadBackMode(mode);
        for (const PixelFormat format : renderableFormats) {
            for (const auto& [width, height] : sizes) {
                HostPicture picture(width, height, format.bpp, format.format);
                picture.fillRandom(width + height);
                const Bytes expected = asReadBack(picture, format);
                EXPECT_EQ(render(effect, picture), 1);
                ASSERT_TRUE(picture.bytes() == expected)
                    << "mode " << mode << ", format " << format.format << ", " << width << " x "
                    << height << '\n'
                    << log.all();
                ASSERT_TRUE(picture.guardsIntact());
            }
        }
    }
}

TEST_F(Effect, RendersThroughItsProgram) {
    KelOgreEffectBase& effect = *effectWith(invertProgram);
    for (const PixelFormat format : renderableFormats) {
        HostPicture picture(5, 7, format.bpp, format.format);
        picture.fillRandom(1);
        HostPicture expected(picture);
        for (unsigned y = 0; y < 7; ++y) {
            for (unsigned x = 0; x < 5; ++x) {
                const _tagMyRGBQUAD c = expected.pixel(x, y);
                const auto inverse = [](unsigned char v) {
                    return static_cast<unsigned char>(255 - v);
                };
                expected.setPixel(x, y,
                                  {inverse(c.blue), inverse(c.green), inverse(c.red), c.alpha});
            }
        }
        render(effect, picture);
        EXPECT_EQ(picture.bytes(), asReadBack(expected, format)) << format.format;
    }
}

TEST_F(Effect, WritesElsewhereIfAsked) {
    KelOgreEffectBase& effect = *effectWith(invertProgram);
    HostPicture picture(3, 2, 32, IMAGE_FORMAT_BGRA);
    const Bytes before = picture.fillRandom(1).bytes();
    HostPicture result(3, 2, 32, IMAGE_FORMAT_BGRA);
    effect.setInputImage(picture.bits(), 3, 2, 0, Ogre::PF_A8R8G8B8);
    effect.setRenderSize(3, 2);
    EXPECT_EQ(thread->render(&effect, result.bits(), picture.bits(), 4, nullptr, 20), 1);
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_EQ(result.bits()[0], 255 - before[0]);
    EXPECT_TRUE(result.guardsIntact());
}

TEST_F(Effect, TurnsResultsUpsideDownOnRequest) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    effect.setFlip(true);
    for (const PixelFormat format : {PixelFormat{32, IMAGE_FORMAT_BGRA}, {24, IMAGE_FORMAT_RGB}}) {
        HostPicture picture(5, 3, format.bpp, format.format);
        picture.fillRandom(2);
        HostPicture before(picture);
        render(effect, picture);
        for (unsigned x = 0; x < 5; ++x) {
            EXPECT_EQ(picture.pixel(x, 0), before.pixel(x, 2));
            EXPECT_EQ(picture.pixel(x, 1), before.pixel(x, 1));
            EXPECT_EQ(picture.pixel(x, 2), before.pixel(x, 0));
        }
    }
}

TEST_F(Effect, KnowsWhenItsSizeHasChanged) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    EXPECT_FALSE(effect.isSizeChanged());
    effect.setRenderSize(4, 4);
    EXPECT_TRUE(effect.isSizeChanged());
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    render(effect, picture);
    EXPECT_FALSE(effect.isSizeChanged());
    effect.setRenderSize(4, 4);
    EXPECT_FALSE(effect.isSizeChanged());
    effect.setRenderSize(4, 5);
    EXPECT_TRUE(effect.isSizeChanged());
}

TEST_F(Effect, KeepsTexturesAndMaterialFromCallToCall) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    HostPicture picture(64, 48, 32, IMAGE_FORMAT_BGRA);
    render(effect, picture);
    const auto upload = effect.picturePlane()->texture(0);
    const auto target = effect.renderTexture();
    const auto material = effect.picturePlane()->material();
    const auto units = [&] {
        return material->getTechnique(0)->getPass(0)->getNumTextureUnitStates();
    };
    for (int i = 0; i < 3; ++i) render(effect, picture);
    EXPECT_EQ(effect.picturePlane()->texture(0), upload);
    EXPECT_EQ(effect.renderTexture(), target);
    EXPECT_EQ(effect.picturePlane()->material(), material);
    EXPECT_EQ(units(), 1u);
    EXPECT_EQ(effect.picturePlane()->width(), 64u);

    HostPicture other(65, 48, 32, IMAGE_FORMAT_BGRA);
    render(effect, other);
    EXPECT_NE(effect.picturePlane()->texture(0), upload);
    EXPECT_NE(effect.renderTexture(), target);
    EXPECT_EQ(units(), 1u);
    EXPECT_EQ(effect.picturePlane()->textureCount(), 1u);
}

TEST_F(Effect, KeepsTheColoursOfAPictureThatFollowsAGreyOne) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    HostPicture grey(8, 8, 8, IMAGE_FORMAT_GRAY);
    render(effect, grey);
    HostPicture colours(8, 8, 32, IMAGE_FORMAT_BGRA);
    const Bytes before = colours.fillRandom(3).bytes();
    render(effect, colours);
    EXPECT_EQ(colours.bytes(), before);
}

TEST_F(Effect, NamesItsObjectsAfterItsNumber) {
    KelOgreEffectBase& first = *effectWith(copyProgram);
    KelOgreEffectBase& second = *effectWith(copyProgram);
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    render(first, picture);
    render(second, picture);
    const auto numberOf = [](const std::string& name, const std::string& prefix) {
        EXPECT_EQ(name.compare(0, prefix.size(), prefix), 0) << name;
        return std::stoi(name.substr(prefix.size()));
    };
    EXPECT_EQ(numberOf(second.renderTexture()->getName(), "RttTex"),
              numberOf(first.renderTexture()->getName(), "RttTex") + 1);
    const KelOgrePicturePlane& plane = *first.picturePlane();
    const std::string number = std::to_string(plane.number());
    EXPECT_EQ(plane.name(), "KelOgrePicturePlane_" + number);
    EXPECT_EQ(plane.materialName(), "PlaneMaterialName_" + number);
    EXPECT_EQ(plane.rectangleName(), "KelOgrePicturePlaneRectange_" + number);
    EXPECT_EQ(plane.texture(0)->getName(), "KelOgrePicturePlane_" + number + "_Texture0");
    EXPECT_EQ(second.picturePlane()->number(), plane.number() + 1);
}

TEST_F(Effect, NamesTheNodesAndCameraOfItsScene) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    render(effect, picture);
    const std::string number =
        effect.renderTexture()->getName().substr(std::string("RttTex").size());
    onThread([&] {
        int scenes = 0;
        for (const auto& [name, scene] : Ogre::Root::getSingleton().getSceneManagers()) {
            if (!scene->hasCamera("PlayerCam_" + number)) continue;
            ++scenes;
            const Ogre::Camera* camera = scene->getCamera("PlayerCam_" + number);
            EXPECT_EQ(camera->getDerivedPosition(), Ogre::Vector3(0, 0, 100));
            EXPECT_EQ(camera->getNearClipDistance(), 5.0f);
            ASSERT_TRUE(scene->hasSceneNode("effectSceneNodeName_" + number));
            ASSERT_TRUE(scene->hasSceneNode("effectPlaneNodeName_" + number));
            for (const char* prefix : {"effectSceneNodeName_", "effectPlaneNodeName_"}) {
                const Ogre::SceneNode* node = scene->getSceneNode(prefix + number);
                EXPECT_EQ(node->_getDerivedPosition(), Ogre::Vector3::ZERO);
                EXPECT_EQ(node->_getDerivedOrientation(), Ogre::Quaternion::IDENTITY);
            }
            const Ogre::SceneNode* plane = scene->getSceneNode("effectPlaneNodeName_" + number);
            EXPECT_EQ(plane->numAttachedObjects(), 1u);
        }
        EXPECT_EQ(scenes, 1);
    });
}

TEST_F(Effect, ReadsBackFourBytesAPixelWhateverWentIn) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    for (const PixelFormat format : renderableFormats) {
        HostPicture picture(4, 2, format.bpp, format.format);
        render(effect, picture);
        HostPicture result(4, 2, format.bpp, format.format);
        _ImageParam image;
        image.data = result.bits();
        image.changed = true;
        _ResultRecord record{&image, &effect};
        EXPECT_EQ(thread->readResult(&record, nullptr, format.bpp / 8), 1);
        EXPECT_EQ(image.format, Ogre::PF_A8R8G8B8) << format.format;
        EXPECT_EQ(image.width, 4u);
        EXPECT_EQ(image.height, 2u);
        EXPECT_EQ(image.byteSize, 32u);
        EXPECT_FALSE(image.changed);
        EXPECT_TRUE(result.guardsIntact());
    }
}

TEST_F(Effect, SaysWhatKeepsItFromReadingBack) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    _ResultRecord nothing{nullptr, &effect};
    thread->readResult(&nothing, nullptr, 4);
    EXPECT_EQ(log.countExact("Error : Parameter is NULL!"), 1);
    unsigned char pixel[4] = {1, 2, 3, 4};
    _ImageParam image;
    image.data = pixel;
    _ResultRecord early{&image, &effect};
    thread->readResult(&early, nullptr, 4);
    EXPECT_EQ(log.countExact("Error: Render Texture is NULL!, Could not get pixels."), 1);
    onThread([&] { effect.getPixels(nullptr); });
    EXPECT_EQ(log.countExact("Error: Render Texture is NULL!, Could not get pixels."), 2);
    EXPECT_EQ(pixel[0], 1);
}

TEST_F(Effect, SaysWhatItLacks) {
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    EXPECT_EQ(thread->getMaterial(effect), 0);
    EXPECT_EQ(log.countExact("shader had not been created!"), 1);
    thread->setShaderParameters(effect, nullptr);
    EXPECT_EQ(log.countExact("Filter shader parameters is null!"), 1);
    onThread([&] { EXPECT_FALSE(effect->resetViewports()); });
    EXPECT_EQ(log.countExact("Camera is null, You can not set render texture!"), 1);
    effect->setInputImageFile(nullptr, 0);
    EXPECT_EQ(log.countExact("Image path is NULL!"), 1);
    effect->setInputTexture(nullptr, 0);
    EXPECT_EQ(log.countExact("Input parameter is NULL!"), 1);
    onThread([&] { effect->setInputImageFile("no-such-picture.png", 0); });
    EXPECT_EQ(log.countExact("Pictrue path is not right or it did not been add to resource group."),
              1);

    effect->setShaderSource(copyProgram, 1, 1);
    EXPECT_EQ(thread->getMaterial(effect), 1);
    EXPECT_TRUE(effect->hasMaterial());
}

/// Pictures that are refused, each with the line that says so.
TEST_F(Effect, LeavesARefusedPictureAsItWas) {
    KelOgreEffectBase& effect = *effectWith(invertProgram);
    const std::uint32_t maximum = KelOgreBase::maximumTextureSize();
    ASSERT_GE(maximum, 2048u);
    const std::string tooLarge =
        "dimension is large max texture size " + std::to_string(maximum) + "of supported";
    struct Case {
        unsigned width, height, bpp;
        _ImagePixelFormat format;
        std::string reason;
    };
    for (const Case& each : {Case{maximum + 1, 1, 32, IMAGE_FORMAT_BGRA, tooLarge},
                             Case{1, maximum + 1, 8, IMAGE_FORMAT_GRAY, tooLarge},
                             Case{4, 4, 32, IMAGE_FORMAT_UNKNOWN, "format"},
                             Case{4, 4, 16, IMAGE_FORMAT_RGB, "depth and format"},
                             Case{4, 4, 32, IMAGE_FORMAT_RGB, "depth and format"},
                             Case{4, 4, 24, IMAGE_FORMAT_BGRA, "depth and format"},
                             Case{4, 4, 48, IMAGE_FORMAT_BGRA, "depth and format"},
                             Case{0, 4, 32, IMAGE_FORMAT_BGRA, "You had not set image's size!"},
                             Case{4, 0, 32, IMAGE_FORMAT_BGRA, "You had not set image's size!"}}) {
        log.clear();
        HostPicture picture(each.width, each.height, each.bpp, each.format);
        const Bytes before = picture.fillRandom(4).bytes();
        render(effect, picture);
        EXPECT_EQ(picture.bytes(), before);
        EXPECT_TRUE(picture.guardsIntact());
        EXPECT_TRUE(log.has(each.reason)) << each.reason << '\n' << log.all();
        EXPECT_TRUE(log.has("stays as it was"));
    }
    effect.setInputImage(nullptr, 4, 4, 0, Ogre::PF_A8R8G8B8);
    thread->render(&effect, nullptr, nullptr, 4, nullptr, 20);
    EXPECT_EQ(log.countExact("Image data is NULL!"), 1);

    // Nothing of them has been uploaded.
    EXPECT_EQ(effect.picturePlane()->textureCount(), 0u);

    // And one that is as wide as it may be.
    HostPicture widest(maximum, 1, 8, IMAGE_FORMAT_GRAY);
    const Bytes before = widest.fillRandom(4).bytes();
    render(effect, widest);
    EXPECT_EQ(widest.bytes()[maximum - 1], 255 - before[maximum - 1]);
}

TEST_F(Effect, LeavesThePictureAloneIfAProgramDoesNotCompileOrLink) {
    for (const char* program :
         {"this is no program", "",
          "uniform sampler2D Sample; varying vec2 notWritten; varying vec4 norThis;"
          "void main() { gl_FragColor = texture2D(Sample, notWritten) + norThis; }",
          "void main() { gl_FragColor = vec4(undeclared); }"}) {
        KelOgreEffectBase& effect = *effectWith(program);
        HostPicture picture(9, 5, 32, IMAGE_FORMAT_BGRA);
        const Bytes before = picture.fillRandom(5).bytes();
        for (int i = 0; i < 2; ++i) {
            log.clear();
            render(effect, picture);
            if (program[0] == '\0') break;  // no program at all: the default one copies
            EXPECT_TRUE(log.has("stays as it was")) << program;
        }
        EXPECT_EQ(picture.bytes(), before) << program;
        // Another program makes the effect whole again.
        effect.setShaderSource(invertProgram, 1, 1);
        render(effect, picture);
        EXPECT_EQ(picture.bytes()[0], 255 - before[0]);
    }
    EXPECT_TRUE(thread->isEngineInitialised());
}

/// An effect whose driver never lets its pixel-pack buffer be mapped.
class UnmappableEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class UnmappableEffect";
    UnmappableEffect() {
        glBuffers().mapBuffer = [](GLenum, GLenum) -> void* { return nullptr; };
    }
};

TEST_F(Effect, StillDeliversIfTheBufferCannotBeMapped) {
    DYN_CLASS::CFactory<UnmappableEffect> factory;
    const DYN_CLASS::CFactoryManager place(&factory);
    KelOgreEffectBase& effect = *effectWith(invertProgram, "UnmappableEffect");
    HostPicture picture(7, 5, 24, IMAGE_FORMAT_RGB);
    const Bytes before = picture.fillRandom(6).bytes();
    render(effect, picture);
    EXPECT_EQ(picture.bytes()[0], 255 - before[0]);
    EXPECT_EQ(log.countExact("glMapBufferRangeEXT failed: "), 1);
    thread->removeEffect(&effect, false);
}

/// The same with an error left behind by the failed call.
class ErringEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class ErringEffect";
    ErringEffect() {
        glBuffers().mapBuffer = [](GLenum, GLenum) -> void* {
            glEnable(0xFFFF);  // GL_INVALID_ENUM, whose number is beyond the end of the text
            return nullptr;
        };
    }
};

TEST_F(Effect, StillDeliversIfMappingLeavesAnError) {
    DYN_CLASS::CFactory<ErringEffect> factory;
    const DYN_CLASS::CFactoryManager place(&factory);
    KelOgreEffectBase& effect = *effectWith(invertProgram, "ErringEffect");
    HostPicture picture(7, 5, 32, IMAGE_FORMAT_BGRA);
    const Bytes before = picture.fillRandom(6).bytes();
    const int emptyLines = log.countExact("");
    render(effect, picture);
    EXPECT_EQ(picture.bytes()[0], 255 - before[0]);
    EXPECT_EQ(log.countExact(""), emptyLines + 1);
    thread->removeEffect(&effect, false);
}

TEST_F(Effect, AClosedWindowEndsTheThreadAndSparesThePicture) {
    KelOgreEffectBase& effect = *effectWith(invertProgram);
    KelOgreEffectBase& other = *effectWith(invertProgram);
    HostPicture picture(7, 5, 32, IMAGE_FORMAT_BGRA);
    render(other, picture);
    render(effect, picture);
    const Bytes before = picture.bytes();
    onThread([&] { thread->engine()->renderWindow()->destroy(); });
    render(effect, picture);
    EXPECT_EQ(picture.bytes(), before);
    EXPECT_FALSE(thread->isEngineInitialised());
    EXPECT_EQ(log.countExact("Delete all effect!"), 1);
    EXPECT_TRUE(log.has("window had been closed!"));
    // The effects have gone with the thread; asking for one all the same is harmless.
    EXPECT_EQ(thread->render(&other, nullptr, picture.bits(), 4, nullptr, 20), 0);
    EXPECT_EQ(thread->stop(), 1);
}

/// Has the engine fail where an effect takes its scene down. Once, because the engine itself goes
/// the same way at its own end.
class Hindrance : public Ogre::RenderTargetListener {
    void viewportRemoved(const Ogre::RenderTargetViewportEvent&) override {
        if (!std::exchange(fails_, false)) return;
        OGRE_EXCEPT(Ogre::Exception::ERR_INTERNAL_ERROR, "not this one", "test");
    }
    bool fails_ = true;
};

TEST_F(Effect, MayFailToTakeItsSceneDown) {
    Hindrance hindrances[2];
    KelOgreEffectBase& removed = *effectWith(copyProgram);
    KelOgreEffectBase& stopped = *effectWith(copyProgram);
    KelOgreEffectBase& other = *effectWith(invertProgram);
    HostPicture picture(4, 2, 32, IMAGE_FORMAT_BGRA);
    for (const auto& [effect, hindrance] :
         {std::pair{&removed, &hindrances[0]}, std::pair{&stopped, &hindrances[1]}}) {
        render(*effect, picture);
        effect->renderTexture()->getBuffer()->getRenderTarget()->addListener(hindrance);
    }
    EXPECT_EQ(thread->removeEffect(&removed, false), 1);
    EXPECT_EQ(log.count("not this one"), 1);

    const Bytes before = picture.fillRandom(1).bytes();
    EXPECT_EQ(render(other, picture), 1);
    EXPECT_EQ(picture.bytes()[0], 255 - before[0]);

    EXPECT_EQ(thread->stop(), 1);
    EXPECT_EQ(log.count("not this one"), 2);
}

TEST_F(Effect, TakesPicturesOfTheEnginesOwn) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    HostPicture stored(6, 4, 32, IMAGE_FORMAT_BGRA);
    stored.fillRandom(7);
    Ogre::TexturePtr texture;
    onThread([&] {
        texture = Ogre::TextureManager::getSingleton().createManual(
            "source", Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME, Ogre::TEX_TYPE_2D, 6,
            4, 0, Ogre::PF_A8R8G8B8);
        texture->getBuffer()->blitFromMemory(
            Ogre::PixelBox(6, 4, 1, Ogre::PF_A8R8G8B8, stored.bits()));
    });
    effect.setInputTexture(texture, 0);
    effect.setRenderSize(6, 4);
    HostPicture result(6, 4, 32, IMAGE_FORMAT_BGRA);
    thread->render(&effect, result.bits(), nullptr, 4, nullptr, 20);
    EXPECT_EQ(result.bytes(), stored.bytes()) << log.all();
    onThread([&] {
        Ogre::TextureManager::getSingleton().remove(texture->getHandle());
        effect.removeInput(0);
        texture.reset();
    });
}

TEST_F(Effect, ManySizesLeaveNoTexturesBehind) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    const auto texturesThatAre = [&] {
        std::size_t count = 0;
        onThread([&] {
            auto textures = Ogre::TextureManager::getSingleton().getResourceIterator();
            for (; textures.hasMoreElements(); textures.moveNext()) ++count;
        });
        return count;
    };
    HostPicture first(10, 10, 32, IMAGE_FORMAT_BGRA);
    render(effect, first);
    const std::size_t before = texturesThatAre();
    for (unsigned i = 1; i < 60; ++i) {
        HostPicture picture(i * 7 % 50 + 1, i * 11 % 40 + 1, 32, IMAGE_FORMAT_BGRA);
        render(effect, picture);
    }
    EXPECT_EQ(texturesThatAre(), before);
}

}  // namespace
