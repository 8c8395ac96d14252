#include "CompressedAudioReader.h"

#include "AudioSupport/AudioError.h"
#include "FrameMix.h"
#include "MediaInput.h"

#include <algorithm>
#include <array>
#include <new>
#include <sstream>

namespace torvo {

namespace {

struct Encoding {
    AVCodecID codec;
    std::int64_t bitDepth = 0;
    bool isLinearPCM = false;
};

/// The supported encodings; a test covers each of them.
constexpr Encoding encodings[] = {
    {AV_CODEC_ID_PCM_S8, 8, true},
    {AV_CODEC_ID_PCM_U8, 8, true},
    {AV_CODEC_ID_PCM_S16LE, 16, true},
    {AV_CODEC_ID_PCM_S16BE, 16, true},
    {AV_CODEC_ID_PCM_S24LE, 24, true},
    {AV_CODEC_ID_PCM_S24BE, 24, true},
    {AV_CODEC_ID_PCM_S32LE, 32, true},
    {AV_CODEC_ID_PCM_S32BE, 32, true},
    {AV_CODEC_ID_PCM_F32LE, 32},
    {AV_CODEC_ID_PCM_F32BE, 32},
    {AV_CODEC_ID_PCM_F64LE, 64},
    {AV_CODEC_ID_PCM_F64BE, 64},
    {AV_CODEC_ID_PCM_ALAW, 8},
    {AV_CODEC_ID_PCM_MULAW, 8},
    {AV_CODEC_ID_ADPCM_MS},
    {AV_CODEC_ID_ADPCM_IMA_WAV},
    {AV_CODEC_ID_ADPCM_IMA_QT},
    {AV_CODEC_ID_MP2},
    {AV_CODEC_ID_MP3},
    {AV_CODEC_ID_AAC},
    {AV_CODEC_ID_ALAC},
    {AV_CODEC_ID_FLAC},
    {AV_CODEC_ID_VORBIS},
    {AV_CODEC_ID_OPUS},
    {AV_CODEC_ID_WMAV1},
    {AV_CODEC_ID_WMAV2},
    {AV_CODEC_ID_WAVPACK},
    {AV_CODEC_ID_TTA},
    {AV_CODEC_ID_MUSEPACK8},
    {AV_CODEC_ID_GSM_MS},
    {AV_CODEC_ID_AMR_NB},
};

const Encoding& encodingOf(AVCodecID codec) {
    const auto* const found = std::ranges::find(encodings, codec, &Encoding::codec);
    if (found == std::end(encodings))
        throw AudioError::invalidData();
    return *found;
}

bool isUncompressed(const Encoding& encoding) {
    return encoding.bitDepth != 0;
}

bool isVideo(const AVStream& stream) {
    constexpr int pictures =
        AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS | AV_DISPOSITION_STILL_IMAGE;
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
           (stream.disposition & pictures) == 0;
}

/// Selects the first audio stream and discards all others. Throws `AudioError` when there is a
/// video stream or no audio stream.
AVStream& chooseStream(AVFormatContext& context) {
    AVStream* chosen = nullptr;
    for (AVStream* const stream : std::span(context.streams, context.nb_streams)) {
        if (isVideo(*stream))
            throw AudioError::invalidData();
        if (chosen == nullptr && stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            chosen = stream;
        else
            stream->discard = AVDISCARD_ALL;
    }
    if (chosen == nullptr)
        throw AudioError::invalidData();
    return *chosen;
}

void check(int status) {
    if (status == AVERROR(ENOMEM))
        throw std::bad_alloc();
    if (status < 0)
        throw AudioError(status);
}

/// The frame count in the gapless tag of AAC files ("iTunSMPB"): the fourth hexadecimal word, after
/// delay and padding. Empty when there is no such tag.
std::optional<std::uint64_t> taggedFrameCount(const AVFormatContext& context) {
    const AVDictionaryEntry* const tag = av_dict_get(context.metadata, "iTunSMPB", nullptr, 0);
    if (tag == nullptr)
        return std::nullopt;
    std::istringstream words(tag->value);
    std::uint64_t ignored = 0;
    std::uint64_t count = 0;
    words >> std::hex >> ignored >> ignored >> ignored >> count;
    return words && count > 0 ? std::optional(count) : std::nullopt;
}

/// The position of the audio within the decoded frames.
struct SoundExtent {
    std::size_t delay = 0; ///< frames before frame 0
    std::optional<std::uint64_t> frameCount;
};

/// Reads the exact extent from the Musepack SV8 stream header, because FFmpeg rounds the length to
/// whole packets. The header consists of "MPCK", "SH", the header size, a checksum, the version,
/// the sample count and the number of leading silent samples. Numbers are stored with seven bits
/// per byte, most significant first.
SoundExtent musepackExtent(const ByteSource& bytes, std::uint64_t offset) {
    std::array<std::byte, 40> header{};
    bytes.read(offset, header);
    std::size_t position = 6;
    const auto nextNumber = [&] {
        std::uint64_t value = 0;
        bool hasMore = true;
        while (hasMore && position < header.size()) {
            const auto byte = std::to_integer<std::uint64_t>(header[position++]);
            value = value << 7 | (byte & 0x7F);
            hasMore = (byte & 0x80) != 0;
        }
        return value;
    };
    nextNumber();
    constexpr std::size_t checksumAndVersion = 5;
    position += checksumAndVersion;
    const std::uint64_t sampleCount = nextNumber();
    const std::uint64_t silence = nextNumber();
    constexpr std::size_t filterDelay = 481;
    if (sampleCount == 0 || silence > sampleCount)
        return {filterDelay, std::nullopt};
    return {filterDelay + static_cast<std::size_t>(silence), sampleCount - silence};
}

class CompressedAudioReader final : public AudioReader {
public:
    CompressedAudioReader(const ByteSource& bytes, const AudioFileType& type)
        : byteCount_(bytes.size()),
          input_(bytes, type),
          stream_(chooseStream(input_.context())),
          container_(type.container),
          encoding_(encodingOf(stream_.codecpar->codec_id)),
          packet_(av_packet_alloc()),
          frame_(av_frame_alloc()) {
        if (!packet_ || !frame_)
            throw std::bad_alloc();
        openCodec();
        const AVCodecParameters& parameters = *stream_.codecpar;
        format_ = {static_cast<double>(parameters.sample_rate), parameters.ch_layout.nb_channels,
                   encoding_.bitDepth, encoding_.isLinearPCM};
        if (isUncompressed(encoding_))
            checkPCMLayout();
        else
            decodeFirstFrame();
        if (format_.channels <= 0 || format_.sampleRate < minSampleRate ||
            format_.sampleRate > maxSampleRate)
            throw AudioError::invalidData();
        if (container_ == AudioContainer::musepack) {
            const SoundExtent extent = musepackExtent(bytes, type.offset);
            skipFrames(extent.delay);
            declaredFrames_ = extent.frameCount;
        } else {
            declaredFrames_ = declaredFrameCount();
        }
        framesLeft_ = declaredFrames_;
    }

    const AudioStreamFormat& format() const override { return format_; }

    /// The declared length, limited to what the size of the file allows: programs that write to a
    /// pipe do not know the length and declare the maximum.
    std::optional<std::uint64_t> expectedFrameCount() const override {
        if (isUncompressed(encoding_)) {
            const auto frameSize =
                static_cast<std::uint64_t>(format_.channels * encoding_.bitDepth / 8);
            const std::uint64_t available = byteCount_ / frameSize;
            return std::min(declaredFrames_.value_or(available), available);
        }
        constexpr double minByteRate =
            100; // bytes per second; even encoded silence has a higher rate
        const double maxSeconds = static_cast<double>(byteCount_) / minByteRate;
        constexpr double ordinarySeconds = 48'000;
        const auto frames = declaredFrames_ ? declaredFrames_ : approximateFrameCount();
        const bool isCredible =
            frames && static_cast<double>(*frames) <=
                          std::max(ordinarySeconds, maxSeconds) * format_.sampleRate;
        return isCredible ? frames : std::nullopt;
    }

    std::size_t read(std::span<double> frames) override {
        if (framesLeft_ && *framesLeft_ < frames.size())
            frames = frames.first(static_cast<std::size_t>(*framesLeft_));
        std::size_t done = 0;
        while (done < frames.size() && (position_ < frameLength() || nextFrame())) {
            const auto part =
                frames.subspan(done, std::min(frames.size() - done, frameLength() - position_));
            mixFrame(*frame_, position_, part);
            position_ += part.size();
            done += part.size();
        }
        if (framesLeft_)
            *framesLeft_ -= done;
        return done;
    }

private:
    void openCodec() {
        const AVCodec* const decoder = avcodec_find_decoder(encoding_.codec);
        if (decoder == nullptr)
            throw AudioError(AVERROR_DECODER_NOT_FOUND);
        codec_.reset(avcodec_alloc_context3(decoder));
        if (!codec_)
            throw std::bad_alloc();
        check(avcodec_parameters_to_context(codec_.get(), stream_.codecpar));
        codec_->pkt_timebase = stream_.time_base;
        codec_->thread_count = 1;
        isOggVorbis_ = encoding_.codec == AV_CODEC_ID_VORBIS && container_ == AudioContainer::ogg;
        // By default FFmpeg drops valid audio: one codec frame too many at the start of Windows
        // Media, and at the end of Ogg Vorbis the duration of the first packet, which has no audio.
        if (isWindowsMedia() || isOggVorbis_)
            codec_->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
        check(avcodec_open2(codec_.get(), decoder, nullptr));
    }

    bool isWindowsMedia() const {
        return encoding_.codec == AV_CODEC_ID_WMAV1 || encoding_.codec == AV_CODEC_ID_WMAV2;
    }

    /// FFmpeg ignores a container that is wider than the sample and would decode noise.
    void checkPCMLayout() const {
        const AVCodecParameters& parameters = *stream_.codecpar;
        const std::int64_t frameSize = format_.channels * format_.bitDepth / 8;
        if (parameters.block_align != 0 && parameters.block_align != frameSize)
            throw AudioError::invalidData();
    }

    void decodeFirstFrame() {
        if (nextFrame()) {
            format_.sampleRate = frame_->sample_rate;
            format_.channels = frame_->ch_layout.nb_channels;
            skipFrames(delay());
            return;
        }
        // A file without packets is valid if it declares no duration.
        const bool isDeclaredEmpty = stream_.duration == 0 || stream_.duration == AV_NOPTS_VALUE;
        if (hasSeenPacket_ || !isDeclaredEmpty)
            throw AudioError::invalidData();
    }

    /// The number of leading frames that precede the audio and that FFmpeg does not skip.
    std::size_t delay() const {
        if (isWindowsMedia())
            return windowsMediaFrameLength();
        // The first AAC frame overlaps with a frame that is missing in the file.
        if (container_ == AudioContainer::adts)
            return frameLength();
        return 0;
    }

    /// The length of a codec frame in samples. The first AVFrame cannot be used for it: with the
    /// bit reservoir it may contain fifteen codec frames.
    std::size_t windowsMediaFrameLength() const {
        const bool isVersion1 = encoding_.codec == AV_CODEC_ID_WMAV1;
        if (format_.sampleRate <= 16'000)
            return 512;
        if (format_.sampleRate <= 22'050 || (isVersion1 && format_.sampleRate <= 32'000))
            return 1024;
        return 2048;
    }

    void skipFrames(std::size_t count) {
        while (count > 0 && (position_ < frameLength() || nextFrame())) {
            const std::size_t part = std::min(count, frameLength() - position_);
            position_ += part;
            count -= part;
        }
    }

    std::optional<std::uint64_t> declaredFrameCount() const {
        if (encoding_.codec == AV_CODEC_ID_AAC) {
            if (const auto tagged = taggedFrameCount(input_.context()))
                return tagged;
        }
        // A time base in milliseconds is too coarse for a frame count. The factor 2 allows for AAC
        // with spectral band replication, whose time base has half the sample rate.
        const bool isExact = av_cmp_q(stream_.time_base, av_mul_q(frameTime(), {2, 1})) <= 0;
        return isExact ? approximateFrameCount() : std::nullopt;
    }

    std::optional<std::uint64_t> approximateFrameCount() const {
        // Headers written before the audio declare no duration or a duration of 0.
        if (stream_.duration == AV_NOPTS_VALUE || stream_.duration <= 0)
            return std::nullopt;
        return static_cast<std::uint64_t>(
            av_rescale_q(stream_.duration, stream_.time_base, frameTime()));
    }

    AVRational frameTime() const { return {1, static_cast<int>(format_.sampleRate)}; }

    std::size_t frameLength() const { return static_cast<std::size_t>(frame_->nb_samples); }

    /// Decodes the next non-empty frame, skipping frames with another sample rate. Returns false at
    /// the end.
    bool nextFrame() {
        for (;;) {
            const int status = avcodec_receive_frame(codec_.get(), frame_.get());
            if (status == AVERROR(ENOMEM))
                throw std::bad_alloc();
            if (status == 0) {
                if (frame_->nb_samples > 0 && frame_->ch_layout.nb_channels > 0 &&
                    (!isRateKnown_ || frame_->sample_rate == codecRate_)) {
                    codecRate_ = frame_->sample_rate;
                    isRateKnown_ = true;
                    position_ = isOggVorbis_ ? markedStart() : 0;
                    if (position_ < frameLength())
                        return true;
                }
                continue;
            }
            if (isDraining_) {
                av_frame_unref(frame_.get());
                position_ = 0;
                return false;
            }
            sendPacket();
        }
    }

    /// The number of samples at the start of the decoded frame that FFmpeg marks to be skipped. For
    /// the first Vorbis packet, FFmpeg 5 returns no frame, and FFmpeg 7 returns a frame that is
    /// marked completely.
    std::size_t markedStart() const {
        const AVFrameSideData* const mark =
            av_frame_get_side_data(frame_.get(), AV_FRAME_DATA_SKIP_SAMPLES);
        if (mark == nullptr || mark->size < sizeof(std::uint32_t))
            return 0;
        return std::min<std::size_t>(AV_RL32(mark->data), frameLength());
    }

    void sendPacket() {
        av_packet_unref(packet_.get());
        if (!input_.readPacket(*packet_)) {
            isDraining_ = true;
            avcodec_send_packet(codec_.get(), nullptr);
            return;
        }
        if (packet_->stream_index != stream_.index)
            return;
        hasSeenPacket_ = true;
        // Ignore other errors: a damaged packet is skipped.
        if (avcodec_send_packet(codec_.get(), packet_.get()) == AVERROR(ENOMEM))
            throw std::bad_alloc();
    }

    std::uint64_t byteCount_;
    MediaInput input_;
    AVStream& stream_;
    AudioContainer container_;
    Encoding encoding_;
    bool isOggVorbis_ = false;
    AudioStreamFormat format_;
    ffmpeg::CodecContext codec_;
    ffmpeg::Packet packet_;
    ffmpeg::Frame frame_;
    std::size_t position_ = 0; ///< in `frame_`
    std::optional<std::uint64_t> declaredFrames_;
    std::optional<std::uint64_t> framesLeft_;
    int codecRate_ = 0; ///< Hz
    bool isRateKnown_ = false;
    bool hasSeenPacket_ = false;
    bool isDraining_ = false;
};

} // namespace

std::unique_ptr<AudioReader> makeCompressedAudioReader(const ByteSource& bytes,
                                                       const AudioFileType& type) {
    return std::make_unique<CompressedAudioReader>(bytes, type);
}

} // namespace torvo
