#include "gimp/Layer.h"

#include <gegl.h>

#include <memory>

#include "gimp/AdjustedBuffer.h"

namespace keladjust::gimp {

namespace {

void showProgress(double share) {
    gimp_progress_update(share);
}

}  // namespace

void adjustLayer(gint32 drawable, const app::Settings& settings) {
    gint x = 0;
    gint y = 0;
    gint width = 0;
    gint height = 0;
    if (gimp_drawable_mask_intersect(drawable, &x, &y, &width, &height) == FALSE) return;
    gimp_progress_init("Adjusting");
    {
        using Buffer = std::unique_ptr<GeglBuffer, decltype(&g_object_unref)>;
        const Buffer layer(gimp_drawable_get_buffer(drawable), &g_object_unref);
        const Buffer shadow(gimp_drawable_get_shadow_buffer(drawable), &g_object_unref);
        adjustBuffer(layer.get(), shadow.get(), settings, showProgress);
        gegl_buffer_flush(shadow.get());
    }
    gimp_drawable_merge_shadow(drawable, TRUE);
    gimp_drawable_update(drawable, x, y, width, height);
    gimp_progress_end();
}

}  // namespace keladjust::gimp
