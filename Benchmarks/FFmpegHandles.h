#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>
#include <stdexcept>

/// Direct use of FFmpeg, for what the program's own decoders are compared with.
namespace torvo::bench {

struct FreeFFmpegHandle {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

template <typename Handle>
using FFmpegHandle = std::unique_ptr<Handle, FreeFFmpegHandle>;

inline void require(bool succeeded, const char* what) {
    if (!succeeded)
        throw std::runtime_error(what);
}

inline FFmpegHandle<AVFormatContext> openedInput(const char* path, const char* demuxer) {
    AVFormatContext* input = nullptr;
    require(avformat_open_input(&input, path, av_find_input_format(demuxer), nullptr) == 0,
            "avformat_open_input");
    return FFmpegHandle<AVFormatContext>(input);
}

inline FFmpegHandle<AVCodecContext> openedDecoder(const AVCodecParameters& parameters) {
    const auto* codec = avcodec_find_decoder(parameters.codec_id);
    FFmpegHandle<AVCodecContext> decoder(avcodec_alloc_context3(codec));
    require(decoder && avcodec_parameters_to_context(decoder.get(), &parameters) == 0 &&
                avcodec_open2(decoder.get(), codec, nullptr) == 0,
            "avcodec_open2");
    return decoder;
}

} // namespace torvo::bench
