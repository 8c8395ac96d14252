#include "ExportFixture.h"
#include "ForwardingFileManager.h"
#include "LockedFolderFileManager.h"
#include "Models/GenerationError.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

/// A card with an existing export, so that any deletion is visible.
struct FilledCard : ExportFixture {
    FilledCard() {
        job.recipes = {bank(1, {"Old"})};
        run();
        folder.write("card/Kit/notes.txt", "kept");
        folder.write("card/QZT508/Bank 1/info.txt", "another export");
        folder.write("QZT508/info.txt", "beside the card");
        updates.clear();
        before = snapshotOf(folder.path());
    }

    /// Exports, expects that nothing changes, and returns the error's description or "none".
    std::string refusal() {
        const auto error = thrown<GenerationError>([&] { run(); });
        EXPECT_THAT(differences(before, snapshotOf(folder.path())), testing::IsEmpty());
        EXPECT_TRUE(updates.empty());
        return error ? error->errorDescription() : "none";
    }

    TreeSnapshot before;
};

TEST(BankExporterRefusal, refusesNamesThatEscapeTheOutputFolder) {
    using namespace std::string_literals;
    for (const auto& name :
         {""s, "."s, ".."s, "a/b"s, "../Kit"s, "/"s, "/etc"s, "Kit/"s, "Kit\0x"s, "\0"s}) {
        FilledCard card;
        card.job.naming.sourceFolderName = name;
        EXPECT_EQ(card.refusal(), "\"" + name + "\" cannot be the name of an export folder.");
    }
}

TEST(BankExporterRefusal, acceptsUnusualButSafeNames) {
    for (const std::string name : {"...", "..Kit", " ", "\\", "#?%", "ドラム", "-", "\xFF"}) {
        ExportFixture fixture;
        fixture.job.naming.sourceFolderName = name;
        fixture.run();
        EXPECT_TRUE(fs::is_directory(fixture.card.path() / name / "QZT508/Pool")) << name;
    }
}

TEST(BankExporterRefusal, refusesARunFolderLinkThatDoesNotPointToAFolder) {
    FilledCard card;
    fs::create_symlink(card.source, card.folder / "card/File");
    fs::create_symlink(card.folder / "missing", card.folder / "card/Dead");
    fs::create_symlink(card.folder / "card/Circle", card.folder / "card/Circle");
    card.before = snapshotOf(card.folder.path());
    for (const auto* name : {"File", "Dead", "Circle"}) {
        card.job.naming.sourceFolderName = name;
        EXPECT_EQ(card.refusal(), (card.folder / "card" / name).string() +
                                      " is a link that leads to no folder. Nothing was written.");
    }
}

TEST(BankExporterRefusal, usesARunFolderThatIsALinkToAFolder) {
    FilledCard card;
    fs::create_directory_symlink(card.folder / "card/Kit", card.folder / "card/Linked");
    card.job.naming.sourceFolderName = "Linked";
    card.job.recipes = {card.bank(1, {"New"})};
    const auto summary = card.run();
    EXPECT_EQ(summary.rootFolder, FileURL::directory(card.folder / "card/Linked/QZT508"));
    EXPECT_TRUE(fs::is_symlink(card.folder / "card/Linked"));
    EXPECT_TRUE(fs::exists(card.folder / "card/Kit/QZT508/Bank 1/1/New.wav"));
    EXPECT_FALSE(fs::exists(card.folder / "card/Kit/QZT508/Bank 1/1/Old.wav"));
    EXPECT_EQ(textOf(card.folder / "card/Kit/notes.txt"), "kept");
}

TEST(BankExporterRefusal, acceptsALinkedExportFolder) {
    ExportFixture fixture;
    fs::create_directory_symlink(fixture.card.path(), fixture.folder / "link");
    fixture.job.exportFolder = FileURL::directory(fixture.folder / "link");
    fixture.run();
    EXPECT_TRUE(fs::is_directory(fixture.inDevice("Pool")));
}

class SampleInside : public testing::Test {
protected:
    /// The result of a run with one sample at this path.
    std::string refusalOf(const fs::path& path) {
        card.before = snapshotOf(card.folder.path());
        card.job.recipes = {card.bank(1, {"New"}), card.bank(2, {"New"})};
        card.job.recipes[1].channels.at(5) = sampleAt(path, "Old");
        return card.refusal();
    }
    std::string expected(const std::string& name) const {
        return "The sample " + name + " lies inside " + (card.folder / "card/Kit/QZT508").string() +
               ", which this export would replace.";
    }

    FilledCard card;
};

TEST_F(SampleInside, isRefused) {
    EXPECT_EQ(refusalOf(card.inDevice("Bank 1/1/Old.wav")), expected("Old.wav"));
    EXPECT_EQ(refusalOf(card.inDevice("Old.wav")), expected("Old.wav")) << "although it is missing";
    EXPECT_EQ(refusalOf(card.inDevice("no/such/Old.wav")), expected("Old.wav"));
}

TEST_F(SampleInside, isRefusedThroughAnUnnormalizedPath) {
    EXPECT_EQ(refusalOf(card.folder / "card/Kit/x/../QZT508/./Bank 1/1/Old.wav"),
              expected("Old.wav"));
}

TEST_F(SampleInside, isRefusedThroughALinkToAFolder) {
    fs::create_directory_symlink(card.folder / "card", card.folder / "link");
    EXPECT_EQ(refusalOf(card.folder / "link/Kit/QZT508/Bank 1/1/Old.wav"), expected("Old.wav"));
    fs::create_directory_symlink(card.inDevice("Bank 1"), card.folder / "bank");
    EXPECT_EQ(refusalOf(card.folder / "bank/1/Old.wav"), expected("Old.wav"));
}

TEST_F(SampleInside, isRefusedThroughALinkToTheFile) {
    fs::create_symlink(card.inDevice("Bank 1/1/Old.wav"), card.folder / "link.wav");
    EXPECT_EQ(refusalOf(card.folder / "link.wav"), expected("link.wav"));
    fs::create_symlink(card.folder / "link.wav", card.folder / "link of a link.wav");
    EXPECT_EQ(refusalOf(card.folder / "link of a link.wav"), expected("link of a link.wav"));
}

TEST_F(SampleInside, isRefusedWhenItIsALinkToASampleOutside) {
    // The sample itself would survive, but the link to it would be deleted.
    fs::create_symlink(card.source, card.inDevice("link.wav"));
    EXPECT_EQ(refusalOf(card.inDevice("link.wav")), expected("link.wav"));
    fs::create_directory_symlink(card.folder / "source", card.inDevice("linked"));
    EXPECT_EQ(refusalOf(card.inDevice("linked/a.wav")), expected("a.wav"));
}

TEST_F(SampleInside, isRefusedWhenTheExportFolderIsALink) {
    fs::create_directory_symlink(card.folder / "card", card.folder / "link");
    card.job.exportFolder = FileURL::directory(card.folder / "link");
    EXPECT_EQ(refusalOf(card.inDevice("Bank 1/1/Old.wav")),
              "The sample Old.wav lies inside " + (card.folder / "link/Kit/QZT508").string() +
                  ", which this export would replace.");
}

TEST_F(SampleInside, isRefusedWhenTheRunFolderIsALink) {
    fs::create_directory_symlink(card.folder / "card/Kit", card.folder / "card/Linked");
    card.job.naming.sourceFolderName = "Linked";
    EXPECT_EQ(refusalOf(card.folder / "card/Kit/QZT508/Bank 1/1/Old.wav"),
              "The sample Old.wav lies inside " + (card.folder / "card/Linked/QZT508").string() +
                  ", which this export would replace.");
}

/// The real file system, except that one folder reports a different identity.
class WithIdentity final : public ForwardingFileManager {
public:
    WithIdentity(fs::path folder, FileIdentity identity)
        : folder_(std::move(folder)), identity_(identity) {}

    std::optional<FileStatus> status(const fs::path& path) const override {
        auto found = behind().status(path);
        if (found && path == folder_)
            found->identity = identity_;
        return found;
    }

private:
    fs::path folder_;
    FileIdentity identity_;
};

TEST_F(SampleInside, isDetectedByDeviceAndInode) {
    card.job.recipes = {card.bank(1, {"New"})};
    const auto deviceFolder = systemFileManager()->status(card.inDevice(""))->identity;
    const auto refusal = [&](FileIdentity identity) {
        const auto fileManager =
            std::make_shared<WithIdentity>(card.source.parent_path(), identity);
        return thrown<GenerationError>([&] { card.run(fileManager); }).has_value();
    };
    // Like a bind mount: a different path to the same folder.
    EXPECT_TRUE(refusal(deviceFolder));
    EXPECT_THAT(differences(card.before, snapshotOf(card.folder.path())), testing::IsEmpty());
    EXPECT_FALSE(refusal({.device = deviceFolder.device + 1, .node = deviceFolder.node}))
        << "inode numbers are unique within a volume only";
    EXPECT_FALSE(refusal({.device = deviceFolder.device, .node = deviceFolder.node + 1}));
}

TEST_F(SampleInside, isNotDetectedThroughAHardLinkOutside) {
    // The content survives when the hard link in the device folder is deleted.
    fs::create_hard_link(card.inDevice("Bank 1/1/Old.wav"), card.folder / "source/same.wav");
    card.job.recipes = {card.bank(1, {"New"})};
    card.job.recipes[0].channels.at(1) = sampleAt(card.folder / "source/same.wav", "Same");
    card.run();
    EXPECT_TRUE(fs::exists(card.inDevice("Bank 1/1/Same.wav")));
}

TEST_F(SampleInside, siblingsOfTheDeviceFolderAreOutside) {
    for (const auto* path :
         {"card/Kit/a.wav", "card/Kit/QZT508 old/a.wav", "card/QZT508/a.wav", "card/a.wav"}) {
        FilledCard other;
        fs::create_directories((other.folder / path).parent_path());
        fs::copy_file(other.source, other.folder / path);
        other.job.recipes[0].channels.at(3) = sampleAt(other.folder / path, "a");
        other.run();
        EXPECT_TRUE(fs::exists(other.inDevice("Bank 1/3/a.wav"))) << path;
    }
}

TEST(BankExporterRefusal, refusesASourceFolderInsideTheDeviceFolder) {
    for (const auto* below : {"QZT508", "QZT508/Pool", "QZT508/no/such"}) {
        FilledCard card;
        const auto source = card.folder / ("card/Kit/" + std::string(below));
        card.job.sourceFolder = FileURL::directory(source);
        card.job.recipes.clear();
        EXPECT_EQ(card.refusal(), "The source folder " + source.string() + " lies inside " +
                                      (card.folder / "card/Kit/QZT508").string() +
                                      ", which this export would replace.");
    }
}

TEST(BankExporterRefusal, acceptsADeviceFolderThatIsALinkToTheSamples) {
    // Only the link is removed, not its target.
    ExportFixture fixture;
    fixture.folder.createFolder("card/Kit");
    fs::create_directory_symlink(fixture.folder / "source", fixture.folder / "card/Kit/QZT508");
    fixture.job.recipes = {fixture.bank(1, {"a"})};
    fixture.run();
    EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 1/1/a.wav")));
    EXPECT_TRUE(fs::exists(fixture.source));
}

TEST(BankExporterRefusal, reportsALockedRunFolderBeforeDeletingAnything) {
    FilledCard card;
    const auto locked = std::make_shared<LockedFolderFileManager>(card.folder / "card/Kit");
    const auto error = thrown<FileError>([&] { card.run(locked); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), std::errc::permission_denied);
    EXPECT_THAT(differences(card.before, snapshotOf(card.folder.path())), testing::IsEmpty());
}

TEST(BankExporterRefusal, reportsARunFolderThatIsAFile) {
    ExportFixture fixture;
    fixture.folder.write("card/Kit", "a file");
    const auto error = thrown<FileError>([&] { fixture.run(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->operation(), FileOperation::createFolder);
    EXPECT_EQ(textOf(fixture.folder / "card/Kit"), "a file");
}

} // namespace
} // namespace torvo::test
