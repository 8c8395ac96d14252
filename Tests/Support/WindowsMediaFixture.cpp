#include "WindowsMediaFixture.h"

#include "Bytes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace torvo::test {

namespace {

using Bytes = std::vector<std::byte>;
using Bits = std::vector<bool>;

constexpr std::uint64_t useBitReservoir = 2; // of the codec's second flags

std::uint64_t littleEndian(std::span<const std::byte> bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = value << 8 | std::to_integer<std::uint64_t>(bytes[i]);
    return value;
}

struct FormatFields {
    bool isVersion1 = false;
    std::uint64_t channels = 0;
    std::uint64_t sampleRate = 0;     ///< Hz
    std::uint64_t bytesPerSecond = 0; ///< its bit rate chooses the codec's tables
    std::uint64_t blockSize = 0;      ///< bytes
};

FormatFields fieldsOf(std::span<const std::byte> format) {
    return {littleEndian(format.first<2>()) == 0x160, littleEndian(format.subspan<2, 2>()),
            littleEndian(format.subspan<4, 4>()), littleEndian(format.subspan<8, 4>()),
            littleEndian(format.subspan<12, 2>())};
}

Bits bitsOf(std::span<const std::byte> bytes) {
    Bits bits;
    for (const std::byte byte : bytes)
        for (int shift = 7; shift >= 0; --shift)
            bits.push_back((std::to_integer<int>(byte) >> shift & 1) != 0);
    return bits;
}

Bytes bytesOf(const Bits& bits) {
    Bytes bytes((bits.size() + 7) / 8);
    for (std::size_t i = 0; i < bits.size(); ++i)
        if (bits[i])
            bytes[i / 8] |= std::byte{0x80} >> i % 8;
    return bytes;
}

void appendBits(Bits& to, std::uint64_t value, std::size_t count) {
    while (count-- > 0)
        to.push_back((value >> count & 1) != 0);
}

/// The bits of each codec frame alone. The encoder fills the last byte of a frame with zeros and
/// the packet with 'N'. The code that ends a frame ends with some zeros itself: as many as stand
/// behind the last one bit of the frame whose last byte needed no filling.
std::vector<Bits> codecFrames(const std::vector<Bytes>& packets) {
    std::vector<Bits> frames;
    std::ptrdiff_t zerosOfEndCode = std::numeric_limits<std::ptrdiff_t>::max();
    const auto endOfOnes = [](const Bits& frame) {
        return std::find(frame.rbegin(), frame.rend(), true).base();
    };
    for (const Bytes& packet : packets) {
        const auto end = std::find_if(packet.rbegin(), packet.rend(),
                                      [](std::byte byte) { return byte != std::byte{'N'}; });
        frames.push_back(bitsOf({packet.begin(), end.base()}));
        zerosOfEndCode = std::min(zerosOfEndCode, frames.back().end() - endOfOnes(frames.back()));
    }
    for (Bits& frame : frames)
        frame.erase(endOfOnes(frame) + zerosOfEndCode, frame.end());
    return frames;
}

using namespace std::string_view_literals;
constexpr auto headerObject = "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
constexpr auto dataObject = "\x36\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv;
constexpr auto filePropertiesObject =
    "\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65"sv;
constexpr auto streamPropertiesObject =
    "\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65"sv;
constexpr auto audioMedia = "\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B"sv;
constexpr auto noErrorCorrection =
    "\x00\x57\xFB\x20\x55\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B"sv;
constexpr auto fileId = "a file of a test"sv;

constexpr std::uint64_t prerollMilliseconds = 3000;

Bytes object(std::string_view guid, std::span<const std::byte> content) {
    Bytes bytes;
    append(bytes, guid);
    appendLittleEndian(bytes, guid.size() + 8 + content.size(), 8);
    append(bytes, content);
    return bytes;
}

/// One data packet with one whole media object.
Bytes dataPacket(std::span<const std::byte> content, std::size_t number, double seconds) {
    const auto milliseconds = static_cast<std::uint64_t>(std::lround(1000 * seconds));
    Bytes bytes;
    append(bytes, "\x82\x00\x00"sv); // error correction data: none
    append(bytes, "\x00\x5D"sv);     // one payload, without padding; the widths of its fields
    appendLittleEndian(bytes, milliseconds, 4);
    appendLittleEndian(bytes, 0, 2);
    append(bytes, "\x81"sv); // stream 1
    appendLittleEndian(bytes, number & 0xFF, 1);
    appendLittleEndian(bytes, 0, 4); // offset into the media object
    append(bytes, "\x08"sv);
    appendLittleEndian(bytes, content.size(), 4);
    appendLittleEndian(bytes, milliseconds + prerollMilliseconds, 4);
    append(bytes, content);
    return bytes;
}

} // namespace

WindowsMediaStream windowsMediaInWav(std::span<const std::byte> wavFile) {
    WindowsMediaStream stream;
    constexpr std::size_t riffHeader = 12;
    for (std::size_t offset = riffHeader; offset + 8 <= wavFile.size();) {
        const auto header = wavFile.subspan(offset, 8);
        const auto size = static_cast<std::size_t>(littleEndian(header.last<4>()));
        const auto content =
            wavFile.subspan(offset + 8).first(std::min(size, wavFile.size() - offset - 8));
        const auto hasId = [&](std::string_view id) {
            return std::ranges::equal(header.first<4>(), std::as_bytes(std::span(id)));
        };
        if (hasId("fmt "))
            stream.format.assign(content.begin(), content.end());
        if (hasId("data")) {
            const auto block = static_cast<std::size_t>(fieldsOf(stream.format).blockSize);
            for (std::size_t i = 0; i + block <= content.size(); i += block) {
                const auto packet = content.subspan(i, block);
                stream.packets.emplace_back(packet.begin(), packet.end());
            }
        }
        offset += 8 + size + size % 2;
    }
    if (stream.packets.empty())
        throw std::runtime_error("no Windows Media in this WAV file");
    const FormatFields fields = fieldsOf(stream.format);
    stream.secondsInPacket =
        static_cast<double>(fields.blockSize) / static_cast<double>(fields.bytesPerSecond);
    return stream;
}

WindowsMediaStream withBitReservoir(const WindowsMediaStream& stream, double framesInPacket,
                                    std::uint32_t samplesInFrame) {
    const auto frames = codecFrames(stream.packets);
    const FormatFields fields = fieldsOf(stream.format);
    // The width of the field with the position of the first new frame.
    const double bytesInFrame = static_cast<double>(fields.bytesPerSecond) /
                                static_cast<double>(fields.channels * fields.sampleRate) *
                                samplesInFrame;
    const auto offsetWidth = static_cast<std::size_t>(
        std::bit_width(static_cast<std::uint64_t>(bytesInFrame + 0.5)) - 1 + 2 + 3);
    const std::size_t headerWidth = 4 + 4 + offsetWidth;
    std::size_t longest = 0;
    std::size_t total = 0;
    for (const Bits& frame : frames) {
        longest = std::max(longest, frame.size());
        total += frame.size();
    }
    const double meanLength = static_cast<double>(total) / static_cast<double>(frames.size());
    const std::size_t blockSize =
        std::max(static_cast<std::size_t>(framesInPacket * meanLength), longest + headerWidth) / 8 +
        1;

    WindowsMediaStream result;
    result.format = stream.format;
    result.secondsInPacket = stream.secondsInPacket * framesInPacket;
    const std::size_t flags = 18 + (fields.isVersion1 ? 2 : 4);
    result.format.at(flags) |= static_cast<std::byte>(useBitReservoir);
    result.format[12] = static_cast<std::byte>(blockSize & 0xFF);
    result.format[13] = static_cast<std::byte>(blockSize >> 8 & 0xFF);

    Bits carried;
    std::size_t next = 0;
    while (next < frames.size() || !carried.empty()) {
        const bool isFirst = result.packets.empty();
        Bits content = carried;
        std::size_t frameCount = carried.empty() ? 0 : 1;
        const std::size_t room = 8 * blockSize - headerWidth;
        const std::size_t offset = carried.size();
        carried.clear();
        while (next < frames.size() && content.size() < room) {
            const Bits& frame = frames[next++];
            const std::size_t fitting = std::min(frame.size(), room - content.size());
            content.insert(content.end(), frame.begin(),
                           frame.begin() + static_cast<std::ptrdiff_t>(fitting));
            carried.assign(frame.begin() + static_cast<std::ptrdiff_t>(fitting), frame.end());
            if (carried.empty())
                ++frameCount;
        }
        // The first packet also counts the frame that continues in the next packet.
        const std::size_t told = frameCount + (isFirst ? 1 : 0);
        if (told > 15 || (content.size() == room && carried.empty()))
            throw std::runtime_error("these frames do not fit packets of this size");
        Bits packet;
        appendBits(packet, result.packets.size() & 15, 4);
        appendBits(packet, told, 4);
        appendBits(packet, offset, offsetWidth);
        packet.insert(packet.end(), content.begin(), content.end());
        packet.resize(8 * blockSize);
        result.packets.push_back(bytesOf(packet));
    }
    return result;
}

std::vector<std::byte> asfFile(const WindowsMediaStream& stream) {
    Bytes packets;
    for (std::size_t i = 0; i < stream.packets.size(); ++i)
        append(packets,
               dataPacket(stream.packets[i], i, static_cast<double>(i) * stream.secondsInPacket));
    const std::size_t packetCount = stream.packets.size();
    const auto duration = static_cast<std::uint64_t>(1e7 * stream.secondsInPacket *
                                                     static_cast<double>(packetCount)); // in 100 ns

    Bytes streamProperties;
    append(streamProperties, audioMedia);
    append(streamProperties, noErrorCorrection);
    appendLittleEndian(streamProperties, 0, 8);
    appendLittleEndian(streamProperties, stream.format.size(), 4);
    appendLittleEndian(streamProperties, 0, 4);
    appendLittleEndian(streamProperties, 1, 2); // stream number
    appendLittleEndian(streamProperties, 0, 4);
    append(streamProperties, stream.format);
    const Bytes streamObject = object(streamPropertiesObject, streamProperties);

    constexpr std::size_t filePropertiesSize = 104;
    constexpr std::size_t headerFields = 30;
    constexpr std::size_t dataFields = 50;
    const std::size_t headerSize = headerFields + filePropertiesSize + streamObject.size();
    Bytes fileProperties;
    append(fileProperties, fileId);
    appendLittleEndian(fileProperties, headerSize + dataFields + packets.size(), 8);
    appendLittleEndian(fileProperties, 0, 8); // date
    appendLittleEndian(fileProperties, packetCount, 8);
    appendLittleEndian(fileProperties, duration + prerollMilliseconds * 10'000, 8);
    appendLittleEndian(fileProperties, duration, 8);
    appendLittleEndian(fileProperties, prerollMilliseconds, 8);
    appendLittleEndian(fileProperties, 2, 4); // seekable
    appendLittleEndian(fileProperties, packets.size() / packetCount, 4);
    appendLittleEndian(fileProperties, packets.size() / packetCount, 4);
    appendLittleEndian(fileProperties, 8 * fieldsOf(stream.format).bytesPerSecond, 4);

    Bytes file;
    append(file, headerObject);
    appendLittleEndian(file, headerSize, 8);
    appendLittleEndian(file, 2, 4); // objects in the header
    append(file, "\x01\x02"sv);
    append(file, object(filePropertiesObject, fileProperties));
    append(file, streamObject);
    append(file, dataObject);
    appendLittleEndian(file, dataFields + packets.size(), 8);
    append(file, fileId);
    appendLittleEndian(file, packetCount, 8);
    append(file, "\x01\x01"sv);
    append(file, packets);
    return file;
}

} // namespace torvo::test
