#include "AudioFixtures.h"
#include "ForwardingFileManager.h"
#include "Models/GenerationError.h"
#include "RecordingFileManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace torvo::test {
namespace {

using Bytes = std::vector<std::byte>;

AudioFormatDetails inspected(const std::filesystem::path& path) {
    return AVAudioFileInspector{}.inspectAudioFile(FileURL(path));
}

bool isReadable(const std::filesystem::path& path) {
    try {
        inspected(path);
        return true;
    } catch (const GenerationError& error) {
        EXPECT_EQ(error.errorDescription(),
                  "Unsupported audio file: " + FileURL(path).lastPathComponent());
        return false;
    }
}

Bytes pcm(std::uint16_t tag, std::uint16_t channels, std::uint32_t rate, std::uint16_t blockAlign,
          std::uint16_t bits, std::span<const std::byte> extension = {}) {
    return riffFile({formatChunk(tag, channels, rate, blockAlign, bits, extension),
                     riffChunk("data", Bytes(std::size_t{blockAlign} * 3))});
}

TEST(AudioInspector, readsFormatDetailsOfWavFiles) {
    const auto frames = testSignal(10);
    struct Row {
        const char* name;
        Bytes file;
        AudioFormatDetails expected;
    };
    const Row rows[] = {
        {"16 bits", pcm(1, 1, 44100, 2, 16), {"wav", 44100, 1, 16, true}},
        {"24 bits stereo", pcm(1, 2, 48000, 6, 24), {"wav", 48000, 2, 24, true}},
        {"8 bits", pcm(1, 1, 11025, 1, 8), {"wav", 11025, 1, 8, true}},
        {"32 bits", pcm(1, 1, 96000, 4, 32), {"wav", 96000, 1, 32, true}},
        {"six channels", pcm(1, 6, 44100, 12, 16), {"wav", 44100, 6, 16, true}},
        {"the lowest rate", pcm(1, 1, 100, 2, 16), {"wav", 100, 1, 16, true}},
        {"20 bits in three bytes", pcm(1, 1, 48000, 3, 20), {"wav", 48000, 1, 24, true}},
        {"24 bits in four bytes", pcm(1, 1, 44100, 4, 24), {"wav", 44100, 1, 32, true}},
        {"float", pcm(3, 1, 44100, 4, 32), {"wav", 44100, 1, 32, false}},
        {"double", pcm(3, 2, 44100, 16, 64), {"wav", 44100, 2, 64, false}},
        {"extensible",
         pcm(0xFFFE, 2, 44100, 4, 16, extensibleTail(16, 1)),
         {"wav", 44100, 2, 16, true}},
        {"extensible, 24 bits valid of 32",
         pcm(0xFFFE, 1, 44100, 4, 32, extensibleTail(24, 1)),
         {"wav", 44100, 1, 32, true}},
        {"extensible float",
         pcm(0xFFFE, 1, 44100, 4, 32, extensibleTail(32, 3)),
         {"wav", 44100, 1, 32, false}},
        {"big-endian", bigEndianWav(48000, frames), {"wav", 48000, 1, 16, true}},
        {"64-bit sizes", longWav("RF64", 48000, frames), {"wav", 48000, 1, 16, true}},
        {"64-bit sizes of broadcasters",
         longWav("BW64", 48000, frames),
         {"wav", 48000, 1, 16, true}},
        {"no frames",
         riffFile({formatChunk(1, 1, 44100, 2, 16), riffChunk("data", {})}),
         {"wav", 44100, 1, 16, true}},
        {"two formats, of which the first counts",
         riffFile({formatChunk(1, 1, 44100, 2, 16), formatChunk(3, 2, 48000, 8, 32),
                   riffChunk("data", {})}),
         {"wav", 44100, 1, 16, true}},
        {"a format behind the data",
         riffFile({riffChunk("data", Bytes(4)), formatChunk(1, 1, 44100, 2, 16)}),
         {"wav", 44100, 1, 16, true}},
        {"cut short, but to be converted",
         [] {
             auto file = pcm(1, 1, 48000, 2, 16);
             file.resize(file.size() - 3);
             return file;
         }(),
         {"wav", 48000, 1, 16, true}},
    };
    const TemporaryFolder folder;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(inspected(folder.write("a.wav", row.file)), row.expected);
    }
}

TEST(AudioInspector, takesOnlyTheExtensionFromTheFileName) {
    const TemporaryFolder folder;
    const auto frames = testSignal(2000);
    EXPECT_EQ(inspected(folder.write("Kick.WAV", wavOf(44100, frames))),
              (AudioFormatDetails{"wav", 44100, 1, 16, true}));
    EXPECT_EQ(inspected(folder.write("wav.ogg", wavOf(44100, frames))),
              (AudioFormatDetails{"ogg", 44100, 1, 16, true}));
    EXPECT_EQ(inspected(folder.write("aiff.wav", aiffFile(48000, frames))),
              (AudioFormatDetails{"wav", 48000, 1, 16, true}));
    EXPECT_EQ(inspected(folder.write("noextension", wavOf(44100, frames))),
              (AudioFormatDetails{"", 44100, 1, 16, true}));
}

TEST(AudioInspector, rejectsNonAudioFiles) {
    const auto frames = testSignal(100);
    const auto guidOfAnotherFamily = [] {
        auto tail = extensibleTail(16, 1);
        tail.back() ^= std::byte{1};
        return tail;
    };
    const std::string playlist = "[playlist]\nFile1=good.wav\nNumberOfEntries=1\n";
    struct Row {
        const char* name;
        const char* file;
        Bytes content;
    };
    const Row rows[] = {
        {"nothing", "empty.wav", {}},
        {"text", "text.wav", bytes("This is no sound.\n")},
        {"text that begins like a WAV", "riff.wav", bytes("RIFF is a chunk, WAVE is a type")},
        {"a list of files", "list.wav", bytes("#EXTM3U\ngood.wav\n")},
        {"another list of files", "list.mp3", bytes(playlist)},
        {"a concatenation script", "concat.wav", bytes("ffconcat version 1.0\nfile good.wav\n")},
        {"UTF-16 text", "notes.mp3", bytes("\xFF\xFEh e l l o   w o r l d ")},
        {"no channels", "a.wav", pcm(1, 0, 48000, 2, 16)},
        {"no rate", "a.wav", pcm(1, 1, 0, 2, 16)},
        {"no bytes in a frame", "a.wav",
         riffFile({formatChunk(1, 1, 48000, 0, 16), riffChunk("data", Bytes(4))})},
        {"a rate that no recording has", "a.wav", pcm(1, 1, 4'000'000'000, 2, 16)},
        {"a rate of 1 Hz", "a.wav", pcm(1, 1, 1, 2, 16)},
        {"a rate below the lowest", "a.wav", pcm(1, 1, 99, 2, 16)},
        {"more bits than bytes", "a.wav", pcm(1, 1, 48000, 2, 24)},
        {"frames that are no whole samples", "a.wav", pcm(1, 2, 48000, 5, 16)},
        {"five bytes in a sample", "a.wav", pcm(1, 1, 48000, 5, 40)},
        {"16-bit float", "a.wav", pcm(3, 1, 48000, 2, 16)},
        {"an unknown encoding", "a.wav", pcm(0x4242, 1, 48000, 2, 16)},
        {"an unknown extensible encoding", "a.wav",
         pcm(0xFFFE, 1, 48000, 2, 16, guidOfAnotherFamily())},
        {"an extensible format that ends early", "a.wav", pcm(0xFFFE, 1, 48000, 2, 16)},
        {"a format of 14 bytes", "a.wav",
         riffFile({riffChunk("fmt ", Bytes(14)), riffChunk("data", Bytes(4))})},
        {"no format", "a.wav", riffFile({riffChunk("data", Bytes(4))})},
        {"no data", "a.wav", riffFile({formatChunk(1, 1, 48000, 2, 16)})},
    };
    const TemporaryFolder folder;
    folder.write("good.wav", wavOf(44100, frames));
    for (const Row& row : rows)
        EXPECT_FALSE(isReadable(folder.write(row.file, row.content))) << row.name;
}

TEST(AudioInspector, rejectsImagesAndVideos) {
    const TemporaryFolder folder;
    runTool(folder.path(), "ffmpeg -v error -f lavfi -i testsrc=d=1:s=64x64 -f lavfi -i sine=d=1 "
                           "-map 0 -frames:v 1 a.jpg -map 0 -map 1 -c:v mpeg4 -c:a aac film.mp4 "
                           "-map 0 -map 1 -c:v mpeg4 -c:a aac film.mkv -map 1 -c:a aac sound.mp4");
    EXPECT_FALSE(isReadable(folder.path() / "film.mp4"));
    EXPECT_FALSE(isReadable(folder.path() / "film.mkv"));
    EXPECT_TRUE(isReadable(folder.path() / "sound.mp4"));
    std::filesystem::rename(folder.path() / "a.jpg", folder.path() / "a.mp3");
    EXPECT_FALSE(isReadable(folder.path() / "a.mp3"));
}

TEST(AudioInspector, acceptsAudioWithCoverArt) {
    const TemporaryFolder folder;
    folder.write("a.wav", wavOf(44100, testSignal(44100)));
    runTool(folder.path(), "ffmpeg -v error -f lavfi -i testsrc=d=1:s=64x64 -frames:v 1 c.jpg");
    const std::string cover = "-map 0 -map 1 -c:v copy -disposition:v attached_pic ";
    const std::vector<Encoding> encodings{
        {"-i c.jpg " + cover + "-c:a aac", "a.m4a"}, {cover, "a.mp3"}, {cover, "a.flac"}};
    encode(folder, "a.wav", encodings);
    for (const Encoding& encoding : encodings)
        EXPECT_TRUE(isReadable(folder / encoding.name)) << encoding.name;
}

TEST(AudioInspector, readsFormatDetailsOfAllOtherFormats) {
    struct Row {
        const char* arguments;
        const char* name;
        AudioFormatDetails expected;
    };
    const Row rows[] = {
        {"", "a.aiff", {"aiff", 44100, 1, 16, true}},
        {"-c:a pcm_s8", "a8.aiff", {"aiff", 44100, 1, 8, true}},
        {"-c:a pcm_s24be", "a24.aif", {"aif", 44100, 1, 24, true}},
        {"-c:a pcm_s32be", "a32.aif", {"aif", 44100, 1, 32, true}},
        {"-c:a pcm_s16le -f aiff", "sowt.aifc", {"aifc", 44100, 1, 16, true}},
        {"-c:a pcm_f32be -f aiff", "f32.aifc", {"aifc", 44100, 1, 32, false}},
        {"-c:a pcm_f64be -f aiff", "f64.aifc", {"aifc", 44100, 1, 64, false}},
        {"-c:a adpcm_ima_qt -f aiff", "ima.aifc", {"aifc", 44100, 1, 0, false}},
        {"-c:a pcm_s24le", "a.caf", {"caf", 44100, 1, 24, true}},
        {"-c:a pcm_s32le", "a32.caf", {"caf", 44100, 1, 32, true}},
        {"-c:a pcm_f32le", "f32.caf", {"caf", 44100, 1, 32, false}},
        {"-c:a pcm_f64le", "f64.caf", {"caf", 44100, 1, 64, false}},
        {"-c:a alac", "alac.caf", {"caf", 44100, 1, 0, false}},
        {"-c:a pcm_u8", "a8.w64", {"w64", 44100, 1, 8, true}},
        {"", "a.w64", {"w64", 44100, 1, 16, true}},
        {"", "a.au", {"au", 44100, 1, 16, true}},
        {"-c:a pcm_mulaw -ar 8000", "mulaw.au", {"au", 8000, 1, 8, false}},
        {"-c:a pcm_alaw", "alaw.wav", {"wav", 44100, 1, 8, false}},
        {"-c:a pcm_mulaw", "mulaw.wav", {"wav", 44100, 1, 8, false}},
        {"-c:a adpcm_ms", "ms.wav", {"wav", 44100, 1, 0, false}},
        {"-c:a adpcm_ima_wav", "ima.wav", {"wav", 44100, 1, 0, false}},
        {"-c:a libmp3lame -f wav", "mp3inside.wav", {"wav", 44100, 1, 0, false}},
        {"-f mp3", "mp3.wav", {"wav", 44100, 1, 0, false}},
        {"-ar 48000 -ac 2", "a.mp3", {"mp3", 48000, 2, 0, false}},
        {"-ar 22050", "low.mp3", {"mp3", 22050, 1, 0, false}},
        {"-ar 11025", "lowest.mp3", {"mp3", 11025, 1, 0, false}},
        {"-write_xing 0 -id3v2_version 0", "bare.mp3", {"mp3", 44100, 1, 0, false}},
        {"-write_id3v1 1 -t 0.06", "short.mp3", {"mp3", 44100, 1, 0, false}},
        {"", "a.mp2", {"mp2", 44100, 1, 0, false}},
        {"-c:a aac", "a.m4a", {"m4a", 44100, 1, 0, false}},
        {"-c:a aac", "a.aac", {"aac", 44100, 1, 0, false}},
        {"-c:a alac", "alac.m4a", {"m4a", 44100, 1, 0, false}},
        {"-c:a pcm_s16le", "a.mov", {"mov", 44100, 1, 16, true}},
        {"", "a.flac", {"flac", 44100, 1, 0, false}},
        {"-c:a flac", "flac.ogg", {"ogg", 44100, 1, 0, false}},
        {"-c:a libvorbis", "a.ogg", {"ogg", 44100, 1, 0, false}},
        {"-c:a libopus", "a.opus", {"opus", 48000, 1, 0, false}},
        {"-c:a libopus", "a.webm", {"webm", 48000, 1, 0, false}},
        {"-c:a flac", "a.mka", {"mka", 44100, 1, 0, false}},
        {"-c:a wmav2", "a.wma", {"wma", 44100, 1, 0, false}},
        {"-c:a wmav1", "v1.wma", {"wma", 44100, 1, 0, false}},
        {"", "a.wv", {"wv", 44100, 1, 0, false}},
        {"", "a.tta", {"tta", 44100, 1, 0, false}},
    };
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, testSignal(22050)));
    encode(folder, "source.wav", encodingsOf(rows));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(inspected(folder / row.name), row.expected);
    }
}

// FFmpeg's output differs from that of the format's own decoder, or the format cannot be identified
// reliably.
TEST(AudioInspector, rejectsFormatsWithoutAFaithfulDecoder) {
    const TemporaryFolder folder;
    folder.write("a.wav", wavOf(8000, testSignal(16'000)));
    runTool(folder.path(), "speexenc --quiet a.wav a.spx 2>/dev/null");
    runTool(folder.path(), "sox a.wav a.gsm");
    runTool(folder.path(), "sndfile-convert -gsm610 a.wav gsm.aiff");
    encode(folder, "a.wav", "-ar 48000", "a.ac3");
    encode(folder, "a.wav", "-ar 48000 -c:a ac3", "ac3.mka");
    folder.write("wide.amr", "#!AMR-WB\n" + std::string(500, 'x'));
    for (const char* const name : {"a.spx", "a.gsm", "gsm.aiff", "a.ac3", "ac3.mka", "wide.amr"})
        EXPECT_FALSE(isReadable(folder / name)) << name;
}

TEST(AudioInspector, findsAudioAfterTagsAndPadding) {
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, testSignal(22050)));
    encode(folder, "source.wav",
           {{"-write_xing 0 -id3v2_version 0", "bare.mp3"},
            {"", "bare.flac"},
            {"-bitexact -c:a aac", "bare.aac"}});
    Bytes tag = bytes(std::string_view("ID3\4\0\0\0\0\x2E\0", 10));
    tag.resize(tag.size() + 0x1700, std::byte{'x'});
    for (const char* const name : {"bare.mp3", "bare.flac", "bare.aac"}) {
        SCOPED_TRACE(name);
        Bytes file = tag;
        append(file, tag);
        append(file, bytesOf(folder / name));
        EXPECT_TRUE(isReadable(folder.write(std::string("tagged.") + name, file)));
    }
    Bytes padded(5000);
    append(padded, bytesOf(folder / "bare.mp3"));
    EXPECT_TRUE(isReadable(folder.write("padded.mp3", padded)));
    // A tag without audio, and a tag whose size exceeds the file.
    EXPECT_FALSE(isReadable(folder.write("tag.mp3", tag)));
    EXPECT_FALSE(isReadable(folder.write("cut.mp3", std::span(tag).first(100))));
}

TEST(AudioInspector, identifiesWavWhenItsSamplesResembleAnotherFormat) {
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, testSignal(22050)));
    encode(folder, "source.wav", "-write_xing 0 -id3v2_version 0", "a.mp3");
    auto data = bytesOf(folder / "a.mp3");
    data.resize(data.size() / 4 * 4);
    const auto path =
        folder.write("a.wav", riffFile({formatChunk(1, 2, 44100, 4, 16), riffChunk("data", data)}));
    EXPECT_EQ(inspected(path), (AudioFormatDetails{"wav", 44100, 2, 16, true}));
}

TEST(AudioInspector, readsVorbisInsideWav) {
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, testSignal(22050)));
    encode(folder, "source.wav", "-c:a libvorbis", "a.ogg");
    const auto path =
        folder.write("wrapped.ogg", riffFile({formatChunk(0x674F, 1, 44100, 1, 16),
                                              riffChunk("data", bytesOf(folder / "a.ogg"))}));
    EXPECT_EQ(inspected(path), (AudioFormatDetails{"ogg", 44100, 1, 0, false}));
}

TEST(AudioInspector, neitherBlocksOnAPipeNorReadsAFolder) {
    const TemporaryFolder folder;
    const auto pipe = folder / "pipe.wav";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THROW(inspected(pipe), FileError);
    EXPECT_THROW(inspected(folder.createFolder("folder.wav")), FileError);
    EXPECT_THROW(inspected(folder / "missing.wav"), FileError);
}

TEST(AudioInspector, propagatesReadErrors) {
    const TemporaryFolder folder;
    folder.write("source.wav", wavOf(44100, testSignal(22050)));
    encode(folder, "source.wav", "", "a.flac");
    const AVAudioFileInspector inspector(
        std::make_shared<const ForwardingFileManager>([](const FileCall& call) {
            if (call.function == "read" && call.offset > 0)
                throw FileError(call.operation, call.path, EIO);
        }));
    EXPECT_THROW(inspector.inspectAudioFile(FileURL(folder / "a.flac")), FileError);
    EXPECT_NO_THROW(inspector.inspectAudioFile(FileURL(folder / "source.wav")));
}

TEST(AudioInspector, opensAWavFileOnceAndReadsOneBlock) {
    const TemporaryFolder folder;
    const auto path = folder.write("a.wav", wavOf(44100, testSignal(22050)));
    const auto log = std::make_shared<FileCallLog>();
    AVAudioFileInspector(std::make_shared<RecordingFileManager>(log))
        .inspectAudioFile(FileURL(path));
    EXPECT_THAT(log->described(folder.path(), {"open read", "read"}),
                testing::ElementsAre("open read a.wav", "read a.wav"));
}

} // namespace
} // namespace torvo::test
