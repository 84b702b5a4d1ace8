#ifndef KELADJUST_BENCH_SUPPORT_AVFILTER_H
#define KELADJUST_BENCH_SUPPORT_AVFILTER_H

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}
#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace keladjust::bench {

/// A filter of libavfilter on 24-bit RGB pictures of one size, in this process.
class AvFilter {
public:
    /// @param filter as on ffmpeg's command line, such as "dctdnoiz=s=5"
    /// @param threads 0: as many as cores
    AvFilter(const std::string& filter, const CxImage& picture, int threads)
        : frame_(frameOf(picture)), graph_(avfilter_graph_alloc()) {
        graph_->nb_threads = threads;
        const std::string measures = std::to_string(picture.width) + "x" +
                                     std::to_string(picture.height) +
                                     ":pix_fmt=rgb24:time_base=1/1";
        const std::string chain =
            "buffer@in=video_size=" + measures + "," + filter + ",buffersink@out";
        AVFilterInOut* inputs = nullptr;
        AVFilterInOut* outputs = nullptr;
        check(avfilter_graph_parse2(graph_.get(), chain.c_str(), &inputs, &outputs));
        check(avfilter_graph_config(graph_.get(), nullptr));
        source_ = avfilter_graph_get_filter(graph_.get(), "buffer@in");
        sink_ = avfilter_graph_get_filter(graph_.get(), "buffersink@out");
        if (source_ == nullptr || sink_ == nullptr) throw std::runtime_error("no ends of " + chain);
    }

    /// Filters the picture once.
    void run() {
        check(av_buffersrc_write_frame(source_, frame_.get()));
        const Frame result(av_frame_alloc());
        check(av_buffersink_get_frame(sink_, result.get()));
    }

private:
    struct FreeFrame {
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    };
    struct FreeGraph {
        void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
    };
    using Frame = std::unique_ptr<AVFrame, FreeFrame>;

    static void check(int status) {
        if (status < 0) throw std::runtime_error("libavfilter reports " + std::to_string(status));
    }

    static Frame frameOf(const CxImage& picture) {
        Frame frame(av_frame_alloc());
        frame->format = AV_PIX_FMT_RGB24;
        frame->width = static_cast<int>(picture.width);
        frame->height = static_cast<int>(picture.height);
        check(av_frame_get_buffer(frame.get(), 0));
        for (int y = 0; y < frame->height; ++y) {
            std::uint8_t* out = frame->data[0] + std::ptrdiff_t{frame->linesize[0]} * y;
            for (int x = 0; x < frame->width; ++x, out += 3) {
                // Only reads, but CxImage's readers are not const.
                const _tagMyRGBQUAD p = const_cast<CxImage&>(picture).GetPixelColor(x, y, false);
                out[0] = p.red;
                out[1] = p.green;
                out[2] = p.blue;
            }
        }
        return frame;
    }

    Frame frame_;
    std::unique_ptr<AVFilterGraph, FreeGraph> graph_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
};

}  // namespace keladjust::bench

#endif
