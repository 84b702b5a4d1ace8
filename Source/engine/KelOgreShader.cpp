#include "engine/KelOgreShader.h"

#include <OgreHighLevelGpuProgramManager.h>
#include <OgrePass.h>
#include <OgreResourceGroupManager.h>
#include <OgreTechnique.h>

#include <cstring>

#include "engine/EngineLog.h"
#include "engine/Md5.h"
#include "engine/RenderSystemOptions.h"
#include "shaders/Programs.h"

using keladjust::logMessage;

namespace {

// Log lines that tell where they come from, like those of the engine's exceptions.
void logFailure(const std::string& message, const char* operation) {
    logMessage(message + " in KelOgreShader::" + operation + " at KelOgreShader");
}

std::string withoutExtension(const std::string& file) {
    return file.substr(0, file.rfind('.'));
}

bool isInteger(const Ogre::GpuConstantDefinition& constant) {
    return constant.isInt() || constant.isSampler();
}

// The engine writes without a look at the type, beyond the constant if need be.
bool holdsFloats(const Ogre::GpuConstantDefinition& constant, std::size_t count) {
    return constant.isFloat() && constant.elementSize * constant.arraySize >= count;
}

void bindAutomatically(Ogre::HighLevelGpuProgram& program, const char* name,
                       Ogre::GpuProgramParameters::AutoConstantType source) {
    const auto& parameters = program.getDefaultParameters();
    if (parameters->_findNamedConstantDefinition(name) == nullptr) return;
    parameters->setNamedAutoConstant(name, source);
}

bool isUsable(Ogre::HighLevelGpuProgram& program) {
    program.load();
    if (program.isSupported() && !program.hasCompileError()) return true;
    logMessage("Program cannot be used: " + program.getName());
    return false;
}

}  // namespace

KelOgreShader::KelOgreShader(std::uint32_t renderSystemKind)
    : renderSystemKind_(renderSystemKind) {}

KelOgreShader::~KelOgreShader() = default;

bool KelOgreShader::usesHlsl() const {
    return renderSystemKind_ != keladjust::renderSystemOpenGl;
}

const Ogre::HighLevelGpuProgramPtr& KelOgreShader::program(std::int32_t isFragment) const {
    return isFragment != 0 ? fragmentProgram_ : vertexProgram_;
}

void KelOgreShader::setShaderProgram(const char* textOrFile, std::int32_t isFragment,
                                     std::int32_t fromSource) {
    if (textOrFile == nullptr) return;
    const std::string baseName =
        fromSource != 0 ? keladjust::md5Hex(textOrFile) : withoutExtension(textOrFile);
    material_.reset();
    if (isFragment != 0) {
        fragmentProgramName_ = baseName + (usesHlsl() ? "_FRAG_HLSL" : "_FRAG_GLSL");
        fragmentProgram_ = createFragmentProgram(textOrFile, fragmentProgramName_, fromSource);
    } else {
        vertexProgramName_ = baseName + (usesHlsl() ? "_VERT_HLSL" : "_VERT_GLSL");
        vertexProgram_ = createVertexProgram(textOrFile, vertexProgramName_, fromSource);
    }
}

void KelOgreShader::setDxShaderProgramTarget(std::int32_t isFragment, const char* target) {
    if (target == nullptr) {
        logFailure("program target is NULL!", "setDxShaderProgramTarget");
        return;
    }
    if (program(isFragment) != nullptr) program(isFragment)->setParameter("target", target);
}

void KelOgreShader::setDxShaderProgramEntryPoint(std::int32_t isFragment, const char* entryPoint) {
    if (entryPoint == nullptr) {
        logFailure("program entry point is NULL!", "setDxShaderProgramEntryPoint");
        return;
    }
    if (program(isFragment) != nullptr)
        program(isFragment)->setParameter("entry_point", entryPoint);
}

void KelOgreShader::initialiseDxShaderProgram() {
    constexpr const char* operation = "initialiseDxShaderProgram";
    if (vertexProgram_ == nullptr) {
        vertexProgramName_ = "defaultVertexProgram_HLSL";
        vertexProgram_ =
            createVertexProgram(keladjust::shaders::defaultVertexHlsl, vertexProgramName_, 1);
        setDxShaderProgramTarget(vertexProgram, "vs_1_1");
        setDxShaderProgramEntryPoint(vertexProgram, "vs_main");
    } else if (vertexProgram_->getParameter("entry_point").empty()) {
        logFailure("vertex program entry point is NULL!", operation);
    }
    if (fragmentProgram_ == nullptr) {
        fragmentProgramName_ = "defaultFragmentProgram_HLSL";
        fragmentProgram_ =
            createFragmentProgram(keladjust::shaders::defaultFragmentHlsl, fragmentProgramName_, 1);
        setDxShaderProgramTarget(fragmentProgram, "ps_2_0");
        setDxShaderProgramEntryPoint(fragmentProgram, "ps_main");
    } else if (fragmentProgram_->getParameter("entry_point").empty()) {
        logFailure("fragment program entry point is NULL!", operation);
    }
}

void KelOgreShader::initialiseGlslProgram() {
    if (vertexProgram_ == nullptr) {
        vertexProgramName_ = "defaultVertexProgram";
        vertexProgram_ =
            createVertexProgram(keladjust::shaders::defaultVertexGlsl, vertexProgramName_, 1);
    }
    if (fragmentProgram_ == nullptr) {
        fragmentProgramName_ = "defaultFragmentProgram";
        fragmentProgram_ =
            createFragmentProgram(keladjust::shaders::defaultFragmentGlsl, fragmentProgramName_, 1);
    }
}

bool KelOgreShader::createMaterial(const Ogre::MaterialPtr& material) {
    if (material == nullptr) return false;
    if (usesHlsl()) {
        initialiseDxShaderProgram();
    } else {
        initialiseGlslProgram();
    }
    if (!isUsable(*vertexProgram_) || !isUsable(*fragmentProgram_)) return false;
    Ogre::Pass* pass = material->getTechnique(0)->getPass(0);
    pass->setGpuProgram(Ogre::GPT_VERTEX_PROGRAM, vertexProgram_);
    pass->setGpuProgram(Ogre::GPT_FRAGMENT_PROGRAM, fragmentProgram_);
    material_ = material;
    return true;
}

// The pass has copied the program's values when it got the program, and renders with its own.
Ogre::GpuProgramParametersSharedPtr KelOgreShader::materialParameters(
    std::int32_t isFragment) const {
    if (material_ == nullptr) return nullptr;
    const Ogre::Pass* pass = material_->getTechnique(0)->getPass(0);
    return pass->getGpuProgramParameters(isFragment != 0 ? Ogre::GPT_FRAGMENT_PROGRAM
                                                         : Ogre::GPT_VERTEX_PROGRAM);
}

void KelOgreShader::setConstant(std::int32_t isFragment, const std::string& name,
                                const std::function<bool(const Definition&)>& fits,
                                const std::function<void(Parameters&)>& set) {
    const Ogre::HighLevelGpuProgramPtr& target = program(isFragment);
    if (target == nullptr) {
        logMessage(isFragment != 0 ? "You don't create fragment program. Please call "
                                     "setShaderProgram function to load."
                                   : "You don't create vertex program. Please call "
                                     "setShaderProgram function to load.");
        return;
    }
    const Ogre::GpuProgramParametersSharedPtr& defaults = target->getDefaultParameters();
    const Definition* definition = defaults->_findNamedConstantDefinition(name);
    if (definition == nullptr || !fits(*definition)) {
        logMessage("Program " + target->getName() + " has no such parameter of that type: " + name);
        return;
    }
    set(*defaults);
    const Ogre::GpuProgramParametersSharedPtr inUse = materialParameters(isFragment);
    if (inUse != nullptr) set(*inUse);
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 std::int32_t value) {
    setConstant(isFragment, name, isInteger,
                [&](Parameters& parameters) { parameters.setNamedConstant(name, value); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name, float value) {
    setConstant(
        isFragment, name, [](const Definition& constant) { return holdsFloats(constant, 1); },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, value); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const Ogre::Vector4& value) {
    setConstant(
        isFragment, name, [](const Definition& constant) { return holdsFloats(constant, 4); },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, value); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const Ogre::Vector3& value) {
    setConstant(
        isFragment, name, [](const Definition& constant) { return holdsFloats(constant, 3); },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, value); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const Ogre::Vector2& value) {
    setConstant(
        isFragment, name, [](const Definition& constant) { return holdsFloats(constant, 2); },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, value); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const Ogre::Matrix4* value) {
    setConstant(
        isFragment, name, [](const Definition& constant) { return holdsFloats(constant, 16); },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, *value); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const _Matrix4Point& value) {
    const auto& m = value.m;
    const Ogre::Matrix4 matrix(m[0][0], m[0][1], m[0][2], m[0][3], m[1][0], m[1][1], m[1][2],
                               m[1][3], m[2][0], m[2][1], m[2][2], m[2][3], m[3][0], m[3][1],
                               m[3][2], m[3][3]);
    setParameter(isFragment, name, &matrix);
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const _FloatPoint& value) {
    setParameter(isFragment, name, Ogre::Vector3(value.x, value.y, value.z));
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const _DoublePoint& value) {
    // Programs of this level have no double precision.
    setParameter(isFragment, name,
                 Ogre::Vector3(static_cast<float>(value.x), static_cast<float>(value.y),
                               static_cast<float>(value.z)));
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const _IntPoint& value) {
    const int values[] = {value.x, value.y, value.z};
    setConstant(
        isFragment, name,
        [](const Definition& constant) {
            return constant.isInt() && constant.elementSize * constant.arraySize >= 3;
        },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, values, 1, 3); });
}

void KelOgreShader::setParameter(std::int32_t isFragment, const std::string& name,
                                 const Ogre::ColourValue& value) {
    setConstant(
        isFragment, name, [](const Definition& constant) { return holdsFloats(constant, 4); },
        [&](Parameters& parameters) { parameters.setNamedConstant(name, value); });
}

void KelOgreShader::copyParameters(const KelOgreShader& source) {
    for (const std::int32_t kind : {vertexProgram, fragmentProgram}) {
        if (program(kind) == nullptr || source.program(kind) == nullptr) continue;
        const Ogre::GpuProgramParametersSharedPtr inUse = source.materialParameters(kind);
        const Parameters& values =
            inUse != nullptr ? *inUse : *source.program(kind)->getDefaultParameters();
        program(kind)->getDefaultParameters()->copyMatchingNamedConstantsFrom(values);
        const Ogre::GpuProgramParametersSharedPtr own = materialParameters(kind);
        if (own != nullptr) own->copyMatchingNamedConstantsFrom(values);
    }
}

Ogre::HighLevelGpuProgramPtr KelOgreShader::createVertexProgram(const std::string& textOrFile,
                                                                const std::string& name,
                                                                std::int32_t fromSource) {
    const auto created = createProgram(Ogre::GPT_VERTEX_PROGRAM, textOrFile, name, fromSource);
    bindAutomatically(*created, "_worldViewProj", Parameters::ACT_WORLDVIEWPROJ_MATRIX);
    if (usesHlsl()) bindAutomatically(*created, "viewport_size", Parameters::ACT_VIEWPORT_SIZE);
    return created;
}

Ogre::HighLevelGpuProgramPtr KelOgreShader::createFragmentProgram(const std::string& textOrFile,
                                                                  const std::string& name,
                                                                  std::int32_t fromSource) {
    return createProgram(Ogre::GPT_FRAGMENT_PROGRAM, textOrFile, name, fromSource);
}

Ogre::HighLevelGpuProgramPtr KelOgreShader::createProgram(Ogre::GpuProgramType type,
                                                          const std::string& textOrFile,
                                                          const std::string& name,
                                                          std::int32_t fromSource) {
    const std::string& group = Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME;
    auto& programs = Ogre::HighLevelGpuProgramManager::getSingleton();
    Ogre::HighLevelGpuProgramPtr created = programs.getByName(name, group);
    if (created != nullptr) return created;
    created = programs.createProgram(name, group, usesHlsl() ? "hlsl" : "glsl", type);
    try {
        if (fromSource != 0) {
            created->setSource(textOrFile);
        } else {
            created->setSourceFile(textOrFile);
        }
    } catch (...) {
        // Found by its name, it would be taken for the program that it is not.
        programs.remove(created->getHandle());
        throw;
    }
    return created;
}

bool KelOgreShader::readParameter(std::int32_t isFragment, const std::string& name, void* out,
                                  std::size_t count) const {
    if (program(isFragment) == nullptr) return false;
    const Ogre::GpuProgramParametersSharedPtr inUse = materialParameters(isFragment);
    const Parameters& values =
        inUse != nullptr ? *inUse : *program(isFragment)->getDefaultParameters();
    const Definition* constant = values._findNamedConstantDefinition(name);
    if (constant == nullptr || constant->elementSize * constant->arraySize < count) return false;
    const void* raw = nullptr;
    if (constant->isFloat()) {
        raw = values.getFloatPointer(constant->physicalIndex);
    } else if (isInteger(*constant)) {
        raw = values.getIntPointer(constant->physicalIndex);
    } else {
        return false;
    }
    std::memcpy(out, raw, count * 4);
    return true;
}
