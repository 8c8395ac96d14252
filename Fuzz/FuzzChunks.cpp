// Stamps arbitrary bytes: accepted files get one stamp and keep all other chunks, and stamping a
// copy of a file gives the same bytes as stamping in memory.

#include "AudioSupport/RiffChunks.h"
#include "MemoryFileManager.h"
#include "Models/GenerationError.h"
#include "Require.h"
#include "TorvoMetadata.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace torvo::fuzz {
namespace {

using Bytes = std::vector<std::byte>;

struct Chunk {
    std::string id;
    Bytes payload;
    friend bool operator==(const Chunk&, const Chunk&) = default;
};

/// The complete chunks of the file, except the stamp.
std::vector<Chunk> otherChunks(const Bytes& bytes) {
    const MemoryByteSource source(bytes);
    RiffChunkWalk walk(source);
    std::vector<Chunk> chunks;
    while (const auto chunk = walk.next()) {
        if (!walk.fits(*chunk))
            break;
        if (chunk->is("busy"))
            continue;
        Bytes payload(chunk->payloadSize);
        source.read(chunk->payloadOffset(), payload);
        chunks.push_back({std::string(chunk->id.begin(), chunk->id.end()), std::move(payload)});
    }
    return chunks;
}

/// Whether the file consists only of complete chunks with their pad bytes: only then is the
/// appended stamp found as a chunk, and an old stamp of odd size does not misalign later chunks.
bool isCleanlyChunked(const Bytes& bytes) {
    const MemoryByteSource source(bytes);
    RiffChunkWalk walk(source);
    std::uint64_t end = 12;
    while (const auto chunk = walk.next()) {
        if (!walk.fits(*chunk) || (chunk->is("busy") && chunk->payloadSize % 2 == 1))
            return false;
        end = chunk->payloadEnd() + chunk->payloadSize % 2;
    }
    return end == bytes.size();
}

Bytes stampedCopy(const Bytes& original, const TorvoWAVMetadataWriter& writer,
                  const TorvoMetadataOptions& options) {
    MemoryFileManager files;
    files.put("/sample.wav", original);
    const auto source = files.open("/sample.wav", OpenMode::read);
    const auto copy = files.open("/copy.wav", OpenMode::createUnique);
    copy->copyFrom(*source, writer.busyChunkEdit(FileByteSource(*source), options, 3));
    copy->close();
    return *files.contentOf("/copy.wav");
}

void stampAnything(const Bytes& original) {
    const TorvoWAVMetadataWriter writer;
    const TorvoMetadataOptions options(12, TorvoPlaybackRate::rate22, TorvoFilterType::notch, true,
                                       {3});
    Bytes stamped = original;
    try {
        writer.updateBusyChunk(stamped, options, 3);
    } catch (const GenerationError&) {
        require(stamped == original, "a refused file is left alone");
        return;
    }
    require(stampedCopy(original, writer, options) == stamped, "copy and memory agree");
    require(std::equal(original.begin(), original.begin() + 12, stamped.begin()),
            "the header is kept");
    if (isCleanlyChunked(original)) {
        require(otherChunks(stamped) == otherChunks(original), "other chunks are kept");
        Bytes again = stamped;
        writer.updateBusyChunk(again, options, 3);
        require(again == stamped, "the same stamp again changes nothing");
    }
}

} // namespace
} // namespace torvo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    torvo::fuzz::stampAnything({bytes.begin(), bytes.end()});
    return 0;
}
