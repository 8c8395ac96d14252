#include "AudioSupport/RiffChunks.h"
#include "Platform/SystemFileManager.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace torvo::test {
namespace {

std::optional<DataChunkFault> faultOf(std::span<const std::byte> file) {
    const auto found = findDataChunk(MemoryByteSource(file));
    const auto* const fault = std::get_if<DataChunkFault>(&found);
    return fault == nullptr ? std::nullopt : std::optional(*fault);
}

std::vector<std::byte> headerOnly(std::string_view id, std::uint32_t size) {
    std::vector<std::byte> chunk;
    append(chunk, id);
    appendUInt32(chunk, size);
    return chunk;
}

TEST(RiffChunks, skipsThePadByteOfAnOddChunk) {
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

TEST(RiffChunks, returnsATruncatedChunkAsTheLast) {
    auto file = riffFile({headerOnly("LIST", 9), riffChunk("data", {})});
    const MemoryByteSource source(file);
    RiffChunkWalk walk(source);
    const auto chunk = walk.next();
    ASSERT_TRUE(chunk);
    EXPECT_FALSE(walk.fits(*chunk));
    EXPECT_FALSE(walk.next());
}

TEST(RiffChunks, acceptsAChunkThatEndsAtTheEndOfTheFile) {
    const auto file = riffFile({headerOnly("LIST", 8), riffChunk("data", {})});
    const MemoryByteSource source(file);
    RiffChunkWalk walk(source);
    EXPECT_TRUE(walk.fits(walk.next().value()));
    EXPECT_FALSE(walk.next());
}

TEST(RiffChunks, doesNotOverflowOnTheMaximumSize) {
    const auto file = riffFile({headerOnly("LIST", 0xFFFFFFFF), riffChunk("data", {})});
    EXPECT_EQ(faultOf(file), DataChunkFault::invalidChunkSize);
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

TEST(RiffChunks, findsTheDataChunkOrReturnsTheFault) {
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
        std::optional<DataChunkFault> fault;
    };
    const std::vector<Row> rows = {
        {"a data chunk", good, std::nullopt},
        {"an empty data chunk", riffFile({riffChunk("data", {})}), std::nullopt},
        {"a cut chunk behind the data",
         riffFile({riffChunk("data", bytes("ab")), headerOnly("LIST", 100)}), std::nullopt},
        {"nothing", {}, DataChunkFault::notRiffWave},
        {"eleven bytes", firstBytes(11), DataChunkFault::notRiffWave},
        {"another form", noRiff, DataChunkFault::notRiffWave},
        {"another type", noWave, DataChunkFault::notRiffWave},
        {"twelve bytes", firstBytes(12), DataChunkFault::noDataChunk},
        {"nineteen bytes", firstBytes(19), DataChunkFault::noDataChunk},
        {"only other chunks", riffFile({riffChunk("fmt ", bytes("ab"))}),
         DataChunkFault::noDataChunk},
        {"a name that differs in case", riffFile({riffChunk("DATA", bytes("ab"))}),
         DataChunkFault::noDataChunk},
        {"a data chunk one byte short", firstBytes(good.size() - 1),
         DataChunkFault::invalidChunkSize},
    };
    for (const Row& row : rows)
        EXPECT_EQ(faultOf(row.file), row.fault) << row.name;
}

TEST(RiffChunks, readsBeyondTheFirstBlock) {
    const TemporaryFolder folder;
    const std::vector<std::byte> padding(5001, std::byte{7});
    const auto path = folder.write(
        "far.wav", riffFile({riffChunk("junk", padding), riffChunk("data", bytes("wxyz"))}));
    const auto file = systemFileManager()->open(path, OpenMode::read);
    const FileByteSource source(*file);
    const auto data = std::get<RiffChunk>(findDataChunk(source));
    std::vector<std::byte> payload(10);
    EXPECT_EQ(source.read(data.payloadOffset(), payload), 4U);
    payload.resize(4);
    EXPECT_EQ(payload, bytes("wxyz"));
    EXPECT_EQ(source.read(source.size() + 5, payload), 0U);
    // Across the end of the first block.
    std::vector<std::byte> across(8);
    EXPECT_EQ(source.read(4092, across), 8U);
    EXPECT_EQ(across, std::vector<std::byte>(8, std::byte{7}));
}

TEST(RiffChunks, distinguishesChunksFromOtherBytes) {
    struct Row {
        const char* name;
        std::vector<std::byte> file;
        bool expected;
    };
    const auto chunk = riffChunk("LIST", bytes("abc"));
    const auto bad = headerOnly(std::string_view("LI\x7F"
                                                 "T",
                                                 4),
                                0);
    const Row rows[] = {
        {"nothing", {}, true},
        {"two chunks", riffFile({chunk, chunk}), true},
        {"seven bytes more", riffFile({chunk, bytes("1234567")}), true},
        {"eight zeros", riffFile({chunk, std::vector<std::byte>(8)}), false},
        {"an id that is not printable", riffFile({bad}), false},
        {"a chunk past the end", riffFile({headerOnly("LIST", 1)}), false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(isChunkSequence(MemoryByteSource(row.file), 12), row.expected) << row.name;
    const auto bigEndian = riffFile({headerOnly("abcd", 0x02000000), bytes("xy")});
    EXPECT_TRUE(isChunkSequence(MemoryByteSource(bigEndian), 12, ByteOrder::big));
    EXPECT_FALSE(isChunkSequence(MemoryByteSource(bigEndian), 12));
}

} // namespace
} // namespace torvo::test
