#ifndef KELADJUST_ENGINE_RENDERSYSTEMOPTIONS_H
#define KELADJUST_ENGINE_RENDERSYSTEMOPTIONS_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace keladjust {

/// Which graphics interface the engine draws with. Any other value counts as OpenGL while the
/// render system is chosen and set up, and as Direct3D 9 from then on.
enum RenderSystemKind : std::uint32_t { renderSystemOpenGl = 0, renderSystemDirect3D9 = 1 };

/// What the engine calls the render system and the plugin that brings it.
const char* renderSystemName(std::uint32_t kind);
const char* renderSystemPlugin(std::uint32_t kind);

/// The size of the window in the render system's own words.
std::string videoMode(std::uint32_t kind, unsigned width, unsigned height);

/// Name and value of every option, in the order in which they are set.
using RenderSystemOptions = std::vector<std::pair<std::string, std::string>>;
RenderSystemOptions renderSystemOptions(std::uint32_t kind, unsigned width, unsigned height);

}  // namespace keladjust

#endif
