#pragma once

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

/// The header of a converted file: RIFF, one "fmt " chunk, the header of "data".
constexpr std::size_t convertedHeaderSize = 44; // bytes
/// The maximum size of the audio data, given the 32-bit RIFF size. The RIFF size must be even and
/// must not be 0xFFFFFFFF, which means "unknown".
constexpr std::uint64_t maxConvertedDataSize = 0xFFFFFFFE - (convertedHeaderSize - 8); // bytes

/// The header of a WAV file with `dataSize` bytes at 44100 Hz, 16-bit, mono.
std::array<std::byte, convertedHeaderSize> convertedHeader(std::uint32_t dataSize);

/// Removes what stands at a destination. Throws the file manager's error unchanged.
void removeExisting(const FileManager& fileManager, const FileURL& destination);

/// The WAV file that a conversion writes. Every function throws `GenerationError::exportFailed`
/// with the text for the user and a status.
class ConvertedFileWriter {
public:
    /// Creates the file, empty.
    ConvertedFileWriter(const FileManager& fileManager, const FileURL& destination);

    /// Writes the header, with the final sizes when they are known already. Fails when so much
    /// audio does not fit the format.
    void configure(std::optional<std::uint64_t> expectedDataSize);
    void write(std::span<const std::byte> data);
    /// Header and audio in one go, in the place of the three other calls.
    void writeWhole(std::span<const std::byte> file);
    /// Puts the sizes right and closes the file.
    void finish();

private:
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
    std::uint64_t dataSize_ = 0;       ///< bytes
    std::uint64_t headerDataSize_ = 0; ///< bytes, as the header tells now
};

} // namespace torvo
