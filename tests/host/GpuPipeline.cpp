// What the GPU path asks of its effects, and in which order. The effects here take notes instead of
// rendering, so nothing needs a display.

#include "host/GpuPipeline.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "engine/EffectFactory.h"
#include "engine/KelOgreEffectBase.h"
#include "engine/LogCapture.h"
#include "engine/OgreEngine.h"
#include "engine/StubEngine.h"
#include "support/EveryStage.h"
#include "support/HostPicture.h"
#include "support/OddNumbers.h"

namespace {

using keladjust::GpuEngine;
using keladjust::OgreEngine;
using keladjust::Program;
using keladjust::test::HostPicture;
using keladjust::test::identity;
using keladjust::test::laterUniforms;
using keladjust::test::quietNan;
using keladjust::test::StubEngine;

/// Notes settings and renders; a render adds one to every byte of the picture.
class NotingEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class NotingEffect";

    using KelOgreEffectBase::setParameter;
    void setParameter(std::int32_t kind, const char* name, float value) override {
        EXPECT_EQ(kind, 1);
        floats.emplace_back(name, value);
    }
    void setParameter(std::int32_t kind, const char* name, std::int32_t value) override {
        EXPECT_EQ(kind, 1);
        ints.emplace_back(name, value);
    }
    void process(unsigned char* output, unsigned char* pixels, std::uint32_t bytes) override {
        EXPECT_EQ(output, nullptr);
        EXPECT_EQ(pixels, input(0)->data);
        bytesPerPixel = bytes;
        ++renders;
        if (stops) {
            stopped_ = true;
            failure_ = "no window";
            return;
        }
        if (fails) {
            failure_ = "no memory";
            return;
        }
        for (std::size_t i = 0; i < input(0)->byteSize; ++i) ++pixels[i];
    }

    std::vector<std::pair<std::string, float>> floats;
    std::vector<std::pair<std::string, std::int32_t>> ints;
    std::uint32_t bytesPerPixel = 0;
    int renders = 0;
    bool stops = false;
    bool fails = false;
};

float& slot(_AdjustParam& p, int number) {
    return reinterpret_cast<float*>(&p)[number];
}

class GpuPipeline : public testing::Test {
protected:
    GpuPipeline() {
        StubEngine::nextStart = StubEngine::Start::succeeds;
        keladjust::EngineReason refusal;
        const char* const programs[] = {"", "", ""};
        EXPECT_TRUE(module.start({nullptr, nullptr, nullptr, programs, 3}, refusal))
            << refusal.text;
        basic = effect(keladjust::basicAdjustEffect);
        range = effect(keladjust::rangeEffect);
        lens = effect(keladjust::lensEffect);
        engine.file.module = &module;
    }
    ~GpuPipeline() override { module.stop(); }

    NotingEffect* effect(keladjust::GpuEffect number) {
        return static_cast<NotingEffect*>(module.effect(number));
    }
    CxImage* run(HostPicture& picture, const _AdjustParam& p) {
        return keladjust::runGpuPipeline(picture.image(), p, engine, &reason);
    }

    keladjust::test::LogCapture log;
    DYN_CLASS::CFactory<NotingEffect> factory;
    DYN_CLASS::CFactoryManager place{&factory};
    OgreEngine module{"NotingEffect", StubEngine::make};
    NotingEffect* basic = nullptr;
    NotingEffect* range = nullptr;
    NotingEffect* lens = nullptr;
    GpuEngine engine;
    keladjust::EngineReason reason{"of the run before"};
};

TEST_F(GpuPipeline, RendersNothingAtIdentity) {
    HostPicture picture(31, 17, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(run(picture, identity), picture.image());
    EXPECT_EQ(basic->renders + range->renders + lens->renders, 0);
    EXPECT_STREQ(reason.text, "");
    EXPECT_TRUE(basic->floats.empty());
    EXPECT_EQ(picture.bytes(), before);
}

TEST_F(GpuPipeline, EverySlotStartsTheEffectItBelongsTo) {
    for (int number = 1; number <= 64; ++number) {
        const bool inRange = number >= 13 && number <= 52;
        const bool bound = inRange && (number - 13) % 5 < 2;
        const bool startsBasic = number <= 10;
        const bool startsRange = (inRange && !bound) || number == 53 || number == 57;
        for (const float value : {0.25f, quietNan}) {
            basic->renders = range->renders = 0;
            _AdjustParam p = identity;
            slot(p, number) = value;
            HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
            run(picture, p);
            EXPECT_EQ(basic->renders, startsBasic ? 1 : 0) << "slot " << number;
            EXPECT_EQ(range->renders, startsRange ? 1 : 0) << "slot " << number;
        }
    }
    _AdjustParam p = identity;
    p.temperature = 11501;
    basic->renders = 0;
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    run(picture, p);
    EXPECT_EQ(basic->renders, 1);
    EXPECT_EQ(lens->renders, 0);
}

TEST_F(GpuPipeline, NegativeZeroIsIdentity) {
    _AdjustParam p = identity;
    for (int number = 1; number <= 64; ++number) slot(p, number) = -0.0f;
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    run(picture, p);
    EXPECT_EQ(basic->renders + range->renders, 0);
}

TEST_F(GpuPipeline, SetsEveryUniformByNameAndInOrder) {
    _AdjustParam p = identity;
    p.temperature = 9000;
    for (int number = 1; number <= 64; ++number) slot(p, number) = static_cast<float>(number);
    p.clarity = p.sharpen = 0;
    for (int number = 59; number <= 64; ++number) slot(p, number) = 0;
    p.sharpen = 12;
    HostPicture picture(6, 4, 32, IMAGE_FORMAT_BGRA);
    run(picture, p);

    const std::vector<std::pair<std::string, std::int32_t>> basicInts{{"Sample", 0},
                                                                      {"temperature", 9000}};
    EXPECT_EQ(basic->ints, basicInts);
    std::vector<std::pair<std::string, float>> basicFloats{
        {"tint", 1}, {"exposure", 2},  {"brightness", 3}, {"contrast", 4},   {"vib", 5},
        {"sat", 6},  {"highLight", 7}, {"shadow", 8},     {"whiteLevel", 9}, {"blackLevel", 10}};
    for (const std::string& name : laterUniforms(Program::tone)) basicFloats.emplace_back(name, 0);
    EXPECT_EQ(basic->floats, basicFloats);

    const std::vector<std::pair<std::string, std::int32_t>> rangeInts{
        {"Sample", 0}, {"imageWidth", 6}, {"imageHeight", 4}};
    EXPECT_EQ(range->ints, rangeInts);
    std::vector<std::pair<std::string, float>> rangeFloats{{"sharpeness", 12.0f}};
    float value = 13;
    for (const char* word :
         {"Red", "Orange", "Yellow", "Green", "Magenta", "Purple", "Blue", "Aqua"}) {
        for (const char* ending :
             {"_degreeMinVal", "_degreeMaxVal", "_hueVal", "_satVal", "_brightnessVal"}) {
            rangeFloats.emplace_back(std::string(word) + ending, value++);
        }
    }
    for (const char* name : {"amount", "size", "roundness", "feather", "exposure", "highlights"}) {
        rangeFloats.emplace_back(name, value++);
    }
    EXPECT_EQ(range->floats, rangeFloats);
}

TEST_F(GpuPipeline, HandsThePictureOverInItsOwnFormat) {
    _AdjustParam p = identity;
    p.tint = 1;
    struct Case {
        unsigned bpp;
        _ImagePixelFormat format;
        Ogre::PixelFormat engineFormat;
    };
    for (const Case& each :
         {Case{8, IMAGE_FORMAT_GRAY, Ogre::PF_L8}, Case{24, IMAGE_FORMAT_RGB, Ogre::PF_B8G8R8},
          Case{24, IMAGE_FORMAT_BGR, Ogre::PF_R8G8B8},
          Case{32, IMAGE_FORMAT_RGBA, Ogre::PF_A8B8G8R8},
          Case{32, IMAGE_FORMAT_BGRA, Ogre::PF_A8R8G8B8},
          Case{32, IMAGE_FORMAT_UNKNOWN, Ogre::PF_UNKNOWN},
          Case{16, IMAGE_FORMAT_RGB, Ogre::PF_B8G8R8}}) {
        // Twice as high as said, because this effect takes a row of 16 bits for one of 24.
        HostPicture picture(5, 6, each.bpp, each.format);
        picture.image()->height = 3;
        run(picture, p);
        const _ImageParam* input = basic->input(0);
        ASSERT_NE(input, nullptr);
        EXPECT_EQ(input->data, picture.bits());
        EXPECT_EQ(input->width, 5u);
        EXPECT_EQ(input->height, 3u);
        EXPECT_EQ(input->format, each.engineFormat);
        EXPECT_EQ(basic->bytesPerPixel, each.bpp / 8);
    }
}

TEST_F(GpuPipeline, RunsClarityOnBothSidesOfTheRanges) {
    _AdjustParam p = identity;
    p.clarity = 40;
    HostPicture picture(40, 30, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(2);
    HostPicture expected(picture);
    clarity(clarity(expected.image(), 40), 40);
    run(picture, p);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

TEST_F(GpuPipeline, RunsTheSpatialStagesAfterTheRenders) {
    _AdjustParam p = identity;
    p.exposure = 1;
    p.range[KELADJUST_RANGE_BLUE].hue = 1;
    p.vignetteSize = 30;
    p.clarity = 30;
    p.sharpen = 40;
    p.distortion = 10;
    p.fringing = 15;
    p.dehaze = 20;
    p.diffuse = 10;
    p.colourNoiseReduction = 5;
    p.luminanceNoiseReduction = 5;
    HostPicture picture(40, 30, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(3);
    HostPicture expected(picture);
    const auto render = [&] {
        for (std::size_t i = 0; i < expected.size(); ++i) ++expected.bits()[i];
    };
    CxImage* image = expected.image();
    render();
    clarity(image, 30);
    render();
    clarity(image, 30);
    sharpen(image, 40);
    distortFilter(image, 10);
    fringingFilter(image, 15);
    dehaze(image, 20);
    diffuse(image, 10);
    deNoiseRGB(image, 5);
    deNoiseLumiance(image, 5);
    EXPECT_EQ(run(picture, p), picture.image());
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

TEST_F(GpuPipeline, GoesOnWithoutTheEngineThatStoppedInTheMiddle) {
    _AdjustParam p = identity;
    p.exposure = 1;
    p.range[KELADJUST_RANGE_BLUE].hue = 1;
    p.clarity = 30;
    basic->stops = true;
    HostPicture picture(40, 30, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(4);
    HostPicture expected(picture);
    clarity(clarity(expected.image(), 30), 30);
    EXPECT_TRUE(engine.canAdjust());
    keladjust::runGpuPipeline(picture.image(), p, engine, nullptr);
    EXPECT_EQ(picture.bytes(), expected.bytes());
    EXPECT_FALSE(engine.canAdjust());
    EXPECT_FALSE(engine.isRunning());
}

TEST_F(GpuPipeline, TellsWhyThePictureWasNotRendered) {
    _AdjustParam p = identity;
    p.exposure = 1;
    p.range[KELADJUST_RANGE_BLUE].hue = 1;
    HostPicture picture(4, 3, 32, IMAGE_FORMAT_BGRA);
    run(picture, p);
    EXPECT_STREQ(reason.text, "");
    range->fails = true;
    p.diffuse = 50;
    HostPicture tones(picture);
    for (std::size_t i = 0; i < tones.size(); ++i) ++tones.bits()[i];
    run(picture, p);
    EXPECT_STREQ(reason.text, "no memory");
    EXPECT_EQ(picture.bytes(), tones.bytes()) << "who asks why is told at once";
    module.stop();
    run(picture, p);
    EXPECT_STREQ(reason.text, "The engine has stopped");
}

TEST_F(GpuPipeline, TakesNothingAndPicturesWithoutPixels) {
    _AdjustParam p = identity;
    p.clarity = 10;
    EXPECT_EQ(keladjust::runGpuPipeline(nullptr, p, engine, nullptr), nullptr);
    CxImage empty;
    EXPECT_EQ(keladjust::runGpuPipeline(&empty, p, engine, nullptr), &empty);
}

}  // namespace
