#pragma once

#include "AudioSupport/RiffChunks.h"
#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>

namespace torvo {

/// The size of the header of a converted file: the RIFF header, the "fmt " chunk and the header of
/// the "data" chunk.
constexpr std::size_t convertedHeaderSize = 44; // bytes
/// The maximum size of the audio data, given the 32-bit RIFF size. The RIFF size must be even and
/// must not be 0xFFFFFFFF, which means "unknown".
constexpr std::uint64_t maxConvertedDataSize = 0xFFFFFFFE - (convertedHeaderSize - 8); // bytes

/// The header of a 44100 Hz, 16-bit mono WAV file with `dataSize` bytes of audio.
std::array<std::byte, convertedHeaderSize> convertedHeader(std::uint32_t dataSize);

/// Removes the item at `destination`, if there is one. Throws `FileError`.
void removeExisting(const FileManager& fileManager, const FileURL& destination);

/// Writes the WAV file of a conversion. Every function throws `GenerationError::exportFailed` with
/// a message for the user and a status.
class ConvertedFileWriter {
public:
    /// Creates an empty file.
    ConvertedFileWriter(const FileManager& fileManager, const FileURL& destination);

    /// Writes the header, with the final sizes when the data size is known. Throws when the data is
    /// too large for a WAV file.
    void configure(std::optional<std::uint64_t> expectedDataSize);
    void write(std::span<const std::byte> data);
    /// Writes a complete file, header included, with an edit and closes it. Replaces the calls of
    /// `configure`, `write` and `finish`.
    void writeWhole(std::span<const std::byte> file, const SampleEdit& edit);
    /// Corrects the sizes in the header, applies the edit, which may be empty and may only append
    /// (a precondition), and closes the file.
    void finish(const SampleEdit& edit);

private:
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
    std::uint64_t dataSize_ = 0;       ///< bytes
    std::uint64_t headerDataSize_ = 0; ///< bytes, as written in the header
};

} // namespace torvo
