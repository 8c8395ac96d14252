#include "ExportChecks.h"

#include "AudioSupport/Conversion.h"
#include "AudioSupport/RiffChunks.h"
#include "Models/Device.h"
#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"
#include "Platform/FolderWalk.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace torvo {

namespace {

/// Checks whether a folder lies in the device folder. Compares file identities instead of paths,
/// because links and case-insensitive file systems give a folder several paths.
class DeviceFolderGuard {
public:
    DeviceFolderGuard(const FileManager& fileManager, FileIdentity deviceFolder)
        : fileManager_(fileManager), deviceFolder_(deviceFolder) {}

    bool contains(const FileURL& folder) {
        const auto& path = folder.nativePath();
        if (const auto known = answers_.find(path); known != answers_.end())
            return known->second;
        const auto status = fileManager_.status(folder.path());
        const bool answer = (status && status->identity == deviceFolder_) ||
                            (path != "/" && contains(folder.deletingLastPathComponent()));
        answers_.emplace(path, answer);
        return answer;
    }

private:
    const FileManager& fileManager_;
    FileIdentity deviceFolder_;
    std::unordered_map<std::string, bool> answers_;
};

/// Opens the sample in the same way as its preparation. Returns the size of its copy in bytes, 0
/// when it is converted.
std::uint64_t openSample(const FileManager& fileManager, const SampleCandidate& sample) {
    if (std::holds_alternative<RequiresConversion>(sample.compatibility)) {
        openConversionSource(fileManager, sample.sourceURL);
        return 0;
    }
    const auto file = fileManager.open(sample.sourceURL.path(), OpenMode::read);
    // A compatible file that is not stampable is converted.
    return isStampable(FileByteSource(*file)) ? file->size() : 0;
}

std::uint64_t saturatingSum(std::uint64_t left, std::uint64_t right) {
    return left > UINT64_MAX - right ? UINT64_MAX : left + right;
}

/// The maximum number of bytes that deleting the item frees.
std::uint64_t spaceOf(const FileManager& fileManager, const FileURL& item,
                      const FileStatus& status) {
    // Some file systems report 0 allocated blocks.
    auto space = std::max(status.size, status.allocatedSize);
    if (status.kind != FileKind::directory)
        return space;
    enumerateDeep(fileManager, item, EnumerationOptions::skipNothing, UnreadableFolders::fail,
                  [&](const EnumeratedItem& below) {
                      if (const auto found = fileManager.linkStatus(below.url.path()))
                          space = saturatingSum(space, std::max(found->size, found->allocatedSize));
                  });
    return space;
}

constexpr std::uint64_t megabyte = 1'000'000; // bytes

} // namespace

void requireValidRunFolder(const FileManager& fileManager, const FileURL& runFolder,
                           const std::string& name) {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != std::string::npos) {
        throw GenerationError::exportFailed("\"" + name +
                                            "\" cannot be the name of an export folder.");
    }
    const auto own = fileManager.linkStatus(runFolder.path());
    if (!own || own->kind != FileKind::symbolicLink)
        return;
    const auto target = fileManager.status(runFolder.path());
    if (!target || target->kind != FileKind::directory) {
        throw GenerationError::exportFailed(runFolder.shownPath() +
                                            " is a link that leads to no folder. Nothing was "
                                            "written.");
    }
}

void requireSourceOutside(const FileManager& fileManager, const FileURL& deviceFolder,
                          const ExportJob& job) {
    const auto status = fileManager.linkStatus(deviceFolder.path());
    if (!status || status->kind != FileKind::directory)
        return;
    DeviceFolderGuard guard(fileManager, status->identity);
    if (guard.contains(resolvingSymlinks(fileManager, job.sourceFolder))) {
        throw GenerationError::exportFailed("The source folder " + job.sourceFolder.shownPath() +
                                            " lies inside " + deviceFolder.shownPath() +
                                            ", which this export would replace.");
    }
    for (const auto& recipe : job.recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            // Also check the unresolved path: the export would delete a link in the device folder,
            // even to a sample outside.
            const auto named = sample.sourceURL.standardized();
            const auto resolved = resolvingSymlinks(fileManager, sample.sourceURL);
            if (guard.contains(named.deletingLastPathComponent()) ||
                guard.contains(resolved.deletingLastPathComponent())) {
                throw GenerationError::exportFailed(
                    "The sample " + sample.sourceURL.lastPathComponent() + " lies inside " +
                    deviceFolder.shownPath() + ", which this export would replace.");
            }
        }
    }
}

std::uint64_t openSamples(const FileManager& fileManager, const std::vector<BankRecipe>& recipes) {
    constexpr std::uint64_t copiesOfASample = 2; // a channel's file and its copy in the pool
    std::unordered_map<std::string, std::uint64_t> sizes; // by path
    std::uint64_t needed = 0;
    for (const auto& recipe : recipes) {
        for (std::int64_t channel = 1; channel <= device::channelCount; ++channel) {
            const auto found = recipe.channels.find(channel);
            if (found == recipe.channels.end())
                continue; // the export reports the missing channel
            const auto& sample = found->second;
            const auto& path = sample.sourceURL.nativePath();
            auto known = sizes.find(path);
            if (known == sizes.end())
                known = sizes.emplace(path, openSample(fileManager, sample)).first;
            for (std::uint64_t copy = 0; copy < copiesOfASample; ++copy)
                needed = saturatingSum(needed, known->second);
        }
    }
    return needed;
}

void requireSpace(const FileManager& fileManager, const FileURL& deviceFolder,
                  const FileStatus& earlier, std::uint64_t neededSpace) {
    const auto available =
        fileManager.availableSpace(deviceFolder.deletingLastPathComponent().path());
    if (!available || neededSpace <= *available)
        return;
    const auto free = saturatingSum(*available, spaceOf(fileManager, deviceFolder, earlier));
    if (neededSpace <= free)
        return;
    // Round up the needed and round down the free space, so that the numbers differ.
    throw GenerationError::exportFailed(
        "Not enough space for " + deviceFolder.shownPath() + ": " +
        std::to_string(neededSpace / megabyte + (neededSpace % megabyte == 0 ? 0 : 1)) +
        " MB needed, " + std::to_string(free / megabyte) + " MB free. Nothing was deleted.");
}

} // namespace torvo
