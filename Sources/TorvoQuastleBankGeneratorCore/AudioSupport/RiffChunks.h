#pragma once

#include "Platform/FileManager.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

namespace torvo {

/// Random access to bytes in memory or in a file.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t size() const = 0;
    /// Reads into `bytes`, starting at `offset`. Returns the number of bytes read, which is smaller
    /// than the buffer only at the end.
    virtual std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
};

class MemoryByteSource final : public ByteSource {
public:
    explicit MemoryByteSource(std::span<const std::byte> bytes) : bytes_(bytes) {}
    std::uint64_t size() const override { return bytes_.size(); }
    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override;

private:
    std::span<const std::byte> bytes_;
};

/// Caches the first 4096 bytes of the file, which contain the headers of most files.
class FileByteSource final : public ByteSource {
public:
    explicit FileByteSource(const File& file);
    std::uint64_t size() const override { return size_; }
    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override;

private:
    const File& file_;
    std::uint64_t size_;
    std::array<std::byte, 4096> head_;
    std::size_t headLength_;
};

/// Chooses the edit with which a sample is written, given the bytes that are written without it.
using SampleEdit = std::function<FileEdit(const ByteSource& bytes)>;

enum class ByteOrder { little, big };

/// One chunk of a RIFF file (Microsoft/IBM, RIFF, 1991): a four-character id, a 32-bit size, the
/// payload, and a pad byte when the size is odd.
struct RiffChunk {
    static constexpr std::size_t headerSize = 8;

    std::array<char, 4> id{};
    std::uint64_t headerOffset = 0;
    std::uint32_t payloadSize = 0; ///< bytes as declared; may run past the end of the file

    std::uint64_t payloadOffset() const { return headerOffset + headerSize; }
    /// The end of the payload, excluding the pad byte.
    std::uint64_t payloadEnd() const { return payloadOffset() + payloadSize; }
    bool is(std::string_view wanted) const {
        return std::string_view(id.data(), id.size()) == wanted;
    }
};

/// Iterates over the chunks of a WAV file. Starts at `offset`, by default after the 12-byte RIFF
/// header, which the caller has checked.
class RiffChunkWalk {
public:
    explicit RiffChunkWalk(const ByteSource& bytes, ByteOrder order = ByteOrder::little,
                           std::uint64_t offset = 12)
        : bytes_(bytes), order_(order), position_(offset) {}

    /// The next chunk. Empty when no complete header is left. A chunk that runs past the end of the
    /// file is returned (see `fits`) and is the last one.
    std::optional<RiffChunk> next();
    bool fits(const RiffChunk& chunk) const { return chunk.payloadEnd() <= bytes_.size(); }

private:
    const ByteSource& bytes_;
    ByteOrder order_;
    std::uint64_t position_;
};

/// Whether the bytes begin with "RIFF", an ignored size field and "WAVE".
bool isRiffWave(const ByteSource& bytes);

/// The reasons why `findDataChunk` fails.
enum class DataChunkFault {
    notRiffWave,
    invalidChunkSize, ///< "data" or a chunk before it runs past the end of the file
    noDataChunk,
};

/// The first "data" chunk, provided that it and all chunks before it lie within the file.
std::variant<RiffChunk, DataChunkFault> findDataChunk(const ByteSource& bytes);

/// Whether the bytes from `offset` to the end of the file are complete chunks with printable ids.
/// Up to seven trailing bytes, too few for a chunk header, are ignored.
bool isChunkSequence(const ByteSource& bytes, std::uint64_t offset,
                     ByteOrder order = ByteOrder::little);

/// Whether the device settings can be written into the file as it is: `findDataChunk` succeeds, and
/// a "data" chunk of size 0 is really empty. Programs that write to a pipe leave the size at 0.
bool isStampable(const ByteSource& bytes);

std::uint32_t readUInt32(std::span<const std::byte, 4> bytes, ByteOrder order = ByteOrder::little);
std::uint16_t readUInt16(std::span<const std::byte, 2> bytes, ByteOrder order = ByteOrder::little);

} // namespace torvo
