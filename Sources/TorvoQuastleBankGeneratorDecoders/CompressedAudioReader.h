#pragma once

#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/AudioReader.h"

namespace torvo {

/// Decodes every format except PCM in WAV with FFmpeg. Uses the demuxer for `type`, and never opens
/// other files or network connections.
class CompressedAudioReader final : public AudioReader {
public:
    /// Reads the header, and decodes the first frame of compressed formats. Throws `AudioError` for
    /// a file with video (cover pictures are ignored), or the `FileError` of `bytes`.
    CompressedAudioReader(const ByteSource& bytes, const AudioFileType& type);
    ~CompressedAudioReader() override;

    const AudioStreamFormat& format() const override;
    /// The declared length. Empty when it is missing or implausible for the size of the file.
    std::optional<std::uint64_t> expectedFrameCount() const override;
    /// Reads as `AudioReader::read` does; skips damaged packets.
    std::size_t read(std::span<double> frames) override;

private:
    class Decoder;
    std::unique_ptr<Decoder> decoder_;
};

} // namespace torvo
