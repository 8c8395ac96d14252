// Recordings near the size limit of a WAV file: a run must be able to write what the scan accepts.
// The large files are sparse and take no space.

#include "AudioFixtures.h"
#include "ForwardingFileManager.h"
#include "Models/GenerationError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<std::byte>;

constexpr std::uint64_t maxFrames = (0xFFFFFFFE - 36) / 2; // of a converted file
constexpr std::uint64_t gigabyte = std::uint64_t{1} << 30U;

class RecordingLength : public testing::Test {
protected:
    /// A header followed by `dataSize` bytes of silence.
    fs::path write(const std::string& name, const Bytes& header, std::uint64_t dataSize) const {
        const auto path = folder.write(name, header);
        fs::resize_file(path, header.size() + dataSize);
        return path;
    }

    static bool isReadable(const fs::path& path) {
        try {
            AVAudioFileInspector{}.inspectAudioFile(FileURL(path));
            return true;
        } catch (const GenerationError& error) {
            EXPECT_EQ(error.errorDescription(),
                      "Unsupported audio file: " + path.filename().string());
            return false;
        }
    }

    /// Whether a conversion reaches its first frames.
    bool canBeConverted(const fs::path& path) const {
        const AVAudioSamplePreparer preparer(
            std::make_shared<const ForwardingFileManager>([](const FileCall& call) {
                if (call.function == "write" && call.offset > 0)
                    throw FileError(call.operation, call.path, ENOSPC);
            }));
        const auto failure = failureOf(preparer, sampleToConvert(path), folder / "out.wav");
        if (failure == "Unable to write converted audio data. (OSStatus -28)")
            return true;
        EXPECT_EQ(failure, "Unable to configure destination audio conversion. (OSStatus -27)");
        return false;
    }

    void expectBoundary(const std::string& name, const fs::path& longest,
                        const fs::path& tooLong) const {
        SCOPED_TRACE(name);
        EXPECT_TRUE(isReadable(longest));
        EXPECT_TRUE(canBeConverted(longest));
        EXPECT_FALSE(isReadable(tooLong));
        EXPECT_FALSE(canBeConverted(tooLong));
    }

    TemporaryFolder folder;
};

Bytes wavHeader(std::uint16_t channels, std::uint32_t sampleRate, std::uint16_t bits,
                std::uint32_t dataSize) {
    const auto blockAlign = static_cast<std::uint16_t>(channels * bits / 8);
    auto header = riffFile({formatChunk(1, channels, sampleRate, blockAlign, bits)});
    append(header, "data");
    appendUInt32(header, dataSize);
    return header;
}

Bytes longWavHeader(std::uint16_t channels, std::uint64_t dataSize) {
    Bytes sizes;
    appendLittleEndian(sizes, 0, 8);
    appendLittleEndian(sizes, dataSize, 8);
    appendLittleEndian(sizes, 0, 8); // number of frames
    appendLittleEndian(sizes, 0, 4); // length of the table
    auto header =
        riffFile({riffChunk("ds64", sizes),
                  formatChunk(1, channels, 44100, static_cast<std::uint16_t>(2 * channels), 16)});
    std::ranges::copy(bytes("RF64"), header.begin());
    append(header, "data");
    appendUInt32(header, 0xFFFFFFFF);
    return header;
}

/// 16 bits, mono; the caller appends the frames.
Bytes aiffHeader(std::uint32_t frameCount) {
    constexpr std::size_t frameCountOffset = 22;
    constexpr std::size_t soundSizeOffset = 42;
    auto header = aiffFile(44100, {});
    const auto put = [&](std::size_t offset, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            header[offset + i] = static_cast<std::byte>(value >> (24 - 8 * i));
    };
    put(frameCountOffset, frameCount);
    put(soundSizeOffset, 8 + 2 * frameCount);
    return header;
}

TEST_F(RecordingLength, isLimitedByTheSizeOfAConvertedFile) {
    const auto eightBits = [&](const std::string& name, std::uint32_t rate, std::uint64_t frames) {
        const auto size = static_cast<std::uint32_t>(frames);
        return write(name, wavHeader(1, rate, 8, size), size);
    };
    expectBoundary("WAV", eightBits("a.wav", 44100, maxFrames),
                   eightBits("b.wav", 44100, maxFrames + 1));
    // 441 frames of each.
    expectBoundary("lowest rate", eightBits("c.wav", 100, maxFrames / 441),
                   eightBits("d.wav", 100, maxFrames / 441 + 1));
    expectBoundary("RF64", write("e.wav", longWavHeader(1, 2 * maxFrames), 2 * maxFrames),
                   write("f.wav", longWavHeader(1, 2 * maxFrames + 2), 2 * maxFrames + 2));
    const auto aiff = [&](const std::string& name, std::uint64_t frames) {
        return write(name, aiffHeader(static_cast<std::uint32_t>(frames)), 2 * frames);
    };
    expectBoundary("AIFF", aiff("a.aiff", maxFrames), aiff("b.aiff", maxFrames + 1));
}

TEST_F(RecordingLength, countsTheMonoMixOfManyChannels) {
    EXPECT_TRUE(isReadable(write("a.wav", longWavHeader(2, 5 * gigabyte), 5 * gigabyte)));
    EXPECT_FALSE(isReadable(write("b.wav", longWavHeader(1, 5 * gigabyte), 5 * gigabyte)));
}

TEST_F(RecordingLength, isNotLimitedForCopiedFiles) {
    constexpr std::uint32_t largest = 0xFFFFFFFE;
    const auto path = write("a.wav", wavHeader(1, 44100, 16, largest), largest);
    EXPECT_TRUE(isReadable(path));
    // One byte is missing, so the file would have to be converted.
    fs::resize_file(path, fs::file_size(path) - 1);
    EXPECT_FALSE(isReadable(path));
}

TEST_F(RecordingLength, isTakenFromTheBytesPresent) {
    for (const std::uint32_t claimed : {0xFFFFFFFFU, 0xFFFFFFFEU, 0U}) {
        const auto path = write("a.wav", wavHeader(1, 100, 8, claimed), 1000);
        EXPECT_TRUE(isReadable(path)) << claimed;
        EXPECT_EQ(convertedFrames(path).size(), 441'000U) << claimed;
    }
    EXPECT_TRUE(isReadable(write("b.wav", longWavHeader(1, UINT64_MAX), 1000)));
    EXPECT_TRUE(isReadable(write("c.aiff", aiffHeader(maxFrames + 1), 1000)));
    EXPECT_FALSE(isReadable(write("d.wav", wavHeader(1, 44100, 8, 0xFFFFFFFF), 3 * gigabyte)));
}

TEST_F(RecordingLength, ofCompressedAudioIsTrustedOnlyInALargeEnoughFile) {
    constexpr std::size_t frameCountOffset = 22; // the low 32 of 36 bits
    folder.write("a.wav", wavOf(44100, testSignal(5000)));
    encode(folder, "a.wav", "", "a.flac");
    auto file = bytesOf(folder / "a.flac");
    std::fill_n(file.begin() + frameCountOffset, 4, std::byte{0xFF}); // 27 hours
    EXPECT_TRUE(isReadable(folder.write("claims.flac", file)));
    EXPECT_FALSE(isReadable(write("long.flac", file, 10'000'000)));
}

} // namespace
} // namespace torvo::test
