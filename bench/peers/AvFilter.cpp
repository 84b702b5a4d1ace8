#include "peers/AvFilter.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
}

namespace keladjust::bench {

namespace {

void check(int status) {
    if (status < 0) throw std::runtime_error("libavfilter reports " + std::to_string(status));
}

std::uint8_t* rowOf(AVFrame& frame, std::size_t plane, int y) {
    return frame.data[plane] + std::ptrdiff_t{frame.linesize[plane]} * y;
}

// The bytes of BGRA in the order in which the format has them, in one plane or in one each.
std::array<std::size_t, 4> orderOf(AVPixelFormat format) {
    if (format == AV_PIX_FMT_RGB24) return {2, 1, 0, 3};
    return {1, 0, 2, 3};  // GBRP, GBRAP
}

void fillRow(AVFrame& frame, int y, const std::uint8_t* bgra) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const auto width = static_cast<std::size_t>(frame.width);
    if (format == AV_PIX_FMT_BGRA) {
        std::memcpy(rowOf(frame, 0, y), bgra, width * 4);
        return;
    }
    const bool planar = format != AV_PIX_FMT_RGB24;
    const std::size_t channels = format == AV_PIX_FMT_GBRAP ? 4 : 3;
    const auto order = orderOf(format);
    for (std::size_t c = 0; c < channels; ++c) {
        std::uint8_t* const out = planar ? rowOf(frame, c, y) : rowOf(frame, 0, y) + c;
        const std::size_t step = planar ? 1 : channels;
        for (std::size_t x = 0; x < width; ++x) out[x * step] = bgra[x * 4 + order[c]];
    }
}

}  // namespace

AvFilter::AvFilter(const std::string& filter, AVPixelFormat format, const CxImage& like)
    : format_(format), graph_(avfilter_graph_alloc()) {
    constexpr int asManyAsCores = 0;
    graph_->nb_threads = asManyAsCores;
    avfilter_graph_set_auto_convert(graph_.get(), AVFILTER_AUTO_CONVERT_NONE);
    const std::string chain = "buffer@in=video_size=" + std::to_string(like.width) + "x" +
                              std::to_string(like.height) + ":pix_fmt=" + std::to_string(format) +
                              ":time_base=1/1," + filter + ",buffersink@out";
    AVFilterInOut* inputs = nullptr;
    AVFilterInOut* outputs = nullptr;
    check(avfilter_graph_parse2(graph_.get(), chain.c_str(), &inputs, &outputs));
    check(avfilter_graph_config(graph_.get(), nullptr));
    source_ = avfilter_graph_get_filter(graph_.get(), "buffer@in");
    sink_ = avfilter_graph_get_filter(graph_.get(), "buffersink@out");
    if (source_ == nullptr || sink_ == nullptr) throw std::runtime_error("no ends of " + chain);
}

void AvFilter::load(CxImage& picture) {
    loaded_.reset(av_frame_alloc());
    loaded_->format = format_;
    loaded_->width = static_cast<int>(picture.width);
    loaded_->height = static_cast<int>(picture.height);
    check(av_frame_get_buffer(loaded_.get(), 0));
    for (int y = 0; y < loaded_->height; ++y) {
        fillRow(
            *loaded_, y,
            picture.GetBits() + std::size_t{picture.GetEffWidth()} * static_cast<std::size_t>(y));
    }
    result_.reset(av_frame_alloc());
}

void AvFilter::run() {
    check(av_buffersrc_add_frame(source_, loaded_.get()));
    check(av_buffersink_get_frame(sink_, result_.get()));
}

}  // namespace keladjust::bench
