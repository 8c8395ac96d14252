#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/log.h>
}

#include <memory>

/// Owning handles for FFmpeg objects, released by the matching FFmpeg functions.
namespace torvo::ffmpeg {

template <auto freeHandle>
struct Free {
    template <typename Handle>
    void operator()(Handle* handle) const {
        freeHandle(&handle);
    }
};

/// Frees the current buffer, because FFmpeg may have replaced the one that was passed to it.
inline void freeIOContext(AVIOContext** context) {
    av_freep(&(*context)->buffer);
    avio_context_free(context);
}

using FormatContext = std::unique_ptr<AVFormatContext, Free<avformat_close_input>>;
using IOContext = std::unique_ptr<AVIOContext, Free<freeIOContext>>;
using CodecContext = std::unique_ptr<AVCodecContext, Free<avcodec_free_context>>;
using Packet = std::unique_ptr<AVPacket, Free<av_packet_free>>;
using Frame = std::unique_ptr<AVFrame, Free<av_frame_free>>;

} // namespace torvo::ffmpeg
