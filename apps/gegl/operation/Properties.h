#ifndef KELADJUST_GEGL_PROPERTIES_H
#define KELADJUST_GEGL_PROPERTIES_H

#include <glib-object.h>
#include <keladjust/keladjust.h>

#include <string>
#include <vector>

#include "settings/Settings.h"

namespace keladjust::gegl {

/// Gives a class one property for a preset's file, then one for each setting, in the order of the
/// record, which keeps groups together.
void installProperties(GObjectClass* type);

/// What an operation's properties hold.
class Properties {
public:
    Properties();

    /// A preset that cannot be read is told with a warning and changes nothing, as GLib itself does
    /// with numbers that are none, or out of a property's range.
    void set(guint id, const GValue* value);
    void get(guint id, GValue* value) const;

    /// The preset's settings; a slider that is not where it starts replaces the preset's.
    _AdjustParam record() const;

private:
    void setPreset(const char* path);

    std::string presetPath_;
    app::Settings preset_;
    std::vector<double> sliders_;  // parallel to app::allSettings()
};

}  // namespace keladjust::gegl

#endif
