#include "operation/Operation.h"

#include <gegl-plugin.h>
#include <keladjust/keladjust.h>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "operation/Properties.h"

namespace keladjust::gegl {

namespace {

struct Operation {
    GeglOperationFilter parent;
    Properties* properties;
};

struct OperationClass {
    GeglOperationFilterClass parent;
};

/// The class above this one, whose functions some of those below continue with.
gpointer parentClass = nullptr;

template <class Object>
Properties& propertiesOf(Object* object) {
    return *reinterpret_cast<Operation*>(object)->properties;
}

// Stages look at a picture as a whole: its size, its haze, a pixel's neighbours. GEGL may cut an
// operation's work up by threads and by chunks; not being threaded and saying "all of it" to each
// of the three questions below is what it takes to be called once.

GeglRectangle wholePicture(GeglOperation* operation, const GeglRectangle* otherwise) {
    const GeglRectangle* input = gegl_operation_source_get_bounding_box(operation, "input");
    const bool bounded = input != nullptr && gegl_rectangle_is_empty(input) == FALSE &&
                         gegl_rectangle_is_infinite_plane(input) == FALSE;
    return bounded ? *input : *otherwise;
}

GeglRectangle regionOfPad(GeglOperation* operation, const gchar*, const GeglRectangle* region) {
    return wholePicture(operation, region);
}

// In the colour space of what comes in: the numbers that the picture has are those that the command
// line finds in its file. What has no alpha gets none.
void prepare(GeglOperation* operation) {
    const Babl* space = gegl_operation_get_source_space(operation, "input");
    const Babl* source = gegl_operation_get_source_format(operation, "input");
    const bool opaque = source != nullptr && babl_format_has_alpha(source) == 0;
    const char* output = opaque ? "R'G'B' u8" : "R'G'B'A u8";
    gegl_operation_set_format(operation, "input", babl_format_with_space("R'G'B'A u8", space));
    gegl_operation_set_format(operation, "output", babl_format_with_space(output, space));
}

/// Between red, green, blue and blue, green, red: the order in which the command-line host has its
/// pixels. One stage, distortion, moves bytes rather than pixels and would give another picture.
void swapRedAndBlue(std::vector<unsigned char>& pixels) {
    for (std::size_t at = 0; at < pixels.size(); at += 4) std::swap(pixels[at], pixels[at + 2]);
}

std::int32_t report(void* operation, float share) {
    gegl_operation_progress(static_cast<GeglOperation*>(operation), static_cast<double>(share),
                            const_cast<gchar*>(""));
    return 0;
}

/// @return whether there was memory for it
bool adjust(GeglOperation* operation, std::vector<unsigned char>& pixels,
            const GeglRectangle& area) {
    unsigned char* bits = pixels.data();
    const std::unique_ptr<CxImage, decltype(&releaseCxImage)> image(
        createCxImage(&bits, static_cast<unsigned>(area.width), static_cast<unsigned>(area.height),
                      32, IMAGE_FORMAT_BGRA),
        &releaseCxImage);
    const _AdjustParam record = propertiesOf(operation).record();
    KeladjustRun run{};
    run.size = sizeof run;
    run.path = KELADJUST_CPU;
    run.progress = report;
    run.user = operation;
    return image != nullptr &&
           keladjustRun(image.get(), &record, sizeof record, &run) == KELADJUST_DONE;
}

gboolean process(GeglOperation* operation, GeglBuffer* input, GeglBuffer* output,
                 const GeglRectangle* area, gint) {
    try {
        const Babl* format = gegl_operation_get_format(operation, "input");
        std::vector<unsigned char> pixels(std::size_t{4} * static_cast<std::size_t>(area->width) *
                                          static_cast<std::size_t>(area->height));
        gegl_buffer_get(input, area, 1.0, format, pixels.data(), GEGL_AUTO_ROWSTRIDE,
                        GEGL_ABYSS_NONE);
        swapRedAndBlue(pixels);
        if (!adjust(operation, pixels, *area)) return FALSE;
        swapRedAndBlue(pixels);
        gegl_buffer_set(output, area, 0, format, pixels.data(), GEGL_AUTO_ROWSTRIDE);
        return TRUE;
    } catch (const std::exception& error) {
        g_warning("%s", error.what());
        return FALSE;
    }
}

// A plane without end has no size to go by and is passed on as it is.
gboolean processContext(GeglOperation* operation, GeglOperationContext* context, const gchar* pad,
                        const GeglRectangle* area, gint level) {
    const GeglRectangle* input = gegl_operation_source_get_bounding_box(operation, "input");
    if (input != nullptr && gegl_rectangle_is_infinite_plane(input) != FALSE) {
        GObject* plane = gegl_operation_context_get_object(context, "input");
        gegl_operation_context_take_object(context, "output", G_OBJECT(g_object_ref(plane)));
        return TRUE;
    }
    return GEGL_OPERATION_CLASS(parentClass)->process(operation, context, pad, area, level);
}

void setProperty(GObject* object, guint id, const GValue* value, GParamSpec*) {
    propertiesOf(object).set(id, value);
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec*) {
    propertiesOf(object).get(id, value);
}

void finalize(GObject* object) {
    delete reinterpret_cast<Operation*>(object)->properties;
    G_OBJECT_CLASS(parentClass)->finalize(object);
}

void initOperation(GTypeInstance* instance, gpointer) {
    reinterpret_cast<Operation*>(instance)->properties = new Properties;
}

void initClass(gpointer type, gpointer) {
    parentClass = g_type_class_peek_parent(type);
    auto* object = static_cast<GObjectClass*>(type);
    object->set_property = setProperty;
    object->get_property = getProperty;
    object->finalize = finalize;
    installProperties(object);

    auto* operation = static_cast<GeglOperationClass*>(type);
    operation->prepare = prepare;
    operation->process = processContext;
    operation->get_required_for_output = regionOfPad;
    operation->get_invalidated_by_change = regionOfPad;
    operation->get_cached_region = wholePicture;
    operation->threaded = FALSE;
    static_cast<GeglOperationFilterClass*>(type)->process = process;
    gegl_operation_class_set_keys(
        operation, "name", "keladjust:adjust", "title", "Keladjust", "categories", "color",
        "description", "Adjusts colour, tone, detail and more as the keladjust library does",
        nullptr);
}

}  // namespace

void registerOperation(GTypeModule* module) {
    const GTypeInfo info = {
        sizeof(OperationClass), nullptr, nullptr,       initClass, nullptr, nullptr,
        sizeof(Operation),      0,       initOperation, nullptr};
    g_type_module_register_type(module, GEGL_TYPE_OPERATION_FILTER, "KeladjustOperation", &info,
                                static_cast<GTypeFlags>(0));
}

}  // namespace keladjust::gegl
