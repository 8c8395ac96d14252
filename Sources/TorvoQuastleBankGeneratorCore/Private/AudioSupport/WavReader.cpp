#include "AudioSupport/WavReader.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/MonoMix.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <type_traits>

namespace torvo {

namespace {

using Decode = void (*)(std::span<const std::byte>, std::size_t, std::span<double>);

constexpr std::uint16_t integerTag = 1;
constexpr std::uint16_t floatTag = 3;
constexpr std::uint16_t extensibleTag = 0xFFFE;
constexpr std::uint32_t sizeIsInDs64 = 0xFFFFFFFF;
// Large enough for several frames with the maximum of 65,535 channels in 8 bits.
constexpr std::size_t blockSize = std::size_t{256} * 1024; // bytes

struct FormatChunk {
    std::uint16_t tag = 0;
    std::uint16_t channels = 0;
    std::uint32_t sampleRate = 0; ///< Hz
    std::uint16_t blockAlign = 0; ///< bytes per frame
    std::uint16_t bitsPerSample = 0;
};

template <typename Unsigned>
Unsigned loadBytes(const std::byte* bytes, std::size_t count, ByteOrder order) {
    Unsigned value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t shift = order == ByteOrder::little ? i : count - 1 - i;
        value |= static_cast<Unsigned>(std::to_integer<Unsigned>(bytes[i]) << (8 * shift));
    }
    return value;
}

struct UnsignedByte {
    static constexpr std::size_t size = 1;
    static double load(const std::byte* bytes) {
        return (std::to_integer<int>(*bytes) - 128) / 128.0;
    }
};

template <std::size_t byteCount, ByteOrder order>
struct Integer {
    static constexpr std::size_t size = byteCount;
    static double load(const std::byte* bytes) {
        // Left-align the sample so that its sign bit is the sign bit of std::int32_t.
        const auto word = loadBytes<std::uint32_t>(bytes, size, order) << (8 * (4 - size));
        return static_cast<std::int32_t>(word) / 2147483648.0;
    }
};

template <typename Value, ByteOrder order>
struct Float {
    static constexpr std::size_t size = sizeof(Value);
    using Word = std::conditional_t<size == 4, std::uint32_t, std::uint64_t>;
    static double load(const std::byte* bytes) {
        return clampedFinite(std::bit_cast<Value>(loadBytes<Word>(bytes, size, order)));
    }
};

template <typename Sample>
void decode(std::span<const std::byte> block, std::size_t channelCount, std::span<double> frames) {
    const std::byte* position = block.data();
    for (double& frame : frames) {
        frame = mixedToMono(channelCount, [&](std::size_t channel) {
            return Sample::load(position + channel * Sample::size);
        });
        position += channelCount * Sample::size;
    }
}

template <ByteOrder order>
Decode decoderFor(std::uint16_t tag, std::uint32_t containerBytes) {
    if (tag == integerTag) {
        switch (containerBytes) {
        case 1:
            return decode<UnsignedByte>;
        case 2:
            return decode<Integer<2, order>>;
        case 3:
            return decode<Integer<3, order>>;
        case 4:
            return decode<Integer<4, order>>;
        default:
            return nullptr;
        }
    }
    switch (containerBytes) {
    case 4:
        return decode<Float<float, order>>;
    case 8:
        return decode<Float<double, order>>;
    default:
        return nullptr;
    }
}

/// The format tag in the GUID of an extensible format chunk. Throws `AudioError` for a GUID that
/// does not contain a format tag.
std::uint16_t subformatTag(std::span<const std::byte, 16> guid, ByteOrder order) {
    constexpr std::array<unsigned char, 8> family = {0x80, 0x00, 0x00, 0xAA,
                                                     0x00, 0x38, 0x9B, 0x71};
    const std::uint32_t tag = readUInt32(guid.first<4>(), order);
    if (tag > std::numeric_limits<std::uint16_t>::max() ||
        readUInt16(guid.subspan<4, 2>(), order) != 0 ||
        readUInt16(guid.subspan<6, 2>(), order) != 0x10 ||
        !std::ranges::equal(guid.last<8>(), std::as_bytes(std::span(family))))
        throw AudioError::invalidData();
    return static_cast<std::uint16_t>(tag);
}

FormatChunk parseFormat(const ByteSource& bytes, const RiffChunk& chunk, ByteOrder order) {
    std::array<std::byte, 40> payload{};
    const auto length = std::min<std::size_t>(payload.size(), chunk.payloadSize);
    if (length < 16 || bytes.read(chunk.payloadOffset(), std::span(payload).first(length)) < length)
        throw AudioError::invalidData();
    const std::span<const std::byte, 40> fields(payload);
    FormatChunk format;
    format.tag = readUInt16(fields.subspan<0, 2>(), order);
    format.channels = readUInt16(fields.subspan<2, 2>(), order);
    format.sampleRate = readUInt32(fields.subspan<4, 4>(), order);
    format.blockAlign = readUInt16(fields.subspan<12, 2>(), order);
    format.bitsPerSample = readUInt16(fields.subspan<14, 2>(), order);
    if (format.tag == extensibleTag) {
        if (length < payload.size())
            throw AudioError::invalidData();
        format.tag = subformatTag(fields.subspan<24, 16>(), order);
    }
    return format;
}

/// The 64-bit size of the audio data in a "ds64" chunk, in bytes.
std::uint64_t longDataSize(const ByteSource& bytes, const RiffChunk& chunk) {
    std::array<std::byte, 16> sizes;
    if (chunk.payloadSize < sizes.size() || bytes.read(chunk.payloadOffset(), sizes) < sizes.size())
        throw AudioError::invalidData();
    const std::uint64_t low = readUInt32(std::span(sizes).subspan<8, 4>());
    const std::uint64_t high = readUInt32(std::span(sizes).subspan<12, 4>());
    return high << 32 | low;
}

struct Layout {
    FormatChunk format;
    std::uint64_t dataOffset = 0;
    std::uint64_t dataSize = 0; ///< bytes, clamped to the file
};

Layout findChunks(const ByteSource& bytes, ByteOrder order) {
    std::optional<FormatChunk> format;
    std::optional<RiffChunk> data;
    std::optional<std::uint64_t> longSize;
    RiffChunkWalk walk(bytes, order);
    while (!format || !data) {
        const auto chunk = walk.next();
        if (!chunk)
            throw AudioError::invalidData();
        if (chunk->is("fmt ") && !format)
            format = parseFormat(bytes, *chunk, order);
        else if (chunk->is("ds64") && !longSize)
            longSize = longDataSize(bytes, *chunk);
        else if (chunk->is("data") && !data)
            data = chunk;
    }
    const std::uint64_t offset = data->payloadOffset();
    const std::uint64_t available = bytes.size() - offset;
    const std::uint64_t size =
        data->payloadSize == sizeIsInDs64 && longSize ? *longSize : data->payloadSize;
    // Programs that write to a pipe cannot seek back to fill in the size.
    const bool isSizeMissing = size == 0 && !isChunkSequence(bytes, offset, order);
    return {*format, offset, isSizeMissing ? available : std::min(size, available)};
}

ByteOrder byteOrder(const ByteSource& bytes) {
    std::array<std::byte, 4> id{};
    bytes.read(0, id);
    return id[3] == std::byte{'X'} ? ByteOrder::big : ByteOrder::little;
}

} // namespace

WavReader::WavReader(const ByteSource& bytes, const AudioStreamFormat& format, Decode decode,
                     std::uint64_t dataOffset, std::uint64_t frameCount, std::uint32_t blockAlign)
    : bytes_(bytes),
      format_(format),
      decode_(decode),
      position_(dataOffset),
      frameCount_(frameCount),
      framesLeft_(frameCount),
      blockAlign_(blockAlign) {}

std::unique_ptr<WavReader> WavReader::open(const ByteSource& bytes) {
    const ByteOrder order = byteOrder(bytes);
    const Layout layout = findChunks(bytes, order);
    const FormatChunk& format = layout.format;
    if (format.tag != integerTag && format.tag != floatTag)
        return nullptr;
    // Use the container size; valid bits are left-aligned.
    const std::uint32_t containerBytes =
        format.channels == 0 ? 0U : std::uint32_t{format.blockAlign} / format.channels;
    if (containerBytes == 0 || format.blockAlign % format.channels != 0 ||
        format.bitsPerSample > 8 * containerBytes || format.sampleRate < minSampleRate ||
        format.sampleRate > maxSampleRate)
        throw AudioError::invalidData();
    const Decode decode = order == ByteOrder::big
                              ? decoderFor<ByteOrder::big>(format.tag, containerBytes)
                              : decoderFor<ByteOrder::little>(format.tag, containerBytes);
    if (decode == nullptr)
        throw AudioError::invalidData();
    const AudioStreamFormat stream{static_cast<double>(format.sampleRate), format.channels,
                                   std::int64_t{8} * containerBytes, format.tag == integerTag};
    return std::unique_ptr<WavReader>(new WavReader(bytes, stream, decode, layout.dataOffset,
                                                    layout.dataSize / format.blockAlign,
                                                    format.blockAlign));
}

std::optional<std::uint64_t> oggStreamInWav(const ByteSource& bytes) {
    const std::uint64_t offset = findChunks(bytes, byteOrder(bytes)).dataOffset;
    std::array<char, 4> id{};
    bytes.read(offset, std::as_writable_bytes(std::span(id)));
    return std::string_view(id.data(), id.size()) == "OggS" ? std::optional(offset) : std::nullopt;
}

std::size_t WavReader::read(std::span<double> frames) {
    std::size_t done = 0;
    while (done < frames.size() && framesLeft_ > 0) {
        const std::size_t wanted = static_cast<std::size_t>(
            std::min<std::uint64_t>({frames.size() - done, framesLeft_,
                                     std::max<std::size_t>(1, blockSize / blockAlign_)}));
        block_.resize(wanted * blockAlign_);
        const std::size_t got = bytes_.read(position_, block_) / blockAlign_;
        decode_(std::span(block_).first(got * blockAlign_),
                static_cast<std::size_t>(format_.channels), frames.subspan(done, got));
        done += got;
        position_ += got * blockAlign_;
        // A short read means that the file was truncated while it was being read.
        framesLeft_ = got < wanted ? 0 : framesLeft_ - got;
    }
    return done;
}

} // namespace torvo
