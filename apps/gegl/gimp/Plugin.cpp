// The plug-in as GIMP 2.10 knows it: Colours > Keladjust, and a procedure of the same for scripts.

#include <gegl.h>
#include <libgimp/gimp.h>

#include <array>
#include <optional>
#include <string>

#include "gimp/Dialog.h"
#include "gimp/Layer.h"
#include "settings/Preset.h"
#include "settings/SettingsText.h"
#include "text/Failure.h"

namespace {

using namespace keladjust;

constexpr const char* procedure = "plug-in-keladjust";

// What the last run did is kept by GIMP, as a preset's text, until it ends.

app::Settings lastSettings() {
    const int size = gimp_get_data_size(procedure);
    if (size <= 0) return {};
    std::string preset(static_cast<std::size_t>(size), '\0');
    gimp_get_data(procedure, preset.data());
    return app::settingsFromPreset(preset, procedure);
}

void keepSettings(const app::Settings& settings) {
    const std::string preset = app::presetFromSettings(settings);
    gimp_set_data(procedure, preset.data(), static_cast<guint32>(preset.size()));
}

std::string argument(const gchar* text) {
    return text != nullptr ? text : "";
}

/// @return nothing if the user turns away
std::optional<app::Settings> settingsFor(GimpRunMode mode, gint count, const GimpParam* arguments) {
    switch (mode) {
        case GIMP_RUN_INTERACTIVE:
            return gimp::askForSettings(arguments[2].data.d_drawable, lastSettings());
        case GIMP_RUN_WITH_LAST_VALS:
            return lastSettings();
        default:
            if (count != 4) throw app::UsageError(std::string(procedure) + " has four arguments");
            return app::settingsFromText(argument(arguments[3].data.d_string));
    }
}

void query() {
    static std::array<GimpParamDef, 4> arguments = {{
        {GIMP_PDB_INT32, const_cast<gchar*>("run-mode"),
         const_cast<gchar*>("RUN-INTERACTIVE (0), RUN-NONINTERACTIVE (1), RUN-WITH-LAST-VALS (2)")},
        {GIMP_PDB_IMAGE, const_cast<gchar*>("image"), const_cast<gchar*>("The image")},
        {GIMP_PDB_DRAWABLE, const_cast<gchar*>("drawable"), const_cast<gchar*>("The layer")},
        {GIMP_PDB_STRING, const_cast<gchar*>("settings"),
         const_cast<gchar*>("A preset's file, or names and values: exposure 20 red-hue 5")},
    }};
    gimp_install_procedure(procedure, "Adjust colour, tone, detail and more",
                           "Adjusts a layer as the command line of keladjust does, to the byte. "
                           "The layer is looked at "
                           "as a whole; where there is a selection, that takes the result.",
                           "keladjust", "keladjust", "2026", "_Keladjust...", "RGB*", GIMP_PLUGIN,
                           arguments.size(), 0, arguments.data(), nullptr);
    gimp_plugin_menu_register(procedure, "<Image>/Colors");
}

GimpPDBStatusType adjust(gint count, const GimpParam* arguments, std::string& message) {
    try {
        const auto mode = static_cast<GimpRunMode>(arguments[0].data.d_int32);
        gegl_init(nullptr, nullptr);
        const auto settings = settingsFor(mode, count, arguments);
        if (!settings) return GIMP_PDB_CANCEL;
        gimp::adjustLayer(arguments[2].data.d_drawable, *settings);
        if (mode != GIMP_RUN_NONINTERACTIVE) {
            keepSettings(*settings);
            gimp_displays_flush();
        }
        return GIMP_PDB_SUCCESS;
    } catch (const app::UsageError& error) {
        message = error.what();
        return GIMP_PDB_CALLING_ERROR;
    } catch (const std::exception& error) {
        message = error.what();
        return GIMP_PDB_EXECUTION_ERROR;
    }
}

void run(const gchar*, gint count, const GimpParam* arguments, gint* resultCount,
         GimpParam** results) {
    // GIMP reads them after the return.
    static std::string message;
    static std::array<GimpParam, 2> result;
    result[0].type = GIMP_PDB_STATUS;
    result[0].data.d_status = adjust(count, arguments, message);
    result[1].type = GIMP_PDB_STRING;
    result[1].data.d_string = message.data();
    *resultCount = message.empty() ? 1 : 2;
    *results = result.data();
}

}  // namespace

// By the name that the macro knows. NOLINTNEXTLINE(readability-identifier-naming)
const GimpPlugInInfo PLUG_IN_INFO = {nullptr, nullptr, query, run};

MAIN()
