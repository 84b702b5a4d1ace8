#ifndef KELADJUST_ENGINE_KELOGRESHADER_H
#define KELADJUST_ENGINE_KELOGRESHADER_H

#include <OgreColourValue.h>
#include <OgreHighLevelGpuProgram.h>
#include <OgreMaterial.h>
#include <OgreMatrix4.h>
#include <OgreVector.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "engine/EffectRecords.h"

/// The vertex and fragment program of one effect. Whichever of the two is not given is a default
/// one, so that a fragment program alone is enough. Programs are shared: effects with one text have
/// one program, but each its own parameter values. The order of the virtual operations is fixed.
class KelOgreShader {
public:
    /// @param renderSystemKind OpenGL takes GLSL, every other kind HLSL
    explicit KelOgreShader(std::uint32_t renderSystemKind);
    virtual ~KelOgreShader();
    KelOgreShader(const KelOgreShader&) = delete;
    KelOgreShader& operator=(const KelOgreShader&) = delete;

    /// Takes a program: its text, or the name of a file of the engine's default resource group.
    /// Null is ignored.
    virtual void setShaderProgram(const char* textOrFile, std::int32_t isFragment,
                                  std::int32_t fromSource);
    virtual void setDxShaderProgramTarget(std::int32_t isFragment, const char* target);
    virtual void setDxShaderProgramEntryPoint(std::int32_t isFragment, const char* entryPoint);
    /// Makes default HLSL programs of what has not been given.
    virtual void initialiseDxShaderProgram();
    /// Compiles both programs and has the first pass of `material` use them, with the parameter
    /// values they have now. From then on values go to the material, too.
    /// @return false, the material being as before, if a program is of no use
    virtual bool createMaterial(const Ogre::MaterialPtr& material);

    /// Each sets a parameter of the fragment program, or of the vertex program if `isFragment` is
    /// 0. A name that the program lacks or declares as something else is noted in the log.
    virtual void setParameter(std::int32_t isFragment, const std::string& name, std::int32_t value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name, float value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const Ogre::Vector4& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const Ogre::Vector3& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const Ogre::Vector2& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const Ogre::Matrix4* value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const _Matrix4Point& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const _FloatPoint& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const _DoublePoint& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const _IntPoint& value);
    virtual void setParameter(std::int32_t isFragment, const std::string& name,
                              const Ogre::ColourValue& value);

    /// Takes the values of all parameters of the other shader that this one has, too.
    virtual void copyParameters(const KelOgreShader& source);
    /// The program of that name, made if there is none yet.
    virtual Ogre::HighLevelGpuProgramPtr createVertexProgram(const std::string& textOrFile,
                                                             const std::string& name,
                                                             std::int32_t fromSource);
    virtual Ogre::HighLevelGpuProgramPtr createFragmentProgram(const std::string& textOrFile,
                                                               const std::string& name,
                                                               std::int32_t fromSource);
    /// Reads the first `count` four-byte values of a parameter as the next render will use them.
    /// @return false, and `out` untouched, if the parameter is not there or has fewer
    virtual bool readParameter(std::int32_t isFragment, const std::string& name, void* out,
                               std::size_t count) const;

    const std::string& vertexProgramName() const { return vertexProgramName_; }
    const std::string& fragmentProgramName() const { return fragmentProgramName_; }

private:
    using Definition = Ogre::GpuConstantDefinition;
    using Parameters = Ogre::GpuProgramParameters;

    bool usesHlsl() const;
    const Ogre::HighLevelGpuProgramPtr& program(std::int32_t isFragment) const;
    Ogre::GpuProgramParametersSharedPtr materialParameters(std::int32_t isFragment) const;
    Ogre::HighLevelGpuProgramPtr createProgram(Ogre::GpuProgramType type,
                                               const std::string& textOrFile,
                                               const std::string& name, std::int32_t fromSource);
    void initialiseGlslProgram();
    void setConstant(std::int32_t isFragment, const std::string& name,
                     const std::function<bool(const Definition&)>& fits,
                     const std::function<void(Parameters&)>& set);

    std::string vertexProgramName_;
    Ogre::HighLevelGpuProgramPtr vertexProgram_;
    std::string fragmentProgramName_;
    Ogre::HighLevelGpuProgramPtr fragmentProgram_;
    Ogre::MaterialPtr material_;
    std::uint32_t renderSystemKind_;
};

#endif
