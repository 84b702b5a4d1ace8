#include "gimp/Dialog.h"

#include <gegl.h>
#include <libgimp/gimpui.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "gimp/AdjustedBuffer.h"
#include "settings/Preset.h"
#include "settings/PresetFile.h"
#include "text/Failure.h"

namespace keladjust::gimp {

namespace {

constexpr gint responseReset = 1;
constexpr gint responseLoad = 2;
constexpr gint responseSave = 3;
constexpr gint gap = 6;

/// A name of the file system's, or null for none.
using FileName = std::unique_ptr<char, decltype(&g_free)>;

FileName askForFile(GtkWidget* parent, const char* title, GtkFileChooserAction action) {
    GtkWidget* chooser = gtk_file_chooser_dialog_new(
        title, GTK_WINDOW(parent), action, GTK_STOCK_CANCEL, GTK_RESPONSE_CANCEL,
        action == GTK_FILE_CHOOSER_ACTION_SAVE ? GTK_STOCK_SAVE : GTK_STOCK_OPEN, GTK_RESPONSE_OK,
        nullptr);
    gtk_file_chooser_set_do_overwrite_confirmation(GTK_FILE_CHOOSER(chooser), TRUE);
    const bool chosen = gtk_dialog_run(GTK_DIALOG(chooser)) == GTK_RESPONSE_OK;
    FileName name(chosen ? gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser)) : nullptr,
                  &g_free);
    gtk_widget_destroy(chooser);
    return name;
}

/// The window, which lives as long as it is asked.
class Dialog {
public:
    Dialog(gint32 drawable, const app::Settings& start);
    ~Dialog() { gtk_widget_destroy(window_); }
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    std::optional<app::Settings> run();

private:
    static void drawPreviewOf(Dialog* dialog) { dialog->drawPreview(); }

    void addPage(GtkNotebook* book, std::size_t first, std::size_t last,
                 const app::Settings& start);
    void addSlider(GtkTable* table, guint row, const KeladjustSetting& setting, double value);
    void drawPreview();

    app::Settings settings() const;
    void show(const app::Settings& settings);
    void loadPreset();
    void savePreset();

    gint32 drawable_;
    GtkWidget* window_;
    GtkWidget* preview_;
    std::vector<GtkAdjustment*> sliders_;  // parallel to app::allSettings()
};

Dialog::Dialog(gint32 drawable, const app::Settings& start)
    : drawable_(drawable),
      window_(gimp_dialog_new("Keladjust", "plug-in-keladjust", nullptr, GtkDialogFlags{},
                              gimp_standard_help_func, nullptr,  //
                              "_Load Preset...", responseLoad, "_Save Preset...", responseSave,
                              "_Reset", responseReset, "_Cancel", GTK_RESPONSE_CANCEL,  //
                              "_OK", GTK_RESPONSE_OK, nullptr)),
      preview_(gimp_aspect_preview_new_from_drawable_id(drawable)) {
    gimp_window_set_transient(GTK_WINDOW(window_));
    gtk_dialog_set_default_response(GTK_DIALOG(window_), GTK_RESPONSE_OK);

    GtkWidget* box = gtk_hbox_new(FALSE, 2 * gap);
    gtk_container_set_border_width(GTK_CONTAINER(box), 2 * gap);
    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(window_));
    gtk_box_pack_start(GTK_BOX(content), box, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), preview_, FALSE, FALSE, 0);

    GtkWidget* book = gtk_notebook_new();
    gtk_box_pack_start(GTK_BOX(box), book, TRUE, TRUE, 0);
    const auto all = app::allSettings();
    for (std::size_t first = 0, last = 0; first < all.size(); first = last) {
        while (last < all.size() && std::string(all[last].group) == all[first].group) ++last;
        addPage(GTK_NOTEBOOK(book), first, last, start);
    }
    g_signal_connect_swapped(preview_, "invalidated", G_CALLBACK(drawPreviewOf), this);
    gtk_widget_show_all(box);
}

// A page for each group, which are neighbours in the record.
void Dialog::addPage(GtkNotebook* book, std::size_t first, std::size_t last,
                     const app::Settings& start) {
    const auto all = app::allSettings();
    GtkWidget* table = gtk_table_new(static_cast<guint>(last - first), 3, FALSE);
    gtk_container_set_border_width(GTK_CONTAINER(table), 2 * gap);
    gtk_table_set_row_spacings(GTK_TABLE(table), gap);
    gtk_table_set_col_spacings(GTK_TABLE(table), gap);
    for (std::size_t index = first; index < last; ++index) {
        const double usual = static_cast<double>(all[index].usual);
        addSlider(GTK_TABLE(table), static_cast<guint>(index - first), all[index],
                  start.get(all[index]).value_or(usual));
    }
    GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_add_with_viewport(GTK_SCROLLED_WINDOW(scrolled), table);
    gtk_widget_set_size_request(scrolled, -1, 400);
    gtk_notebook_append_page(book, scrolled, gtk_label_new(all[first].group));
}

void Dialog::addSlider(GtkTable* table, guint row, const KeladjustSetting& setting, double value) {
    const bool whole = setting.isInteger != 0;
    constexpr int scaleWidth = 240;
    constexpr int numberWidth = 7;
    // Beside the slider, which has the useful range, any value can be typed.
    const double limit = whole ? static_cast<double>(G_MAXINT32) : static_cast<double>(G_MAXFLOAT);
    GtkObject* slider = gimp_scale_entry_new(
        table, 0, static_cast<gint>(row), setting.label, scaleWidth, numberWidth, value,
        static_cast<double>(setting.lowest), static_cast<double>(setting.highest), whole ? 100 : 1,
        whole ? 1000 : 10, whole ? 0 : 1, FALSE, -limit, limit, setting.help, nullptr);
    sliders_.push_back(GTK_ADJUSTMENT(slider));
    g_signal_connect_swapped(slider, "value-changed", G_CALLBACK(gimp_preview_invalidate),
                             preview_);
}

void Dialog::drawPreview() {
    gint width = 0;
    gint height = 0;
    gint channels = 0;
    gimp_preview_get_size(GIMP_PREVIEW(preview_), &width, &height);
    const std::unique_ptr<guchar, decltype(&g_free)> pixels(
        gimp_drawable_get_thumbnail_data(drawable_, &width, &height, &channels), &g_free);
    if (pixels == nullptr) return;
    try {
        const GeglRectangle area = {0, 0, width, height};
        const Babl* format = gimp_drawable_get_thumbnail_format(drawable_);
        const std::unique_ptr<GeglBuffer, decltype(&g_object_unref)> from(
            gegl_buffer_new(&area, format), &g_object_unref);
        const std::unique_ptr<GeglBuffer, decltype(&g_object_unref)> to(
            gegl_buffer_new(&area, format), &g_object_unref);
        gegl_buffer_set(from.get(), &area, 0, format, pixels.get(), GEGL_AUTO_ROWSTRIDE);
        adjustBuffer(from.get(), to.get(), settings(), nullptr);
        gegl_buffer_get(to.get(), &area, 1.0, format, pixels.get(), GEGL_AUTO_ROWSTRIDE,
                        GEGL_ABYSS_NONE);
        gimp_preview_draw_buffer(GIMP_PREVIEW(preview_), pixels.get(), width * channels);
    } catch (const std::exception& error) {
        g_message("%s", error.what());
    }
}

app::Settings Dialog::settings() const {
    app::Settings settings;
    const auto all = app::allSettings();
    for (std::size_t index = 0; index < all.size(); ++index) {
        const double value = gtk_adjustment_get_value(sliders_[index]);
        if (value != static_cast<double>(all[index].usual)) settings.set(all[index], value);
    }
    return settings;
}

void Dialog::show(const app::Settings& settings) {
    const auto all = app::allSettings();
    for (std::size_t index = 0; index < all.size(); ++index) {
        const double usual = static_cast<double>(all[index].usual);
        gtk_adjustment_set_value(sliders_[index], settings.get(all[index]).value_or(usual));
    }
}

void Dialog::loadPreset() {
    const FileName file = askForFile(window_, "Load Preset", GTK_FILE_CHOOSER_ACTION_OPEN);
    if (file == nullptr) return;
    try {
        show(app::settingsFromPresetFile(file.get()));
    } catch (const std::exception& error) {
        g_message("%s", error.what());
    }
}

void Dialog::savePreset() {
    const FileName file = askForFile(window_, "Save Preset", GTK_FILE_CHOOSER_ACTION_SAVE);
    if (file == nullptr) return;
    GError* error = nullptr;
    const std::string preset = app::presetFromSettings(settings());
    if (g_file_set_contents(file.get(), preset.data(), static_cast<gssize>(preset.size()),
                            &error) == FALSE) {
        g_message("%s", error->message);
        g_error_free(error);
    }
}

std::optional<app::Settings> Dialog::run() {
    while (true) {
        switch (gimp_dialog_run(GIMP_DIALOG(window_))) {
            case responseLoad:
                loadPreset();
                break;
            case responseSave:
                savePreset();
                break;
            case responseReset:
                show(app::Settings());
                break;
            case GTK_RESPONSE_OK:
                return settings();
            default:
                return std::nullopt;
        }
    }
}

}  // namespace

std::optional<app::Settings> askForSettings(gint32 drawable, const app::Settings& start) {
    gimp_ui_init("keladjust", TRUE);
    // The usual 200 pixels show little of what clarity or sharpening do.
    gtk_rc_parse_string(
        "style \"keladjust-preview\" { GimpPreview::size = 400 }\n"
        "class \"GimpPreview\" style \"keladjust-preview\"");
    return Dialog(drawable, start).run();
}

}  // namespace keladjust::gimp
