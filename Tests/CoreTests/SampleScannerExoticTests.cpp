#include "ForwardingFileManager.h"
#include "LockedFolderFileManager.h"
#include "Models/GenerationError.h"
#include "ScanFixture.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

void bindSocket(const fs::path& path) {
    const int number = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(number, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    std::ranges::copy(path.native(), address.sun_path);
    const auto bound = ::bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::close(number);
    ASSERT_EQ(bound, 0);
}

/// Lists folders with the given entries only.
class ListedFolders final : public ForwardingFileManager {
public:
    ListedFolders(const fs::path& folder, const std::string& name, FileKind kind) {
        add(folder, name, kind);
    }
    void add(const fs::path& folder, const std::string& name, FileKind kind) {
        entries_[folder].push_back({name, kind});
    }
    std::vector<DirectoryEntry> contentsOfDirectory(const fs::path& path) const override {
        return entries_.at(path);
    }

private:
    std::map<fs::path, std::vector<DirectoryEntry>> entries_;
};

TEST(SampleScannerLinks, followsALinkToAFileOutside) {
    const ScanFixture kit;
    const auto kick = kit.folder.write("outside/Kicks/Kick 9.wav", "audio");
    const auto plain = kit.folder.write("outside/Kicks/plain.wav", "audio");
    const auto text = kit.folder.write("outside/Snare.txt", "text");
    kit.folder.createFolder("Kit/Snares");
    fs::create_symlink(kick, kit.at("Snares/link.wav"));
    fs::create_symlink(plain, kit.at("Snares/other.wav"));
    fs::create_symlink(text, kit.at("third.wav"));
    const auto report = kit.scan();
    // The role comes from the file name of the target, not from the folder of the link or of the
    // target.
    EXPECT_THAT(pathsOf(report, ChannelRole::kick), ElementsAre(kick.string()));
    EXPECT_EQ(report.buckets.kick[0].displayName, "Kick 9");
    EXPECT_EQ(report.buckets.kick[0].sourceURL, FileURL(kick));
    EXPECT_THAT(texts(report.ignoredFiles),
                ElementsAre("Snare.txt: Unsupported audio file", "plain.wav: Unclassified sample"));
}

TEST(SampleScannerLinks, listsTheTargetOfALinkInsideTwice) {
    const ScanFixture kit;
    kit.addAudio("Kicks/a.wav");
    kit.folder.createFolder("Kit/Snares");
    fs::create_symlink("../Kicks/a.wav", kit.at("Snares/b.wav"));
    const auto report = kit.scan();
    EXPECT_THAT(pathsOf(report, ChannelRole::kick), ElementsAre("Kicks/a.wav", "Kicks/a.wav"));
    EXPECT_THAT(pathsOf(report, ChannelRole::snare), IsEmpty());
}

TEST(SampleScannerLinks, testsTheTargetOfALinkForHiddenNames) {
    const ScanFixture kit;
    fs::create_symlink(kit.folder.write("outside/.secret.wav", "audio"), kit.at("Kick.wav"));
    fs::create_symlink(kit.folder.write("outside/Kick 2.wav", "audio"), kit.at(".link"));
    const auto report = kit.scan();
    EXPECT_THAT(texts(report.ignoredFiles),
                ElementsAre(".secret.wav: Ignored hidden or sidecar file"));
    EXPECT_EQ(report.buckets.kick.size(), 1U);
}

TEST(SampleScannerLinks, treatsASiblingWithTheSamePrefixAsInsideTheRoot) {
    // Intended: "below the root" is a comparison of path prefixes, so the folders of "Kit Extra"
    // count for the source folder "Kit". Banks of earlier runs rely on it.
    const ScanFixture kit;
    fs::create_symlink(kit.folder.write("Kit Extra/Kicks/x.wav", "audio"), kit.at("1.wav"));
    fs::create_symlink(kit.folder.write("Kit Extra/Crash/y.wav", "audio"), kit.at("2.wav"));
    fs::create_symlink(kit.folder.write("Kits/z.wav", "audio"), kit.at("3.wav"));
    fs::create_symlink(kit.folder.write("Bag/Kicks/w.wav", "audio"), kit.at("4.wav"));
    const auto report = kit.scan();
    EXPECT_THAT(pathsOf(report, ChannelRole::kick),
                ElementsAre((kit.folder / "Kit Extra/Kicks/x.wav").string()));
    // Files outside the root are shown by name only.
    EXPECT_THAT(texts(report.ignoredFolders), ElementsAre("Crash: Ignored v1 folder"));
    EXPECT_THAT(texts(report.ignoredFiles),
                ElementsAre("w.wav: Unclassified sample", "z.wav: Unclassified sample"));
}

TEST(SampleScannerLinks, keepsTheWalkOrderOfFilesWithTheSameShownPath) {
    const ScanFixture kit;
    fs::create_symlink(kit.folder.write("Kit Extra/Kicks/x.txt", "text"), kit.at("1"));
    fs::create_symlink(kit.folder.write("Bag/x.txt", "text"), kit.at("2"));
    EXPECT_THAT(texts(kit.scan().ignoredFiles),
                ElementsAre("x.txt: Unsupported audio file", "x.txt: Unclassified sample"));
}

TEST(SampleScannerLinks, doesNotFollowLinksToFolders) {
    const ScanFixture kit;
    kit.folder.write("outside/Kick.wav", "audio");
    kit.addAudio("Kicks/a.wav");
    fs::create_symlink(kit.folder / "outside", kit.at("Snares"));
    fs::create_symlink(kit.root.path(), kit.at("Kicks/round"));
    const auto report = kit.scan();
    EXPECT_THAT(pathsOf(report, ChannelRole::kick), ElementsAre("Kicks/a.wav"));
    EXPECT_THAT(report.ignoredFiles, IsEmpty());
}

TEST(SampleScannerLinks, listsADanglingLinkAsAnUnreadableFile) {
    const ScanFixture kit;
    kit.addAudio("Kicks/a.wav");
    kit.addAudio("Crash/a.wav");
    fs::create_symlink(kit.at("missing"), kit.at("Kicks/dead.wav"));
    fs::create_symlink("b", kit.at("Kicks/b"));
    fs::create_symlink(kit.at("Kicks/a.wav") / "x.wav", kit.at("Snare through a file"));
    fs::create_symlink(kit.at("missing"), kit.at(".#Kick.wav"));
    fs::create_symlink(kit.at("missing"), kit.at("Kick.asd"));
    fs::create_symlink(kit.at("missing"), kit.at("notes"));
    fs::create_symlink(kit.at("missing"), kit.at("Crash/dead.wav"));
    const auto drums = kit.scan();
    EXPECT_THAT(pathsOf(drums, ChannelRole::kick), ElementsAre("Kicks/a.wav"));
    EXPECT_THAT(
        texts(drums.ignoredFiles),
        ElementsAre(".#Kick.wav: Ignored hidden or sidecar file",
                    "Kick.asd: Ignored hidden or sidecar file", "Kicks/b: Unsupported audio file",
                    "Kicks/dead.wav: Unsupported audio file",
                    "Snare through a file: Unsupported audio file", "notes: Unclassified sample"));
    EXPECT_THAT(texts(drums.ignoredFolders), ElementsAre("Crash: Ignored v1 folder"));
    EXPECT_THAT(texts(kit.scan(GenerationMode::stabs).ignoredFiles),
                testing::IsSupersetOf(
                    {"notes: Unsupported audio file", "Crash/dead.wav: Unsupported audio file"}));
    EXPECT_THAT(kit.inspector->inspected(),
                testing::Each(testing::AnyOf(kit.at("Kicks/a.wav"), kit.at("Crash/a.wav"))));
}

/// Fails with the given error in one of the two steps of following a link.
class UnreadableLinks final : public ForwardingFileManager {
public:
    enum class Step { resolve, status };
    UnreadableLinks(Step step, int errorNumber) : step_(step), errorNumber_(errorNumber) {}

    fs::path resolve(const fs::path& path) const override {
        if (step_ == Step::resolve && fs::is_symlink(path))
            throw FileError(FileOperation::inspect, path, errorNumber_);
        return behind().resolve(path);
    }
    std::optional<FileStatus> status(const fs::path& path) const override {
        if (step_ == Step::status)
            throw FileError(FileOperation::inspect, path, errorNumber_);
        return behind().status(path);
    }

private:
    Step step_;
    int errorNumber_;
};

TEST(SampleScannerLinks, failsOnOtherErrorsWhileFollowingALink) {
    const ScanFixture kit;
    kit.addAudio("Kicks/a.wav");
    fs::create_symlink(kit.at("Kicks/a.wav"), kit.at("Kicks/link.wav"));
    using Step = UnreadableLinks::Step;
    for (const auto step : {Step::resolve, Step::status}) {
        for (const int errorNumber : {EACCES, EIO, ENAMETOOLONG, ENOMEM}) {
            const auto files = std::make_shared<UnreadableLinks>(step, errorNumber);
            const auto error = thrown<FileError>([&] { kit.scan(GenerationMode::drums, files); });
            ASSERT_TRUE(error) << errorNumber;
            EXPECT_EQ(error->path(),
                      kit.at(step == Step::resolve ? "Kicks/link.wav" : "Kicks/a.wav"));
            EXPECT_EQ(error->code().value(), errorNumber);
        }
    }
    for (const int errorNumber : {ENOENT, ENOTDIR, ELOOP}) {
        const auto files = std::make_shared<UnreadableLinks>(Step::resolve, errorNumber);
        EXPECT_THAT(texts(kit.scan(GenerationMode::drums, files).ignoredFiles),
                    ElementsAre("Kicks/link.wav: Unsupported audio file"));
    }
}

// The walk continues while files are being opened, and may fail then.
TEST(SampleScannerLinks, namesTheFailedItemAfterManyFiles) {
    const ScanFixture kit;
    for (int i = 0; i < 300; ++i)
        kit.addAudio("Kicks/" + std::to_string(i) + ".wav");
    fs::create_symlink(kit.at("Kicks/0.wav"), kit.at("zzz"));
    const auto files = std::make_shared<UnreadableLinks>(UnreadableLinks::Step::resolve, EIO);
    for (const auto& inspector : std::initializer_list<std::shared_ptr<const AudioFileInspecting>>{
             kit.inspector, std::make_shared<BrokenInspector>()}) {
        const SampleScanner scanner(inspector, {}, files);
        const auto error =
            thrown<FileError>([&] { scanner.scan(kit.root, GenerationMode::drums); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->path(), kit.at("zzz"));
    }
}

TEST(SampleScannerLinks, acceptsALinkAsTheSourceFolder) {
    const ScanFixture kit;
    kit.addAudio("Kicks/a.wav");
    fs::create_symlink(kit.root.path(), kit.folder / "link");
    const SampleScanner scanner(kit.inspector, {}, systemFileManager());
    for (const auto* way : {"link", "link/", "link/../Kit", "./Kit/."}) {
        const auto report = scanner.scan(FileURL(kit.folder / way), GenerationMode::drums);
        EXPECT_EQ(report.sourceFolder, kit.root) << way;
        EXPECT_THAT(pathsOf(report, ChannelRole::kick), ElementsAre("Kicks/a.wav"));
    }
}

TEST(SampleScannerExotic, neverOpensPipesSocketsAndDevices) {
    const ScanFixture kit;
    ASSERT_EQ(::mkfifo(kit.at("Kick pipe.wav").c_str(), 0600), 0);
    bindSocket(kit.at("Kick socket"));
    fs::create_symlink("/dev/zero", kit.at("Kick device"));
    const auto report = kit.scan(GenerationMode::loops);
    EXPECT_THAT(texts(report.ignoredFiles),
                ElementsAre("Kick pipe.wav: Unsupported audio file",
                            "Kick socket: Unsupported audio file", "zero: Unsupported audio file"));
    EXPECT_THAT(kit.inspector->inspected(), IsEmpty());
}

TEST(SampleScannerExotic, ignoresHiddenPipesSocketsAndDevicesAsHiddenFiles) {
    const ScanFixture kit;
    kit.folder.createFolder("Kit/Kicks");
    ASSERT_EQ(::mkfifo(kit.at("Kicks/.pipe").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(kit.at("Kick.asd").c_str(), 0600), 0);
    bindSocket(kit.at(".Kick socket"));
    for (const auto mode : {GenerationMode::drums, GenerationMode::loops, GenerationMode::stabs}) {
        EXPECT_THAT(texts(kit.scan(mode).ignoredFiles),
                    ElementsAre(".Kick socket: Ignored hidden or sidecar file",
                                "Kick.asd: Ignored hidden or sidecar file",
                                "Kicks/.pipe: Ignored hidden or sidecar file"));
    }
    // Only root can create a device, so this one merely reports the kind.
    const auto device = std::make_shared<ListedFolders>("/", ".device", FileKind::other);
    const SampleScanner scanner(kit.inspector, {}, device);
    EXPECT_THAT(texts(scanner.scan(FileURL::directory("/"), GenerationMode::loops).ignoredFiles),
                ElementsAre(".device: Ignored hidden or sidecar file"));
}

TEST(SampleScannerExotic, acceptsTheRootOfTheFileSystemAsTheSource) {
    const auto folders = std::make_shared<ListedFolders>("/", "Kicks", FileKind::directory);
    folders->add("/Kicks", "a.wav", FileKind::regular);
    folders->add("/Kicks", "notes.txt", FileKind::regular);
    folders->add("/Kicks", ".hidden", FileKind::regular);
    class OnlyWav final : public AudioFileInspecting {
        AudioFormatDetails inspectAudioFile(const FileURL& at) const override {
            if (at.pathExtension() != "wav")
                throw GenerationError::unsupportedAudio(at);
            return {"wav", 44100, 1, 16, true};
        }
    };
    const SampleScanner scanner(std::make_shared<OnlyWav>(), {}, folders);
    const auto report = scanner.scan(FileURL::directory("/"), GenerationMode::drums);
    EXPECT_EQ(report.sourceFolder.path(), "/");
    ASSERT_EQ(report.buckets.kick.size(), 1U);
    EXPECT_EQ(report.buckets.kick[0].sourceURL.path(), "/Kicks/a.wav");
    EXPECT_THAT(texts(report.ignoredFiles),
                ElementsAre("Kicks/.hidden: Ignored hidden or sidecar file",
                            "Kicks/notes.txt: Unsupported audio file"));
}

TEST(SampleScannerExotic, marksFilesThatTheInspectorCannotReadAsUnsupported) {
    class FailingInspector final : public AudioFileInspecting {
        AudioFormatDetails inspectAudioFile(const FileURL& at) const override {
            throw FileError(FileOperation::read, at.path(), EIO);
        }
    };
    const ScanFixture kit;
    kit.addAudio("Kicks/a.wav");
    const SampleScanner scanner(std::make_shared<FailingInspector>(), {}, systemFileManager());
    EXPECT_THAT(texts(scanner.scan(kit.root, GenerationMode::drums).ignoredFiles),
                ElementsAre("Kicks/a.wav: Unsupported audio file"));
}

TEST(SampleScannerExotic, doesNotEnterPackages) {
    const ScanFixture kit;
    for (const auto* extension : {"app", "bundle", "framework", "plugin", "kext", "component",
                                  "vst", "vst3", "logicx", "band", "APP"})
        kit.addAudio("Kicks/x." + std::string(extension) + "/Kick.wav");
    kit.addAudio("Kicks/x.appl/Kick.wav");
    kit.addAudio("Kicks/app/Kick.wav");
    kit.addAudio("Kicks/file.app");
    EXPECT_THAT(pathsOf(kit.scan(), ChannelRole::kick),
                ElementsAre("Kicks/app/Kick.wav", "Kicks/file.app", "Kicks/x.appl/Kick.wav"));
}

TEST(SampleScannerExotic, scansASourceFolderThatIsAPackage) {
    const TemporaryFolder folder;
    folder.write("Kit.bundle/Kick.wav", "audio");
    const SampleScanner scanner(std::make_shared<FakeInspector>(), {}, systemFileManager());
    EXPECT_EQ(scanner.scan(FileURL::directory(folder / "Kit.bundle"), GenerationMode::drums)
                  .buckets.kick.size(),
              1U);
}

TEST(SampleScannerExotic, skipsALockedFolder) {
    const ScanFixture kit;
    kit.addAudio("Kicks/a.wav");
    kit.addAudio("Snares/a.wav");
    const auto locked = std::make_shared<LockedFolderFileManager>(kit.at("Kicks"));
    const auto report = kit.scan(GenerationMode::drums, locked);
    EXPECT_THAT(report.buckets.kick, IsEmpty());
    EXPECT_THAT(pathsOf(report, ChannelRole::snare), ElementsAre("Snares/a.wav"));
    EXPECT_THAT(report.ignoredFiles, IsEmpty());

    const auto lockedRoot = std::make_shared<LockedFolderFileManager>(kit.root.path());
    EXPECT_EQ(thrown<GenerationError>([&] { kit.scan(GenerationMode::drums, lockedRoot); }),
              GenerationError::exportFailed("Unable to read " + kit.root.path().string() + "."));
}

TEST(SampleScannerExotic, scansNamesOfAnyBytes) {
    const ScanFixture kit;
    const std::string longest = "Kick " + std::string(246, 'x') + ".wav"; // 255 bytes
    const Paths names{"Kick \xFF\xFE.wav", "Kick #?%20.wav", "Kick \"'`.wav", " Kick .wav",
                      "キック Kick.wav",   "Kick\nline.wav", longest,         "Kick é.wav",
                      "Kick e\u0301.wav"};
    for (const auto& name : names)
        kit.addAudio(name);
    const auto report = kit.scan();
    EXPECT_THAT(pathsOf(report, ChannelRole::kick), testing::UnorderedElementsAreArray(names));
    for (const auto& sample : report.buckets.kick)
        EXPECT_EQ(FileURL::parse(sample.sourceURL.absoluteString()), sample.sourceURL);

    const ScanFixture unclassified;
    unclassified.addAudio("\xFFolder/\xFE.wav");
    EXPECT_THAT(texts(unclassified.scan().ignoredFiles),
                ElementsAre("\uFFFDolder/\uFFFD.wav: Unclassified sample"));
}

TEST(SampleScannerExotic, classifiesByFoldersOfAnyName) {
    const ScanFixture kit;
    kit.addAudio("Kicks \xFF/1.wav");
    kit.addAudio("[Kicks] #1?/%2F.wav");
    kit.addAudio("Kicks/\xFF/2.wav");
    EXPECT_EQ(kit.scan().buckets.kick.size(), 3U);
}

TEST(SampleScannerExotic, walksDeepFoldersUpToTheMaximumPathLength) {
    const ScanFixture kit;
    // A path has at most 4095 bytes, so about 2000 folders with one-letter names can be nested;
    // deeper ones cannot be addressed and are skipped like locked ones.
    constexpr std::size_t maxPathLength = 4095;
    auto path = kit.at("Kicks").string();
    fs::create_directory(path);
    std::size_t depth = 0;
    while (path.size() + 2 + std::string_view("/a.wav").size() <= maxPathLength) {
        path += "/d";
        fs::create_directory(path);
        ++depth;
    }
    ASSERT_GT(depth, 1900U);
    kit.folder.write(path.substr(kit.folder.path().native().size() + 1) + "/a.wav", "audio");
    // One more level, created relative to its parent because its path is too long.
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(folder, 0);
    const std::string tooLong(200, 'e');
    EXPECT_EQ(::mkdirat(folder, tooLong.c_str(), 0700), 0);
    const auto report = kit.scan();
    EXPECT_EQ(::unlinkat(folder, tooLong.c_str(), AT_REMOVEDIR), 0);
    ::close(folder);
    ASSERT_EQ(report.buckets.kick.size(), 1U);
    EXPECT_EQ(report.buckets.kick[0].sourceURL.path(), path + "/a.wav");
    EXPECT_THAT(report.ignoredFiles, IsEmpty());
}

} // namespace
} // namespace torvo::test
