#include "BareConversion.h"

#include "../FFmpegHandles.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace torvo::bench {

namespace {

struct DeleteResampler {
    void operator()(soxr* resampler) const { soxr_delete(resampler); }
};

/// Half of left plus half of right.
void appendMono(std::vector<double>& to, const AVFrame& frame) {
    const auto* samples = reinterpret_cast<const std::int32_t*>(frame.data[0]);
    for (int i = 0; i < frame.nb_samples; ++i)
        to.push_back((0.5 * samples[2 * i] + 0.5 * samples[2 * i + 1]) * 0x1p-31);
}

std::vector<double> decoded(AVFormatContext& input, AVCodecContext& decoder) {
    const FFmpegHandle<AVPacket> packet(av_packet_alloc());
    const FFmpegHandle<AVFrame> frame(av_frame_alloc());
    std::vector<double> mono;
    while (av_read_frame(&input, packet.get()) == 0) {
        require(avcodec_send_packet(&decoder, packet.get()) == 0, "avcodec_send_packet");
        av_packet_unref(packet.get());
        while (avcodec_receive_frame(&decoder, frame.get()) == 0)
            appendMono(mono, *frame);
    }
    return mono;
}

std::vector<double> resampled(const std::vector<double>& mono, double rate) {
    const auto io = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
    const auto quality = soxr_quality_spec(SOXR_VHQ, 0);
    const auto runtime = soxr_runtime_spec(1);
    soxr_error_t error = nullptr;
    const std::unique_ptr<soxr, DeleteResampler> resampler(
        soxr_create(rate, 44100, 1, &error, &io, &quality, &runtime));
    require(error == nullptr, "soxr_create");
    std::vector<double> output(
        static_cast<std::size_t>(std::ceil(static_cast<double>(mono.size()) * 44100 / rate)));
    std::size_t done = 0;
    // In blocks that fit into the processor cache; a null input marks the end.
    constexpr std::size_t block = 4096;
    for (std::size_t at = 0; done < output.size(); at += block) {
        const auto length = at < mono.size() ? std::min(block, mono.size() - at) : 0;
        std::size_t produced = 0;
        require(soxr_process(resampler.get(), length == 0 ? nullptr : mono.data() + at, length,
                             nullptr, output.data() + done, output.size() - done,
                             &produced) == nullptr,
                "soxr_process");
        done += produced;
        if (length == 0 && produced == 0)
            break;
    }
    output.resize(done);
    return output;
}

} // namespace

std::vector<std::int16_t> bareConversion(const std::filesystem::path& path) {
    const auto input = openedInput(path.c_str(), "wav");
    const auto& parameters = *input->streams[0]->codecpar;
    require(parameters.ch_layout.nb_channels == 2, "two channels");
    const auto decoder = openedDecoder(parameters);
    require(decoder->sample_fmt == AV_SAMPLE_FMT_S32, "24-bit samples decode to 32 bits");
    const auto samples = resampled(decoded(*input, *decoder), parameters.sample_rate);
    std::vector<std::int16_t> rounded(samples.size());
    std::ranges::transform(samples, rounded.begin(), [](double sample) {
        return static_cast<std::int16_t>(std::lrint(std::clamp(sample * 32768, -32768.0, 32767.0)));
    });
    return rounded;
}

} // namespace torvo::bench
