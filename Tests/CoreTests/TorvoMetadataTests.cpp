#include "BusyPayload.h"
#include "Models/GenerationError.h"
#include "TemporaryFolder.h"
#include "Thrown.h"
#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;

using Bytes = std::vector<std::byte>;
using Channel = std::optional<std::int64_t>;

const TorvoMetadataOptions plain;
const TorvoMetadataOptions withCV(16, TorvoPlaybackRate::rate44, TorvoFilterType::off, true,
                                  {1, 2, 3, 4, 5, 6, 7, 8});

/// Stamps a copy of the file, as an export does.
void stampCopy(const fs::path& file, const fs::path& copy, const TorvoMetadataOptions& options,
               Channel channel) {
    const auto source = systemFileManager()->open(file, OpenMode::read);
    const auto edit =
        TorvoWAVMetadataWriter().busyChunkEdit(FileByteSource(*source), options, channel);
    const auto destination = systemFileManager()->open(copy, OpenMode::createUnique);
    destination->copyFrom(*source, edit);
    destination->close();
}

/// The stamped bytes; stamping a copy of a file must give the same result.
Bytes stamped(const Bytes& file, const TorvoMetadataOptions& options = plain, Channel channel = 1) {
    auto inMemory = file;
    TorvoWAVMetadataWriter().updateBusyChunk(inMemory, options, channel);
    const TemporaryFolder folder;
    const auto copy = folder / "copy.wav";
    stampCopy(folder.write("a.wav", file), copy, options, channel);
    EXPECT_EQ(bytesOf(copy).size(), inMemory.size());
    EXPECT_TRUE(bytesOf(copy) == inMemory) << "the copy differs from the bytes in memory";
    return inMemory;
}

/// Offsets at which two byte strings differ.
std::vector<std::size_t> differences(const Bytes& left, const Bytes& right) {
    EXPECT_EQ(left.size(), right.size());
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        if (left[i] != right[i])
            offsets.push_back(i);
    }
    return offsets;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const auto& part : parts)
        append(all, part);
    return all;
}

Bytes lastBytes(const Bytes& file, std::size_t count) {
    return {file.end() - static_cast<std::ptrdiff_t>(count), file.end()};
}

/// A WAV file of 10 data bytes.
Bytes tenByteWav() {
    return riffFile({riffChunk("fmt ", Bytes(16)), riffChunk("data", bytes("0123456789"))});
}

/// A chunk header that announces `size` bytes.
Bytes chunkOf(std::string_view id, std::uint32_t size) {
    auto header = bytes(id);
    appendUInt32(header, size);
    return header;
}

Bytes busyChunk(const Bytes& payload) {
    return riffChunk("busy", payload);
}

TEST(TorvoMetadata, appendsOneChunkWithoutChangingTheRIFFSize) {
    const auto original = tenByteWav();
    // Intended: the size at offset 4 does not change although the file grows.
    const auto expected =
        joined({original, bytes("busy"), Bytes{std::byte{0x90}, std::byte{0x07}, {}, {}},
                freshBusyPayload({.dataSize = 10})});
    const auto result = stamped(original);
    EXPECT_EQ(result.size(), original.size() + 1944);
    EXPECT_EQ(differences(result, expected), std::vector<std::size_t>{});
}

TEST(TorvoMetadata, writesTheSizeOfTheDataChunk) {
    const Bytes data(0x01020304);
    const auto file = riffFile({riffChunk("LIST", bytes("odd")), riffChunk("data", data)});
    auto result = file;
    TorvoWAVMetadataWriter().updateBusyChunk(result, plain, 1);
    EXPECT_EQ(differences(lastBytes(result, 1936), freshBusyPayload({.dataSize = 0x01020304})),
              std::vector<std::size_t>{});
}

TEST(TorvoMetadata, writesEveryRateFilterAndBitDepth) {
    unsigned rateByte = 7;
    for (const auto rate : allTorvoPlaybackRates) {
        unsigned filterCode = 0;
        for (const auto filter : allTorvoFilterTypes) {
            for (const unsigned bits : {1U, 8U, 16U}) {
                auto file = tenByteWav();
                TorvoWAVMetadataWriter().updateBusyChunk(file, {bits, rate, filter, false, {}}, 1);
                const auto expected = freshBusyPayload(
                    {.dataSize = 10, .bits = bits, .rateByte = rateByte, .filterCode = filterCode});
                EXPECT_EQ(differences(lastBytes(file, 1936), expected), std::vector<std::size_t>{})
                    << displayName(rate) << " " << displayName(filter) << " " << bits;
            }
            ++filterCode;
        }
        --rateByte;
    }
}

TEST(TorvoMetadata, writesADecodedBitDepthUnchanged) {
    for (const unsigned bits : {0U, 17U, 255U}) {
        TorvoMetadataOptions options;
        options.bits = bits;
        auto file = tenByteWav();
        TorvoWAVMetadataWriter().updateBusyChunk(file, options, 1);
        const auto expected = freshBusyPayload({.dataSize = 10, .bits = bits});
        EXPECT_EQ(differences(lastBytes(file, 1936), expected), std::vector<std::size_t>{}) << bits;
    }
}

TEST(TorvoMetadata, writesTheChannelIndex) {
    struct Row {
        Channel channel;
        unsigned index;
    };
    const Row rows[] = {{std::nullopt, 0},
                        {1, 0},
                        {2, 1},
                        {3, 2},
                        {4, 3},
                        {5, 4},
                        {6, 5},
                        {7, 6},
                        {8, 7},
                        {9, 7},
                        {12, 7},
                        {0, 0},
                        {-4, 0},
                        {INT64_MAX, 7},
                        {INT64_MIN, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(differences(lastBytes(stamped(tenByteWav(), plain, row.channel), 1936),
                              freshBusyPayload({.dataSize = 10, .channelIndex = row.index})),
                  std::vector<std::size_t>{})
            << row.channel.value_or(-1);
    }
}

TEST(TorvoMetadata, routesCVOnTheAssignedChannelsOnly) {
    const TorvoMetadataOptions someCV(16, TorvoPlaybackRate::rate44, TorvoFilterType::off, true,
                                      {2, 8});
    for (std::int64_t channel = 1; channel <= 8; ++channel) {
        const ExpectedStamp expected{.dataSize = 10,
                                     .channelIndex = static_cast<unsigned>(channel - 1),
                                     .routesCV = channel == 2 || channel == 8};
        EXPECT_EQ(differences(lastBytes(stamped(tenByteWav(), someCV, channel), 1936),
                              freshBusyPayload(expected)),
                  std::vector<std::size_t>{})
            << channel;
    }
    EXPECT_EQ(differences(lastBytes(stamped(tenByteWav(), withCV, std::nullopt), 1936),
                          freshBusyPayload({.dataSize = 10})),
              std::vector<std::size_t>{})
        << "no channel, no routing";
}

TEST(TorvoMetadata, changesOnlyTheSettingsOnASecondStamp) {
    const auto first = stamped(tenByteWav(), plain, 3);
    const TorvoMetadataOptions other(8, TorvoPlaybackRate::rate22, TorvoFilterType::highPass, false,
                                     {});
    const auto second = stamped(first, other, 5);
    const std::size_t payload = first.size() - 1936;
    EXPECT_EQ(differences(first, second),
              (std::vector<std::size_t>{payload + 24, payload + 50, payload + 54, payload + 55}))
        << "the channel index and data sizes of the first stamp stay";
    EXPECT_EQ(stamped(second, other, 5), second);
}

TEST(TorvoMetadata, keepsTheRoutingUntilALaterOneApplies) {
    // Intended: disabling the routing does not clear the routing stored in a file.
    const auto routed = stamped(tenByteWav(), withCV, 2);
    EXPECT_EQ(stamped(routed, plain, 2), routed);
}

TEST(TorvoMetadata, keepsTheOtherBitsOfAReusedPayload) {
    // Every byte except the signature is 0xFF, so that each cleared bit is visible.
    Bytes old(1936, std::byte{0xFF});
    std::ranges::copy_n(freshBusyPayload({}).begin(), 4, old.begin());
    const auto result =
        stamped(riffFile({riffChunk("data", bytes("ab")), busyChunk(old)}),
                {12, TorvoPlaybackRate::rate4, TorvoFilterType::bandPass, true, {6}}, 6);
    auto expected = old;
    const auto put = [&](std::size_t offset, std::initializer_list<int> values) {
        for (const int value : values)
            expected[offset++] = static_cast<std::byte>(value);
    };
    put(24, {12});
    put(50, {0xF2, 0xFF}); // the high half of byte 50 and all of byte 51 stay
    put(54, {7, 7});
    put(76, {0xDF, 0x7F}); // without 0x20 and 0x8000, with 0x4000
    put(80, {0xDF, 0xBF}); // without 0x20 and 0x4000, with 0x8000
    put(84, {0xFF, 0x3F}); // without 0xC000, with 0x20
    put(160, {0, 0, 99, 0});
    put(252, {0, 0, 99, 0});
    put(300, {0, 0, 99, 0});
    EXPECT_EQ(differences(lastBytes(result, 1936), expected), std::vector<std::size_t>{});
}

TEST(TorvoMetadata, replacesAForeignBusyChunkInPlace) {
    struct Row {
        const char* name;
        Bytes old;
    };
    const auto otherSignature = [](std::size_t changedByte) {
        auto payload = freshBusyPayload({.dataSize = 99});
        payload[changedByte] ^= std::byte{1};
        return payload;
    };
    const Row rows[] = {
        {"empty", {}},
        {"shorter", Bytes(100, std::byte{1})},
        {"two bytes shorter", Bytes(1934, std::byte{1})},
        {"two bytes longer", Bytes(1938, std::byte{1})},
        {"much longer", Bytes(20'000, std::byte{1})},
        {"another first byte of the signature", otherSignature(0)},
        {"another second byte", otherSignature(1)},
        {"another third byte", otherSignature(2)},
        {"another fourth byte", otherSignature(3)},
    };
    const auto head = joined(
        {bytes("RIFF"), bytes("\1\2\3\4"), bytes("WAVE"), riffChunk("data", bytes("0123456789"))});
    const auto tail = riffChunk("LIST", bytes("kept!"));
    for (const auto& row : rows) {
        const auto result = stamped(joined({head, busyChunk(row.old), tail}), plain, 4);
        const auto expected =
            joined({head, busyChunk(freshBusyPayload({.dataSize = 10, .channelIndex = 3})), tail});
        EXPECT_EQ(differences(result, expected), std::vector<std::size_t>{}) << row.name;
    }
}

TEST(TorvoMetadata, leavesThePadByteOfAnOddPayload) {
    const auto head = riffFile({riffChunk("data", bytes("01"))});
    const auto tail = riffChunk("LIST", bytes("tail"));
    for (const std::size_t size : {1U, 55U, 1935U, 1937U, 4001U}) {
        // Intended: the pad byte is not part of the replaced chunk. It stays, so later chunks are
        // misaligned by one byte.
        auto old = busyChunk(Bytes(size, std::byte{7}));
        old.back() = std::byte{0xAB};
        const auto result = stamped(joined({head, old, tail}));
        EXPECT_EQ(differences(result, joined({head, busyChunk(freshBusyPayload({.dataSize = 2})),
                                              Bytes{std::byte{0xAB}}, tail})),
                  std::vector<std::size_t>{})
            << size;
    }
}

TEST(TorvoMetadata, failsToFindDataAfterALeftPadByte) {
    // A known consequence of the leftover pad byte: no device writes such a file.
    auto file = riffFile({busyChunk(bytes("odd")), riffChunk("data", bytes("0123"))});
    const TorvoWAVMetadataWriter writer;
    writer.updateBusyChunk(file, plain, 1);
    const auto once = file;
    EXPECT_EQ(thrown<GenerationError>([&] { writer.updateBusyChunk(file, plain, 1); }),
              GenerationError::exportFailed("Invalid WAV chunk size."));
    EXPECT_EQ(file, once);
}

TEST(TorvoMetadata, appendsAnotherChunkWhenAPadByteIsMissingAtTheEnd) {
    // Intended: the new chunk is appended at the very end, as in all files stamped so far, while
    // the search skips a pad byte that does not exist. Such a file is invalid; each stamp adds a
    // chunk, and the bytes before it are kept.
    auto file = riffFile({riffChunk("data", bytes("abc"))});
    file.pop_back();
    for (int i = 0; i < 3; ++i) {
        const auto expected = joined({file, busyChunk(freshBusyPayload({.dataSize = 3}))});
        file = stamped(file);
        EXPECT_TRUE(file == expected) << "stamp " << i;
    }
}

TEST(TorvoMetadata, changesTheFirstBusyChunkAnywhere) {
    const auto data = riffChunk("data", bytes("abc")); // odd, with a pad byte
    const auto empty = busyChunk({});
    const auto fresh = busyChunk(freshBusyPayload({.dataSize = 3}));
    const auto result = stamped(riffFile({empty, data, empty}));
    EXPECT_EQ(Bytes(result.begin() + 12, result.end()), joined({fresh, data, empty}));
}

TEST(TorvoMetadata, stopsSearchingAtATruncatedChunk) {
    for (const std::uint32_t size : {1945U, 0x7FFFFFFFU, 0xFFFFFFF7U, 0xFFFFFFFFU}) {
        // A busy chunk after the truncated one is not found; a new one is appended.
        const auto file = joined(
            {tenByteWav(), chunkOf("LIST", size), busyChunk(freshBusyPayload({.dataSize = 10}))});
        EXPECT_EQ(stamped(file), joined({file, busyChunk(freshBusyPayload({.dataSize = 10}))}))
            << size;
    }
    for (std::size_t stray = 1; stray < 8; ++stray) {
        const auto file = joined({tenByteWav(), Bytes(stray, std::byte{'b'})});
        EXPECT_EQ(stamped(file), joined({file, busyChunk(freshBusyPayload({.dataSize = 10}))}))
            << stray << " stray bytes";
    }
    // A busy chunk that itself extends past the end.
    const auto file = joined({tenByteWav(), chunkOf("busy", 1936), Bytes(1935)});
    EXPECT_EQ(stamped(file), joined({file, busyChunk(freshBusyPayload({.dataSize = 10}))}));
}

TEST(TorvoMetadata, neverMatchesANonASCIIId) {
    const auto file = riffFile({riffChunk("d\xE4ta", bytes("xx")), riffChunk("data", bytes("abcd")),
                                riffChunk("b\xFCsy", Bytes(1936))});
    EXPECT_EQ(stamped(file), joined({file, busyChunk(freshBusyPayload({.dataSize = 4}))}));
}

TEST(TorvoMetadata, refusesOtherFilesAndLeavesThemUnchanged) {
    struct Row {
        const char* name;
        Bytes file;
        const char* message;
    };
    const auto data = riffChunk("data", bytes("ab"));
    const Row rows[] = {
        {"nothing", {}, "Not a RIFF/WAVE file."},
        {"eleven bytes", bytes("RIFF....WAV"), "Not a RIFF/WAVE file."},
        {"big-endian", joined({bytes("RIFX....WAVE"), data}), "Not a RIFF/WAVE file."},
        {"another form", joined({bytes("RIFF....AVI "), data}), "Not a RIFF/WAVE file."},
        {"no chunk", bytes("RIFF....WAVE"), "WAV data chunk not found."},
        {"no data chunk", riffFile({riffChunk("fmt ", Bytes(16))}), "WAV data chunk not found."},
        {"a chunk past the end before the data", riffFile({chunkOf("LIST", 11), data}),
         "Invalid WAV chunk size."},
        {"a size that would wrap around in 32 bits", riffFile({chunkOf("LIST", 0xFFFFFFF7), data}),
         "Invalid WAV chunk size."},
        {"a data chunk past the end",
         joined({bytes("RIFF....WAVE"), chunkOf("data", 4), bytes("ab")}),
         "Invalid WAV chunk size."},
    };
    for (const auto& row : rows) {
        auto inMemory = row.file;
        EXPECT_EQ(thrown<GenerationError>(
                      [&] { TorvoWAVMetadataWriter().updateBusyChunk(inMemory, plain, 1); }),
                  GenerationError::exportFailed(row.message))
            << row.name;
        EXPECT_EQ(inMemory, row.file) << row.name;

        const TemporaryFolder folder;
        const FileURL url(folder.write("1/a.wav", row.file));
        EXPECT_EQ(thrown<GenerationError>([&] { TorvoWAVMetadataWriter().apply(plain, url, 1); }),
                  GenerationError::exportFailed(row.message));
        EXPECT_EQ(
            thrown<GenerationError>([&] { stampCopy(url.path(), folder / "copy.wav", plain, 1); }),
            GenerationError::exportFailed(row.message));
        EXPECT_EQ(bytesOf(url.path()), row.file) << row.name;
        EXPECT_EQ(systemFileManager()->contentsOfDirectory(folder / "1").size(), 1U)
            << "a temporary file was left";
    }
}

TEST(TorvoMetadataDeathTest, abortsOnABitDepthThatDoesNotFitAByte) {
    auto file = tenByteWav();
    for (const std::int64_t bits : {std::int64_t{-1}, std::int64_t{256}}) {
        TorvoMetadataOptions options;
        options.bits = bits;
        EXPECT_DEATH(TorvoWAVMetadataWriter().updateBusyChunk(file, options, 1),
                     "Broken precondition: the bit depth fits into one byte");
    }
    TorvoMetadataOptions largest;
    largest.bits = 255;
    TorvoWAVMetadataWriter().updateBusyChunk(file, largest, 1);
    EXPECT_EQ(lastBytes(file, 1936)[24], std::byte{255});
}

} // namespace
} // namespace torvo::test
