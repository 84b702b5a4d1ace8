#include "gimp/AdjustedBuffer.h"

#include <memory>

#include "text/Failure.h"

namespace keladjust::gimp {

namespace {

constexpr const char* operation = "keladjust:adjust";

void report(GeglNode*, gdouble share, void (*progress)(double)) {
    progress(share);
}

}  // namespace

void adjustBuffer(GeglBuffer* from, GeglBuffer* to, const app::Settings& settings,
                  void (*progress)(double share)) {
    if (gegl_has_operation(operation) == FALSE) {
        throw app::Failure(
            "GEGL does not find the operation keladjust:adjust; install keladjust's module for "
            "GEGL");
    }
    const std::unique_ptr<GeglNode, decltype(&g_object_unref)> graph(gegl_node_new(),
                                                                     &g_object_unref);
    GeglNode* source = gegl_node_new_child(graph.get(), "operation", "gegl:buffer-source",  //
                                           "buffer", from, nullptr);
    GeglNode* adjusted = gegl_node_new_child(graph.get(), "operation", operation, nullptr);
    for (const KeladjustSetting& setting : app::allSettings()) {
        const auto value = settings.get(setting);
        if (!value) continue;
        if (setting.isInteger != 0) {
            gegl_node_set(adjusted, setting.name, static_cast<gint>(*value), nullptr);
        } else {
            gegl_node_set(adjusted, setting.name, *value, nullptr);
        }
    }
    GeglNode* sink = gegl_node_new_child(graph.get(), "operation", "gegl:write-buffer",  //
                                         "buffer", to, nullptr);
    gegl_node_link_many(source, adjusted, sink, nullptr);
    if (progress != nullptr) {
        g_signal_connect(adjusted, "progress", G_CALLBACK(report),
                         reinterpret_cast<gpointer>(progress));
    }
    gegl_node_process(sink);
}

}  // namespace keladjust::gimp
