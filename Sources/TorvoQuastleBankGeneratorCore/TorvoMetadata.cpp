#include "TorvoMetadata.h"

#include "Models/Device.h"
#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"
#include "Platform/FileReplacements.h"
#include "Platform/FolderWalk.h"
#include "Platform/Precondition.h"
#include "Platform/UnicodeText.h"
#include "WriterLock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <ranges>
#include <span>
#include <string_view>
#include <utility>

namespace torvo {

namespace {

constexpr std::size_t payloadSize = 1936;
constexpr std::uint32_t payloadSignature = 0x12345677;

using Payload = std::vector<std::byte>; ///< `payloadSize` bytes

/// Offsets in the payload, in bytes.
namespace offsets {
constexpr std::size_t signature = 0;
constexpr std::size_t bits = 24;
constexpr std::size_t filter = 50;
constexpr std::array<std::size_t, 3> dataSize{16, 20, 916};
constexpr std::array<std::size_t, 2> rate{54, 55};
constexpr std::array<std::size_t, 3> channelIndex{62, 63, 909};
} // namespace offsets

/// The payload offsets of a CV routing: a 32-bit word, the bit in the word that enables the
/// routing, and a block of four bytes.
struct CVRouting {
    std::size_t wordOffset;
    std::uint32_t routingBit;
    std::size_t blockOffset;
};

constexpr std::array<CVRouting, 3> cvRoutings{{
    {76, 0x4000, 160}, // CV1: filter cutoff
    {80, 0x8000, 252}, // CV2: filter resonance
    {84, 0x20, 300},   // CV3: playback speed
}};

std::span<std::byte, 4> wordAt(Payload& payload, std::size_t offset) {
    return std::span(payload).subspan(offset).first<4>();
}

void writeUInt32(std::span<std::byte, 4> bytes, std::uint32_t value) {
    for (auto& byte : bytes) {
        byte = static_cast<std::byte>(value);
        value >>= 8U;
    }
}

/// Writes the non-zero bytes of a new payload that do not depend on the options. Their meaning is
/// unknown; the device writes the same values.
void writeFixedBytes(Payload& payload) {
    constexpr std::array<std::pair<std::size_t, int>, 14> fixedBytes{{{43, 4},
                                                                      {48, 1},
                                                                      {58, 0xEE},
                                                                      {59, 0x7F},
                                                                      {60, 0xCC},
                                                                      {61, 0x4C},
                                                                      {72, 0xFF},
                                                                      {73, 0xFF},
                                                                      {74, 0xFF},
                                                                      {75, 0xFF},
                                                                      {904, 4},
                                                                      {1680, 1},
                                                                      {1684, 0xE8},
                                                                      {1685, 0x03}}};
    for (const auto& [offset, value] : fixedBytes)
        payload[offset] = static_cast<std::byte>(value);
    for (std::size_t block = 0; block < 8; ++block) {
        for (std::size_t entry = 0; entry < 17; ++entry)
            payload[110 + 88 * block + 4 * entry] = std::byte{99};
    }
}

Payload freshPayload(std::uint32_t dataSize, std::optional<std::int64_t> channel) {
    Payload payload(payloadSize);
    writeFixedBytes(payload);
    writeUInt32(wordAt(payload, offsets::signature), payloadSignature);
    for (const auto offset : offsets::dataSize)
        writeUInt32(wordAt(payload, offset), dataSize);
    const auto index = std::clamp<std::int64_t>(channel.value_or(1), 1, device::channelCount) - 1;
    for (const auto offset : offsets::channelIndex)
        payload[offset] = static_cast<std::byte>(index);
    return payload;
}

void routeCV(Payload& payload) {
    std::uint32_t allBits = 0;
    for (const auto& routing : cvRoutings)
        allBits |= routing.routingBit;
    for (const auto& routing : cvRoutings) {
        const auto word = wordAt(payload, routing.wordOffset);
        writeUInt32(word, (readUInt32(word) & ~allBits) | routing.routingBit);
        constexpr std::array<std::byte, 4> block{std::byte{0}, std::byte{0}, std::byte{99},
                                                 std::byte{0}};
        std::ranges::copy(block, wordAt(payload, routing.blockOffset).begin());
    }
}

void writeSettings(Payload& payload, const TorvoMetadataOptions& options,
                   std::optional<std::int64_t> channel) {
    precondition(options.bits >= 0 && options.bits <= 255, "the bit depth fits into one byte");
    payload[offsets::bits] = static_cast<std::byte>(options.bits);
    for (const auto offset : offsets::rate)
        payload[offset] = static_cast<std::byte>(storedByte(options.rate));
    payload[offsets::filter] = (payload[offsets::filter] & std::byte{0xF0}) |
                               static_cast<std::byte>(rawValue(options.filterType));
    if (options.appliesCV(channel))
        routeCV(payload);
}

/// Finds the "busy" chunk. A damaged chunk after "data" ends the search without an error, and a new
/// "busy" chunk is appended.
std::optional<RiffChunk> findBusyChunk(const ByteSource& bytes) {
    RiffChunkWalk walk(bytes);
    while (const auto chunk = walk.next()) {
        if (!walk.fits(*chunk))
            return std::nullopt;
        if (chunk->is("busy"))
            return chunk;
    }
    return std::nullopt;
}

std::vector<std::byte> makeBusyChunk(const Payload& payload) {
    std::vector<std::byte> chunk(RiffChunk::headerSize + payload.size());
    std::ranges::copy(std::as_bytes(std::span(std::string_view("busy"))), chunk.begin());
    writeUInt32(wordAt(chunk, 4), static_cast<std::uint32_t>(payload.size()));
    std::ranges::copy(payload, chunk.begin() + RiffChunk::headerSize);
    return chunk;
}

RiffChunk dataChunk(const ByteSource& bytes) {
    const auto found = findDataChunk(bytes);
    if (const auto* const data = std::get_if<RiffChunk>(&found))
        return *data;
    switch (std::get<DataChunkFault>(found)) {
    case DataChunkFault::notRiffWave:
        throw GenerationError::exportFailed("Not a RIFF/WAVE file.");
    case DataChunkFault::invalidChunkSize:
        throw GenerationError::exportFailed("Invalid WAV chunk size.");
    case DataChunkFault::noDataChunk:
        break;
    }
    throw GenerationError::exportFailed("WAV data chunk not found.");
}

/// Whether the item is a regular file or a link to one. A folder may be named "x.wav".
bool isStampable(const FileManager& fileManager, const EnumeratedItem& item) {
    if (item.kind != FileKind::symbolicLink)
        return item.kind == FileKind::regular;
    const auto target = fileManager.status(item.url.path());
    return target && target->kind == FileKind::regular;
}

} // namespace

TorvoWAVMetadataWriter::TorvoWAVMetadataWriter(std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)) {}

void TorvoWAVMetadataWriter::apply(const TorvoMetadataOptions& options, const FileURL& file,
                                   std::optional<std::int64_t> channel) const {
    removeAbandonedTemporaries(*fileManager_, file.path().parent_path());
    rewrite(file, options, channel,
            [this](const auto& path, const auto& write, const auto& permissions) {
                writeFileAtomically(*fileManager_, path, write, permissions);
            });
}

std::int64_t TorvoWAVMetadataWriter::apply(const TorvoMetadataOptions& options,
                                           const FileURL& folder) const {
    const auto lock = lockForWriting(*fileManager_, folderToLockForStamping(*fileManager_, folder));
    // List all files before writing the first one: an enumeration may return a file twice when the
    // folder changes meanwhile.
    std::vector<EnumeratedItem> items;
    if (!enumerateDeep(*fileManager_, folder, EnumerationOptions::skipHidden,
                       UnreadableFolders::fail,
                       [&items](EnumeratedItem item) { items.push_back(std::move(item)); }))
        return 0;
    const MountGuard guard(fileManager_, folder.path());
    removeAbandonedTemporaries(*fileManager_, folder.path());
    FileReplacements replacements(*fileManager_);
    const auto replace = [&replacements](const auto& path, const auto& write,
                                         const auto& permissions) {
        replacements.add(path, write, permissions);
    };
    std::int64_t written = 0;
    try {
        for (const auto& item : items) {
            if (item.kind == FileKind::directory)
                removeAbandonedTemporaries(*fileManager_, item.url.path());
            if (text::lowercased(item.url.pathExtension()) != "wav" ||
                !isStampable(*fileManager_, item))
                continue;
            // The target may be a file whose new version is not in place yet.
            if (item.kind == FileKind::symbolicLink)
                replacements.commit();
            rewrite(item.url, options, channelNumber(item.url), replace);
            ++written;
        }
    } catch (...) {
        replacements.commit();
        throw;
    }
    replacements.commit();
    guard.flush();
    return written;
}

void TorvoWAVMetadataWriter::rewrite(const FileURL& file, const TorvoMetadataOptions& options,
                                     std::optional<std::int64_t> channel,
                                     const Replace& replace) const {
    const auto status = fileManager_->status(file.path());
    const auto original = fileManager_->open(file.path(), OpenMode::read);
    FileEdit edit;
    withFileInErrors(file.path(),
                     [&] { edit = busyChunkEdit(FileByteSource(*original), options, channel); });
    replace(
        file.path(), [&](File& stamped) { stamped.copyFrom(*original, edit); },
        status ? std::optional(status->permissions) : std::nullopt);
}

void TorvoWAVMetadataWriter::updateBusyChunk(std::vector<std::byte>& bytes,
                                             const TorvoMetadataOptions& options,
                                             std::optional<std::int64_t> channel) const {
    const auto edit = busyChunkEdit(MemoryByteSource(bytes), options, channel);
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(edit.offset);
    const auto kept = std::min<std::uint64_t>(edit.replacedSize, edit.bytes.size());
    const auto middle = edit.bytes.begin() + static_cast<std::ptrdiff_t>(kept);
    auto position = std::copy(edit.bytes.begin(), middle, begin);
    position = bytes.erase(position, begin + static_cast<std::ptrdiff_t>(edit.replacedSize));
    bytes.insert(position, middle, edit.bytes.end());
}

FileEdit TorvoWAVMetadataWriter::busyChunkEdit(const ByteSource& bytes,
                                               const TorvoMetadataOptions& options,
                                               std::optional<std::int64_t> channel) const {
    const auto data = dataChunk(bytes);
    const auto busy = findBusyChunk(bytes);
    const bool hasFullPayload = busy && busy->payloadSize == payloadSize;

    Payload payload;
    if (hasFullPayload) {
        payload.resize(payloadSize);
        bytes.read(busy->payloadOffset(), payload);
    }
    // Keep the sizes and the channel of a payload that has the device's signature.
    if (!hasFullPayload || readUInt32(wordAt(payload, offsets::signature)) != payloadSignature)
        payload = freshPayload(data.payloadSize, channel);
    writeSettings(payload, options, channel);

    // Intended: the RIFF size is not updated when the file grows. The device ignores it, and files
    // stamped by earlier versions keep the same bytes.
    if (hasFullPayload)
        return {busy->payloadOffset(), payloadSize, std::move(payload)};
    // Intended: the pad byte of an old payload with an odd size is kept.
    if (busy)
        return {busy->headerOffset, busy->payloadEnd() - busy->headerOffset,
                makeBusyChunk(payload)};
    return {bytes.size(), 0, makeBusyChunk(payload)};
}

std::optional<std::int64_t> channelNumber(const FileURL& file) {
    const auto name = file.deletingLastPathComponent().lastPathComponent();
    std::string_view digits = name;
    if (digits.starts_with('+'))
        digits.remove_prefix(1); // std::from_chars() accepts only a minus sign
    std::int64_t number = 0;
    const auto* end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, number);
    const bool isWhole = error == std::errc() && stopped == end;
    return isWhole && device::hasChannel(number) ? std::optional(number) : std::nullopt;
}

} // namespace torvo
