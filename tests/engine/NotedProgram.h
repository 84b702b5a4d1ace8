#ifndef KELADJUST_TESTS_ENGINE_NOTEDPROGRAM_H
#define KELADJUST_TESTS_ENGINE_NOTEDPROGRAM_H

#include <OgreHighLevelGpuProgram.h>
#include <OgreHighLevelGpuProgramManager.h>

#include <cstddef>
#include <tuple>

namespace keladjust::test {

/// A program in a language that no render system here knows: keeps what it is told.
class NotedProgram : public Ogre::HighLevelGpuProgram {
public:
    using HighLevelGpuProgram::HighLevelGpuProgram;
    NotedProgram(Ogre::ResourceManager* creator, const Ogre::String& name,
                 Ogre::ResourceHandle handle, const Ogre::String& group, bool isManual,
                 Ogre::ManualResourceLoader* loader)
        : HighLevelGpuProgram(creator, name, handle, group, isManual, loader) {
        if (createParamDictionary("NotedProgram")) {
            setupBaseParamDictionary();
            getParamDictionary()->addParameter(Ogre::ParameterDef("target", "", Ogre::PT_STRING),
                                               &targetCommand);
            getParamDictionary()->addParameter(
                Ogre::ParameterDef("entry_point", "", Ogre::PT_STRING), &entryPointCommand);
        }
    }

    const Ogre::String& getLanguage() const override {
        static const Ogre::String language = "hlsl";
        return language;
    }
    bool isSupported() const override { return true; }
    Ogre::GpuProgram* _getBindingDelegate() override { return this; }

    Ogre::String target;
    Ogre::String entryPoint;

protected:
    void createLowLevelImpl() override {}
    void loadFromSource() override {}
    void unloadHighLevelImpl() override {}
    void buildConstantDefinitions() const override {
        createParameterMappingStructures(true);
        mConstantDefs->floatBufferSize = 20;
        for (const auto& [name, type, place, size] :
             {std::tuple{"_worldViewProj", Ogre::GCT_MATRIX_4X4, 0, 16},
              std::tuple{"viewport_size", Ogre::GCT_FLOAT4, 16, 4}}) {
            Ogre::GpuConstantDefinition definition;
            definition.constType = type;
            definition.physicalIndex = static_cast<std::size_t>(place);
            definition.elementSize = static_cast<std::size_t>(size);
            definition.arraySize = 1;
            mConstantDefs->map[name] = definition;
        }
    }

private:
    template <Ogre::String NotedProgram::*member>
    struct Command : Ogre::ParamCommand {
        Ogre::String doGet(const void* object) const override {
            return static_cast<const NotedProgram*>(object)->*member;
        }
        void doSet(void* object, const Ogre::String& value) override {
            static_cast<NotedProgram*>(object)->*member = value;
        }
    };
    inline static Command<&NotedProgram::target> targetCommand;
    inline static Command<&NotedProgram::entryPoint> entryPointCommand;
};

class NotedProgramFactory : public Ogre::HighLevelGpuProgramFactory {
public:
    const Ogre::String& getLanguage() const override {
        static const Ogre::String language = "hlsl";
        return language;
    }
    Ogre::HighLevelGpuProgram* create(Ogre::ResourceManager* creator, const Ogre::String& name,
                                      Ogre::ResourceHandle handle, const Ogre::String& group,
                                      bool isManual, Ogre::ManualResourceLoader* loader) override {
        return new NotedProgram(creator, name, handle, group, isManual, loader);
    }
};

}  // namespace keladjust::test

#endif
