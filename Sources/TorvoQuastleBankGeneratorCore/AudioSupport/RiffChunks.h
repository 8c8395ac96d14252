#pragma once

#include "Platform/FileManager.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace torvo {

/// Bytes at offsets, in memory or in a file.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t size() const = 0;
    /// Fills `bytes` from `offset` on; fewer come back only at the end.
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

/// Reads the first block of the file once: the headers of nearly every file lie in it.
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

enum class ByteOrder { little, big };

/// One chunk of a RIFF form (Microsoft/IBM, RIFF, 1991): a four-character id, a 32-bit size, the
/// payload and a pad byte when the size is odd.
struct RiffChunk {
    std::array<char, 4> id{};
    std::uint64_t headerOffset = 0;
    std::uint32_t payloadSize = 0; ///< as declared; it may run past the end

    std::uint64_t payloadOffset() const { return headerOffset + 8; }
    /// The payload's end, the pad byte not included.
    std::uint64_t payloadEnd() const { return payloadOffset() + payloadSize; }
    bool is(std::string_view wanted) const {
        return std::string_view(id.data(), id.size()) == wanted;
    }
};

/// The one walk over the chunks of a WAV file that everybody uses: the stamp, the inspector and the
/// decoder. It starts behind the 12 bytes of the form's header, which the caller has judged.
class RiffChunkWalk {
public:
    explicit RiffChunkWalk(const ByteSource& bytes, ByteOrder order = ByteOrder::little)
        : bytes_(bytes), order_(order) {}

    /// The next chunk, or none when no further header fits. A chunk that runs past the end is
    /// returned (see `fits`), and is the last.
    std::optional<RiffChunk> next();
    bool fits(const RiffChunk& chunk) const { return chunk.payloadEnd() <= bytes_.size(); }

private:
    const ByteSource& bytes_;
    ByteOrder order_;
    std::uint64_t position_ = 12;
};

/// Whether the bytes begin with "RIFF", a size that nobody believes, and "WAVE".
bool beginsAsRiffWave(const ByteSource& bytes);

/// The "data" chunk as the stamp demands it: every chunk up to it, itself included, lies inside the
/// file. Throws `GenerationError` with the stamp's messages otherwise.
RiffChunk findDataChunk(const ByteSource& bytes);

std::uint32_t readUInt32(std::span<const std::byte, 4> bytes, ByteOrder order = ByteOrder::little);
std::uint16_t readUInt16(std::span<const std::byte, 2> bytes, ByteOrder order = ByteOrder::little);

} // namespace torvo
