#pragma once

#include "Platform/FileManager.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace torvo {

class TemporaryFile;

/// Replaces many files, each as `writeFileAtomically` does, but with one flush for a group of files
/// where a flush of the volume is known to cover them all: on cards and hard disks, flushing each
/// file takes longer than writing it.
class FileReplacements {
public:
    explicit FileReplacements(const FileManager& fileManager);
    /// Removes the new files that were not put in place.
    ~FileReplacements();
    FileReplacements(const FileReplacements&) = delete;
    FileReplacements& operator=(const FileReplacements&) = delete;

    /// Writes the new content of a file beside it. Replaces all files added so far when there are
    /// many, when the next one lies on another volume, and when the volume is full. The parameters
    /// and errors are those of `writeFileAtomically`. Files added before can still be replaced
    /// after an error.
    void add(const std::filesystem::path& path, const std::function<void(File&)>& write,
             std::optional<std::filesystem::perms> permissions);
    /// Flushes the new files and puts them in place, in the order in which they were added. At the
    /// first failure the remaining ones are removed and the error is thrown. The caller flushes the
    /// volume once more before it reports success.
    void commit();

private:
    struct Replacement {
        std::unique_ptr<TemporaryFile> file;
        std::filesystem::path destination;
    };

    void startOn(std::uint64_t volume, const std::filesystem::path& folder);

    const FileManager& fileManager_;
    std::vector<Replacement> pending_;
    std::uint64_t pendingSize_ = 0; ///< bytes
    std::optional<std::uint64_t> volume_;
    bool flushesTogether_ = false; ///< on `volume_`
};

} // namespace torvo
