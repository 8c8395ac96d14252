#include "BusyPayload.h"
#include "TemporaryFolder.h"
#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace torvo::test {
namespace {

using Bytes = std::vector<std::byte>;

rc::Gen<Bytes> anyBytes() {
    return rc::gen::map<std::string>([](const std::string& text) { return bytes(text); });
}

rc::Gen<Bytes> anyEvenBytes() {
    return rc::gen::map(anyBytes(), [](Bytes content) {
        content.resize(content.size() / 2 * 2);
        return content;
    });
}

/// Chunks as found in real files, including busy chunks of any content.
rc::Gen<Bytes> anyChunk(const rc::Gen<Bytes>& busyPayload) {
    return rc::gen::oneOf(
        rc::gen::map(anyBytes(), [](const Bytes& payload) { return riffChunk("LIST", payload); }),
        rc::gen::map(busyPayload, [](const Bytes& payload) { return riffChunk("busy", payload); }),
        rc::gen::map<std::uint32_t>([](std::uint32_t size) {
            return riffChunk("busy", freshBusyPayload({.dataSize = size}));
        }),
        rc::gen::map<unsigned char>(
            [](unsigned char value) { return riffChunk("busy", Bytes(1936, std::byte{value})); }));
}

rc::Gen<std::vector<Bytes>> anyChunks(const rc::Gen<Bytes>& busyPayload) {
    return rc::gen::resize(6, rc::gen::container<std::vector<Bytes>>(anyChunk(busyPayload)));
}

TorvoMetadataOptions anyOptions() {
    return {*rc::gen::inRange(1, 17), *rc::gen::elementOf(allTorvoPlaybackRates),
            *rc::gen::elementOf(allTorvoFilterTypes), *rc::gen::arbitrary<bool>(),
            *rc::gen::container<std::set<std::int64_t>>(rc::gen::inRange<std::int64_t>(1, 9))};
}

/// Busy chunks of odd length only follow the data chunk: the pad byte left over from one of them
/// would hide the data from the next stamp.
Bytes anyWav() {
    auto chunks = *anyChunks(anyEvenBytes());
    chunks.push_back(riffChunk("data", *anyBytes()));
    for (const auto& chunk : *anyChunks(anyBytes()))
        chunks.push_back(chunk);
    return riffFile(chunks);
}

struct Chunk {
    std::string id;
    Bytes payload;

    friend bool operator==(const Chunk&, const Chunk&) = default;
};

std::uint32_t sizeAt(const Bytes& file, std::size_t offset) {
    std::uint32_t size = 0;
    for (std::size_t i = 0; i < 4; ++i)
        size |= std::to_integer<std::uint32_t>(file[offset + i]) << (8 * i);
    return size;
}

/// Every chunk up to the first busy one, and the bytes after it.
struct Parts {
    std::vector<Chunk> before;
    Bytes behind;
    bool hasBusy = false;
};

Parts partsOf(const Bytes& file) {
    Parts parts;
    std::size_t position = 12;
    while (position + 8 <= file.size()) {
        std::string id;
        for (std::size_t i = 0; i < 4; ++i)
            id += static_cast<char>(file[position + i]);
        const auto size = sizeAt(file, position + 4);
        const auto begin = file.begin() + static_cast<std::ptrdiff_t>(position + 8);
        const auto end = begin + static_cast<std::ptrdiff_t>(size);
        if (id == "busy") {
            parts.behind.assign(end, file.end());
            parts.hasBusy = true;
            return parts;
        }
        parts.before.push_back({id, Bytes(begin, end)});
        position += 8 + size + size % 2;
    }
    return parts;
}

RC_GTEST_PROP(TorvoMetadata, keepsAllOtherBytesAndIsIdempotent, ()) {
    const auto original = anyWav();
    const auto options = anyOptions();
    const auto channel = *rc::gen::inRange<std::int64_t>(1, 9);
    const TorvoWAVMetadataWriter writer;

    auto once = original;
    writer.updateBusyChunk(once, options, channel);
    const auto before = partsOf(original);
    const auto after = partsOf(once);
    RC_ASSERT(after.hasBusy);
    RC_ASSERT(after.before == before.before);
    RC_ASSERT(after.behind == before.behind);
    RC_ASSERT(std::equal(original.begin(), original.begin() + 12, once.begin()));

    auto twice = once;
    writer.updateBusyChunk(twice, options, channel);
    RC_ASSERT(twice == once);
}

RC_GTEST_PROP(TorvoMetadata, allThreeInterfacesWriteTheSameBytes, ()) {
    const auto original = anyWav();
    const auto options = anyOptions();
    const auto channel = *rc::gen::inRange<std::int64_t>(1, 9);
    const TorvoWAVMetadataWriter writer;
    const TemporaryFolder folder;

    auto inMemory = original;
    writer.updateBusyChunk(inMemory, options, channel);
    const auto replaced = folder.write("replaced.wav", original);
    const auto source = systemFileManager()->open(replaced, OpenMode::read);
    const auto edit = writer.busyChunkEdit(FileByteSource(*source), options, channel);
    const auto copy = folder / "copy.wav";
    systemFileManager()->open(copy, OpenMode::createUnique)->copyFrom(*source, edit);
    writer.apply(options, FileURL(replaced), channel);
    RC_ASSERT(bytesOf(copy) == inMemory);
    RC_ASSERT(bytesOf(replaced) == inMemory);
}

} // namespace
} // namespace torvo::test
