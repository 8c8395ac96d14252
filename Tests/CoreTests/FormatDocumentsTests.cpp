// Checks the pages of docs/formats and the word table of the README against the code.

#include "BankMappingStore.h"
#include "ExportFixture.h"
#include "Json.h"
#include "MarkdownTables.h"
#include "Models/DecodingError.h"
#include "RoleClassifier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <functional>
#include <optional>
#include <regex>
#include <set>
#include <sstream>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::byte>;

const fs::path sourceTree = TORVO_SOURCE_TREE;

MarkdownPage page(const std::string& name) {
    return MarkdownPage(textOf(sourceTree / name));
}

std::size_t number(const std::string& text) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::runtime_error("\"" + text + "\" is no number");
    return value;
}

Bytes hexBytes(const std::string& digits) {
    Bytes values;
    std::istringstream stream(digits);
    for (std::string pair; stream >> pair;)
        values.push_back(static_cast<std::byte>(std::stoul(pair, nullptr, 16)));
    return values;
}

// The "busy" chunk

struct Stamp {
    TorvoMetadataOptions options;
    std::int64_t channel = 1;
    std::size_t dataSize = 0;
};

Bytes littleEndian(std::size_t value, std::size_t size) {
    Bytes written;
    appendLittleEndian(written, value, size);
    return written;
}

/// The payload as the page describes it.
class DescribedPayload {
public:
    explicit DescribedPayload(const MarkdownPage& page)
        : fields_(page.table({"offset", "size", "value", "written", "meaning"})),
          rates_(page.table({"rate (kHz)", "rate byte"})),
          filters_(page.table({"filter", "filter code"})) {}

    void write(Bytes& payload, const Stamp& stamp, bool isNew) const {
        for (const auto& field : fields_) {
            const auto& written = field[3];
            const bool applies = written == "always" || (written == "new" && isNew) ||
                                 (written == "CV" && stamp.options.appliesCV(stamp.channel));
            for (const auto offset : offsets(field[0])) {
                if (applies)
                    writeField(payload, offset, number(field[1]), field[2], stamp);
            }
        }
    }

private:
    static std::vector<std::size_t> offsets(const std::string& text) {
        if (text != "110 + 88 i + 4 k")
            return {number(text)};
        std::vector<std::size_t> all;
        for (std::size_t i = 0; i <= 7; ++i) {
            for (std::size_t k = 0; k <= 16; ++k)
                all.push_back(110 + 88 * i + 4 * k);
        }
        return all;
    }

    void writeField(Bytes& payload, std::size_t offset, std::size_t size, const std::string& value,
                    const Stamp& stamp) const {
        if (value.starts_with("bit ")) {
            auto word = littleEndian(0x20 | 0x4000 | 0x8000, 4);
            const auto bit = littleEndian(std::stoul(value.substr(4), nullptr, 16), 4);
            for (std::size_t i = 0; i < 4; ++i)
                payload.at(offset + i) = (payload.at(offset + i) & ~word[i]) | bit[i];
            return;
        }
        const auto bytes = valueBytes(value, size, stamp);
        ASSERT_EQ(bytes.size(), size) << value;
        if (value == "filter code")
            payload.at(offset) = (payload.at(offset) & std::byte{0xF0}) | bytes[0];
        else
            std::ranges::copy(bytes, payload.begin() + static_cast<std::ptrdiff_t>(offset));
    }

    Bytes valueBytes(const std::string& value, std::size_t size, const Stamp& stamp) const {
        if (value == "data size")
            return littleEndian(stamp.dataSize, size);
        if (value == "bits")
            return littleEndian(static_cast<std::size_t>(stamp.options.bits), size);
        if (value == "channel index")
            return littleEndian(static_cast<std::size_t>(stamp.channel - 1), size);
        if (value == "rate byte")
            return littleEndian(code(rates_, displayName(stamp.options.rate)), size);
        if (value == "filter code")
            return littleEndian(code(filters_, displayName(stamp.options.filterType)), size);
        return hexBytes(value);
    }

    static std::size_t code(const MarkdownTable& table, const std::string& name) {
        for (const auto& row : table) {
            if (row[0] == name)
                return number(row[1]);
        }
        throw std::runtime_error("no code for " + name);
    }

    MarkdownTable fields_;
    MarkdownTable rates_;
    MarkdownTable filters_;
};

std::vector<Stamp> stamps() {
    std::vector<Stamp> all;
    for (const auto rate : allTorvoPlaybackRates) {
        for (const auto filter : allTorvoFilterTypes)
            all.push_back({TorvoMetadataOptions(9, rate, filter, false, {}), 3, 12});
    }
    for (std::int64_t channel = 1; channel <= 8; ++channel) {
        all.push_back({TorvoMetadataOptions(16, TorvoPlaybackRate::rate44, TorvoFilterType::notch,
                                            true, {1, 4, 8}),
                       channel, 70000});
    }
    return all;
}

Bytes wavOf(std::size_t dataSize) {
    return riffFile({riffChunk("data", Bytes(dataSize, std::byte{1}))});
}

Bytes busyChunk(const MarkdownPage& page, const Bytes& payload) {
    Bytes chunk;
    for (const auto& row : page.table({"offset", "size", "content"}, 1)) {
        EXPECT_EQ(number(row[0]), chunk.size());
        append(chunk, row[2] == "the payload" ? payload : hexBytes(row[2]));
        EXPECT_EQ(number(row[0]) + number(row[1]), chunk.size());
    }
    return chunk;
}

void expectStamped(Bytes file, const Stamp& stamp, const Bytes& expected) {
    TorvoWAVMetadataWriter().updateBusyChunk(file, stamp.options, stamp.channel);
    EXPECT_TRUE(file == expected) << "rate " << displayName(stamp.options.rate) << ", filter "
                                  << displayName(stamp.options.filterType) << ", channel "
                                  << stamp.channel;
}

TEST(FormatDocuments, describeANewBusyChunk) {
    const auto description = page("docs/formats/busy-chunk.md");
    const DescribedPayload described(description);
    for (const auto& stamp : stamps()) {
        const auto original = wavOf(stamp.dataSize);
        Bytes payload(1936);
        described.write(payload, stamp, true);
        auto expected = original;
        append(expected, busyChunk(description, payload));
        expectStamped(original, stamp, expected);
    }
}

TEST(FormatDocuments, describeWhatASecondStampChanges) {
    const auto description = page("docs/formats/busy-chunk.md");
    const DescribedPayload described(description);
    for (const auto& stamp : stamps()) {
        Bytes payload(1936, std::byte{0xFF});
        std::ranges::copy(hexBytes("77 56 34 12"), payload.begin());
        auto file = wavOf(stamp.dataSize);
        append(file, busyChunk(description, payload));
        described.write(payload, stamp, false);
        auto expected = wavOf(stamp.dataSize);
        append(expected, busyChunk(description, payload));
        expectStamped(file, stamp, expected);
    }
}

TEST(FormatDocuments, describeEveryRateAndFilter) {
    const auto description = page("docs/formats/busy-chunk.md");
    EXPECT_EQ(description.table({"rate (kHz)", "rate byte"}).size(), allTorvoPlaybackRates.size());
    EXPECT_EQ(description.table({"filter", "filter code"}).size(), allTorvoFilterTypes.size());
}

// The device's folder

std::regex pathPattern(const std::string& described) {
    std::string pattern = std::regex_replace(described, std::regex("\\bbb\\b"), "[0-9]{2,}");
    pattern = std::regex_replace(pattern, std::regex("\\bb\\b"), "[1-9][0-9]*");
    pattern = std::regex_replace(pattern, std::regex("\\bc\\b"), "[1-8]");
    pattern = std::regex_replace(pattern, std::regex("\\bname\\b"), "[A-Za-z0-9]+(-[A-Za-z0-9]+)*");
    return std::regex(std::regex_replace(pattern, std::regex("\\."), "\\."));
}

TEST(FormatDocuments, describeEveryPathOfAnExport) {
    ExportFixture fixture;
    for (const std::int64_t bank : {1, 7, 12, 99})
        fixture.job.recipes.push_back(fixture.bank(bank, {"Kick 03", "Big Kick (1)"}));
    fixture.run();

    std::map<std::string, int> uses;
    for (const auto& [path, content] : contentsOf(fixture.inDevice(""))) {
        int matches = 0;
        for (const auto& row : page("docs/formats/device-folder.md")
                                   .table({"path below the device folder", "content"})) {
            if (std::regex_match(path + (content == "/" ? "/" : ""), pathPattern(row[0]))) {
                ++uses[row[0]];
                ++matches;
            }
        }
        EXPECT_EQ(matches, 1) << path;
    }
    EXPECT_EQ(uses, (std::map<std::string, int>{{"Bank b/", 4},
                                                {"Bank b/info.txt", 4},
                                                {"Bank b/c/", 32},
                                                {"Bank b/c/name.wav", 32},
                                                {"Pool/", 1},
                                                {"Pool/Bank bb/", 4},
                                                {"Pool/Bank bb/name.wav", 32}}));
}

TEST(FormatDocuments, describeTheNamesOfFiles) {
    const auto examples = page("docs/formats/device-folder.md").table({"sample", "file"});
    ASSERT_FALSE(examples.empty());
    for (const auto& row : examples) {
        ExportFixture fixture;
        fixture.job.recipes = {fixture.bank(1, {row[0]})};
        fixture.run();
        EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 1/1/" + row[1]))) << row[0];
        EXPECT_TRUE(fs::exists(fixture.inDevice("Pool/Bank 01/" + row[1]))) << row[0];
    }
}

TEST(FormatDocuments, describeTheNamesOfBanks) {
    const auto examples =
        page("docs/formats/device-folder.md").table({"source folder", "first bank"});
    ASSERT_FALSE(examples.empty());
    for (const auto& row : examples)
        EXPECT_EQ(BankNameScheme(row[0]).firstBankName(), row[1]) << row[0];
}

// The mapping document

const fs::path exampleDocument = sourceTree / "docs/formats/example.json";

TEST(FormatDocuments, exampleMatchesTheOutputOfTheStore) {
    const BankMappingStore store;
    const auto document = store.importDocument(FileURL(exampleDocument));
    ASSERT_EQ(document.recipes.size(), 1U);
    EXPECT_EQ(document.recipes[0].channels.size(), 8U);

    const TemporaryFolder folder;
    const FileURL copy(folder / "copy.json");
    store.exportDocument(document, copy);
    EXPECT_EQ(textOf(copy.path()), textOf(exampleDocument));
}

/// The path of one object of each section within the example, in the order of the page.
const std::vector<std::pair<std::string, std::string>> sections{
    {"Document", ""},
    {"Naming", "/naming"},
    {"Template", "/template"},
    {"Slot", "/template/slots/0"},
    {"Recipe", "/recipes/0"},
    {"Sample", "/recipes/0/channels/3"},
    {"Format", "/recipes/0/channels/3/formatDetails"},
};

std::optional<BankMappingDocument> imported(const nlohmann::json& document) {
    const TemporaryFolder folder;
    try {
        return BankMappingStore().importDocument(FileURL(folder.write("a.json", document.dump())));
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

/// Whether a value has the type named in a table. Throws for an unknown type name.
bool isOfType(const std::string& type, const nlohmann::json& value) {
    using Json = nlohmann::json;
    static const auto text = [](const auto& accepts) {
        return [accepts](const Json& each) {
            return each.is_string() && accepts(each.get<std::string>());
        };
    };
    static const std::map<std::string, std::function<bool(const Json&)>> types{
        {"integer", &Json::is_number_integer},
        {"number", &Json::is_number},
        {"true or false", &Json::is_boolean},
        {"text", &Json::is_string},
        {"object", &Json::is_object},
        {"list of objects",
         [](const Json& each) {
             return each.is_array() && std::ranges::all_of(each, &Json::is_object);
         }},
        {"file URL", text([](const std::string& url) { return url.starts_with("file:///"); })},
        {"role", text([](const std::string& name) { return channelRole(name).has_value(); })},
        // The names of the modes as written between the outer backticks.
        {"drums`, `loops` or `stabs",
         text([](const std::string& name) { return generationMode(name).has_value(); })},
    };
    return types.at(type)(value);
}

TEST(FormatDocuments, describeEveryKey) {
    const auto description = page("docs/formats/mapping-document.md");
    std::vector<std::string> checked;
    for (const auto& [section, place] : sections)
        checked.push_back(section);
    EXPECT_EQ(description.headingsOfTables(), checked);
    const auto example = nlohmann::json::parse(textOf(exampleDocument));
    for (const auto& [section, place] : sections) {
        std::set<std::string> described;
        for (const auto& row : description.tableOf(section))
            described.insert(row[0]);
        std::set<std::string> present;
        for (const auto& [key, value] : example.at(nlohmann::json::json_pointer(place)).items())
            present.insert(key);
        EXPECT_EQ(described, present) << section;
    }
}

TEST(FormatDocuments, describeTheTypeOfEveryValue) {
    const auto description = page("docs/formats/mapping-document.md");
    const auto example = nlohmann::json::parse(textOf(exampleDocument));
    const std::vector<nlohmann::json> values{
        nullptr, true, 5, 2.5, "x", nlohmann::json::array({5}), nlohmann::json::object()};
    for (const auto& [section, place] : sections) {
        for (const auto& row : description.tableOf(section)) {
            const nlohmann::json::json_pointer pointer(place + "/" + row[0]);
            EXPECT_TRUE(isOfType(row[1], example.at(pointer))) << section << ": " << row[0];
            for (const auto& value : values) {
                if (isOfType(row[1], value))
                    continue;
                auto document = example;
                document.at(pointer) = value;
                EXPECT_FALSE(imported(document))
                    << section << ": " << row[0] << " is " << value.dump();
            }
        }
    }
}

TEST(FormatDocuments, describeTheEffectOfAMissingKey) {
    const auto description = page("docs/formats/mapping-document.md");
    const auto example = nlohmann::json::parse(textOf(exampleDocument));
    for (const auto& [section, place] : sections) {
        for (const auto& row : description.tableOf(section)) {
            auto document = example;
            document.at(nlohmann::json::json_pointer(place)).erase(row[0]);
            const auto before = floor<std::chrono::seconds>(std::chrono::system_clock::now());
            const auto read = imported(document);
            EXPECT_EQ(read.has_value(), row[2] != "error") << section << ": " << row[0];
            if (!read)
                continue;
            if (row[0] == "version") {
                EXPECT_EQ(std::to_string(read->version), row[2]);
            } else if (row[0] == "generationMode") {
                EXPECT_EQ(rawValue(read->generationMode), row[2]);
            } else {
                EXPECT_EQ(row[0], "exportedAt");
                EXPECT_EQ(row[2], "now");
                EXPECT_GE(read->exportedAt, before);
                EXPECT_LE(read->exportedAt, std::chrono::system_clock::now());
            }
        }
    }
}

// The word table of the README

TEST(FormatDocuments, readmeListsTheWordsOfTheClassifier) {
    const std::map<std::string, ChannelRole> roles{{"kick", ChannelRole::kick},
                                                   {"clap", ChannelRole::clap},
                                                   {"closed hat", ChannelRole::closedHat},
                                                   {"open hat", ChannelRole::openHat},
                                                   {"snare", ChannelRole::snare},
                                                   {"perc", ChannelRole::perc}};
    const auto rows = page("README.md").table({"role", "words in a name"});
    ASSERT_EQ(rows.size(), roles.size() + 1);
    for (const auto& row : rows) {
        for (const auto& word : listed(row[1])) {
            if (row[0] == "skipped") {
                EXPECT_TRUE(namesIgnoredFolder("01 " + word)) << word;
            } else {
                ASSERT_TRUE(roles.contains(row[0])) << row[0];
                EXPECT_EQ(classifyRole("01 " + word + " dry"), roles.at(row[0])) << word;
            }
        }
    }
}

} // namespace
} // namespace torvo::test
