#include "Models/GenerationError.h"
#include "AudioSupport/RiffChunks.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <vector>

namespace torvo::test {
namespace {

std::string errorOf(std::span<const std::byte> file) {
    try {
        findDataChunk(MemoryByteSource(file));
    } catch (const GenerationError& error) {
        return error.errorDescription();
    }
    return "none";
}

std::vector<std::byte> headerOnly(std::string_view id, std::uint32_t size) {
    std::vector<std::byte> chunk;
    append(chunk, id);
    appendUInt32(chunk, size);
    return chunk;
}

TEST(RiffChunks, walksOverThePadByteOfAnOddChunk) {
    const auto file = riffFile({riffChunk("odd ", bytes("abc")), riffChunk("data", bytes("wxyz"))});
    const MemoryByteSource source(file);
    RiffChunkWalk walk(source);
    const auto odd = walk.next();
    ASSERT_TRUE(odd);
    EXPECT_TRUE(odd->is("odd "));
    EXPECT_EQ(odd->headerOffset, 12U);
    EXPECT_EQ(odd->payloadSize, 3U);
    const auto data = walk.next();
    ASSERT_TRUE(data);
    EXPECT_TRUE(data->is("data"));
    EXPECT_EQ(data->payloadOffset(), 32U);
    EXPECT_EQ(data->payloadEnd(), 36U);
    EXPECT_FALSE(walk.next());
}

TEST(RiffChunks, returnsAChunkThatRunsPastTheEndAsTheLast) {
    auto file = riffFile({headerOnly("LIST", 9), riffChunk("data", {})});
    const MemoryByteSource source(file);
    RiffChunkWalk walk(source);
    const auto chunk = walk.next();
    ASSERT_TRUE(chunk);
    EXPECT_FALSE(walk.fits(*chunk));
    EXPECT_FALSE(walk.next());
}

TEST(RiffChunks, aChunkMayEndExactlyAtTheEnd) {
    const auto file = riffFile({headerOnly("LIST", 8), riffChunk("data", {})});
    const MemoryByteSource source(file);
    RiffChunkWalk walk(source);
    EXPECT_TRUE(walk.fits(walk.next().value()));
    EXPECT_FALSE(walk.next());
}

TEST(RiffChunks, theLargestSizeDoesNotWrapAround) {
    const auto file = riffFile({headerOnly("LIST", 0xFFFFFFFF), riffChunk("data", {})});
    EXPECT_EQ(errorOf(file), "Invalid WAV chunk size.");
}

TEST(RiffChunks, readsBigEndianSizes) {
    const auto file = riffFile({headerOnly("abcd", 0x02000000), bytes("xy")});
    const MemoryByteSource source(file);
    RiffChunkWalk walk(source, ByteOrder::big);
    EXPECT_EQ(walk.next().value().payloadSize, 2U);
}

TEST(RiffChunks, readsIntegersInBothOrders) {
    const std::array<std::byte, 4> four{std::byte{0x81}, std::byte{2}, std::byte{3},
                                        std::byte{0xF4}};
    const auto two = std::span(four).first<2>();
    EXPECT_EQ(readUInt32(four), 0xF4030281U);
    EXPECT_EQ(readUInt32(four, ByteOrder::big), 0x810203F4U);
    EXPECT_EQ(readUInt16(two), 0x0281U);
    EXPECT_EQ(readUInt16(two, ByteOrder::big), 0x8102U);
}

TEST(RiffChunks, findsTheDataChunkOrSaysWhatIsWrong) {
    const auto good = riffFile({riffChunk("data", bytes("abcd"))});
    auto noRiff = good;
    noRiff[0] = std::byte{'X'};
    auto noWave = good;
    noWave[8] = std::byte{'X'};
    const auto firstBytes = [&](std::size_t count) {
        return std::vector(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(count));
    };
    struct Row {
        const char* name;
        std::vector<std::byte> file;
        const char* error;
    };
    const std::vector<Row> rows = {
        {"a data chunk", good, "none"},
        {"an empty data chunk", riffFile({riffChunk("data", {})}), "none"},
        {"a cut chunk behind the data",
         riffFile({riffChunk("data", bytes("ab")), headerOnly("LIST", 100)}), "none"},
        {"nothing", {}, "Not a RIFF/WAVE file."},
        {"eleven bytes", firstBytes(11), "Not a RIFF/WAVE file."},
        {"another form", noRiff, "Not a RIFF/WAVE file."},
        {"another type", noWave, "Not a RIFF/WAVE file."},
        {"twelve bytes", firstBytes(12), "WAV data chunk not found."},
        {"nineteen bytes", firstBytes(19), "WAV data chunk not found."},
        {"only other chunks", riffFile({riffChunk("fmt ", bytes("ab"))}),
         "WAV data chunk not found."},
        {"a name that differs in case", riffFile({riffChunk("DATA", bytes("ab"))}),
         "WAV data chunk not found."},
        {"a data chunk one byte short", firstBytes(good.size() - 1), "Invalid WAV chunk size."},
    };
    for (const Row& row : rows)
        EXPECT_EQ(errorOf(row.file), row.error) << row.name;
}

TEST(RiffChunks, readsAFileBehindItsFirstBlock) {
    const TemporaryFolder folder;
    const std::vector<std::byte> padding(5001, std::byte{7});
    const auto path = folder.write(
        "far.wav", riffFile({riffChunk("junk", padding), riffChunk("data", bytes("wxyz"))}));
    const auto file = systemFileManager()->open(path, OpenMode::read);
    const FileByteSource source(*file);
    const auto data = findDataChunk(source);
    std::vector<std::byte> payload(10);
    EXPECT_EQ(source.read(data.payloadOffset(), payload), 4U);
    payload.resize(4);
    EXPECT_EQ(payload, bytes("wxyz"));
    EXPECT_EQ(source.read(source.size() + 5, payload), 0U);
    // Across the edge of the first block.
    std::vector<std::byte> across(8);
    EXPECT_EQ(source.read(4092, across), 8U);
    EXPECT_EQ(across, std::vector<std::byte>(8, std::byte{7}));
}

} // namespace
} // namespace torvo::test
