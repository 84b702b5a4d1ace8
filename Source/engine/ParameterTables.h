#ifndef KELADJUST_ENGINE_PARAMETERTABLES_H
#define KELADJUST_ENGINE_PARAMETERTABLES_H

#include <OgreColourValue.h>
#include <OgreMatrix4.h>
#include <OgreVector.h>

#include <cstdint>
#include <map>
#include <tuple>

#include "engine/EffectRecords.h"
#include "engine/KelOgreShader.h"

namespace keladjust {

/// The shader parameters of an effect: one table for each type of value, by program and name.
class ParameterTables {
public:
    /// Sets a parameter; the last value under a key stays. A null name is none.
    template <class Value>
    void set(std::int32_t programKind, const char* name, const Value& value) {
        if (name != nullptr) std::get<Table<Value>>(tables_)[{programKind, name}] = value;
    }

    /// Hands every parameter to the shader, table by table.
    void applyTo(KelOgreShader& shader) const {
        std::apply([&shader](const auto&... tables) { (apply(tables, shader), ...); }, tables_);
    }

private:
    template <class Value>
    using Table = std::map<_CommDataType, Value>;

    template <class Value>
    static void apply(const Table<Value>& table, KelOgreShader& shader) {
        for (const auto& [key, value] : table) {
            shader.setParameter(key.programKind, key.name, asArgument(value));
        }
    }
    template <class Value>
    static const Value& asArgument(const Value& value) {
        return value;
    }
    /// Matrices are passed by pointer.
    static const Ogre::Matrix4* asArgument(const Ogre::Matrix4& value) { return &value; }

    /// In the order in which they are applied.
    std::tuple<Table<std::int32_t>, Table<float>, Table<Ogre::Vector4>, Table<Ogre::Vector3>,
               Table<Ogre::Vector2>, Table<Ogre::Matrix4>, Table<_Matrix4Point>, Table<_FloatPoint>,
               Table<_DoublePoint>, Table<_IntPoint>, Table<Ogre::ColourValue>>
        tables_;
};

}  // namespace keladjust

#endif
