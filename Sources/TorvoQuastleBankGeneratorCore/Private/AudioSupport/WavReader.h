#pragma once

#include "AudioSupport/AudioReader.h"
#include "AudioSupport/RiffChunks.h"

#include <vector>

namespace torvo {

/// Reads integer (8-bit unsigned; 16, 24 and 32-bit signed) and float (32 and 64-bit) PCM from WAV
/// files: RIFF and RIFX (Microsoft/IBM, RIFF, 1991), the extensible format chunk (Microsoft,
/// Multiple Channel Audio Data and WAVE Files), RF64 and BW64 (EBU Tech 3306, ITU-R BS.2088). Uses
/// the first "fmt " and the first "data" chunk. A "data" chunk that runs past the end of the file,
/// or whose size was never filled in, is read up to the end of the file.
class WavReader final : public AudioReader {
public:
    /// Returns null for other encodings. Throws `AudioError` when there is no valid "fmt " chunk or
    /// no "data" chunk.
    static std::unique_ptr<WavReader> open(const ByteSource& bytes);

    const AudioStreamFormat& format() const override { return format_; }
    std::optional<std::uint64_t> expectedFrameCount() const override { return frameCount_; }
    std::size_t read(std::span<double> frames) override;

private:
    using Decode = void (*)(std::span<const std::byte> block, std::size_t channelCount,
                            std::span<double> frames);

    WavReader(const ByteSource& bytes, const AudioStreamFormat& format, Decode decode,
              std::uint64_t dataOffset, std::uint64_t frameCount, std::uint32_t blockAlign);

    const ByteSource& bytes_;
    AudioStreamFormat format_;
    Decode decode_;
    std::uint64_t position_; ///< bytes
    std::uint64_t frameCount_;
    std::uint64_t framesLeft_;
    std::uint32_t blockAlign_; ///< bytes per frame
    std::vector<std::byte> block_;
};

/// The offset in bytes of an Ogg stream inside the "data" chunk; some sample libraries store Vorbis
/// this way. Empty for every other WAV file. Throws `AudioError` as `WavReader::open` does.
std::optional<std::uint64_t> oggStreamInWav(const ByteSource& bytes);

} // namespace torvo
