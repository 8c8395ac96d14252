#pragma once

#include "Models/TorvoMetadataOptions.h"
#include "Platform/FileManager.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace torvo {

/// Stamps the device's playback settings into WAV files as the private RIFF chunk "busy".
class TorvoWAVMetadataWriter {
public:
    explicit TorvoWAVMetadataWriter(
        std::shared_ptr<const FileManager> fileManager = systemFileManager());

    /// Rewrites one file atomically and returns when it is on the medium. Throws `GenerationError`
    /// when it is no WAV file that can be stamped, `FileError` when it cannot be read or written;
    /// the file is then as it was.
    void apply(const TorvoMetadataOptions& options, const FileURL& to,
               std::optional<std::int64_t> channel) const;

    /// Rewrites every visible WAV file below a folder, each with the channel number given by its
    /// parent folder. Returns the number of files once they have reached the storage medium, 0 when
    /// the folder cannot be listed. Stops at the first failure; files already written stay. Throws
    /// as above, and `GenerationError` while another program writes into the folder that contains
    /// the device folder.
    std::int64_t apply(const TorvoMetadataOptions& options, const FileURL& folder) const;

    /// The same change to a file's bytes in memory. They are left alone when it throws.
    void updateBusyChunk(std::vector<std::byte>& in, const TorvoMetadataOptions& options,
                         std::optional<std::int64_t> channel) const;

    /// The same change inside a file that nobody else knows yet (one just made by an export): only
    /// the chunk's own bytes are written.
    void updateBusyChunk(File& in, const TorvoMetadataOptions& options,
                         std::optional<std::int64_t> channel) const;

private:
    void rewrite(const FileURL& file, const TorvoMetadataOptions& options,
                 std::optional<std::int64_t> channel) const;
    bool isStampable(const EnumeratedItem& item) const;

    std::shared_ptr<const FileManager> fileManager_;
};

/// The channel that the name of a file's folder gives: an optional sign and ASCII digits in the
/// range 1 to 8, or none.
std::optional<std::int64_t> channelNumber(const FileURL& file);

} // namespace torvo
