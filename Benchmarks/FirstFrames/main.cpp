// first-frames FILE...: what FFmpeg alone needs to see that files are audio. On all cores, opens
// each file with the demuxer for its extension and opens the decoder; decodes the first frame where
// the encoding is compressed. Of a WAV file, reads the first 4 KiB.

#include "../FFmpegHandles.h"
#include "../OnThreads.h"

#include <array>
#include <exception>
#include <fstream>
#include <iostream>
#include <utility>

namespace torvo::bench {

namespace {

namespace fs = std::filesystem;

/// Null for a WAV file.
const char* demuxerFor(const fs::path& file) {
    constexpr std::array<std::pair<const char*, const char*>, 5> demuxers{
        {{".flac", "flac"}, {".mp3", "mp3"}, {".aiff", "aiff"}, {".ogg", "ogg"}, {".m4a", "mov"}}};
    for (const auto& [extension, name] : demuxers) {
        if (file.extension() == extension)
            return name;
    }
    return nullptr;
}

void readHead(const fs::path& file) {
    std::array<char, 4096> head;
    std::ifstream stream;
    stream.rdbuf()->pubsetbuf(nullptr, 0);
    stream.open(file, std::ios::binary);
    stream.read(head.data(), head.size());
    require(stream.gcount() > 0, "read");
}

void decodeFirstFrame(AVFormatContext& input, AVCodecContext& decoder) {
    const FFmpegHandle<AVPacket> packet(av_packet_alloc());
    const FFmpegHandle<AVFrame> frame(av_frame_alloc());
    while (avcodec_receive_frame(&decoder, frame.get()) != 0) {
        require(av_read_frame(&input, packet.get()) == 0, "av_read_frame");
        require(avcodec_send_packet(&decoder, packet.get()) == 0, "avcodec_send_packet");
        av_packet_unref(packet.get());
    }
}

void open(const fs::path& file) {
    const auto* const demuxer = demuxerFor(file);
    if (demuxer == nullptr)
        return readHead(file);
    const auto input = openedInput(file.c_str(), demuxer);
    const auto decoder = openedDecoder(*input->streams[0]->codecpar);
    if (av_get_exact_bits_per_sample(decoder->codec_id) == 0)
        decodeFirstFrame(*input, *decoder);
}

} // namespace

} // namespace torvo::bench

int main(int argc, char** argv) {
    try {
        av_log_set_level(AV_LOG_QUIET);
        const std::vector<std::filesystem::path> files(argv + 1, argv + argc);
        torvo::bench::onThreads(files, std::max(1U, std::thread::hardware_concurrency()), 16,
                                torvo::bench::open);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
