#ifndef KELADJUST_BENCH_PEERS_AVFILTER_H
#define KELADJUST_BENCH_PEERS_AVFILTER_H

#include <keladjust/CxImage.h>

#include <cstdint>  // whose UINT64_C the next headers want to see
#include <memory>
#include <string>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

namespace keladjust::bench {

/// A filter of libavfilter on pictures of one size, in this process, on every core.
class AvFilter {
public:
    /// @param filter as on ffmpeg's command line, such as "dctdnoiz=s=5"
    /// @param format one that the filter takes as it is: BGRA, RGB24, GBRP or GBRAP
    /// @throws std::runtime_error if there is no such filter or it would need a conversion
    AvFilter(const std::string& filter, AVPixelFormat format, const CxImage& like);

    /// Makes a frame of a BGRA picture that the filter may write over.
    void load(CxImage& picture);
    /// Filters the frame that was loaded.
    void run();

private:
    struct FreeFrame {
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    };
    struct FreeGraph {
        void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
    };
    using Frame = std::unique_ptr<AVFrame, FreeFrame>;

    AVPixelFormat format_;
    std::unique_ptr<AVFilterGraph, FreeGraph> graph_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
    Frame loaded_;
    Frame result_;  // kept, so that its end is not measured
};

}  // namespace keladjust::bench

#endif
