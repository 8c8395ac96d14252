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

/// The number of frames converted at a time.
constexpr std::size_t conversionBlockFrames = 4096;

/// Reads a sample file as 16-bit mono frames at the device's sample rate. Every function throws
/// `GenerationError::exportFailed` with a message for the user and the FFmpeg or `errno` status.
class ConversionSource {
public:
    ConversionSource(const FileManager& fileManager, const FileURL& url);
    ~ConversionSource();

    /// Creates the resampler. Must be called before the first `read`.
    void configure();
    /// The number of bytes that `read` will return in total. Empty when the file does not declare
    /// its length. Call `configure` first.
    std::optional<std::uint64_t> expectedDataSize() const;
    /// Fills `block` with little-endian 16-bit frames. Returns the number of bytes, 0 at the end.
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

/// Converts a file block by block and applies `edit`, which may be empty, to the result. On failure
/// a partial file may remain. Throws as `ConversionSource` does.
void convertFile(const FileManager& fileManager, const FileURL& source, const FileURL& destination,
                 const SampleEdit& edit);

/// Returns the contents of the file that `convertFile` would write without an edit. Null when it
/// would exceed `maxSize` bytes or when `stop` was requested. Throws as `ConversionSource` does.
std::shared_ptr<const std::vector<std::byte>> convertInMemory(const FileManager& fileManager,
                                                              const FileURL& source,
                                                              std::size_t maxSize,
                                                              const std::stop_token& stop);

} // namespace torvo
