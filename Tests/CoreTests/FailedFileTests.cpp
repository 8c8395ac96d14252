#include "ExportFixture.h"
#include "FaultyFileManager.h"
#include "Models/DecodingError.h"
#include "Models/GenerationError.h"
#include "Models/UserFacingDescription.h"
#include "Thrown.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <optional>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

/// The description that the user reads and the failed file.
struct ShownFailure {
    std::string description;
    std::optional<fs::path> file;

    friend bool operator==(const ShownFailure&, const ShownFailure&) = default;
};

void PrintTo(const ShownFailure& failure, std::ostream* stream) {
    *stream << failure.description << " / " << failure.file.value_or("no file");
}

template <typename Action>
ShownFailure shownFailure(Action action) {
    try {
        action();
    } catch (...) {
        const auto error = std::current_exception();
        return {userFacingDescription(error), failedFile(error)};
    }
    return {"none", {}};
}

TEST(FailedFile, isSetForErrorsThatNameAFile) {
    const auto notAWav = GenerationError::exportFailed("Not a RIFF/WAVE file.");
    const std::vector<std::pair<std::exception_ptr, std::optional<fs::path>>> rows{
        {std::make_exception_ptr(notAWav), std::nullopt},
        {std::make_exception_ptr(notAWav.withFile("/card/a.wav")), "/card/a.wav"},
        {std::make_exception_ptr(GenerationError::unsupportedAudio(FileURL("/Kit/a.aif"))),
         "/Kit/a.aif"},
        {std::make_exception_ptr(DecodingError("seed", "missing").withDocumentName("a.json")),
         std::nullopt},
        {std::make_exception_ptr(std::bad_alloc()), std::nullopt},
        {std::make_exception_ptr(42), std::nullopt},
        // These descriptions contain the whole path.
        {std::make_exception_ptr(FileError(FileOperation::write, "/card/a.wav", ENOSPC)),
         std::nullopt},
        {std::make_exception_ptr(FileError(FileOperation::write, "/card/\xFF.wav", ENOSPC)),
         std::nullopt},
        {std::make_exception_ptr(
             GenerationError::exportFailed("/card/a.wav is odd.").withFile("/card/a.wav")),
         std::nullopt},
    };
    for (const auto& [error, expected] : rows)
        EXPECT_EQ(failedFile(error), expected) << userFacingDescription(error);
}

TEST(FailedFile, affectsNeitherTextNorEquality) {
    const auto error = GenerationError::exportFailed("Not a RIFF/WAVE file.");
    const auto named = error.withFile("/card/a.wav");
    EXPECT_EQ(named, error);
    EXPECT_EQ(named.errorDescription(), error.errorDescription());
    EXPECT_EQ(named.file(), "/card/a.wav");
    EXPECT_EQ(named.withFile("/card/b.wav").file(), "/card/a.wav") << "the first one counts";
    EXPECT_NE(named, GenerationError::exportFailed("WAV data chunk not found."));
}

TEST(FailedFile, isTheFileThatCannotBeStamped) {
    const TemporaryFolder folder;
    folder.write("Bank 1/1/a.wav", riffFile({riffChunk("data", bytes("0123"))}));
    const auto broken = folder.write("Bank 7/3/Kick-02.wav", "no audio");
    const TorvoWAVMetadataWriter writer;
    const ShownFailure expected{"Not a RIFF/WAVE file.", broken};
    EXPECT_EQ(shownFailure([&] { writer.apply({}, folder.url()); }), expected);
    EXPECT_EQ(shownFailure([&] { writer.apply({}, FileURL(broken), 3); }), expected);
}

TEST(FailedFile, isTheDestinationWhenAnExportCannotStampIt) {
    ExportFixture fixture;
    fixture.source = fixture.folder.write("source/a.wav", "text");
    fixture.job.recipes = {fixture.bank(1, {"Kick"})};
    EXPECT_EQ(shownFailure([&] { fixture.run(); }),
              (ShownFailure{"Not a RIFF/WAVE file.", fixture.inDevice("Bank 1/1/Kick.wav")}));
}

/// Fails each operation in turn until the preparer reports this description.
class FailedFileOfAConversion : public testing::Test {
protected:
    std::optional<fs::path> fileBelow(const std::string& description) const {
        auto sample = sampleAt(source, "a");
        sample.compatibility = RequiresConversion{"sample rate 48000 Hz"};
        for (std::uint64_t n = 1;; ++n) {
            const auto plan = std::make_shared<FaultPlan>(n, EIO, FaultPlan::Extent::once);
            const AVAudioSamplePreparer preparer(
                std::make_shared<FaultyFileManager>(systemFileManager(), plan));
            const auto failure =
                shownFailure([&] { preparer.prepare(sample, FileURL(destination)); });
            if (failure.description == description || plan->faults().empty())
                return failure.file;
        }
    }

    TemporaryFolder folder;
    fs::path source = folder.write("a.wav", wavFile({48000, 1, 16}, 10'000));
    fs::path destination = folder / "b.wav";
};

TEST_F(FailedFileOfAConversion, isTheSourceWhenReadingFailed) {
    EXPECT_EQ(fileBelow("Unable to open source audio file a.wav. (OSStatus -5)"), source);
    EXPECT_EQ(fileBelow("Unable to read source audio data. (OSStatus -5)"), source);
}

TEST_F(FailedFileOfAConversion, isTheDestinationWhenWritingFailed) {
    EXPECT_EQ(fileBelow("Unable to create destination WAV file b.wav. (OSStatus -5)"), destination);
    EXPECT_EQ(fileBelow("Unable to configure destination audio conversion. (OSStatus -5)"),
              destination);
    EXPECT_EQ(fileBelow("Unable to write converted audio data. (OSStatus -5)"), destination);
}

TEST(FailedFile, isTheSourceForAFailedPrefetch) {
    ExportFixture fixture;
    fixture.source = fixture.folder.write("source/a.wav", "text");
    fixture.job.recipes = {fixture.bank(1, {"Kick"})};
    for (auto& [channel, sample] : fixture.job.recipes[0].channels)
        sample.compatibility = RequiresConversion{"bit depth 0"};
    const BankExporter exporter(systemFileManager(), std::make_shared<AVAudioSamplePreparer>(),
                                TorvoWAVMetadataWriter());
    EXPECT_EQ(shownFailure([&] { exporter.exportBanks(fixture.job); }),
              (ShownFailure{"Unable to open source audio file a.wav. (OSStatus -1094995529)",
                            fixture.source}));
}

} // namespace
} // namespace torvo::test
