#include "Models/GenerationError.h"
#include "SampleScanner.h"
#include "ScanFixture.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace torvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SampleScanner, takesTheRoleFromTheNearestFolderThatHasOne) {
    struct Row {
        const char* path;
        ChannelRole role;
    };
    const Row rows[] = {
        {"Kicks/808/BD 01.wav", ChannelRole::kick},
        {"Kicks/808/Snare.wav", ChannelRole::kick},
        {"Hats/Closed/x.wav", ChannelRole::openHat},
        {"Closed Hats/x.wav", ChannelRole::closedHat},
        {"Closed Hats Long/x.wav", ChannelRole::openHat},
        {"Kicks/Snares/x.wav", ChannelRole::snare},
        {"Snares/Kicks/x.wav", ChannelRole::kick},
        {"Crash/Kicks/a.wav", ChannelRole::kick},
        {"Perc/Clap 1.wav", ChannelRole::clap},
        {"Tuned Perc/Clap 1.wav", ChannelRole::perc},
        {"Kick 01.wav", ChannelRole::kick},
        {"Kick_02.wav", ChannelRole::kick},
        {"kick.aif.wav", ChannelRole::kick},
        {"Crash Kick.wav", ChannelRole::kick}, // only folders are ignored by name
    };
    for (const auto& row : rows) {
        const ScanFixture kit;
        kit.addAudio(row.path);
        const auto report = kit.scan();
        EXPECT_THAT(pathsOf(report, row.role), ElementsAre(row.path)) << row.path;
        EXPECT_THAT(report.ignoredFiles, IsEmpty());
        EXPECT_THAT(report.ignoredFolders, IsEmpty());
    }
}

TEST(SampleScanner, reportsAllDetailsOfASample) {
    const ScanFixture kit;
    kit.add("Kicks/Boom 01.WAV", "audio 48000");
    const auto report = kit.scan();
    EXPECT_EQ(report.mode, GenerationMode::drums);
    EXPECT_EQ(report.sourceFolder, kit.root);
    const AudioFormatDetails details{"WAV", 48000, 2, 16, true};
    const SampleCandidate expected{FileURL(kit.at("Kicks/Boom 01.WAV")), ChannelRole::kick,
                                   "Boom 01", AudioCompatibilityEvaluator().compatibility(details),
                                   details};
    EXPECT_THAT(report.buckets.kick, ElementsAre(expected));
    EXPECT_EQ(report.countsByRole().at(ChannelRole::kick), 1);
}

TEST(SampleScanner, classifiesFilesInAPercFolderByTheirNames) {
    // Intended: "Perc" alone has no role.
    const ScanFixture kit;
    kit.addAudio("Perc/Conga.wav");
    kit.addAudio("Perc/Loose.wav");
    const auto report = kit.scan();
    EXPECT_THAT(pathsOf(report, ChannelRole::perc), ElementsAre("Perc/Conga.wav"));
    EXPECT_THAT(texts(report.ignoredFiles), ElementsAre("Perc/Loose.wav: Unclassified sample"));
}

TEST(SampleScanner, ignoresTheNameOfTheSourceFolder) {
    const TemporaryFolder folder;
    for (const auto* name : {"Kicks", "Crash"}) {
        folder.write(std::string(name) + "/x.wav", "audio");
        const SampleScanner scanner(std::make_shared<FakeInspector>(), {}, systemFileManager());
        const auto report = scanner.scan(FileURL::directory(folder / name), GenerationMode::drums);
        EXPECT_THAT(texts(report.ignoredFiles), ElementsAre("x.wav: Unclassified sample"));
        EXPECT_THAT(report.ignoredFolders, IsEmpty());
    }
}

TEST(SampleScanner, listsAnIgnoredFolderOnceWithoutItsFiles) {
    const ScanFixture kit;
    for (int i = 0; i < 20; ++i)
        kit.addAudio("Ride Cymbals/Kick " + std::to_string(i) + ".wav");
    kit.addAudio("Kicks/Crash/a.wav");
    kit.addAudio("Kicks/Crash/808/b.wav");
    kit.addAudio("Shaker/a.wav");
    kit.addAudio("Kicks/a.wav");
    const auto report = kit.scan();
    EXPECT_THAT(texts(report.ignoredFolders),
                ElementsAre("Kicks/Crash: Ignored v1 folder", "Ride Cymbals: Ignored v1 folder",
                            "Shaker: Ignored v1 folder"));
    EXPECT_THAT(report.ignoredFiles, IsEmpty());
    EXPECT_THAT(kit.inspector->inspected(), ElementsAre(kit.at("Kicks/a.wav")));
}

TEST(SampleScanner, ignoresAFolderWithARoleAndAnIgnoredWord) {
    const ScanFixture kit;
    for (const auto* folder : {"Crash Kicks", "Kicks/Ride Hats", "Snares and Shakers"})
        kit.addAudio(std::string(folder) + "/a.wav");
    const auto report = kit.scan();
    EXPECT_THAT(texts(report.ignoredFolders),
                ElementsAre("Crash Kicks: Ignored v1 folder", "Kicks/Ride Hats: Ignored v1 folder",
                            "Snares and Shakers: Ignored v1 folder"));
    EXPECT_THAT(report.ignoredFiles, IsEmpty());
    for (const auto role : allChannelRoles)
        EXPECT_EQ(report.countsByRole().at(role), 0) << displayName(role);
}

TEST(SampleScanner, doesNotListAnEmptyIgnoredFolder) {
    const ScanFixture kit;
    kit.folder.createFolder("Kit/Crash");
    kit.add("Ride/.hidden", "");
    const auto report = kit.scan();
    EXPECT_THAT(report.ignoredFolders, IsEmpty()) << "folders are judged by their files";
    EXPECT_THAT(texts(report.ignoredFiles),
                ElementsAre("Ride/.hidden: Ignored hidden or sidecar file"));
}

TEST(SampleScanner, takesEveryFileForLoopsAndStabs) {
    for (const auto& [mode, role] : {std::pair{GenerationMode::loops, ChannelRole::loop},
                                     std::pair{GenerationMode::stabs, ChannelRole::stab}}) {
        const ScanFixture kit;
        kit.addAudio("Crash/a.wav");
        kit.addAudio("Kicks/b.wav");
        kit.addAudio("x.mp3");
        kit.add("notes.txt", "no audio");
        kit.add("Kicks/.b.wav", "audio");
        const auto report = kit.scan(mode);
        EXPECT_THAT(pathsOf(report, role), ElementsAre("Crash/a.wav", "Kicks/b.wav", "x.mp3"));
        EXPECT_EQ(report.countsByRole().at(ChannelRole::kick), 0);
        EXPECT_THAT(report.ignoredFolders, IsEmpty());
        EXPECT_THAT(texts(report.ignoredFiles),
                    ElementsAre("Kicks/.b.wav: Ignored hidden or sidecar file",
                                "notes.txt: Unsupported audio file"));
    }
}

TEST(SampleScanner, ignoresHiddenAndSidecarFilesFirst) {
    for (const auto mode : allGenerationModes) {
        const ScanFixture kit;
        for (const auto* path : {".DS_Store", "Kicks/.Kick.wav", "Kicks/Kick.asd", "Kick.ASD",
                                 "Crash/x.Asd", "x.ds_store", "x.DS_STORE", ".asd"})
            kit.addAudio(path);
        const auto report = kit.scan(mode);
        EXPECT_EQ(report.ignoredFiles.size(), 8U);
        for (const auto& item : report.ignoredFiles)
            EXPECT_EQ(item.reason, "Ignored hidden or sidecar file") << item.path;
        EXPECT_THAT(report.ignoredFolders, IsEmpty());
        EXPECT_THAT(kit.inspector->inspected(), IsEmpty());
    }
}

TEST(SampleScanner, acceptsFilesInAHiddenFolder) {
    // Intended: only the name of the file counts; hidden folders are walked.
    const ScanFixture kit;
    kit.addAudio(".cache/Kick 1.wav");
    EXPECT_THAT(pathsOf(kit.scan(), ChannelRole::kick), ElementsAre(".cache/Kick 1.wav"));
}

TEST(SampleScanner, classifiesBeforeOpening) {
    const ScanFixture kit;
    kit.add("notes.txt", "text");
    kit.add("Kicks/notes.txt", "text");
    kit.add("Kicks/empty.wav", "");
    const auto report = kit.scan();
    EXPECT_THAT(texts(report.ignoredFiles), ElementsAre("Kicks/empty.wav: Unsupported audio file",
                                                        "Kicks/notes.txt: Unsupported audio file",
                                                        "notes.txt: Unclassified sample"));
    EXPECT_EQ(kit.inspector->inspected().size(), 2U);
}

TEST(SampleScanner, sortsIgnoredFilesByTheBytesOfTheirPaths) {
    const ScanFixture kit;
    for (const auto* name : {"b", "B", "a/z", "a b", "é", "Z", "a.b", "10", "9"})
        kit.add(name, "");
    EXPECT_THAT(texts(kit.scan(GenerationMode::drums).ignoredFiles),
                ElementsAre("10: Unclassified sample", "9: Unclassified sample",
                            "B: Unclassified sample", "Z: Unclassified sample",
                            "a b: Unclassified sample", "a.b: Unclassified sample",
                            "a/z: Unclassified sample", "b: Unclassified sample",
                            "é: Unclassified sample"));
}

TEST(SampleScanner, keepsTheWalkOrderInBuckets) {
    const ScanFixture kit;
    // Depth first, each folder in the byte order of its names.
    for (const auto* path : {"b.wav", "a/b.wav", "a.wav", "a/a/z.wav", "B.wav", "a0.wav"})
        kit.addAudio(path);
    EXPECT_THAT(pathsOf(kit.scan(GenerationMode::loops), ChannelRole::loop),
                ElementsAre("B.wav", "a/a/z.wav", "a/b.wav", "a.wav", "a0.wav", "b.wav"));
}

// More files than one batch opens, on any thread.
TEST(SampleScanner, keepsTheWalkOrderOfManyFilesInEveryScan) {
    const ScanFixture kit;
    Paths samples;
    for (int i = 0; i < 300; ++i) {
        const auto path = "Kicks/" + std::to_string(1000 + i) + ".wav";
        kit.add(path, i % 7 == 0 ? "text" : "audio");
        if (i % 7 != 0)
            samples.push_back(path);
    }
    const auto first = kit.scan();
    EXPECT_EQ(pathsOf(first, ChannelRole::kick), samples);
    EXPECT_EQ(first.ignoredFiles.size(), 300 - samples.size());
    EXPECT_EQ(kit.scan(), first);
}

TEST(SampleScanner, returnsAnEmptyReportForAnEmptyFolder) {
    const ScanFixture kit;
    for (const auto mode : allGenerationModes)
        EXPECT_EQ(kit.scan(mode), (ScanReport{mode, kit.root, {}, {}, {}}));
}

TEST(SampleScanner, namesAnUnreadableFolderAsGiven) {
    const ScanFixture kit;
    kit.add("file", "");
    const SampleScanner scanner(kit.inspector, {}, systemFileManager());
    const auto errorOf = [&](const FileURL& folder) {
        const auto error =
            thrown<GenerationError>([&] { scanner.scan(folder, GenerationMode::drums); });
        return error ? error->errorDescription() : "none";
    };
    const auto missing = kit.at("x/../missing");
    EXPECT_EQ(errorOf(FileURL::directory(missing)), "Unable to read " + missing.string() + ".");
    EXPECT_EQ(errorOf(FileURL(kit.at("file"))), "Unable to read " + kit.at("file").string() + ".");
    std::filesystem::create_symlink(kit.at("gone"), kit.at("dead"));
    EXPECT_EQ(errorOf(FileURL(kit.at("dead"))), "Unable to read " + kit.at("dead").string() + ".");
    const std::string tooLong(300, 'x');
    EXPECT_EQ(errorOf(FileURL(kit.at(tooLong))),
              "Unable to read " + kit.at(tooLong).string() + ".");
    EXPECT_EQ(errorOf(FileURL(kit.at("\xFF"))),
              "Unable to read " + kit.root.path().string() + "/\uFFFD.");
}

} // namespace
} // namespace torvo::test
