// The log lines that hosts and their support know the engine by: what they say, misspellings
// included, and in which order they come. All are in one list, which is held against the sources
// and against what a run of the engine logs.

#include <OgreLog.h>
#include <OgreLogManager.h>
#include <OgreRenderWindow.h>
#include <keladjust/CxImage.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/RunningEngine.h"
#include "support/StageSettings.h"

namespace {

namespace fs = std::filesystem;
using keladjust::test::copyProgram;
using keladjust::test::HostPicture;
using keladjust::test::RunningEngine;
using Lines = std::vector<std::string>;

struct Message {
    const char* text;
    const char* source;
};

constexpr Message messages[] = {
    {"ogre.cfg file not found, automatic config loading disabled.", "engine/KelOgreBase.cpp"},
    {" not found, automatic resource loading disabled.", "engine/KelOgreBase.cpp"},
    {"Initialze Ogre failed!", "engine/KelOgreRenderThread.cpp"},
    {"GL version is: ", "host/GpuEngine.cpp"},
    {"GL version is too low, Program requires OpenGL 2.0 or higherra."
     " Please upgrade the driver of your video card!",
     "host/GpuEngine.cpp"},
    {"Using C algorithm to running!", "host/GpuEngine.cpp"},
    {"Ogre Thread is null!", "engine/KelOgreRenderThread.cpp"},
    {"Ogre had not been initialize!", "engine/KelOgreRenderThread.cpp"},
    {"Ogre had not been initialize!", "engine/KelOgreEffectBase.cpp"},
    {"Error: class name is NULL!", "engine/KelOgreRenderThread.cpp"},
    {"Error: This effect is NULL!", "engine/KelOgreRenderThread.cpp"},
    {"Error: has no this effect!", "engine/KelOgreRenderThread.cpp"},
    {"Filter is NULL!", "engine/KelOgreRenderThread.cpp"},
    {"Could not store picture. Maybe something that you specified is wrong.",
     "engine/KelOgreRenderThread.cpp"},
    {"Evaluate time is low 0, it couldn't be completed work in this time.",
     "engine/KelOgreRenderThread.cpp"},
    {"Thread is idle!", "engine/KelOgreRenderThread.cpp"},
    {"Delete all effect!", "engine/KelOgreRenderThread.cpp"},
    {"window had been closed!", "engine/KelOgreEffectBase.cpp"},
    {"shader had not been created!", "engine/KelOgreEffectBase.cpp"},
    {"Filter shader parameters is null!", "engine/KelOgreEffectBase.cpp"},
    {"Camera is null, You can not set render texture!", "engine/KelOgreEffectBase.cpp"},
    {"Error : Parameter is NULL!", "engine/KelOgreEffectBase.cpp"},
    {"Error: Render Texture is NULL!, Could not get pixels.", "engine/KelOgreEffectBase.cpp"},
    {"glMapBufferRangeEXT failed: ", "engine/ReadBack.cpp"},
    {"Image data is NULL!", "engine/KelOgreEffectBase.cpp"},
    {"Image data is NULL!", "engine/KelOgrePicturePlane.cpp"},
    {"You had not set image's size!", "engine/KelOgrePicturePlane.cpp"},
    {"This texture's size is zero!", "engine/KelOgrePicturePlane.cpp"},
    {"dimension is large max texture size ", "engine/KelOgrePicturePlane.cpp"},
    {"of supported", "engine/KelOgrePicturePlane.cpp"},
    {"Picture width is large max texture size", "engine/KelEffectBase.cpp"},
    {"Picture height is large max texture size", "engine/KelEffectBase.cpp"},
    {"of supported", "engine/KelEffectBase.cpp"},
    {"Image path is NULL!", "engine/KelEffectBase.cpp"},
    {"Pictrue path is not right or it did not been add to resource group.",
     "engine/KelEffectBase.cpp"},
    {"Input parameter is NULL!", "engine/KelEffectBase.cpp"},
    {"program target is NULL!", "engine/KelOgreShader.cpp"},
    {"program entry point is NULL!", "engine/KelOgreShader.cpp"},
    {"vertex program entry point is NULL!", "engine/KelOgreShader.cpp"},
    {"fragment program entry point is NULL!", "engine/KelOgreShader.cpp"},
    {"You don't create fragment program. Please call setShaderProgram function to load.",
     "engine/KelOgreShader.cpp"},
    {"You don't create vertex program. Please call setShaderProgram function to load.",
     "engine/KelOgreShader.cpp"},
};

/// The string literals of a source, those that follow one another joined. A format ends where its
/// first number would stand.
std::multiset<std::string> literalsOf(const fs::path& source) {
    std::ifstream file(source);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    std::multiset<std::string> literals;
    std::string literal;
    bool open = false;  // a literal has ended, and may go on in another
    const auto close = [&] {
        if (open) literals.insert(literal.substr(0, literal.find('%')));
        open = false;
        literal.clear();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "//") == 0 || text.compare(i, 8, "#include") == 0) {
            i = text.find('\n', i);
        } else if (text[i] == '\'') {
            i = text.find('\'', i + (text[i + 1] == '\\' ? 3 : 2));
            close();
        } else if (text[i] == '"') {
            for (++i; text[i] != '"'; ++i) {
                if (text[i] == '\\') literal += text[i++];
                literal += text[i];
            }
            open = true;
        } else if (std::isspace(static_cast<unsigned char>(text[i])) == 0) {
            close();
        }
    }
    return literals;
}

/// Each source below a folder by its name from there.
std::vector<std::pair<std::string, fs::path>> sourcesBelow(const fs::path& folder) {
    std::vector<std::pair<std::string, fs::path>> sources;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const fs::path& path = entry.path();
        if (path.extension() == ".cpp" || path.extension() == ".h") {
            sources.emplace_back(fs::relative(path, folder).generic_string(), path);
        }
    }
    return sources;
}

/// Of the kind that is listed above; other lines say what they have to say in other words.
bool isOfTheOldKind(const std::string& literal) {
    return literal.ends_with('!') || literal.starts_with("Error") ||
           literal.find("NULL") != std::string::npos ||
           literal.find(" is null") != std::string::npos;
}

TEST(MessageTexts, StandInTheSourcesAsListedAndNoOthersDo) {
    const fs::path root = KELADJUST_SOURCES;
    for (const Message& message : messages) {
        const auto literals = literalsOf(root / message.source);
        EXPECT_GE(literals.count(message.text), 1u) << message.source << ": " << message.text;
    }
    const auto entry = [](const std::string& source, const std::string& text) {
        return source + ": " + text;
    };
    std::set<std::string> listed;
    for (const Message& message : messages) listed.insert(entry(message.source, message.text));
    std::size_t literalCount = 0;
    for (const auto& [name, path] : sourcesBelow(root)) {
        if (!name.starts_with("engine/") && !name.starts_with("host/")) continue;
        for (const std::string& literal : literalsOf(path)) {
            ++literalCount;
            if (!isOfTheOldKind(literal)) continue;
            EXPECT_EQ(listed.count(entry(name, literal)), 1u) << entry(name, literal);
        }
    }
    EXPECT_GT(literalCount, std::size(messages));
}

bool isListed(const std::string& line) {
    return std::any_of(std::begin(messages), std::end(messages), [&line](const Message& message) {
        return line.find(message.text) != std::string::npos;
    });
}

/// Collects the listed lines, which are all of one level.
class ListedLines : private Ogre::LogListener {
public:
    ListedLines() { Ogre::LogManager::getSingleton().getDefaultLog()->addListener(this); }
    ~ListedLines() override {
        Ogre::LogManager::getSingleton().getDefaultLog()->removeListener(this);
    }
    /// Those since the last call.
    Lines take() { return std::exchange(lines_, {}); }

private:
    void messageLogged(const std::string& message, Ogre::LogMessageLevel level, bool,
                       const std::string&, bool&) override {
        if (!isListed(message)) return;
        EXPECT_EQ(level, Ogre::LML_NORMAL) << message;
        lines_.push_back(message);
    }
    Lines lines_;
};

/// An effect whose driver never lets its pixel-pack buffer be mapped.
class NeverMappedEffect : public KelOgreEffectBase {
public:
    static constexpr const char* typeName = "class NeverMappedEffect";
    NeverMappedEffect() {
        glBuffers().mapBuffer = [](GLenum, GLenum) -> void* { return nullptr; };
    }
};

class Messages : public RunningEngine {
protected:
    void SetUp() override {}  // starting is what is looked at

    /// The listed lines since the last call are these and no others, in this order.
    void expectLines(const Lines& expected) {
        const Lines lines = listed.take();
        EXPECT_EQ(lines, expected) << log.all();
        log.clear();
        met.insert(lines.begin(), lines.end());
    }
    /// The same for one line that has more in it than the listed text.
    void expectLineWith(const std::string& text) {
        const Lines lines = listed.take();
        ASSERT_EQ(lines.size(), 1u) << testing::PrintToString(lines);
        EXPECT_NE(lines[0].find(text), std::string::npos) << lines[0];
        met.insert(lines[0]);
    }

    ListedLines listed;
    std::set<std::string> met;
};

TEST_F(Messages, ComeWithTheirOccasionsInOrder) {
    // Without an engine.
    unsigned char pixel[4] = {};
    {
        KelOgreEffectBase early;
        early.process(pixel, pixel, 4);
        expectLines({"Ogre had not been initialize!"});
    }
    KelOgreRenderThread failing("nowhere/", KELADJUST_ENGINE_CONFIG, nullptr, 1);
    expectLines({"ogre.cfg file not found, automatic config loading disabled.",
                 "nowhere/resources.cfg not found, automatic resource loading disabled.",
                 "Initialze Ogre failed!"});
    EXPECT_EQ(failing.getMaterial(nullptr), 0);
    expectLines({"Ogre Thread is null!"});

    // Start.
    RunningEngine::SetUp();
    expectLines({"ogre.cfg file not found, automatic config loading disabled."});

    // Requests without what they are about.
    EXPECT_EQ(thread->createEffect(nullptr), nullptr);
    expectLines({"Error: class name is NULL!"});
    thread->render(nullptr, nullptr, nullptr, 4, nullptr, 20);
    thread->getMaterial(nullptr);
    thread->readResult(nullptr, nullptr, 4);
    thread->setShaderParameters(nullptr, nullptr);
    expectLines({"Error: This effect is NULL!", "Error: This effect is NULL!",
                 "Error: This effect is NULL!", "Filter is NULL!"});
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    thread->getMaterial(effect);
    thread->setShaderParameters(effect, nullptr);
    expectLines({"shader had not been created!", "Filter shader parameters is null!"});
    _ResultRecord nothing{nullptr, effect};
    thread->readResult(&nothing, nullptr, 4);
    _ImageParam image;
    image.data = pixel;
    _ResultRecord tooEarly{&image, effect};
    thread->readResult(&tooEarly, nullptr, 4);
    onThread([&] { effect->resetViewports(); });
    expectLines({"Error : Parameter is NULL!",
                 "Error: Render Texture is NULL!, Could not get pixels.",
                 "Camera is null, You can not set render texture!"});

    // Pictures that cannot be had or are not as they should be.
    onThread([&] {
        effect->setInputImageFile(nullptr, 0);
        effect->setInputImageFile("no-such-picture.png", 0);
        effect->setInputTexture(nullptr, 0);
    });
    expectLines({"Image path is NULL!",
                 "Pictrue path is not right or it did not been add to resource group.",
                 "Input parameter is NULL!"});
    effect->setShaderSource(copyProgram, 1, 1);
    const auto renderPicture = [&](unsigned char* pixels, std::uint32_t width) {
        effect->setInputImage(pixels, width, 1, 0, Ogre::PF_A8R8G8B8);
        effect->setRenderSize(width, 1);
        thread->render(effect, nullptr, pixels, 4, nullptr, 20);
    };
    const std::uint32_t maximum = KelOgreBase::maximumTextureSize();
    renderPicture(nullptr, 1);
    expectLines({"Image data is NULL!"});
    renderPicture(pixel, 0);
    expectLineWith("You had not set image's size!");
    renderPicture(pixel, maximum + 1);
    expectLines(
        {"dimension is large max texture size " + std::to_string(maximum) + "of supported"});
    EXPECT_EQ(thread->storePicture("no/such/folder/picture.png", pixel, 1, 1, Ogre::PF_A8R8G8B8),
              0);
    expectLines({"Could not store picture. Maybe something that you specified is wrong."});
    EXPECT_EQ(thread->loadPicture("no-such-picture.png"), nullptr);
    expectLines({});

    // Renders: the plain one says nothing.
    renderPicture(pixel, 1);
    expectLines({});
    bool slow = false;
    thread->render(effect, nullptr, pixel, 4, &slow, 0);
    expectLines({"Evaluate time is low 0, it couldn't be completed work in this time."});
    {
        DYN_CLASS::CFactory<NeverMappedEffect> factory;
        const DYN_CLASS::CFactoryManager place(&factory);
        KelOgreEffectBase* const unmapped = effectWith(copyProgram, "NeverMappedEffect");
        HostPicture picture(1, 1, 32, IMAGE_FORMAT_BGRA);
        render(*unmapped, picture);
        expectLines({"glMapBufferRangeEXT failed: "});
        thread->removeEffect(unmapped, false);
        expectLines({"Thread is idle!"});
        thread->removeEffect(unmapped, false);
        expectLines({"Error: has no this effect!", "Thread is idle!"});
    }

    // Programs.
    onThread([] {
        KelOgreShader shader(0);
        shader.setParameter(1, "gain", 1.0f);
        shader.setParameter(0, "gain", 1.0f);
        shader.setDxShaderProgramTarget(1, nullptr);
        shader.setDxShaderProgramEntryPoint(1, nullptr);
    });
    expectLines(
        {"You don't create fragment program. Please call setShaderProgram function to load.",
         "You don't create vertex program. Please call setShaderProgram function to load.",
         "program target is NULL! in KelOgreShader::setDxShaderProgramTarget at "
         "KelOgreShader",
         "program entry point is NULL! in KelOgreShader::setDxShaderProgramEntryPoint at "
         "KelOgreShader"});

    // The end, which comes by itself when the window is closed.
    onThread([&] { thread->engine()->renderWindow()->destroy(); });
    expectLines({});
    thread->render(effect, nullptr, pixel, 4, nullptr, 20);
    expectLines({"window had been closed!", "Delete all effect!"});
    thread->render(effect, nullptr, pixel, 4, nullptr, 20);
    EXPECT_EQ(thread->stop(), 1);
    expectLines({"Ogre Thread is null!"});

    // What has its own test: drivers of other versions, textures of any size, HLSL.
    const std::set<std::string> elsewhere{
        "GL version is: ",
        "GL version is too low, Program requires OpenGL 2.0 or higherra."
        " Please upgrade the driver of your video card!",
        "Using C algorithm to running!",
        "This texture's size is zero!",
        "Picture width is large max texture size",
        "Picture height is large max texture size",
        "vertex program entry point is NULL!",
        "fragment program entry point is NULL!"};
    for (const Message& message : messages) {
        const bool wasMet = std::any_of(met.begin(), met.end(), [&](const std::string& line) {
            return line.find(message.text) != std::string::npos;
        });
        EXPECT_NE(wasMet, elsewhere.count(message.text) == 1) << message.text;
    }
}

// A host that starts the library, adjusts and ends it.
TEST_F(Messages, OfAWholeRunAreFew) {
    ASSERT_TRUE(initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG));
    Lines lines = listed.take();
    ASSERT_EQ(lines.size(), 2u) << log.all();
    EXPECT_EQ(lines[0], "ogre.cfg file not found, automatic config loading disabled.");
    EXPECT_EQ(lines[1].rfind("GL version is: ", 0), 0u) << lines[1];

    _AdjustParam settings = keladjust::test::identity;
    settings.exposure = 30;
    settings.range[KELADJUST_RANGE_RED] = {330, 30, 10, 20, -10};
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    doAdjust(picture.image(), settings);
    expectLines({});

    releaseOgre();
    expectLines({"Delete all effect!"});
}

TEST_F(Messages, AboutParametersComeTableByTable) {
    RunningEngine::SetUp();
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    const Ogre::Matrix4 matrix = Ogre::Matrix4::IDENTITY;
    // In any order but that in which they are applied; the program has none of them.
    effect.setParameter(1, "of type 11", Ogre::ColourValue::White);
    effect.setParameter(1, "of type 10", _IntPoint{});
    effect.setParameter(1, "of type 9", _DoublePoint{});
    effect.setParameter(1, "of type 8", _FloatPoint{});
    effect.setParameter(1, "of type 7", _Matrix4Point{});
    effect.setParameter(1, "of type 6", &matrix);
    effect.setParameter(1, "of type 5", Ogre::Vector2::ZERO);
    effect.setParameter(1, "of type 4", Ogre::Vector3::ZERO);
    effect.setParameter(1, "of type 3", Ogre::Vector4::ZERO);
    effect.setParameter(1, "of type 2", 1.0f);
    effect.setParameter(1, "of type 1, second", 1);
    effect.setParameter(1, "of type 1, first", 1);
    log.clear();
    ASSERT_EQ(thread->getMaterial(&effect), 1);
    const std::string all = log.all();
    std::size_t place = 0;
    for (const char* name : {"of type 1, first", "of type 1, second", "of type 2", "of type 3",
                             "of type 4", "of type 5", "of type 6", "of type 7", "of type 8",
                             "of type 9", "of type 10", "of type 11"}) {
        place = all.find(std::string("no such parameter of that type: ") + name + '\n', place);
        ASSERT_NE(place, std::string::npos) << name << " is missing or too early\n" << all;
    }
}

}  // namespace
