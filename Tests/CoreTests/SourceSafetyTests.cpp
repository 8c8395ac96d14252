// Output inside the source, source inside the output, both the same folder, links between them: a
// run leaves the source unchanged, byte for byte.

#include "FaultyFileManager.h"
#include "Models/UserFacingDescription.h"
#include "SmallLibrary.h"
#include "TreeSnapshot.h"
#include "WavFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Entanglement {
    std::string name;
    /// Prepares the folder with the library "Kit" and returns the output folder.
    std::function<fs::path(const TemporaryFolder&)> output;
    /// Part of the message, or none when the run is safe.
    std::optional<std::string> refusal;
};

void PrintTo(const Entanglement& entanglement, std::ostream* to) {
    *to << entanglement.name;
}

const std::vector<Entanglement>& entanglements() {
    static const std::vector<Entanglement> all{
        {"outputIsTheSource", [](const TemporaryFolder& folder) { return folder / "Kit"; },
         std::nullopt},
        {"outputInsideTheSource",
         [](const TemporaryFolder& folder) { return folder.createFolder("Kit/Kicks/out"); },
         std::nullopt},
        {"outputHoldsTheSource", [](const TemporaryFolder& folder) { return folder.path(); },
         std::nullopt},
        {"outputIsALinkToTheSource",
         [](const TemporaryFolder& folder) {
             fs::create_directory_symlink(folder / "Kit", folder / "link");
             return folder / "link";
         },
         std::nullopt},
        {"runFolderIsALinkToTheSource",
         [](const TemporaryFolder& folder) {
             fs::create_directory_symlink(folder / "Kit", folder.createFolder("out") / "Kit");
             return folder / "out";
         },
         std::nullopt},
        {"runFolderIsALinkToASample",
         [](const TemporaryFolder& folder) {
             fs::create_symlink(folder / "Kit/Kicks/kick one.wav",
                                folder.createFolder("out") / "Kit");
             return folder / "out";
         },
         "is a link that leads to no folder"},
        {"deviceFolderIsALinkToTheSource",
         [](const TemporaryFolder& folder) {
             fs::create_directory_symlink(folder / "Kit",
                                          folder.createFolder("out/Kit") / "QZT508");
             return folder / "out";
         },
         std::nullopt},
        {"deviceFolderIsALinkToAFolderOfTheSource",
         [](const TemporaryFolder& folder) {
             fs::create_directory_symlink(folder / "Kit/Toms",
                                          folder.createFolder("out/Kit") / "QZT508");
             return folder / "out";
         },
         std::nullopt},
    };
    return all;
}

class EntanglementTests : public ::testing::TestWithParam<Entanglement> {};

/// Existing items are unchanged; new folders may have been added, which updates the modification
/// time of their parent.
void expectKept(const TreeSnapshot& before, const TreeSnapshot& after) {
    for (const auto& [path, item] : before) {
        const auto found = after.find(path);
        ASSERT_NE(found, after.end()) << path << " is gone";
        EXPECT_EQ(found->second.content, item.content) << path;
        EXPECT_EQ(found->second.mode, item.mode) << path;
        if (!item.content.empty()) {
            EXPECT_EQ(found->second.modifiedTime, item.modifiedTime) << path;
        }
    }
}

TEST_P(EntanglementTests, keepsTheSource) {
    const TemporaryFolder folder;
    const auto source = writeSmallLibrary(folder);
    const auto out = GetParam().output(folder);
    const auto before = snapshotOf(source);
    const CoreServices services(systemFileManager());
    const auto document = [&] {
        const auto report = services.scan(source);
        const BankNameScheme naming("Kit");
        return services.store().document(
            report.sourceFolder, report.mode, naming, generationTemplate(report.mode),
            BankGenerator{}.makeRecipes(report.buckets, report.mode, std::nullopt, 2, naming, 5));
    }();
    // Twice: the second run finds the device folder of the first.
    for (int i = 0; i < 2; ++i) {
        std::optional<std::string> failure;
        try {
            services.exportDocument(document, out);
        } catch (const std::exception& error) {
            failure = userFacingDescription(error);
        }
        if (GetParam().refusal) {
            ASSERT_TRUE(failure);
            EXPECT_THAT(*failure, HasSubstr(*GetParam().refusal));
        } else {
            EXPECT_EQ(failure, std::nullopt);
        }
        expectKept(before, snapshotOf(source));
    }
}

INSTANTIATE_TEST_SUITE_P(Places, EntanglementTests, ::testing::ValuesIn(entanglements()),
                         [](const auto& each) { return each.param.name; });

/// A device folder to be replaced that contains samples.
class SourceSafetyTests : public ::testing::Test {
protected:
    /// Exports samples at these paths below the folder, as banks of "Kit" into "out".
    std::string refusalOf(const fs::path& source, const std::vector<std::string>& samples) const {
        BankRecipe recipe;
        for (std::size_t i = 0; i < 8; ++i) {
            recipe.channels[static_cast<std::int64_t>(i) + 1] = {
                FileURL(folder_ / samples[i % samples.size()]),
                ChannelRole::kick,
                "kick",
                CompatibleWav{},
                {}};
        }
        const auto before = snapshotOf(folder_.path());
        try {
            services_.exportDocument(
                services_.store().document(FileURL::directory(source), GenerationMode::drums,
                                           BankNameScheme("Kit"),
                                           generationTemplate(GenerationMode::drums), {recipe}),
                folder_ / "out");
        } catch (const std::exception& error) {
            EXPECT_THAT(differences(before, snapshotOf(folder_.path())), IsEmpty());
            return userFacingDescription(error);
        }
        return "";
    }

    TemporaryFolder folder_;
    CoreServices services_{systemFileManager()};
    std::vector<std::byte> wav_ = wavFile(WavFormat{}, std::size_t{50});
};

TEST_F(SourceSafetyTests, refusesASampleInTheDeviceFolder) {
    folder_.write("Kit/kick.wav", wav_);
    folder_.write("out/Kit/QZT508/Bank 1/1/old.wav", wav_);
    EXPECT_THAT(refusalOf(folder_ / "Kit", {"Kit/kick.wav", "out/Kit/QZT508/Bank 1/1/old.wav"}),
                HasSubstr("lies inside"));
}

TEST_F(SourceSafetyTests, refusesALinkToASampleInTheDeviceFolder) {
    folder_.write("out/Kit/QZT508/Bank 1/1/old.wav", wav_);
    folder_.createFolder("Kit");
    fs::create_symlink(folder_ / "out/Kit/QZT508/Bank 1/1/old.wav", folder_ / "Kit/kick.wav");
    EXPECT_THAT(refusalOf(folder_ / "Kit", {"Kit/kick.wav"}), HasSubstr("lies inside"));
}

TEST_F(SourceSafetyTests, refusesASourceInTheDeviceFolder) {
    folder_.write("elsewhere/kick.wav", wav_);
    folder_.write("out/Kit/QZT508/Kit/never picked.wav", wav_);
    EXPECT_THAT(refusalOf(folder_ / "out/Kit/QZT508/Kit", {"elsewhere/kick.wav"}),
                HasSubstr("lies inside"));
}

TEST_F(SourceSafetyTests, refusesTheDeviceFolderAsTheSource) {
    folder_.write("elsewhere/kick.wav", wav_);
    folder_.write("out/Kit/QZT508/never picked.wav", wav_);
    fs::create_directory_symlink(folder_ / "out/Kit/QZT508", folder_ / "link");
    EXPECT_THAT(refusalOf(folder_ / "link", {"elsewhere/kick.wav"}), HasSubstr("lies inside"));
}

/// If the disk fails during the check, the export must still be refused.
TEST_F(SourceSafetyTests, refusesASampleThatCannotBeResolved) {
    folder_.write("out/Kit/QZT508/Bank 1/1/old.wav", wav_);
    folder_.createFolder("Kit");
    fs::create_symlink(folder_ / "out/Kit/QZT508/Bank 1/1/old.wav", folder_ / "Kit/kick.wav");
    const auto before = snapshotOf(folder_ / "out/Kit");
    BankRecipe recipe;
    recipe.channels[1] = {
        FileURL(folder_ / "Kit/kick.wav"), ChannelRole::kick, "kick", CompatibleWav{}, {}};
    const auto document = services_.store().document(
        FileURL::directory(folder_ / "Kit"), GenerationMode::drums, BankNameScheme("Kit"),
        generationTemplate(GenerationMode::drums), {recipe});
    for (std::uint64_t n = 1; n <= 12; ++n) {
        const CoreServices disturbed(std::make_shared<FaultyFileManager>(
            systemFileManager(), std::make_shared<FaultPlan>(n, EIO, FaultPlan::Extent::once)));
        EXPECT_THROW(disturbed.exportDocument(document, folder_ / "out"), std::exception);
        EXPECT_THAT(differences(before, snapshotOf(folder_ / "out/Kit")), IsEmpty()) << n;
    }
}

/// Stamps a folder whose files are symbolic or hard links to a library.
TEST_F(SourceSafetyTests, doesNotStampALibraryThroughLinks) {
    folder_.write("Kit/kick.wav", wav_);
    folder_.write("Kit/snare.wav", wav_);
    folder_.createFolder("QZT508/Bank 1/1");
    fs::create_symlink(folder_ / "Kit/kick.wav", folder_ / "QZT508/Bank 1/1/kick.wav");
    fs::create_hard_link(folder_ / "Kit/snare.wav", folder_ / "QZT508/Bank 1/1/snare.wav");
    fs::create_directory_symlink(folder_ / "Kit", folder_ / "QZT508/Bank 1/2");
    const auto before = snapshotOf(folder_ / "Kit");
    EXPECT_EQ(services_.metadataWriter().apply({}, FileURL::directory(folder_ / "QZT508")), 2);
    EXPECT_THAT(differences(before, snapshotOf(folder_ / "Kit")), IsEmpty());
}

/// A converted sample overwrites any item of its name; a link is replaced, not followed.
TEST_F(SourceSafetyTests, preparingReplacesALinkAtTheDestination) {
    folder_.write("Kit/kick.wav", wav_);
    const auto fast = folder_.write("fast.wav", wavFile({.sampleRate = 48000}, std::size_t{50}));
    const auto before = snapshotOf(folder_ / "Kit");
    const AVAudioSamplePreparer preparer;
    for (const SampleCompatibility& compatibility :
         {SampleCompatibility{CompatibleWav{}}, SampleCompatibility{RequiresConversion{"rate"}}}) {
        fs::remove(folder_ / "destination.wav");
        fs::create_symlink(folder_ / "Kit/kick.wav", folder_ / "destination.wav");
        preparer.prepare({FileURL(fast), ChannelRole::kick, "fast", compatibility, {}},
                         FileURL(folder_ / "destination.wav"));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder_ / "destination.wav")));
        EXPECT_THAT(differences(before, snapshotOf(folder_ / "Kit")), IsEmpty());
    }
}

} // namespace
} // namespace torvo::test
