#pragma once

#include "FakeAudio.h"
#include "Platform/LoadedLibrary.h"
#include "Platform/SystemFileManager.h"
#include "SampleScanner.h"
#include "TemporaryFolder.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torvo::test {

using Paths = std::vector<std::string>;

/// Fails like the inspector when its decoder library cannot be loaded.
class BrokenInspector final : public AudioFileInspecting {
    AudioFormatDetails inspectAudioFile(const FileURL&) const override {
        throw BrokenInstallation("decoders.so is gone.");
    }
};

/// A source folder named "Kit", with room beside it, and a scanner of fake audio.
struct ScanFixture {
    TemporaryFolder folder;
    FileURL root = FileURL::directory(folder.createFolder("Kit"));
    std::shared_ptr<FakeInspector> inspector = std::make_shared<FakeInspector>();

    std::filesystem::path at(std::string_view relative) const {
        return folder / ("Kit/" + std::string(relative));
    }
    void addAudio(std::string_view relative) const { add(relative, "audio"); }
    void add(std::string_view relative, std::string_view content) const {
        folder.write("Kit/" + std::string(relative), content);
    }

    ScanReport scan(GenerationMode mode = GenerationMode::drums,
                    std::shared_ptr<const FileManager> fileManager = systemFileManager()) const {
        return SampleScanner(inspector, AudioCompatibilityEvaluator(), std::move(fileManager))
            .scan(root, mode);
    }
};

/// The paths of a role's samples in the order of the report, relative to the source folder;
/// absolute for files outside.
inline Paths pathsOf(const ScanReport& report, ChannelRole role) {
    const auto prefix = report.sourceFolder.nativePath() + "/";
    Paths paths;
    for (const auto& sample : report.buckets.samples(role)) {
        const auto& path = sample.sourceURL.nativePath();
        paths.push_back(path.starts_with(prefix) ? path.substr(prefix.size()) : path);
    }
    return paths;
}

/// "path: reason" of each ignored item.
inline Paths texts(const std::vector<IgnoredItem>& items) {
    Paths all;
    for (const auto& item : items)
        all.push_back(item.path + ": " + item.reason);
    return all;
}

} // namespace torvo::test
