// WAV files at the device's rate and depth that players accept despite wrong or unusual headers.
// They cannot be stamped unchanged, so they are converted.

#include "AudioFixtures.h"
#include "AudioSupport/RiffChunks.h"
#include "BankExporter.h"
#include "BankGenerator.h"
#include "BankMappingStore.h"
#include "Models/GenerationError.h"
#include "SampleScanner.h"
#include "TreeSnapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<std::byte>;
using Frames = std::vector<std::int16_t>;

struct UnwalkableWav {
    const char* name;
    Bytes file;
    Frames frames; ///< the frames that players decode
};

constexpr std::size_t stampSize = 8 + 1936; // bytes
constexpr std::size_t formSizeOffset = 4;
constexpr std::size_t dataSizeOffset = 40; ///< in what `wavOf` makes

Bytes withUInt32(Bytes file, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        file[offset + i] = static_cast<std::byte>(value >> (8 * i));
    return file;
}

/// Written to a pipe: the encoder cannot go back to fill in the sizes.
Bytes piped(const Frames& frames, std::uint32_t formSize, std::uint32_t dataSize) {
    return withUInt32(withUInt32(wavOf(44100, frames), formSizeOffset, formSize), dataSizeOffset,
                      dataSize);
}

Bytes cutShort(const Frames& frames, std::size_t missingBytes) {
    auto file = wavOf(44100, frames);
    file.resize(file.size() - missingBytes);
    return file;
}

std::vector<UnwalkableWav> unwalkableWavs() {
    const auto frames = testSignal(1000);
    const auto first = [&](std::size_t count) {
        return Frames(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(count));
    };
    Frames afterSilence(200);
    afterSilence.insert(afterSilence.end(), frames.begin(), frames.end());
    constexpr std::size_t longSizesOffset = 20; // of the three sizes in "ds64"
    auto longAndPiped = longWav("RF64", 44100, frames);
    for (std::size_t word = 0; word < 6; ++word)
        longAndPiped = withUInt32(longAndPiped, longSizesOffset + 4 * word, 0);
    return {
        {"one byte missing", cutShort(frames, 1), first(999)},
        {"cut in the middle", cutShort(frames, 801), first(599)},
        {"cut behind the header", cutShort(frames, 2000), {}},
        {"largest sizes", piped(frames, 0xFFFFFFFF, 0xFFFFFFFF), frames},
        {"two gigabytes", piped(frames, 0x7FFFF024, 0x7FFFF000), frames},
        {"sizes 0", piped(frames, 0, 0), frames},
        {"sizes 0 and silence first", piped(afterSilence, 0, 0), afterSilence},
        {"RF64", longWav("RF64", 44100, frames), frames},
        {"BW64", longWav("BW64", 44100, frames), frames},
        {"RF64 with sizes 0", longAndPiped, frames},
        {"RIFX", bigEndianWav(44100, frames), frames},
        {"AIFF named WAV", aiffFile(44100, frames), frames},
    };
}

/// Unusual, but the stamp can parse them.
std::map<std::string, Bytes> walkableWavs() {
    const auto plain = wavOf(44100, testSignal(1000));
    const auto format = formatChunk(1, 1, 44100, 2, 16);
    const auto empty = riffFile({format, riffChunk("data", {})});
    const auto followedBy = [](Bytes file, std::span<const std::byte> tail) {
        append(file, tail);
        return file;
    };
    return {
        {"plain", plain},
        {"wrong form size", withUInt32(plain, formSizeOffset, 7)},
        {"no frames", empty},
        {"no frames, then a chunk", followedBy(empty, riffChunk("LIST", bytes("text")))},
        {"no frames, then a few bytes", followedBy(empty, bytes("1234567"))},
        {"a cut chunk behind",
         followedBy(plain, bytes(std::string_view("LIST\x09\0\0\0text", 12)))},
        {"24 bits, six channels", wavFile({44100, 6, 24}, 100)},
        {"odd size without a pad byte",
         [&] {
             auto file = riffFile({format, riffChunk("data", bytes("abc"))});
             file.pop_back();
             return file;
         }()},
    };
}

SampleCompatibility compatibilityOf(const fs::path& path) {
    return AudioCompatibilityEvaluator{}.compatibility(
        AVAudioFileInspector{}.inspectAudioFile(FileURL(path)));
}

TEST(UnwalkableWav, keepsItsCompatibility) {
    const TemporaryFolder folder;
    for (const auto& wav : unwalkableWavs()) {
        const auto path = folder.write(wav.name + std::string(".wav"), wav.file);
        EXPECT_EQ(compatibilityOf(path), SampleCompatibility(CompatibleWav{})) << wav.name;
    }
}

TEST(UnwalkableWav, isConvertedFromTheFramesPresent) {
    const TemporaryFolder folder;
    for (const auto& wav : unwalkableWavs()) {
        SCOPED_TRACE(wav.name);
        const auto sample = sampleToCopy(folder.write("a.wav", wav.file));
        const FileURL destination(folder.write("b.wav", "replaced"));
        EXPECT_EQ(AVAudioSamplePreparer{}.prepare(sample, destination),
                  SamplePreparationMode::converted);
        EXPECT_EQ(deviceFrames(destination.path()), wav.frames);
        EXPECT_EQ(bytesOf(folder / "a.wav"), wav.file);
    }
}

TEST(UnwalkableWav, givesTheSameFramesAtAnotherRate) {
    const TemporaryFolder folder;
    constexpr std::size_t rateOffset = 24; ///< in what `wavOf` makes
    for (const auto& [formSize, dataSize] : {std::pair{0U, 0U}, {0xFFFFFFFFU, 0xFFFFFFFFU}}) {
        const auto file = withUInt32(piped(testSignal(480), formSize, dataSize), rateOffset, 48000);
        EXPECT_EQ(convertedFrames(folder.write("a.wav", file)),
                  convertedFrames(folder.write("b.wav", wavOf(48000, testSignal(480)))));
    }
}

TEST(UnwalkableWav, parsableFilesAreCopiedByteForByte) {
    const TemporaryFolder folder;
    for (const auto& [name, file] : walkableWavs()) {
        SCOPED_TRACE(name);
        const auto path = folder.write("a.wav", file);
        EXPECT_EQ(compatibilityOf(path), SampleCompatibility(CompatibleWav{}));
        EXPECT_EQ(AVAudioSamplePreparer{}.prepare(sampleToCopy(path), FileURL(folder / "b.wav")),
                  SamplePreparationMode::copied);
        EXPECT_EQ(bytesOf(folder / "b.wav"), file);
    }
}

TEST(UnwalkableWav, refusesUndecodableFiles) {
    const TemporaryFolder folder;
    const auto path = folder.write("a.wav", riffFile({riffChunk("data", bytes("abcd"))}));
    EXPECT_EQ(failureOf(AVAudioSamplePreparer{}, sampleToCopy(folder.write("t.wav", "text")),
                        folder / "b.wav"),
              "Unable to open source audio file t.wav. (OSStatus -1094995529)");
    EXPECT_THROW(compatibilityOf(path), GenerationError);
}

class UnwalkableWavRun : public testing::Test {
protected:
    UnwalkableWavRun() {
        for (const auto& wav : unwalkableWavs())
            folder.write(std::string("Loops/") + wav.name + ".wav", wav.file);
        for (const auto& [name, file] : walkableWavs())
            folder.write("Loops/" + name + ".wav", file);
    }

    ExportSummary exportTo(const BankMappingDocument& document, const fs::path& card) const {
        const BankExporter exporter(systemFileManager(), std::make_shared<AVAudioSamplePreparer>(),
                                    TorvoWAVMetadataWriter());
        return exporter.exportBanks(exportJob(document, FileURL::directory(card), {}));
    }

    TemporaryFolder folder;
};

TEST_F(UnwalkableWavRun, isScannedGeneratedExportedAndImported) {
    const SampleScanner scanner(std::make_shared<AVAudioFileInspector>(), {}, systemFileManager());
    const auto report = scanner.scan(FileURL::directory(folder / "Loops"), GenerationMode::loops);
    EXPECT_TRUE(report.ignoredFiles.empty());
    const std::size_t sampleCount = unwalkableWavs().size() + walkableWavs().size();
    ASSERT_EQ(report.buckets.loop.size(), sampleCount);

    const BankNameScheme naming("Loops");
    const BankMappingStore store;
    const auto document =
        store.document(report.sourceFolder, GenerationMode::loops, naming,
                       generationTemplate(GenerationMode::loops),
                       BankGenerator{}.makeRecipes(report.buckets, GenerationMode::loops,
                                                   std::nullopt, 5, naming, 1));
    std::map<std::string, Frames> framesByName;
    for (auto& wav : unwalkableWavs())
        framesByName[wav.name] = std::move(wav.frames);
    std::int64_t conversions = 0;
    std::map<std::string, int> used;
    for (const auto& recipe : document.recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            ++used[sample.displayName];
            conversions += framesByName.contains(sample.displayName) ? 1 : 0;
        }
    }
    ASSERT_EQ(used.size(), sampleCount);

    const auto summary = exportTo(document, folder.createFolder("card"));
    EXPECT_EQ(summary.convertedFiles, 2 * conversions);
    EXPECT_EQ(summary.copiedFiles, 2 * (5 * 8 - conversions));
    for (const auto& recipe : document.recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            const auto channelFolder =
                folder / ("card/Loops/QZT508/Bank " + std::to_string(recipe.bankIndex) + "/" +
                          std::to_string(channel));
            const auto written = bytesOf(fs::directory_iterator(channelFolder)->path());
            EXPECT_TRUE(std::holds_alternative<RiffChunk>(findDataChunk(MemoryByteSource(written))))
                << sample.displayName;
            const auto found = framesByName.find(sample.displayName);
            const auto expected = found == framesByName.end() ? bytesOf(sample.sourceURL.path())
                                                              : wavOf(44100, found->second);
            ASSERT_EQ(written.size(), expected.size() + stampSize);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), written.begin()))
                << sample.displayName;
        }
    }

    store.exportDocument(document, FileURL(folder / "run.json"));
    const auto imported = store.importDocument(FileURL(folder / "run.json"));
    exportTo(imported, folder.createFolder("second card"));
    EXPECT_EQ(contentsOf(folder / "second card"), contentsOf(folder / "card"));
}

} // namespace
} // namespace torvo::test
