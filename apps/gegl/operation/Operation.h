#ifndef KELADJUST_GEGL_OPERATION_H
#define KELADJUST_GEGL_OPERATION_H

#include <glib-object.h>

namespace keladjust::gegl {

/// Makes GEGL know the operation "keladjust:adjust".
///
/// Its properties are made from the library's description when the class is, which GEGL's own
/// macros cannot do: they want the list of properties as text.
void registerOperation(GTypeModule* module);

}  // namespace keladjust::gegl

#endif
