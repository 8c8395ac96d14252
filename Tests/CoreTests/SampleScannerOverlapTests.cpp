#include "ArrivalGate.h"
#include "ForwardingFileManager.h"
#include "Platform/IOThreadPool.h"
#include "SampleScanner.h"
#include "ScanFixture.h"
#include "Thrown.h"
#include "WavFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t minFilesAtOnce = 16;

std::string kick(std::size_t index) {
    return "Kicks/" + std::to_string(100 + index) + ".wav";
}

/// Calls a function before it opens a file, lists a folder or resolves a link.
class WatchedFileManager final : public ForwardingFileManager {
public:
    using Hook = std::function<void(const fs::path&)>;
    Hook beforeOpening = [](const fs::path&) {};
    Hook beforeListing = [](const fs::path&) {};
    Hook beforeResolving = [](const fs::path&) {};

    std::unique_ptr<File> open(const fs::path& path, OpenMode mode) const override {
        beforeOpening(path);
        return behind().open(path, mode);
    }
    std::vector<DirectoryEntry> contentsOfDirectory(const fs::path& path) const override {
        beforeListing(path);
        return behind().contentsOfDirectory(path);
    }
    fs::path resolve(const fs::path& path) const override {
        beforeResolving(path);
        return behind().resolve(path);
    }
};

ScanReport scanned(const ScanFixture& kit, const std::shared_ptr<const FileManager>& files) {
    return SampleScanner(std::make_shared<AVAudioFileInspector>(files), {}, files)
        .scan(kit.root, GenerationMode::drums);
}

void addWavFiles(const ScanFixture& kit, std::size_t count) {
    const auto bytes = wavFile({}, 100);
    for (std::size_t i = 0; i < count; ++i)
        kit.folder.write("Kit/" + kick(i), bytes);
}

TEST(SampleScannerOverlap, opensSixteenFilesAtOnceOnAnyNumberOfCores) {
    const ScanFixture kit;
    addWavFiles(kit, minFilesAtOnce);
    ArrivalGate gate(minFilesAtOnce);
    std::atomic<std::size_t> passed = 0;
    const auto files = std::make_shared<WatchedFileManager>();
    files->beforeOpening = [&](const fs::path&) { passed += gate.pass() ? 1U : 0U; };
    EXPECT_EQ(scanned(kit, files), scanned(kit, systemFileManager()));
    EXPECT_EQ(passed, minFilesAtOnce);
}

TEST(SampleScannerOverlap, opensFilesWhileTheWalkWaits) {
    const ScanFixture kit;
    addWavFiles(kit, 100);
    kit.addAudio("Snares/a.wav");
    fs::create_symlink(kit.at("Snares/a.wav"), kit.at("Snares/link.wav"));
    ArrivalGate opened(1);
    const auto files = std::make_shared<WatchedFileManager>();
    files->beforeOpening = [&](const fs::path&) { opened.pass(); };
    files->beforeResolving = [&](const fs::path& path) {
        if (path.filename() == "link.wav") {
            EXPECT_TRUE(opened.waitForArrivals(1));
        }
    };
    scanned(kit, files);
}

TEST(SampleScannerOverlap, listsFoldersAtOnce) {
    const ScanFixture kit;
    for (const auto* path : {"Kicks/a.wav", "Snares/a.wav", "Claps/a.wav"})
        kit.addAudio(path);
    ArrivalGate gate(2);
    std::atomic<bool> hasWaitedInVain = false;
    const auto files = std::make_shared<WatchedFileManager>();
    files->beforeListing = [&](const fs::path& path) {
        if (path != kit.root.path() && !gate.pass())
            hasWaitedInVain = true;
    };
    const auto report = kit.scan(GenerationMode::loops, files);
    EXPECT_FALSE(hasWaitedInVain);
    EXPECT_THAT(pathsOf(report, ChannelRole::loop),
                testing::ElementsAre("Claps/a.wav", "Kicks/a.wav", "Snares/a.wav"));
}

/// Finishes the file with the highest number first.
class ReversingInspector final : public AudioFileInspecting {
public:
    explicit ReversingInspector(std::size_t count) : next_(count) {}

    AudioFormatDetails inspectAudioFile(const FileURL& url) const override {
        const auto index = std::stoul(url.lastPathComponentWithoutExtension()) - 100;
        std::unique_lock lock(mutex_);
        if (!changed_.wait_for(lock, std::chrono::minutes(1), [&] { return next_ == index + 1; }))
            ADD_FAILURE() << "file " << index << " waited in vain";
        --next_;
        changed_.notify_all();
        return {"wav", 44100 + static_cast<double>(index), 1, 16, true};
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    mutable std::size_t next_;
};

TEST(SampleScannerOverlap, keepsTheWalkOrderWhenLaterFilesAreFinishedFirst) {
    const ScanFixture kit;
    Paths expected;
    for (std::size_t i = 0; i < minFilesAtOnce; ++i) {
        kit.addAudio(kick(i));
        expected.push_back(kick(i));
    }
    const SampleScanner scanner(std::make_shared<ReversingInspector>(minFilesAtOnce), {},
                                systemFileManager());
    const auto report = scanner.scan(kit.root, GenerationMode::drums);
    EXPECT_EQ(pathsOf(report, ChannelRole::kick), expected);
    for (std::size_t i = 0; i < minFilesAtOnce; ++i)
        EXPECT_EQ(report.buckets.kick.at(i).formatDetails.sampleRate,
                  44100 + static_cast<double>(i));
}

/// Cannot load its decoders for one file; holds all files until enough have been started.
class PartlyBrokenInspector final : public AudioFileInspecting {
public:
    AudioFormatDetails inspectAudioFile(const FileURL& url) const override {
        gate_.pass();
        if (url.lastPathComponent() == "107.wav")
            throw BrokenInstallation("decoders.so is gone.");
        return {"wav", 44100, 1, 16, true};
    }

private:
    mutable ArrivalGate gate_{minFilesAtOnce};
};

TEST(SampleScannerOverlap, failsWithTheExceptionOfOneOfManyThreads) {
    const ScanFixture kit;
    for (std::size_t i = 0; i < 300; ++i)
        kit.addAudio(kick(i));
    const SampleScanner scanner(std::make_shared<PartlyBrokenInspector>(), {}, systemFileManager());
    const auto error =
        thrown<BrokenInstallation>([&] { scanner.scan(kit.root, GenerationMode::drums); });
    ASSERT_TRUE(error);
    EXPECT_STREQ(error->what(), "decoders.so is gone.");
}

TEST(SampleScannerOverlap, endsEveryOpenedFileBeforeItFailsInTheMiddleOfTheWalk) {
    const ScanFixture kit;
    addWavFiles(kit, 300);
    fs::create_symlink(kit.at(kick(0)), kit.at("zzz"));
    ArrivalGate gate(1000); // opened by the failing walk
    std::atomic<std::size_t> begun = 0;
    std::atomic<std::size_t> ended = 0;
    const auto files = std::make_shared<WatchedFileManager>();
    files->beforeOpening = [&](const fs::path&) {
        ++begun;
        gate.pass();
        ++ended;
    };
    files->beforeResolving = [&](const fs::path& path) {
        if (path.filename() != "zzz")
            return;
        EXPECT_TRUE(gate.waitForArrivals(1));
        gate.open();
        throw FileError(FileOperation::read, path, EIO);
    };
    const auto error = thrown<FileError>([&] { scanned(kit, files); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), kit.at("zzz"));
    EXPECT_EQ(begun, ended);
    EXPECT_GE(begun, 1U);
}

} // namespace
} // namespace torvo::test
