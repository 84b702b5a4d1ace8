// Stages as libavfilter's filters have them, on frames that they may write over.

#include <memory>

#include "peers/AvFilter.h"
#include "support/Rows.h"

namespace {

using keladjust::bench::addRows;
using keladjust::bench::AvFilter;
using keladjust::bench::Work;

auto filtering(const char* filter, AVPixelFormat format = AV_PIX_FMT_BGRA) {
    return [filter, format](CxImage& like) {
        const auto graph = std::make_shared<AvFilter>(filter, format, like);
        return Work{[graph](CxImage&) { graph->run(); },
                    [graph](CxImage& picture) { graph->load(picture); }};
    };
}

// gblur and dctdnoiz know no packed pixels of four bytes: they get planes, as many as there are
// channels to filter. gblur's sigma is that of a Stack Blur of radius 50.
const bool added = addRows(
    "libavfilter",
    {
        {"highlights", filtering("curves=all='0/0 0.7/0.6 1/1'")},
        {"shadows", filtering("curves=all='0/0 0.3/0.4 1/1'")},
        {"whites", filtering("curves=all='0/0 0.9/0.95 1/1'")},
        {"blacks", filtering("curves=all='0/0 0.1/0.05 1/1'")},
        {"vibrance", filtering("vibrance=intensity=0.5")},
        {"temperature", filtering("colortemperature=temperature=9000")},
        {"colour range, one slider", filtering("huesaturation=saturation=0.3:colors=y"), true},
        {"colour range, three sliders",
         filtering("huesaturation=hue=20:saturation=0.3:intensity=-0.2:colors=y"), true},
        {"eight colour ranges",
         filtering("selectivecolor=reds=0.2:yellows=0.2:greens=0.2:cyans=0.2:blues=0.2:"
                   "magentas=0.2:whites=0.2:blacks=0.2"),
         true},
        {"blur, radius 50", filtering("gblur=sigma=20.8", AV_PIX_FMT_GBRAP)},
        {"denoise", filtering("dctdnoiz=s=5:n=3:overlap=7", AV_PIX_FMT_GBRP)},
    });

}  // namespace
