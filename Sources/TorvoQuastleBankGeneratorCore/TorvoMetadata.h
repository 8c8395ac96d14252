#pragma once

#include "AudioSupport/RiffChunks.h"
#include "Models/TorvoMetadataOptions.h"
#include "Platform/FileURL.h"
#include "Platform/SystemFileManager.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace torvo {

/// Writes the device's playback settings into WAV files, as the private RIFF chunk "busy".
class TorvoWAVMetadataWriter {
public:
    explicit TorvoWAVMetadataWriter(
        std::shared_ptr<const FileManager> fileManager = systemFileManager());

    /// Atomically rewrites one file and flushes its content. Throws `GenerationError` when it is
    /// not a WAV file with a valid "data" chunk, and `FileError` when it cannot be read or written.
    /// On failure the file is unchanged.
    void apply(const TorvoMetadataOptions& options, const FileURL& file,
               std::optional<std::int64_t> channel) const;

    /// Rewrites every visible WAV file below a folder, each with the channel number given by its
    /// parent folder. Returns the number of files once they have reached the storage medium, 0 when
    /// the folder cannot be listed. Stops at the first failure; files already written stay. Throws
    /// as above, and `GenerationError` while another program writes into the folder that contains
    /// the device folder.
    std::int64_t apply(const TorvoMetadataOptions& options, const FileURL& folder) const;

    /// Applies the same change to a file in memory. The bytes are unchanged when it throws.
    void updateBusyChunk(std::vector<std::byte>& bytes, const TorvoMetadataOptions& options,
                         std::optional<std::int64_t> channel) const;

    /// The same change, for a file that is about to be written.
    FileEdit busyChunkEdit(const ByteSource& bytes, const TorvoMetadataOptions& options,
                           std::optional<std::int64_t> channel) const;

private:
    using Replace = std::function<void(const std::filesystem::path& file,
                                       const std::function<void(File&)>& write,
                                       std::optional<std::filesystem::perms> permissions)>;

    void rewrite(const FileURL& file, const TorvoMetadataOptions& options,
                 std::optional<std::int64_t> channel, const Replace& replace) const;

    std::shared_ptr<const FileManager> fileManager_;
};

/// The channel number given by the name of the file's parent folder: an optional sign and ASCII
/// digits, 1 to 8. Empty for other names.
std::optional<std::int64_t> channelNumber(const FileURL& file);

} // namespace torvo
