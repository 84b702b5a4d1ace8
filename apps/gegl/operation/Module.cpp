// The functions that GEGL calls of a module.

#include <gegl-plugin.h>

#include "operation/Operation.h"

extern "C" {

// What GEGL calls, by its names, which its macros for operations would declare.
// NOLINTBEGIN(readability-identifier-naming)
const GeglModuleInfo* gegl_module_query(GTypeModule* module);
gboolean gegl_module_register(GTypeModule* module);

const GeglModuleInfo* gegl_module_query(GTypeModule*) {
    static const GeglModuleInfo info = {GEGL_MODULE_ABI_VERSION};
    return &info;
}

gboolean gegl_module_register(GTypeModule* module) {
    keladjust::gegl::registerOperation(module);
    return TRUE;
}

// NOLINTEND(readability-identifier-naming)

}  // extern "C"
