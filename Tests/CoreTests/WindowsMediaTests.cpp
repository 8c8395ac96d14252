#include "AudioFixtures.h"
#include "WindowsMediaFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace torvo::test {
namespace {

struct Row {
    const char* codec;
    std::uint32_t sampleRate; ///< Hz
    std::uint16_t channels;
    std::uint32_t samplesInFrame; ///< of a codec frame, which is also the delay
};

// The codec's frame lengths: shorter at low rates, with different thresholds in version 1.
constexpr Row rows[] = {
    {"wmav2", 8000, 1, 512},   {"wmav2", 16000, 1, 512},  {"wmav2", 22050, 1, 1024},
    {"wmav2", 32000, 1, 2048}, {"wmav2", 44100, 1, 2048}, {"wmav2", 44100, 2, 2048},
    {"wmav2", 48000, 1, 2048}, {"wmav1", 16000, 1, 512},  {"wmav1", 22050, 1, 1024},
    {"wmav1", 32000, 1, 1024}, {"wmav1", 44100, 1, 2048},
};

std::string testName(const testing::TestParamInfo<Row>& row) {
    return std::string(row.param.codec) + "_" + std::to_string(row.param.sampleRate) + "Hz_" +
           std::to_string(row.param.channels) + "ch";
}

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.codec << " at " << row.sampleRate << " Hz, " << row.channels
                  << " channels";
}

/// Faded at both ends: a discontinuity would fill the highest coefficients.
std::vector<std::int16_t> smoothSignal(std::size_t frameCount) {
    constexpr double fade = 64; // frames
    auto frames = testSignal(frameCount);
    for (std::size_t i = 0; i < frameCount; ++i) {
        const auto toEnd = static_cast<double>(std::min(i, frameCount - 1 - i));
        const double level = 0.5 - 0.5 * std::cos(std::numbers::pi * std::min(1.0, toEnd / fade));
        frames[i] = static_cast<std::int16_t>(std::lround(level * frames[i]));
    }
    return frames;
}

/// The stream of FFmpeg's encoder, which packs one codec frame into a packet. The bit rate is much
/// higher than needed, so that no frame is truncated to fit.
WindowsMediaStream encoded(const TemporaryFolder& folder, const Row& row,
                           std::span<const std::int16_t> mono) {
    std::vector<double> samples;
    for (const std::int16_t frame : mono)
        samples.insert(samples.end(), row.channels, frame / 32768.0);
    folder.write("source.wav", wavFile({row.sampleRate, row.channels, 16}, samples));
    encode(folder, "source.wav",
           "-b:a " + std::to_string(7 * row.sampleRate) + " -c:a " + row.codec, "stream.wav");
    return windowsMediaInWav(bytesOf(folder / "stream.wav"));
}

class WindowsMediaRow : public testing::TestWithParam<Row> {};

TEST_P(WindowsMediaRow, hasADelayOfOneCodecFrameForAnyPacking) {
    const Row& row = GetParam();
    const TemporaryFolder folder;
    // An odd length: the last packet is not full in any packing.
    const auto signal = smoothSignal(std::size_t{41} * row.samplesInFrame + 77);
    const auto stream = encoded(folder, row, signal);
    const auto plain = decodedFrames(folder.write("plain.wma", asfFile(stream)));
    ASSERT_GE(plain.size(), signal.size());
    EXPECT_EQ(plain.size(), row.samplesInFrame * stream.packets.size());
    const auto source = normalized(signal);
    EXPECT_EQ(bestLag(source, plain), 0);
    EXPECT_GE(decibelsBetween(source, plain), 25);
    EXPECT_GE(decibelsBetween(std::span(source).first(200), plain), 25);
    // Two, five and eight frames end in the first packet.
    for (const double framesInPacket : {2.4, 5.6, 8.3}) {
        SCOPED_TRACE(framesInPacket);
        const auto packed = withBitReservoir(stream, framesInPacket, row.samplesInFrame);
        ASSERT_LT(packed.packets.size(), stream.packets.size() / 2);
        const auto frames = decodedFrames(folder.write("packed.wma", asfFile(packed)));
        EXPECT_EQ(frames.size(), plain.size());
        EXPECT_EQ(bestLag(source, frames), 0);
        EXPECT_TRUE(frames == plain);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, WindowsMediaRow, testing::ValuesIn(rows), testName);

TEST(WindowsMedia, keepsTheAudioOfAFileShorterThanOneFrame) {
    const TemporaryFolder folder;
    const Row row{"wmav2", 44100, 1, 2048};
    const auto signal = smoothSignal(700);
    const auto frames =
        decodedFrames(folder.write("short.wma", asfFile(encoded(folder, row, signal))));
    EXPECT_EQ(frames.size(), row.samplesInFrame);
    EXPECT_EQ(bestLag(normalized(signal), frames), 0);
}

} // namespace
} // namespace torvo::test
