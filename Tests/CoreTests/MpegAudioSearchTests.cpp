// MPEG audio with other bytes before its first frame: a conversion must find what a scan finds.

#include "AudioFixtures.h"
#include "Models/GenerationError.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<std::byte>;
using Frames = std::vector<std::int16_t>;

class MpegAudioSearch : public testing::Test {
protected:
    MpegAudioSearch() {
        folder.write("source.wav", wavOf(44100, testSignal(22050)));
        encode(folder, "source.wav", "-write_xing 0 -id3v2_version 0", "bare.mp3");
        encode(folder, "source.wav", "", "bare.mp2");
        encode(folder, "source.wav", "-bitexact -c:a aac", "bare.aac");
        mp3 = bytesOf(folder / "bare.mp3");
    }

    bool isFound(const std::string& name, const Bytes& file) const {
        const auto path = folder.write(name, file);
        bool isReadable = true;
        try {
            AVAudioFileInspector{}.inspectAudioFile(FileURL(path));
        } catch (const GenerationError&) {
            isReadable = false;
        }
        const auto failure =
            failureOf(AVAudioSamplePreparer{}, sampleToConvert(path), folder / "out.wav");
        EXPECT_EQ(failure == "none", isReadable) << failure;
        return isReadable;
    }

    TemporaryFolder folder;
    Bytes mp3;
};

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts)
        append(all, part);
    return all;
}

Bytes filler(std::size_t size) {
    return Bytes(size, std::byte{0x55});
}

Bytes without(const Bytes& file, std::size_t first) {
    return {file.begin() + static_cast<std::ptrdiff_t>(first), file.end()};
}

/// An APEv2 tag with its header and footer.
Bytes apeTag(std::size_t itemsSize) {
    constexpr std::uint32_t hasHeader = 0x80000000;
    constexpr std::uint32_t isHeader = 0x20000000;
    const auto end = [&](std::uint32_t flags) {
        Bytes bytes;
        append(bytes, "APETAGEX");
        appendUInt32(bytes, 2000);
        appendUInt32(bytes, static_cast<std::uint32_t>(itemsSize + 32));
        appendUInt32(bytes, 1);
        appendUInt32(bytes, flags);
        appendLittleEndian(bytes, 0, 8);
        return bytes;
    };
    return joined({end(hasHeader | isHeader), filler(itemsSize), end(hasHeader)});
}

Bytes id3v1Tag() {
    Bytes tag = bytes("TAGTitle");
    tag.resize(128);
    return tag;
}

Bytes id3v2Tag() {
    return bytes(std::string_view("ID3\4\0\0\0\0\0\4abcd", 14));
}

TEST_F(MpegAudioSearch, findsTheWholeStreamAfterOtherBytes) {
    const Bytes zeros(3000);
    const std::vector<std::pair<const char*, Bytes>> fronts = {
        {"APEv2", apeTag(100'000)},
        {"ID3v1", id3v1Tag()},
        {"all tags", joined({id3v2Tag(), apeTag(500), id3v1Tag(), id3v2Tag()})},
        {"zeros", zeros},
        {"other bytes", filler(1500)},
        {"zeros and other bytes", joined({zeros, filler(700), zeros})},
        {"a tag, then other bytes", joined({id3v2Tag(), filler(1000)})},
        {"as far as the search goes", filler(4095)},
    };
    for (const auto* bare : {"bare.mp3", "bare.mp2", "bare.aac"}) {
        const auto stream = bytesOf(folder / bare);
        const auto expected = convertedFrames(folder / bare);
        for (const auto& [front, content] : fronts) {
            SCOPED_TRACE(std::string(bare) + " behind " + front);
            for (const auto* name : {"a.mp3", "a.dat", "noextension"}) {
                ASSERT_TRUE(isFound(name, joined({content, stream}))) << name;
                EXPECT_TRUE(convertedFrames(folder / name) == expected);
            }
        }
    }
}

TEST_F(MpegAudioSearch, findsAnExcerptOfALongerStream) {
    for (const auto* bare : {"bare.mp3", "bare.mp2", "bare.aac"}) {
        const auto stream = bytesOf(folder / bare);
        for (const std::size_t missing : {1U, 7U, 100U, 1000U, 2000U}) {
            auto cut = without(stream, missing);
            for (const std::size_t missingAtTheEnd : {0U, 50U}) {
                cut.resize(cut.size() - missingAtTheEnd);
                for (const auto* name : {"a.mp3", "a.dat"}) {
                    SCOPED_TRACE(bare + std::string(" as ") + name);
                    ASSERT_TRUE(isFound(name, cut)) << missing;
                    // At most one frame of 1,152 samples is lost in addition to the missing bytes.
                    EXPECT_GT(convertedFrames(folder / name).size(),
                              22050 * cut.size() / stream.size() - 2 * 1152);
                }
            }
            EXPECT_TRUE(isFound("tagged.dat", joined({without(stream, missing), id3v1Tag()})));
        }
    }
}

TEST_F(MpegAudioSearch, searchesFurtherInFilesNamedAsMpegAudio) {
    for (const auto* extension : {"mp3", "MP3", "mp2", "mpa", "mpga", "m2a", "aac", "adts"}) {
        const auto name = std::string("a.") + extension;
        EXPECT_TRUE(isFound(name, joined({filler(65'535), mp3}))) << extension;
        EXPECT_FALSE(isFound(name, joined({filler(65'536), mp3}))) << extension;
    }
    for (const auto* name : {"a.dat", "mp3", "a.mp4", "a.mp3.bak"}) {
        EXPECT_TRUE(isFound(name, joined({filler(4095), mp3}))) << name;
        EXPECT_FALSE(isFound(name, joined({filler(4096), mp3}))) << name;
    }
    // The search limit restarts after padding or a tag.
    EXPECT_TRUE(isFound("a.mp3", joined({Bytes(60'000), filler(60'000), mp3})));
    EXPECT_TRUE(isFound("a.dat", joined({apeTag(60'000), Bytes(60'000), filler(3000), mp3})));
}

TEST_F(MpegAudioSearch, acceptsAnArchiveOnlyWithAnMpegAudioExtension) {
    // Like a tar file: a header, the stream, zeros.
    const auto archive = joined({filler(512), mp3, Bytes(2048)});
    EXPECT_FALSE(isFound("a.tar", archive));
    EXPECT_TRUE(isFound("a.mp3", archive));
    // A stream that begins with a frame is found regardless of the extension and of what follows.
    EXPECT_TRUE(isFound("a.tar", joined({mp3, filler(2048)})));
}

TEST_F(MpegAudioSearch, requiresConsecutiveFrames) {
    // The frames of this stream, about 418 bytes each at 128 kbit/s.
    encode(folder, "source.wav", "-b:a 128k -write_xing 0 -id3v2_version 0", "even.mp3");
    const auto stream = bytesOf(folder / "even.mp3");
    const auto frames = [&](int count) {
        std::size_t end = 0;
        for (int i = 0; i < count; ++i) {
            const bool isPadded = (stream[end + 2] & std::byte{2}) != std::byte{0};
            end += 144 * 128'000 / 44100 + (isPadded ? 1 : 0);
        }
        return Bytes(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(end));
    };
    for (const auto* name : {"a.mp3", "a.dat"}) {
        EXPECT_TRUE(isFound(name, joined({filler(10), frames(3)})));
        EXPECT_FALSE(isFound(name, joined({filler(10), frames(2)})));
        EXPECT_TRUE(isFound(name, joined({filler(10), frames(3), id3v1Tag()})));
        EXPECT_FALSE(isFound(name, joined({filler(10), frames(2), id3v1Tag()})));
        // The last frame truncated.
        auto cut = frames(4);
        cut.resize(cut.size() - 100);
        EXPECT_TRUE(isFound(name, joined({filler(10), cut})));
        cut = frames(3);
        cut.resize(cut.size() - 100);
        EXPECT_FALSE(isFound(name, joined({filler(10), cut})));
    }
    EXPECT_TRUE(isFound("a.mp3", joined({filler(10), frames(16), filler(1000)})));
    EXPECT_FALSE(isFound("a.mp3", joined({filler(10), frames(15), filler(1000)})));
    EXPECT_FALSE(isFound("a.dat", joined({filler(10), frames(16), filler(1000)})));
}

TEST_F(MpegAudioSearch, rejectsOtherBytes) {
    std::mt19937 random(7);
    Bytes noise(300'000);
    for (int round = 0; round < 10; ++round) {
        for (auto& byte : noise)
            byte = static_cast<std::byte>(random());
        EXPECT_FALSE(isFound("noise.mp3", noise));
        EXPECT_FALSE(isFound("noise.dat", noise));
    }
    EXPECT_FALSE(isFound("ones.mp3", Bytes(100'000, std::byte{0xFF})));
    EXPECT_FALSE(isFound("zeros.mp3", Bytes(200'000)));
    EXPECT_FALSE(isFound("text.mp3", bytes("TAG, you are it")));
    EXPECT_FALSE(isFound("tag.mp3", apeTag(1000)));
    Bytes header;
    for (int i = 0; i < 20'000; ++i)
        append(header, std::span(mp3).first(4));
    EXPECT_FALSE(isFound("headers.mp3", header));
}

} // namespace
} // namespace torvo::test
