#ifndef KELADJUST_ENGINE_EFFECTRECORDS_H
#define KELADJUST_ENGINE_EFFECTRECORDS_H

#include <OgrePixelFormat.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>

class KelEffectBase;

/// One picture that goes into an effect or comes out of it.
struct _ImageParam {
    unsigned char* data = nullptr;  ///< not owned
    bool changed = false;           ///< not yet uploaded, or not yet delivered
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t index = 0;  ///< texture unit
    Ogre::PixelFormat format = Ogre::PF_UNKNOWN;
    std::size_t byteSize = 0;  ///< all rows with their padding

    /// From the first byte of a row to that of the next.
    std::size_t rowBytes() const { return height == 0 ? 0 : byteSize / height; }
};

/// A picture to be read back and the effect that it comes from.
struct _ResultRecord {
    _ImageParam* image = nullptr;
    KelEffectBase* effect = nullptr;
};

/// Half of a pair of programs.
enum ProgramKind : std::int32_t { vertexProgram = 0, fragmentProgram = 1 };

/// Names a shader parameter.
struct _CommDataType {
    std::int32_t programKind = vertexProgram;
    std::string name;

    auto operator<=>(const _CommDataType&) const = default;
};

struct _IntPoint {
    std::int32_t x, y, z;
};
struct _FloatPoint {
    float x, y, z;
};
struct _DoublePoint {
    double x, y, z;
};
/// Row by row.
struct _Matrix4Point {
    float m[4][4];
};

#endif
