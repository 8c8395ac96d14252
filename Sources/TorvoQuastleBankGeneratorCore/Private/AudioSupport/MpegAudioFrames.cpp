#include "AudioSupport/MpegAudioFrames.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace torvo {

namespace {

constexpr std::size_t frameHeaderSize = 8; // bytes needed to parse a header
constexpr int minConsistentFrames = 4;
constexpr std::uint64_t maxPadding = std::uint64_t{64} * 1024; // bytes
// A search tests every offset, so a few small frames in a row can occur by chance, as in the pixels
// of some X11 cursors.
constexpr int minFoundFrames = 16;
constexpr int minFramesToEnd = 3;
// The search limits. The longest MPEG frame has 2,880 bytes, so a cut stream has a frame header
// within the first 4 KB.
constexpr std::uint64_t maxSearch = 4096;                             // bytes
constexpr std::uint64_t maxExpectedSearch = std::uint64_t{64} * 1024; // bytes
// Limits the time spent on long streams; 43 minutes at 44.1 kHz.
constexpr int maxFramesToEnd = 100'000;

struct Frame {
    bool isADTS = false;
    std::uint32_t length = 0; ///< bytes, header included
    std::uint32_t kind = 0;   ///< the header bits that are the same in every frame of a stream
};

constexpr std::uint32_t bits(std::uint32_t word, unsigned shift, unsigned count) {
    return word >> shift & ((1U << count) - 1);
}

std::optional<Frame> parseMpegHeader(std::uint32_t word) {
    // Bit rates in kbit/s by index: MPEG-1 layer II, MPEG-1 layer III, MPEG-2 layers II and III.
    constexpr std::array<std::array<std::uint32_t, 15>, 3> bitRates = {{
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    }};
    constexpr std::array<std::uint32_t, 3> sampleRates = {44100, 48000, 32000}; // Hz, MPEG-1
    constexpr std::uint32_t layerIII = 1;
    constexpr std::uint32_t layerII = 2;
    constexpr std::uint32_t mpeg25 = 0;
    constexpr std::uint32_t mpeg1 = 3;

    const std::uint32_t version = bits(word, 19, 2);
    const std::uint32_t layer = bits(word, 17, 2);
    const std::uint32_t bitRateIndex = bits(word, 12, 4);
    const std::uint32_t sampleRateIndex = bits(word, 10, 2);
    constexpr std::uint32_t reservedVersion = 1;
    constexpr std::uint32_t reservedEmphasis = 2;
    if (bits(word, 21, 11) != 0x7FF || version == reservedVersion ||
        (layer != layerII && layer != layerIII) || bitRateIndex == 0 || bitRateIndex == 15 ||
        sampleRateIndex == 3 || bits(word, 0, 2) == reservedEmphasis)
        return std::nullopt;
    const std::size_t table = version != mpeg1 ? 2 : layer == layerIII ? 1 : 0;
    const std::uint32_t sampleRate = sampleRates[sampleRateIndex] >> (version == mpeg1    ? 0
                                                                      : version == mpeg25 ? 2
                                                                                          : 1);
    // A layer III frame of MPEG-2 and 2.5 has half the samples of an MPEG-1 frame.
    const std::uint32_t bytesPerBitRate = layer == layerIII && version != mpeg1 ? 72'000 : 144'000;
    const std::uint32_t length =
        bytesPerBitRate * bitRates[table][bitRateIndex] / sampleRate + bits(word, 9, 1);
    // Compare version, layer and sample rate; the bit rate and the channel mode may change.
    return Frame{false, length, word & 0x001E0C00};
}

std::optional<Frame> parseADTSHeader(std::uint32_t word, std::uint32_t rest) {
    constexpr std::uint32_t headerLength = 7;
    const std::uint32_t length = bits(word, 0, 2) << 11 | bits(rest, 21, 11);
    const std::uint32_t sampleRateIndex = bits(word, 10, 4);
    if (bits(word, 20, 12) != 0xFFF || bits(word, 17, 2) != 0 || sampleRateIndex > 12 ||
        length <= headerLength)
        return std::nullopt;
    // Compare version, profile, sample rate and channels.
    return Frame{true, length, word & 0x0008FDC0};
}

/// Parses the frame header at the start of `bytes`. Empty when it is invalid or incomplete.
std::optional<Frame> parseHeader(std::span<const std::byte> bytes) {
    if (bytes.size() < 4)
        return std::nullopt;
    const std::uint32_t word = readUInt32(bytes.first<4>(), ByteOrder::big);
    if (const auto frame = parseMpegHeader(word))
        return frame;
    return bytes.size() < frameHeaderSize
               ? std::nullopt
               : parseADTSHeader(word, readUInt32(bytes.subspan<4, 4>(), ByteOrder::big));
}

std::optional<Frame> frameAt(const ByteSource& bytes, std::uint64_t offset) {
    std::array<std::byte, frameHeaderSize> header{};
    return parseHeader(std::span(header).first(bytes.read(offset, header)));
}

std::uint64_t skipZeros(const ByteSource& bytes, std::uint64_t offset) {
    std::array<std::byte, 1024> block;
    const std::uint64_t limit = offset + maxPadding;
    while (offset < limit) {
        const auto part = std::span(block).first(bytes.read(offset, block));
        const auto found =
            std::ranges::find_if(part, [](std::byte byte) { return byte != std::byte{0}; });
        offset += static_cast<std::uint64_t>(found - part.begin());
        if (found != part.end() || part.empty())
            break;
    }
    return offset;
}

/// Whether a tag that follows the audio begins at `offset`: ID3v1, APEv2 or Lyrics3.
bool beginsTrailingTag(const ByteSource& bytes, std::uint64_t offset) {
    std::array<char, 8> block{};
    const std::size_t count = bytes.read(offset, std::as_writable_bytes(std::span(block)));
    const std::string_view head(block.data(), count);
    return head.starts_with("TAG") || head == "APETAGEX" || head == "LYRICSBE";
}

bool framesFollow(const ByteSource& bytes, const Frame& first, std::uint64_t offset) {
    offset += first.length;
    for (int count = 1; count < minConsistentFrames; ++count) {
        if (offset == bytes.size() || beginsTrailingTag(bytes, offset))
            return true;
        // The last frame is truncated; accept it after at least two complete frames.
        if (offset > bytes.size())
            return count > 2;
        const auto next = frameAt(bytes, offset);
        if (!next || next->isADTS != first.isADTS || next->kind != first.kind)
            return false;
        offset += next->length;
    }
    return true;
}

/// Stricter than `framesFollow`, because a search tests every offset: requires `minFoundFrames`, or
/// `minFramesToEnd` when the file ends earlier. Unless `isExpected`, the frames must continue to
/// the end of the file.
bool streamFollows(const ByteSource& bytes, const Frame& first, std::uint64_t offset,
                   bool isExpected) {
    const int wanted = isExpected ? minFoundFrames : maxFramesToEnd;
    offset += first.length;
    for (int count = 1; count < wanted; ++count) {
        const bool isLastCut = offset > bytes.size();
        if (isLastCut || offset == bytes.size() || beginsTrailingTag(bytes, offset))
            return count - (isLastCut ? 1 : 0) >= minFramesToEnd;
        const auto next = frameAt(bytes, offset);
        if (!next || next->isADTS != first.isADTS || next->kind != first.kind)
            return false;
        offset += next->length;
    }
    return true;
}

} // namespace

std::optional<MpegAudioStart> searchMpegAudio(const ByteSource& bytes, std::uint64_t offset,
                                              bool isExpected) {
    std::array<std::byte, 4096> block;
    std::uint64_t position = skipZeros(bytes, offset);
    const std::uint64_t end = position + (isExpected ? maxExpectedSearch : maxSearch);
    while (position < end) {
        const auto part = std::span(block).first(bytes.read(position, block));
        if (part.size() < frameHeaderSize)
            break;
        // Headers that cross the end of the block are found in the next block.
        const auto count = static_cast<std::size_t>(
            std::min<std::uint64_t>(part.size() - (frameHeaderSize - 1), end - position));
        for (std::size_t i = 0; i < count; ++i) {
            if (part[i] != std::byte{0xFF})
                continue;
            const auto frame = parseHeader(part.subspan(i));
            if (frame && streamFollows(bytes, *frame, position + i, isExpected))
                return MpegAudioStart{frame->isADTS, position + i};
        }
        position += count;
    }
    return std::nullopt;
}

std::optional<MpegAudioStart> findMpegAudio(const ByteSource& bytes, std::uint64_t offset) {
    const std::uint64_t start = skipZeros(bytes, offset);
    const auto first = frameAt(bytes, start);
    if (!first || !framesFollow(bytes, *first, start))
        return std::nullopt;
    return MpegAudioStart{first->isADTS, start};
}

} // namespace torvo
