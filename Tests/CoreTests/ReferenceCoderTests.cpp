#include "AudioFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace torvo::test {
namespace {

constexpr double exact = std::numeric_limits<double>::infinity(); // decibels

enum class Length {
    source,    ///< the format stores the length
    reference, ///< whole blocks, as from the format's own decoder
};

/// A format with its own encoder and decoder. Neither is FFmpeg, except for the AAC encoder: Debian
/// has no other.
struct Row {
    const char* name;
    std::uint32_t sourceRate;  ///< Hz
    const char* encode;        ///< makes the file `name` from "source.wav"
    const char* decode;        ///< makes "reference.wav" from the file `name`
    std::uint32_t decodedRate; ///< Hz
    Length length;
    std::ptrdiff_t delay;     ///< frames; not stored in the format, so its own decoder keeps it
    double referenceDecibels; ///< at least, of the reference over the difference to our frames
    double sourceDecibels;    ///< at least, of the source over the difference to our frames
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

constexpr const char* bySox = "sox $file -e signed -b 16 reference.wav";
constexpr const char* bySndfile = "sndfile-convert -pcm16 $file reference.wav";
constexpr const char* byMpg123 = "mpg123 -q -w reference.wav $file";
constexpr const char* byOpusdec =
    "opusdec --quiet --float --no-dither --rate 48000 $file reference.wav";
constexpr const char* byFaad = "faad -q -d -b 4 -o reference.wav $file";

constexpr Row rows[] = {
    {"a.flac", 44100, "flac -s -o $file source.wav", "flac -s -d -o reference.wav $file", 44100,
     Length::source, 0, exact, exact},
    {"rate48.flac", 48000, "flac -s -o $file source.wav", "flac -s -d -o reference.wav $file",
     48000, Length::source, 0, exact, exact},
    {"flac.oga", 44100, "flac -s --ogg -o $file source.wav", "flac -s -d -o reference.wav $file",
     44100, Length::source, 0, exact, exact},
    {"a.ogg", 44100, "oggenc -Q -q 6 -o $file source.wav", "oggdec -Q -o reference.wav $file",
     44100, Length::source, 0, 70, 20},
    {"lowest.ogg", 44100, "oggenc -Q -q -1 -o $file source.wav", "oggdec -Q -o reference.wav $file",
     44100, Length::source, 0, 70, 8},
    {"rate48.ogg", 48000, "oggenc -Q -q 6 -o $file source.wav", "oggdec -Q -o reference.wav $file",
     48000, Length::source, 0, 70, 20},
    {"rate48.opus", 48000, "opusenc --quiet --bitrate 128 source.wav $file", byOpusdec, 48000,
     Length::source, 0, 70, 20},
    {"constant.mp3", 44100, "lame --quiet -b 192 source.wav $file", byMpg123, 44100, Length::source,
     0, 70, 20},
    {"variable.mp3", 44100, "lame --quiet -V2 source.wav $file", byMpg123, 44100, Length::source, 0,
     70, 20},
    {"rate48.mp3", 48000, "lame --quiet -b 192 source.wav $file", byMpg123, 48000, Length::source,
     0, 70, 20},
    {"low.mp3", 22050, "lame --quiet -b 64 source.wav $file", byMpg123, 22050, Length::source, 0,
     70, 15},
    {"a.mp2", 44100, "twolame --quiet -b 192 source.wav $file", byMpg123, 44100, Length::reference,
     481, 70, 20},
    {"a.wv", 44100, "wavpack -q source.wav -o $file", "wvunpack -q $file -o reference.wav", 44100,
     Length::source, 0, exact, exact},
    {"hybrid.wv", 44100, "wavpack -q -b5 source.wav -o $file", "wvunpack -q $file -o reference.wav",
     44100, Length::source, 0, exact, 40},
    {"a.m4a", 44100,
     "ffmpeg -v error -i source.wav -c:a aac -aac_pns 0 -b:a 192k -movie_timescale 44100 $file",
     byFaad, 44100, Length::source, 0, 70, 20},
    {"a.mpc", 44100, "mpcenc --silent source.wav $file",
     "mpcdec $file reference.wav >/dev/null 2>&1", 44100, Length::source, 0, 70, 15},
    {"a.amr", 8000, "sox source.wav -t amr-nb $file", "sox -t amr-nb $file reference.wav", 8000,
     Length::reference, 81, 20, 5},
    {"sox.aiff", 44100, "sox source.wav $file", bySox, 44100, Length::source, 0, exact, exact},
    {"sox.au", 44100, "sox source.wav $file", bySox, 44100, Length::source, 0, exact, exact},
    {"sox.caf", 44100, "sox source.wav $file", bySox, 44100, Length::source, 0, exact, exact},
    {"mulaw.au", 44100, "sox source.wav -e mu-law $file", bySox, 44100, Length::source, 0, exact,
     30},
    {"alaw.wav", 44100, "sox source.wav -e a-law $file", bySox, 44100, Length::source, 0, exact,
     30},
    {"sox-ms.wav", 44100, "sox source.wav -e ms-adpcm $file", bySox, 44100, Length::source, 0, 40,
     20},
    {"sox-ima.wav", 44100, "sox source.wav -e ima-adpcm $file", bySox, 44100, Length::source, 0, 40,
     20},
    {"sox-gsm.wav", 8000, "sox source.wav -e gsm-full-rate $file", bySox, 8000, Length::source, 0,
     exact, 5},
    {"sndfile.caf", 44100, "sndfile-convert source.wav $file", bySndfile, 44100, Length::source, 0,
     exact, exact},
    {"alac.caf", 44100, "sndfile-convert -alac16 source.wav $file", bySndfile, 44100,
     Length::source, 0, exact, exact},
    {"sndfile.w64", 44100, "sndfile-convert source.wav $file", bySndfile, 44100, Length::source, 0,
     exact, exact},
    {"sndfile.rf64", 44100, "sndfile-convert source.wav $file", bySndfile, 44100, Length::source, 0,
     exact, exact},
    {"sndfile.aiff", 44100, "sndfile-convert source.wav $file", bySndfile, 44100, Length::source, 0,
     exact, exact},
    {"sndfile-ms.wav", 44100, "sndfile-convert -ms-adpcm source.wav $file", bySndfile, 44100,
     Length::source, 0, 40, 20},
    {"sndfile-ima.wav", 44100, "sndfile-convert -ima-adpcm source.wav $file", bySndfile, 44100,
     Length::reference, 0, 40, 20},
    {"sndfile-gsm.wav", 8000, "sndfile-convert -gsm610 source.wav $file", bySndfile, 8000,
     Length::source, 0, exact, 5},
};

/// Loud from its first frame.
std::vector<std::int16_t> signalWithImpulse(std::size_t frameCount) {
    auto frames = testSignal(frameCount);
    frames[0] = 30000;
    return frames;
}

std::string withFile(std::string command, const std::string& file) {
    constexpr std::string_view placeholder = "$file";
    return command.replace(command.find(placeholder), placeholder.size(), file);
}

class ReferenceCoderRow : public testing::TestWithParam<Row> {};

TEST_P(ReferenceCoderRow, decodesToTheSameFrames) {
    const Row& row = GetParam();
    const TemporaryFolder folder;
    const auto signal = signalWithImpulse(row.sourceRate / 2 + 1);
    const auto source = normalized(signal);
    folder.write("source.wav", wavOf(row.sourceRate, signal));
    runTool(folder.path(), withFile(row.encode, row.name));
    runTool(folder.path(), withFile(row.decode, row.name));
    const auto reference = decodedFrames(folder / "reference.wav");
    const auto file = folder / row.name;

    const auto format = AVAudioFileInspector{}.inspectAudioFile(FileURL(file));
    EXPECT_EQ(format.sampleRate, row.decodedRate);
    EXPECT_EQ(format.channels, 1);

    const auto frames = decodedFrames(file);
    EXPECT_EQ(frames.size(), row.length == Length::source ? source.size() : reference.size());
    const auto delay = static_cast<std::size_t>(row.delay);
    ASSERT_GT(std::min(reference.size(), frames.size()), delay + 64);
    const auto shared = std::span(reference).first(std::min(reference.size(), frames.size()));
    EXPECT_EQ(bestLag(shared, frames), 0);
    EXPECT_GE(decibelsBetween(shared, frames), row.referenceDecibels);
    EXPECT_GE(decibelsBetween(shared.first(delay + 64), frames), row.referenceDecibels);

    EXPECT_EQ(bestLag(source, frames), row.delay);
    EXPECT_GE(decibelsBetween(source, std::span(frames).subspan(delay)), row.sourceDecibels);

    const auto converted = convertedFrames(file);
    EXPECT_EQ(converted.size(),
              (2 * frames.size() * 44100 + row.decodedRate) / (2 * row.decodedRate));
    if (row.decodedRate == 44100) {
        EXPECT_GE(decibelsBetween(frames, normalized(converted)), 80);
    }
}

// The header of a Musepack excerpt says how many samples of its first packet to drop.
TEST(ReferenceCoder, dropsTheStartOfAMusepackExcerpt) {
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, signalWithImpulse(22'051)));
    runTool(folder.path(), "mpcenc --silent source.wav whole.mpc");
    runTool(folder.path(), "mpccut -s 3000 -e 20000 whole.mpc part.mpc >/dev/null 2>&1");
    runTool(folder.path(), "mpcdec part.mpc reference.wav >/dev/null 2>&1");
    const auto reference = decodedFrames(folder / "reference.wav");
    const auto frames = decodedFrames(folder / "part.mpc");
    ASSERT_GT(reference.size(), 16'000U);
    EXPECT_EQ(frames.size(), reference.size());
    EXPECT_EQ(bestLag(reference, frames), 0);
    EXPECT_GE(decibelsBetween(reference, frames), 70);
}

std::string testName(const testing::TestParamInfo<Row>& row) {
    std::string name = row.param.name;
    std::ranges::replace_if(
        name, [](char c) { return c == '.' || c == '-'; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Formats, ReferenceCoderRow, testing::ValuesIn(rows), testName);

} // namespace
} // namespace torvo::test
