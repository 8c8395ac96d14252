#include "Platform/FileReplacements.h"

#include "Platform/FileError.h"
#include "Platform/FileOperations.h"
#include "Platform/TemporaryFile.h"

#include <cerrno>
#include <utility>

namespace torvo {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t maxPendingFiles = 256;
constexpr std::uint64_t maxPendingSize = std::uint64_t{64} << 20U; ///< bytes

bool isVolumeFull(const FileError& error) {
    return error.code() == std::errc::no_space_on_device || error.code().value() == EDQUOT;
}

} // namespace

FileReplacements::FileReplacements(const FileManager& fileManager) : fileManager_(fileManager) {}

FileReplacements::~FileReplacements() = default;

void FileReplacements::add(const fs::path& path, const std::function<void(File&)>& write,
                           std::optional<fs::perms> permissions) {
    const auto folder = path.parent_path();
    const auto status = fileManager_.status(folder);
    if (!status)
        throw FileError(FileOperation::write, path, ENOENT);
    startOn(status->identity.device, folder);
    if (!flushesTogether_) {
        writeFileAtomically(fileManager_, path, write, permissions);
        return;
    }

    std::uint64_t size = 0;
    const auto writeAndMeasure = [&](File& file) {
        write(file);
        size = file.size();
    };
    const auto writePending = [&] {
        pending_.push_back(
            {writeTemporaryFile(fileManager_, path, permissions, writeAndMeasure), path});
    };
    try {
        writePending();
    } catch (const FileError& error) {
        if (!isVolumeFull(error) || pending_.empty())
            throw;
        commit(); // frees the space of the old versions
        writePending();
    }
    pendingSize_ += size;
    if (pending_.size() >= maxPendingFiles || pendingSize_ >= maxPendingSize)
        commit();
}

void FileReplacements::startOn(std::uint64_t volume, const fs::path& folder) {
    if (volume_ == volume)
        return;
    commit();
    flushesTogether_ = fileManager_.volumeFlushCoversFiles(folder);
    volume_ = volume;
}

void FileReplacements::commit() {
    const auto replacements = std::exchange(pending_, {});
    pendingSize_ = 0;
    if (replacements.empty())
        return;
    fileManager_.flushVolume(replacements.front().destination.parent_path());
    for (const auto& replacement : replacements)
        replacement.file->replace(replacement.destination);
}

} // namespace torvo
