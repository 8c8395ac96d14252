#include "AudioFixtures.h"
#include "AudioSupport/Resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

namespace torvo::test {
namespace {

using Bytes = std::vector<std::byte>;
using Frames = std::vector<std::int16_t>;

/// Audio with the given frames and sample rate.
class MemoryReader final : public AudioReader {
public:
    MemoryReader(double rate, std::vector<double> frames)
        : format_{rate, 1, 64, false}, frames_(std::move(frames)) {}

    const AudioStreamFormat& format() const override { return format_; }
    std::optional<std::uint64_t> expectedFrameCount() const override { return frames_.size(); }
    std::size_t read(std::span<double> frames) override {
        const std::size_t count = std::min(frames.size(), frames_.size() - position_);
        std::copy_n(frames_.begin() + static_cast<std::ptrdiff_t>(position_), count,
                    frames.begin());
        position_ += count;
        return count;
    }

private:
    AudioStreamFormat format_;
    std::vector<double> frames_;
    std::size_t position_ = 0;
};

std::vector<double> resampled(double rate, std::vector<double> frames,
                              std::size_t blockFrames = 4096) {
    MemoryReader reader(rate, std::move(frames));
    Resampler resampler(reader);
    std::vector<double> result;
    std::vector<double> block(blockFrames);
    while (const std::size_t count = resampler.read(block))
        result.insert(result.end(), block.begin(),
                      block.begin() + static_cast<std::ptrdiff_t>(count));
    return result;
}

std::vector<double> sine(double rate, double frequency, double peak, std::size_t frameCount) {
    std::vector<double> frames(frameCount);
    for (std::size_t i = 0; i < frameCount; ++i)
        frames[i] =
            peak * std::sin(2 * std::numbers::pi * frequency / rate * static_cast<double>(i));
    return frames;
}

/// The residual of a file after a tone of this frequency and a DC offset are removed, in dB
/// relative to the tone. The ends are skipped: an abrupt onset is not a pure tone.
double residualDecibels(std::span<const double> frames, double frequency) {
    const std::size_t margin = 4410;
    const auto inner = frames.subspan(margin, frames.size() - 2 * margin);
    // Least-squares fit of sine, cosine and constant: Gaussian elimination of the normal equations.
    std::array<std::array<double, 4>, 3> equations{};
    const auto basis = [&](std::size_t i) {
        const double angle = 2 * std::numbers::pi * frequency / 44100 * static_cast<double>(i);
        return std::array{std::sin(angle), std::cos(angle), 1.0};
    };
    for (std::size_t i = 0; i < inner.size(); ++i) {
        const auto values = basis(i);
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column)
                equations[row][column] += values[row] * values[column];
            equations[row][3] += values[row] * inner[i];
        }
    }
    for (std::size_t pivot = 0; pivot < 3; ++pivot) {
        for (std::size_t row = 0; row < 3; ++row) {
            const double factor =
                row == pivot ? 0 : equations[row][pivot] / equations[pivot][pivot];
            for (std::size_t column = 0; column < 4; ++column)
                equations[row][column] -= factor * equations[pivot][column];
        }
    }
    double signal = 0;
    double residual = 0;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        const auto values = basis(i);
        double fitted = 0;
        for (std::size_t row = 0; row < 3; ++row)
            fitted += values[row] * equations[row][3] / equations[row][row];
        signal += fitted * fitted;
        residual += (inner[i] - fitted) * (inner[i] - fitted);
    }
    return 10 * std::log10(residual / signal);
}

double decibels(std::span<const double> frames) {
    double power = 0;
    for (const double frame : frames)
        power += frame * frame;
    return 10 * std::log10(power / static_cast<double>(frames.size()));
}

Frames convertedFrom(const Bytes& file) {
    const TemporaryFolder folder;
    return convertedFrames(folder.write("a.wav", file));
}

std::uint64_t expectedLength(std::uint64_t frames, std::uint64_t rate) {
    return (2 * frames * 44100 + rate) / (2 * rate);
}

TEST(Conversion, decodesLosslessFormatsBitExactly) {
    struct Row {
        const char* arguments;
        const char* name;
    };
    const Row rows[] = {{"", "a.aiff"},
                        {"-c:a pcm_s16le", "a.caf"},
                        {"", "a.flac"},
                        {"-c:a flac", "flac.ogg"},
                        {"-c:a alac", "a.m4a"},
                        {"-c:a alac", "alac.caf"},
                        {"", "a.w64"},
                        {"", "a.au"},
                        {"", "a.wv"},
                        {"", "a.tta"},
                        {"-c:a flac", "a.mka"},
                        {"-c:a pcm_s16le", "a.mov"},
                        {"-c:a pcm_s24be", "a24.aiff"},
                        {"-c:a pcm_f32le", "f32.caf"},
                        {"-c:a pcm_f64be -f aiff", "f64.aifc"},
                        {"-rf64 always", "long.wav"},
                        {"-c:a pcm_s32le", "a32.wav"},
                        {"-c:a pcm_f32le", "float.wav"},
                        {"-c:a pcm_f64le", "double.wav"},
                        {"-c:a pcm_s24le", "a24.wav"},
                        // The two channels are copies; ffmpeg's own upmix would lower them.
                        {"-af 'pan=stereo|c0=c0|c1=c0'", "stereo.wav"}};
    auto signal = testSignal(30'000);
    signal[0] = 32767;
    signal[1] = -32768;
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, signal));
    encode(folder, "source.wav", encodingsOf(rows));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = convertedFrames(folder / row.name);
        EXPECT_EQ(frames.size(), signal.size());
        EXPECT_TRUE(frames == signal);
    }
}

TEST(Conversion, decodesAllWavEncodingsToTheSameFrames) {
    const auto signal = testSignal(5000);
    std::vector<double> samples;
    for (const std::int16_t frame : signal)
        samples.push_back(frame / 32768.0);
    for (const std::uint16_t bits : {std::uint16_t{16}, std::uint16_t{24}, std::uint16_t{32}})
        EXPECT_TRUE(convertedFrom(wavFile({44100, 1, bits}, samples)) == signal) << bits;
    for (const std::uint16_t bits : {std::uint16_t{32}, std::uint16_t{64}})
        EXPECT_TRUE(convertedFrom(wavFile({44100, 1, bits, WavEncoding::floatingPoint}, samples)) ==
                    signal)
            << bits;
    EXPECT_TRUE(convertedFrom(bigEndianWav(44100, signal)) == signal);
    for (const char* const id : {"RF64", "BW64"})
        EXPECT_TRUE(convertedFrom(longWav(id, 44100, signal)) == signal) << id;
}

TEST(Conversion, reads8BitSamplesAsUnsigned) {
    const auto data = bytes(std::string_view("\x00\x80\xFF\x81", 4));
    EXPECT_EQ(convertedFrom(riffFile({formatChunk(1, 1, 44100, 1, 8), riffChunk("data", data)})),
              (Frames{-32768, 0, 32512, 256}));
}

TEST(Conversion, readsValidBitsLeftAlignedInAWiderContainer) {
    // 0x123456 and -2 in 24 bits, each in the upper three of four bytes.
    const auto data = bytes(std::string_view("\x00\x56\x34\x12\x00\x00\xFE\xFF", 8));
    for (const auto& format : {formatChunk(1, 1, 44100, 4, 24),
                               formatChunk(0xFFFE, 1, 44100, 4, 32, extensibleTail(24, 1))})
        EXPECT_EQ(convertedFrom(riffFile({format, riffChunk("data", data)})), (Frames{0x1234, -2}));
}

TEST(Conversion, readsOnlyTheFirstDataChunk) {
    const auto file = riffFile({formatChunk(1, 1, 44100, 2, 16),
                                riffChunk("data", bytes(std::string_view("\1\0\2\0", 4))),
                                riffChunk("data", bytes(std::string_view("\7\0\7\0", 4)))});
    EXPECT_EQ(convertedFrom(file), (Frames{1, 2}));
}

TEST(Conversion, decodesTheFramesPresentInATruncatedFile) {
    auto file = wavOf(44100, testSignal(1000));
    file.resize(44 + 2 * 600 + 1);
    const auto expected = testSignal(600);
    EXPECT_TRUE(convertedFrom(file) == expected);
}

// An encoder that writes to a pipe cannot go back to set the length: the header says 0 or the
// maximum.
TEST(Conversion, ignoresAWrongLengthField) {
    const TemporaryFolder folder;
    const auto frames = testSignal(5000);
    const auto wav = folder.write("a.wav", wavOf(44100, frames));
    encode(folder, "a.wav", "", "a.flac");
    const auto withBytesAt = [](std::vector<std::byte> file, std::size_t offset,
                                std::initializer_list<int> bytes) {
        std::ranges::transform(bytes, file.begin() + static_cast<std::ptrdiff_t>(offset),
                               [](int byte) { return static_cast<std::byte>(byte); });
        return file;
    };
    const auto aiff = aiffFile(44100, frames);
    constexpr std::size_t countInAiff = 22;
    constexpr std::size_t countInFlac = 22; // its low 32 of 36 bits
    folder.write("none.aiff", withBytesAt(aiff, countInAiff, {0, 0, 0, 0}));
    folder.write("most.aiff", withBytesAt(aiff, countInAiff, {0x7F, 0, 0, 0}));
    folder.write("most.flac",
                 withBytesAt(bytesOf(folder / "a.flac"), countInFlac, {0xFF, 0xFF, 0xFF, 0xFF}));
    runTool(folder.path(), "(ffmpeg -v error -i a.wav -f wv - | cat > piped.wv)");
    for (const char* const name : {"none.aiff", "most.aiff", "most.flac", "piped.wv"})
        EXPECT_EQ(convertedFrames(folder / name), frames) << name;
}

TEST(Conversion, averagesChannels) {
    const std::vector<double> stereo = {0.5, 0.25, -1, -1, 0.5, -0.5, 0.75, 0};
    EXPECT_EQ(convertedFrom(wavFile({44100, 2, 24}, stereo)), (Frames{12288, -32768, 0, 12288}));
    const std::vector<double> six = {0.75, 0, 0, 0, 0, 0, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5};
    EXPECT_EQ(convertedFrom(wavFile({44100, 6, 16}, six)), (Frames{4096, 16384}));
    // Left and right at full scale do not clip in between.
    const std::vector<double> loud = {1.5, -1.5, 1.5, 0.5};
    EXPECT_EQ(convertedFrom(wavFile({44100, 2, 32, WavEncoding::floatingPoint}, loud)),
              (Frames{0, 32767}));
}

TEST(Conversion, averagesChannelsOfCompressedFiles) {
    const TemporaryFolder folder;
    std::vector<double> samples;
    for (const std::int16_t frame : testSignal(3000)) {
        samples.push_back(frame / 32768.0);
        samples.push_back(-0.5 * frame / 32768.0);
    }
    folder.write("a.wav", wavFile({44100, 2, 16}, samples));
    const auto expected = convertedFrames(folder / "a.wav");
    const std::vector<Encoding> encodings{{"", "a.flac"}, {"", "a.aiff"}, {"", "a.wv"}};
    encode(folder, "a.wav", encodings);
    for (const Encoding& encoding : encodings)
        EXPECT_TRUE(convertedFrames(folder / encoding.name) == expected) << encoding.name;
}

TEST(Conversion, clampsValuesBeyondFullScaleAndMutesNaN) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::vector<double> samples = {
        2, -2, std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 1e300, 0.25};
    EXPECT_EQ(convertedFrom(wavFile({44100, 1, 64, WavEncoding::floatingPoint}, samples)),
              (Frames{32767, -32768, 0, 0, 0, 32767, 8192}));
}

TEST(Conversion, keepsSilence) {
    for (const unsigned rate : {44100U, 48000U, 22050U}) {
        const auto frames = convertedFrom(wavFile({rate, 2, 16}, std::vector<double>(2000)));
        EXPECT_TRUE(std::ranges::all_of(frames, [](std::int16_t frame) { return frame == 0; }));
    }
}

TEST(Conversion, writesTheExactNumberOfFrames) {
    for (const std::uint32_t rate : {8000U, 11025U, 22050U, 32000U, 44099U, 44100U, 44101U, 48000U,
                                     88200U, 96000U, 176400U, 192000U}) {
        for (const std::size_t frames : {0U, 1U, 2U, 3U, 100U, 4095U, 4096U, 4097U, 50'001U}) {
            EXPECT_EQ(resampled(rate, std::vector<double>(frames, 0.1)).size(),
                      expectedLength(frames, rate))
                << frames << " frames at " << rate;
        }
    }
}

TEST(Conversion, addsNoDelay) {
    for (const std::uint32_t rate : {22050U, 44100U, 44101U, 48000U, 96000U, 192000U}) {
        std::vector<double> impulse(rate / 10);
        impulse[0] = 0.9;
        const auto frames = resampled(rate, impulse);
        const auto loudest =
            std::ranges::max_element(frames, {}, [](double frame) { return std::abs(frame); });
        EXPECT_EQ(loudest - frames.begin(), 0) << rate;
    }
}

TEST(Conversion, convertsTheBeginningAsPreciselyAsTheMiddle) {
    // Two rates with a short common period: the same input one period later must give the same
    // frames.
    for (const auto& [rate, inputPeriod, outputPeriod] :
         {std::array<std::size_t, 3>{48000, 160, 147}, {96000, 320, 147}, {22050, 1, 2}}) {
        const auto sound = sine(static_cast<double>(rate), 997, 0.9, 6000);
        auto loudAtOnce = sound;
        loudAtOnce[0] = 0.9;
        std::vector<double> later(100 * inputPeriod);
        later.insert(later.end(), loudAtOnce.begin(), loudAtOnce.end());
        const auto early = resampled(static_cast<double>(rate), loudAtOnce);
        const auto shifted = resampled(static_cast<double>(rate), later);
        double largest = 0;
        for (std::size_t i = 0; i < early.size(); ++i)
            largest = std::max(largest, std::abs(early[i] - shifted[i + 100 * outputPeriod]));
        EXPECT_LT(largest, 1e-12) << rate;
    }
}

TEST(Conversion, isIndependentOfTheBlockSize) {
    const auto sound = sine(48000, 440, 0.5, 20'000);
    const auto expected = resampled(48000, sound);
    for (const std::size_t block : {1U, 7U, 1000U, 100'000U})
        EXPECT_TRUE(resampled(48000, sound, block) == expected) << block;
}

TEST(Conversion, keepsAToneFreeOfDistortionAt16Bits) {
    for (const unsigned rate : {22050U, 48000U, 96000U}) {
        const auto tone = sine(rate, 997, std::pow(10, -1.0 / 20), 2 * rate);
        std::vector<double> frames;
        for (const std::int16_t frame : convertedFrom(wavFile({rate, 1, 32}, tone)))
            frames.push_back(frame);
        EXPECT_LE(residualDecibels(frames, 997), -97) << rate;
    }
}

TEST(Conversion, suppressesImagesAndAliases) {
    // Only the tone remains when it is below both Nyquist frequencies, nothing when it is above the
    // device's.
    EXPECT_LE(residualDecibels(resampled(22050, sine(22050, 9000, 0.9, 44'100)), 9000), -130);
    EXPECT_LE(residualDecibels(resampled(48000, sine(48000, 19'000, 0.9, 96'000)), 19'000), -130);
    for (const double frequency : {24'100.0, 30'000.0, 44'000.0}) {
        const auto frames = resampled(96000, sine(96000, frequency, 0.9, 96'000));
        EXPECT_LE(decibels(std::span(frames).subspan(4410, frames.size() - 8820)), -130)
            << frequency;
    }
}

TEST(Conversion, keepsTimingAndLengthOfLossyFormats) {
    struct Row {
        const char* arguments;
        const char* name;
        std::size_t maxExtraFrames;
        double minDecibels; ///< of the signal over what the encoder changed
    };
    // Formats that store their length are exact; the others end with their last block.
    const Row rows[] = {
        {"-b:a 192k", "a.mp3", 0, 20},
        {"-c:a aac -b:a 192k", "a.m4a", 0, 15},
        {"-c:a aac -b:a 192k", "a.aac", 1023, 15},
        {"-c:a libvorbis -q:a 7", "a.ogg", 0, 20},
        {"-c:a libvorbis -q:a 7", "vorbis.webm", 127, 20},
        {"-c:a libopus -b:a 192k", "a.opus", 0, 20},
        {"-c:a libopus -b:a 192k", "a.webm", 0, 20},
        {"-c:a wmav2 -b:a 192k", "a.wma", 2047, 20},
        {"-c:a wmav1 -b:a 192k", "v1.wma", 2047, 20},
        {"-c:a pcm_alaw", "alaw.wav", 0, 30},
        {"-c:a pcm_mulaw", "mulaw.wav", 0, 30},
        {"-c:a pcm_mulaw", "mulaw.au", 0, 30},
        {"-c:a adpcm_ima_qt -f aiff", "ima.aifc", 63, 20},
    };
    auto signal = testSignal(44100);
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, signal));
    encode(folder, "source.wav", encodingsOf(rows));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = convertedFrames(folder / row.name);
        EXPECT_GE(frames.size(), signal.size());
        EXPECT_LE(frames.size(), signal.size() + row.maxExtraFrames);
        EXPECT_GE(decibelsBetween(normalized(signal), normalized(frames)), row.minDecibels);
    }
    // SoX writes the true length of ADPCM to the "fact" chunk.
    for (const char* const encoding : {"ms-adpcm", "ima-adpcm"}) {
        SCOPED_TRACE(encoding);
        runTool(folder.path(), std::string("sox source.wav -e ") + encoding + " adpcm.wav");
        const auto frames = convertedFrames(folder / "adpcm.wav");
        EXPECT_EQ(frames.size(), signal.size());
        EXPECT_GE(decibelsBetween(normalized(signal), normalized(frames)), 20);
    }
}

// The "iTunSMPB" tag stores delay, padding and length of AAC; it overrides the edit list, which is
// longer here.
TEST(Conversion, readsTheLengthOfAacFromTheGaplessTag) {
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, testSignal(22'050)));
    encode(folder, "source.wav",
           "-c:a aac -movflags use_metadata_tags "
           "-metadata iTunSMPB=' 00000000 00000400 0000006E 0000000000001388'",
           "tagged.m4a");
    EXPECT_EQ(convertedFrames(folder / "tagged.m4a").size(), 0x1388U);
}

TEST(Conversion, skipsADamagedPacket) {
    const TemporaryFolder folder;
    const auto signal = testSignal(88'200);
    folder.write("source.wav", wavOf(44100, signal));
    encode(folder, "source.wav", "-b:a 128k", "a.mp3");
    auto file = bytesOf(folder / "a.mp3");
    std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2), 300, std::byte{0x55});
    const auto frames = convertedFrames(folder.write("damaged.mp3", file));
    EXPECT_GT(frames.size(), signal.size() * 9 / 10);
    EXPECT_GE(decibelsBetween(normalized(testSignal(20'000)), normalized(frames)), 15);
}

} // namespace
} // namespace torvo::test
