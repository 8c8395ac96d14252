#include "AudioFixtures.h"
#include "ForwardingFileManager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

/// Every "read" or every "write" behind the first `size` bytes of a file fails.
AVAudioSamplePreparer failingBeyond(std::uint64_t size, const std::string& function,
                                    int errorNumber) {
    return AVAudioSamplePreparer(
        std::make_shared<const ForwardingFileManager>([=](const FileCall& call) {
            if (call.function == function && call.offset > size)
                throw FileError(call.operation, call.path, errorNumber);
        }));
}

TEST(SamplePreparer, copiesACompatibleFileByteForByte) {
    const TemporaryFolder folder;
    auto file = wavFile({44100, 2, 24}, 1000);
    append(file, riffChunk("LIST", bytes("odd")));
    const auto source = folder.write("a.wav", file);
    EXPECT_EQ(AVAudioSamplePreparer{}.prepare(sampleToCopy(source), FileURL(folder / "b.wav")),
              SamplePreparationMode::copied);
    EXPECT_EQ(bytesOf(folder / "b.wav"), file);
}

TEST(SamplePreparer, convertsToTheDeviceFormat) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({48000, 2, 24}, 4800));
    const auto before = bytesOf(source);
    EXPECT_EQ(AVAudioSamplePreparer{}.prepare(sampleToConvert(source), FileURL(folder / "b.wav")),
              SamplePreparationMode::converted);
    EXPECT_EQ(deviceFrames(folder / "b.wav").size(), 4410U);
    EXPECT_EQ(bytesOf(source), before);
}

TEST(SamplePreparer, convertsForEveryReason) {
    const TemporaryFolder folder;
    auto sample = sampleToConvert(folder.write("a.wav", wavFile({44100, 2, 16}, 100)));
    sample.compatibility = RequiresConversion{""};
    EXPECT_EQ(AVAudioSamplePreparer{}.prepare(sample, FileURL(folder / "b.wav")),
              SamplePreparationMode::converted);
    EXPECT_EQ(deviceFrames(folder / "b.wav").size(), 100U);
}

TEST(SamplePreparer, replacesAnExistingDestination) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({44100, 1, 16}, 100));
    const auto other = folder.write("other.txt", "left alone");
    for (const auto& sample : {sampleToCopy(source), sampleToConvert(source)}) {
        const auto destination = folder.write("b.wav", std::string(100'000, 'x'));
        AVAudioSamplePreparer{}.prepare(sample, FileURL(destination));
        EXPECT_EQ(bytesOf(destination), bytesOf(source));
        // The link is replaced, not its target.
        fs::remove(destination);
        fs::create_symlink(other, destination);
        AVAudioSamplePreparer{}.prepare(sample, FileURL(destination));
        EXPECT_FALSE(fs::is_symlink(destination));
        EXPECT_EQ(textOf(other), "left alone");
    }
}

TEST(SamplePreparer, removesTheDestinationBeforeTheSourceIsOpened) {
    const TemporaryFolder folder;
    const auto missing = folder / "missing.wav";
    for (const auto& sample : {sampleToCopy(missing), sampleToConvert(missing)}) {
        const auto destination = folder.write("b.wav", "old");
        EXPECT_ANY_THROW(AVAudioSamplePreparer{}.prepare(sample, FileURL(destination)));
        EXPECT_FALSE(fs::exists(destination));
    }
}

TEST(SamplePreparer, removesADanglingLinkAtTheDestination) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({44100, 1, 16}, 100));
    for (const auto& sample : {sampleToCopy(source), sampleToConvert(source)}) {
        fs::remove(folder / "b.wav");
        fs::create_symlink(folder / "elsewhere.wav", folder / "b.wav");
        AVAudioSamplePreparer{}.prepare(sample, FileURL(folder / "b.wav"));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "b.wav")));
        EXPECT_EQ(bytesOf(folder / "b.wav"), bytesOf(source));
        EXPECT_FALSE(fs::exists(folder / "elsewhere.wav"));
    }
}

TEST(SamplePreparer, writesAnEmptyFileForNoFrames) {
    const TemporaryFolder folder;
    for (const unsigned rate : {44100U, 48000U}) {
        const auto source = folder.write("a.wav", wavFile({rate, 2, 24}, 0));
        EXPECT_TRUE(convertedFrames(source).empty()) << rate;
    }
    EXPECT_TRUE(convertedFrames(folder.write("a.aiff", aiffFile(44100, {}))).empty());
}

TEST(SamplePreparer, namesASourceThatCannotBeOpened) {
    const TemporaryFolder folder;
    const AVAudioSamplePreparer preparer;
    EXPECT_EQ(failureOf(preparer, sampleToConvert(folder / "kick.mp3"), folder / "b.wav"),
              "Unable to open source audio file kick.mp3. (OSStatus -2)");
    EXPECT_EQ(failureOf(preparer, sampleToConvert(folder.createFolder("f.wav")), folder / "b.wav"),
              "Unable to open source audio file f.wav. (OSStatus -21)");
    EXPECT_EQ(failureOf(preparer, sampleToConvert(folder.write("t.wav", "text")), folder / "b.wav"),
              "Unable to open source audio file t.wav. (OSStatus -1094995529)");
    EXPECT_FALSE(fs::exists(folder / "b.wav"));
}

TEST(SamplePreparer, namesADestinationThatCannotBeCreated) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({48000, 1, 16}, 100));
    EXPECT_EQ(failureOf(AVAudioSamplePreparer{}, sampleToConvert(source), folder / "no/b.wav"),
              "Unable to create destination WAV file b.wav. (OSStatus -2)");
}

TEST(SamplePreparer, refusesMoreAudioThanAWavFileHolds) {
    const TemporaryFolder folder;
    // At the lowest rate, every frame becomes 441 frames.
    const auto source = folder.write("slow.wav", wavFile({100, 1, 8}, 4'869'578));
    EXPECT_EQ(failureOf(AVAudioSamplePreparer{}, sampleToConvert(source), folder / "b.wav"),
              "Unable to configure destination audio conversion. (OSStatus -27)");
    EXPECT_EQ(fs::file_size(folder / "b.wav"), 0U);
}

TEST(SamplePreparer, convertsInBlocks) {
    constexpr std::size_t maxWriteSize = 4096 * sizeof(std::int16_t); // bytes, of mono frames
    constexpr std::size_t maxReadSize = 256 * 1024;                   // bytes
    const TemporaryFolder folder;
    folder.write("a.wav", wavFile({48000, 2, 16}, 2'000'000));
    encode(folder, "a.wav", {{"", "a.aiff"}, {"", "a.flac"}});
    for (const char* const name : {"a.wav", "a.aiff", "a.flac"}) {
        SCOPED_TRACE(name);
        std::map<std::string, std::size_t> largest; // parts by file name
        const AVAudioSamplePreparer preparer(
            std::make_shared<const ForwardingFileManager>([&](const FileCall& call) {
                if (call.size > 0) {
                    auto& size = largest[call.path.filename()];
                    size = std::max(size, call.size);
                }
            }));
        preparer.prepare(sampleToConvert(folder / name), FileURL(folder / "b.wav"));
        ASSERT_GT(fs::file_size(folder / name), 4 * maxReadSize);
        EXPECT_LE(largest.at(name), maxReadSize);
        EXPECT_GT(fs::file_size(folder / "b.wav"), 2'000'000U);
        EXPECT_LE(largest.at("b.wav"), maxWriteSize);
    }
}

TEST(SamplePreparer, reportsReadErrorsAndLeavesThePartialFile) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({44100, 2, 16}, 100'000));
    const auto preparer = failingBeyond(200'000, "read", EIO);
    EXPECT_EQ(failureOf(preparer, sampleToConvert(source), folder / "b.wav"),
              "Unable to read source audio data. (OSStatus -5)");
    EXPECT_GT(fs::file_size(folder / "b.wav"), 44U);
}

TEST(SamplePreparer, reportsReadErrorsOfCompressedFiles) {
    const TemporaryFolder folder;
    folder.write("a.wav", wavOf(44100, testSignal(441'000)));
    encode(folder, "a.wav", "", "a.flac");
    const auto preparer = failingBeyond(100'000, "read", EIO);
    ASSERT_GT(fs::file_size(folder / "a.flac"), 200'000U);
    EXPECT_EQ(failureOf(preparer, sampleToConvert(folder / "a.flac"), folder / "b.wav"),
              "Unable to read source audio data. (OSStatus -5)");
}

TEST(SamplePreparer, reportsWriteErrorsAndLeavesThePartialFile) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({44100, 2, 16}, 100'000));
    const auto preparer = failingBeyond(100'000, "write", ENOSPC);
    EXPECT_EQ(failureOf(preparer, sampleToConvert(source), folder / "b.wav"),
              "Unable to write converted audio data. (OSStatus -28)");
    EXPECT_GT(fs::file_size(folder / "b.wav"), 100'000U);
}

TEST(SamplePreparer, propagatesFileManagerErrors) {
    const TemporaryFolder folder;
    const auto source = folder.write("a.wav", wavFile({44100, 2, 16}, 100));
    const AVAudioSamplePreparer cannotRemove(
        std::make_shared<const ForwardingFileManager>(failing("removeItem", EACCES)));
    const AVAudioSamplePreparer cannotCopy(
        std::make_shared<const ForwardingFileManager>(failing("copyFrom", EACCES)));
    const FileURL present(folder.write("b.wav", "old"));
    EXPECT_THROW(cannotRemove.prepare(sampleToCopy(source), present), FileError);
    EXPECT_THROW(cannotRemove.prepare(sampleToConvert(source), present), FileError);
    EXPECT_THROW(cannotCopy.prepare(sampleToCopy(source), present), FileError);
    EXPECT_THROW(AVAudioSamplePreparer{}.prepare(sampleToCopy(folder / "no.wav"), present),
                 FileError);
}

} // namespace
} // namespace torvo::test
