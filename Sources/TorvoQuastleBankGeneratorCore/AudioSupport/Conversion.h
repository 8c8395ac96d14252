#pragma once

#include "AudioSupport/AudioReader.h"
#include "AudioSupport/Resampler.h"
#include "AudioSupport/RiffChunks.h"
#include "Platform/FileManager.h"
#include "Platform/FileURL.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

namespace torvo {

/// What is moved at a time, from reading to writing.
constexpr std::size_t conversionBlockFrames = 4096;

/// A sample file opened for conversion, read as the device's 16-bit frames. Every function throws
/// `GenerationError::exportFailed` with the text for the user and the library's status.
class ConversionSource {
public:
    ConversionSource(const FileManager& fileManager, const FileURL& url);
    ~ConversionSource();

    /// Chooses the filter; before the first `read`.
    void configure();
    /// How many bytes of audio will come, when the file tells; after `configure`.
    std::optional<std::uint64_t> expectedDataSize() const;
    /// Fills `block` with little-endian 16-bit frames; returns how many bytes, none at the end.
    std::size_t read(std::span<std::byte> block);

private:
    std::filesystem::path path_;
    std::unique_ptr<const File> file_;
    std::unique_ptr<const FileByteSource> bytes_;
    std::unique_ptr<AudioReader> reader_;
    std::optional<Resampler> resampler_;
};

/// Opens a sample file without reading its content. Throws as `ConversionSource` does.
std::unique_ptr<const File> openConversionSource(const FileManager& fileManager,
                                                 const FileURL& url);

/// Whether the declared length, after conversion, exceeds the maximum size of a WAV file. False
/// when the file does not declare its length.
bool isTooLongToConvert(const AudioReader& reader);

/// Converts a file block by block. Removes an existing item at the destination first. On failure a
/// partial file may remain. Throws `FileError`, or `GenerationError` as `ConversionSource` does.
void convertFile(const FileManager& fileManager, const FileURL& source, const FileURL& destination);

/// Returns the contents of the file that `convertFile` would write. Null when it would exceed
/// `maxSize` bytes or when `stop` was requested. Throws as `ConversionSource` does.
std::shared_ptr<const std::vector<std::byte>> convertInMemory(const FileManager& fileManager,
                                                              const FileURL& source,
                                                              std::size_t maxSize,
                                                              const std::stop_token& stop);

} // namespace torvo
