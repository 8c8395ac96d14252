#pragma once

#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/AudioReader.h"

namespace torvo {

/// Every format but PCM in WAV, through the media library. The demuxer is the one for `type`; no
/// other file and no network is ever opened.
class CompressedAudioReader final : public AudioReader {
public:
    /// Uncompressed formats are opened by their header; of others the first frames are decoded.
    /// A file with moving pictures is no sample; a cover picture does not matter.
    CompressedAudioReader(const ByteSource& bytes, const AudioFileType& type);
    ~CompressedAudioReader() override;

    const AudioStreamFormat& format() const override;
    /// The declared length. Empty when it is missing or implausible for the size of the file.
    std::optional<std::uint64_t> expectedFrameCount() const override;
    /// Damaged packets are passed over.
    std::size_t read(std::span<double> frames) override;

private:
    class Decoder;
    std::unique_ptr<Decoder> decoder_;
};

} // namespace torvo
