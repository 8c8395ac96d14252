#include "AudioSupport/AudioFileType.h"

#include "AudioSupport/MpegAudioFrames.h"
#include "Platform/UnicodeText.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace torvo {

namespace {

using namespace std::string_view_literals;

struct Magic {
    AudioContainer container;
    std::string_view first;
    std::size_t secondOffset = 0;
    std::string_view second = {};
    bool mayFollowTag = false;
};

constexpr std::array magics = {
    Magic{AudioContainer::wav, "RIFF"sv, 8, "WAVE"sv},
    Magic{AudioContainer::wav, "RIFX"sv, 8, "WAVE"sv},
    Magic{AudioContainer::wav, "RF64"sv, 8, "WAVE"sv},
    Magic{AudioContainer::wav, "BW64"sv, 8, "WAVE"sv},
    Magic{AudioContainer::aiff, "FORM"sv, 8, "AIFF"sv},
    Magic{AudioContainer::aiff, "FORM"sv, 8, "AIFC"sv},
    Magic{AudioContainer::flac, "fLaC"sv, 0, ""sv, true},
    Magic{AudioContainer::ogg, "OggS\0"sv},
    Magic{AudioContainer::mp4, ""sv, 4, "ftyp"sv},
    Magic{AudioContainer::caf, "caff\0\1"sv},
    Magic{AudioContainer::wavPack, "wvpk"sv},
    Magic{AudioContainer::trueAudio, "TTA1"sv, 0, ""sv, true},
    Magic{AudioContainer::musepack, "MPCKSH"sv},
    Magic{AudioContainer::amr, "#!AMR\n"sv},
    Magic{AudioContainer::au, ".snd"sv},
    Magic{AudioContainer::asf,
          "\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C"sv},
    Magic{AudioContainer::w64, "riff\x2E\x91\xCF\x11\xA5\xD6\x28\xDB\x04\xC1\x00\x00"sv, 24,
          "wave\xF3\xAC\xD3\x11\x8C\xD1\x00\xC0\x4F\x8E\xDB\x8A"sv},
    Magic{AudioContainer::matroska, "\x1A\x45\xDF\xA3"sv},
};

constexpr std::size_t magicLength = 40;
// Real files have one or two tags. The limit stops crafted files with thousands of tags.
constexpr int maxTags = 8;

bool matches(std::string_view head, const Magic& magic) {
    return head.starts_with(magic.first) && head.size() > magic.secondOffset &&
           head.substr(magic.secondOffset).starts_with(magic.second);
}

/// The end offset of the ID3v2 tag at `offset` (ID3v2.4.0 structure, section 3.1). Empty when there
/// is no tag.
std::optional<std::uint64_t> endOfID3v2Tag(const ByteSource& bytes, std::uint64_t offset) {
    std::array<std::byte, 10> header;
    if (bytes.read(offset, header) < header.size() ||
        !std::ranges::equal(std::span(header).first<3>(), std::as_bytes(std::span("ID3"sv))))
        return std::nullopt;
    std::uint64_t size = 0;
    for (const std::byte byte : std::span(header).last<4>()) {
        if ((byte & std::byte{0x80}) != std::byte{0})
            return std::nullopt;
        size = size << 7 | std::to_integer<std::uint64_t>(byte);
    }
    const bool hasFooter = (header[5] & std::byte{0x10}) != std::byte{0};
    return offset + header.size() + size + (hasFooter ? header.size() : 0);
}

/// The end offset of an APEv2 tag with a header, or of an ID3v1 tag. Both belong after the audio,
/// but some programs write them before it.
std::optional<std::uint64_t> endOfMisplacedTag(const ByteSource& bytes, std::uint64_t offset) {
    constexpr std::uint64_t apeHeaderSize = 32;
    constexpr std::uint64_t id3v1Size = 128;
    std::array<char, apeHeaderSize> block{};
    const std::size_t length = bytes.read(offset, std::as_writable_bytes(std::span(block)));
    const std::string_view head(block.data(), length);
    if (head.size() == apeHeaderSize && head.starts_with("APETAGEX"sv)) {
        // The size field excludes the header.
        const auto size = readUInt32(std::as_bytes(std::span(block)).subspan<12, 4>());
        return offset + apeHeaderSize + size;
    }
    if (head.starts_with("TAG"sv))
        return offset + id3v1Size;
    return std::nullopt;
}

std::uint64_t endOfTags(const ByteSource& bytes) {
    std::uint64_t offset = 0;
    for (int i = 0; i < maxTags; ++i) {
        auto end = endOfID3v2Tag(bytes, offset);
        if (!end)
            end = endOfMisplacedTag(bytes, offset);
        if (!end)
            break;
        offset = *end;
    }
    return offset;
}

} // namespace

AudioNameHint audioNameHint(const FileURL& url) {
    constexpr std::array extensions = {"mp3"sv, "mp2"sv, "mpa"sv, "mpga"sv,
                                       "m2a"sv, "aac"sv, "adts"sv};
    const bool isMpegAudio =
        std::ranges::find(extensions, text::lowercased(url.pathExtension())) != extensions.end();
    return isMpegAudio ? AudioNameHint::mpegAudio : AudioNameHint::none;
}

std::optional<AudioFileType> audioFileType(const ByteSource& bytes, AudioNameHint hint) {
    const std::uint64_t offset = endOfTags(bytes);
    std::array<char, magicLength> block{};
    const std::size_t length = bytes.read(offset, std::as_writable_bytes(std::span(block)));
    const std::string_view head(block.data(), length);
    const auto magic = std::ranges::find_if(magics, [&](const Magic& each) {
        return matches(head, each) && (offset == 0 || each.mayFollowTag);
    });
    if (magic != magics.end())
        return AudioFileType{magic->container, offset};
    auto frames = findMpegAudio(bytes, offset);
    if (!frames)
        frames = searchMpegAudio(bytes, offset, hint == AudioNameHint::mpegAudio);
    if (frames)
        return AudioFileType{frames->isADTS ? AudioContainer::adts : AudioContainer::mpegAudio,
                             frames->offset};
    return std::nullopt;
}

} // namespace torvo
