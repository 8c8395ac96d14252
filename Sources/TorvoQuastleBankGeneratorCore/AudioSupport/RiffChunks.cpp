#include "AudioSupport/RiffChunks.h"

#include <algorithm>

namespace torvo {

namespace {

constexpr std::size_t formHeaderSize = 12;

bool matchesText(std::span<const std::byte> bytes, std::string_view text) {
    return std::ranges::equal(bytes, std::as_bytes(std::span(text)));
}

/// Copies bytes of `source` from `offset` on into `destination`. Returns the number of bytes
/// copied.
std::size_t copyRange(std::span<const std::byte> source, std::uint64_t offset,
                      std::span<std::byte> destination) {
    if (offset >= source.size())
        return 0;
    const auto part = source.subspan(static_cast<std::size_t>(offset));
    const std::size_t count = std::min(part.size(), destination.size());
    std::copy_n(part.begin(), count, destination.begin());
    return count;
}

} // namespace

std::size_t MemoryByteSource::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    return copyRange(bytes_, offset, bytes);
}

FileByteSource::FileByteSource(const File& file)
    : file_(file),
      size_(file.size()),
      headLength_(file.read(0, std::span(head_).first(static_cast<std::size_t>(
                                   std::min<std::uint64_t>(size_, head_.size()))))) {}

std::size_t FileByteSource::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    if (offset >= size_)
        return 0;
    const bool headHoldsAll = headLength_ == size_;
    if (headHoldsAll || (offset <= headLength_ && bytes.size() <= headLength_ - offset))
        return copyRange(std::span(head_).first(headLength_), offset, bytes);
    return file_.read(offset, bytes);
}

std::optional<RiffChunk> RiffChunkWalk::next() {
    std::array<std::byte, RiffChunk::headerSize> header;
    if (position_ > bytes_.size() || bytes_.size() - position_ < header.size() ||
        bytes_.read(position_, header) < header.size())
        return std::nullopt;
    RiffChunk chunk;
    std::ranges::transform(std::span(header).first<4>(), chunk.id.begin(),
                           [](std::byte byte) { return static_cast<char>(byte); });
    chunk.payloadSize = readUInt32(std::span(header).last<4>(), order_);
    chunk.headerOffset = position_;
    position_ = fits(chunk) ? chunk.payloadEnd() + chunk.payloadSize % 2 : bytes_.size();
    return chunk;
}

bool isRiffWave(const ByteSource& bytes) {
    std::array<std::byte, formHeaderSize> header;
    return bytes.read(0, header) == header.size() &&
           matchesText(std::span(header).first<4>(), "RIFF") &&
           matchesText(std::span(header).last<4>(), "WAVE");
}

std::variant<RiffChunk, DataChunkFault> findDataChunk(const ByteSource& bytes) {
    if (!isRiffWave(bytes))
        return DataChunkFault::notRiffWave;
    RiffChunkWalk walk(bytes);
    while (const auto chunk = walk.next()) {
        if (!walk.fits(*chunk))
            return DataChunkFault::invalidChunkSize;
        if (chunk->is("data"))
            return *chunk;
    }
    return DataChunkFault::noDataChunk;
}

bool isChunkSequence(const ByteSource& bytes, std::uint64_t offset, ByteOrder order) {
    const auto isPrintable = [](char character) { return character >= ' ' && character <= '~'; };
    RiffChunkWalk walk(bytes, order, offset);
    while (const auto chunk = walk.next()) {
        if (!walk.fits(*chunk) || !std::ranges::all_of(chunk->id, isPrintable))
            return false;
    }
    return true;
}

bool isStampable(const ByteSource& bytes) {
    const auto found = findDataChunk(bytes);
    const auto* const data = std::get_if<RiffChunk>(&found);
    return data != nullptr &&
           (data->payloadSize > 0 || isChunkSequence(bytes, data->payloadOffset()));
}

std::uint32_t readUInt32(std::span<const std::byte, 4> bytes, ByteOrder order) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t shift = order == ByteOrder::little ? i : bytes.size() - 1 - i;
        value |= std::to_integer<std::uint32_t>(bytes[i]) << (8 * shift);
    }
    return value;
}

std::uint16_t readUInt16(std::span<const std::byte, 2> bytes, ByteOrder order) {
    const auto first = std::to_integer<unsigned>(bytes[0]);
    const auto second = std::to_integer<unsigned>(bytes[1]);
    return static_cast<std::uint16_t>(order == ByteOrder::little ? first | second << 8
                                                                 : first << 8 | second);
}

} // namespace torvo
