#ifndef KELADJUST_ENGINE_SOFTWARERENDERER_H
#define KELADJUST_ENGINE_SOFTWARERENDERER_H

#include <string_view>

namespace keladjust {

/// True if what calls itself so draws on the processor, without a graphics card. The two names are
/// those that OpenGL gives of its renderer and of who made it.
bool isSoftwareRenderer(std::string_view renderer, std::string_view vendor);

}  // namespace keladjust

#endif
