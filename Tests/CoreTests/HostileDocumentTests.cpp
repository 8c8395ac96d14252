// Malicious and damaged mapping documents: each one is either a clear error or carried out as
// written, and nothing outside the chosen output folder is written or deleted.

#include "Json.h"
#include "Models/UserFacingDescription.h"
#include "SmallLibrary.h"
#include "TreeSnapshot.h"
#include "WavFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <sys/stat.h>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct HostileDocument {
    std::string name;
    std::function<void(json&)> edit; ///< applied to a document with one complete bank
    /// Part of the message for the user, or none when the document is valid.
    std::optional<std::string> message;
};

void PrintTo(const HostileDocument& document, std::ostream* to) {
    *to << document.name;
}

json& firstSample(json& document) {
    return document["recipes"][0]["channels"]["1"];
}

HostileDocument exportFolderName(const std::string& name, const std::string& folder) {
    return {name, [folder](json& document) { document["naming"]["sourceFolderName"] = folder; },
            "cannot be the name of an export folder"};
}

HostileDocument wrongType(const std::string& name, const std::string& pointer, const json& value,
                          const std::string& message) {
    return {name,
            [pointer, value](json& document) { document[json::json_pointer(pointer)] = value; },
            message};
}

void placeFirstSample(json& document, const std::string& url) {
    firstSample(document)["sourceURL"] = url;
    firstSample(document)["compatibility"] = {{"compatibleWav", json::object()}};
}

HostileDocument sampleAt(const std::string& name, const std::string& url,
                         const std::string& message) {
    return {name, [url](json& document) { placeFirstSample(document, url); }, message};
}

HostileDocument sampleInSource(const std::string& name, const std::string& relative,
                               const std::string& message) {
    return {name,
            [relative](json& document) {
                placeFirstSample(document, document["sourceFolder"].get<std::string>() + relative);
            },
            message};
}

const std::vector<HostileDocument>& documents() {
    static const std::vector<HostileDocument> all{
        exportFolderName("parentFolder", ".."),
        exportFolderName("thisFolder", "."),
        exportFolderName("emptyName", ""),
        exportFolderName("absoluteName", "/precious"),
        exportFolderName("climbingName", "../precious"),
        exportFolderName("nestedName", "a/b"),
        exportFolderName("nameWithNul", std::string("a\0b", 3)),
        {"nameOfALinkToAFile",
         [](json& document) { document["naming"]["sourceFolderName"] = "link"; },
         "is a link that leads to no folder"},
        {"nameTooLong",
         [](json& document) { document["naming"]["sourceFolderName"] = std::string(300, 'n'); },
         "File name too long"},
        sampleInSource("sampleIsAFolder", "Kicks/", "Is a directory"),
        sampleAt("sampleIsADevice", "file:///dev/zero", "Invalid argument"),
        sampleAt("sampleIsMissing", "file:///nowhere/kick.wav", "No such file"),
        sampleInSource("sampleIsText", "notes.txt", "Unable to open source audio file notes.txt."),
        sampleAt("sampleOnTheNetwork", "http://example.invalid/kick.wav", "is no file URL"),
        sampleAt("sampleOnAnotherHost", "file://host/kick.wav", "is no file URL"),
        sampleAt("samplePathRelative", "kick.wav", "is no file URL"),
        sampleAt("samplePathWithNul", "file:///a%00b.wav", "is no file URL"),
        sampleAt("samplePathLong", "file:///" + std::string(100'000, 'a'), "File name too long"),
        sampleAt(
            "samplePathDeep",
            [] {
                std::string url = "file://";
                for (int i = 0; i < 100'000; ++i)
                    url += "/a";
                return url;
            }(),
            "File name too long"),
        {"sampleNameClimbs",
         [](json& document) { firstSample(document)["displayName"] = "../../../../precious/x"; },
         std::nullopt},
        {"sampleNameAbsolute",
         [](json& document) { firstSample(document)["displayName"] = "/precious/kept"; },
         std::nullopt},
        {"sampleNameTooLong",
         [](json& document) { firstSample(document)["displayName"] = std::string(5000, 'n'); },
         "File name too long"},
        {"bankNameWithSeparators",
         [](json& document) { document["recipes"][0]["shortName"] = "../../precious"; },
         std::nullopt},
        {"bankIndexNegative", [](json& document) { document["recipes"][0]["bankIndex"] = -7; },
         std::nullopt},
        {"bankIndexGreatest",
         [](json& document) {
             document["recipes"][0]["bankIndex"] = std::numeric_limits<std::int64_t>::max();
         },
         std::nullopt},
        {"sameBankTwice",
         [](json& document) { document["recipes"].push_back(document["recipes"][0]); },
         std::nullopt},
        {"negativeChannelBesideTheEight",
         [](json& document) { document["recipes"][0]["channels"]["-3"] = firstSample(document); },
         std::nullopt},
        {"onlyNegativeChannels",
         [](json& document) {
             const json sample = firstSample(document);
             document["recipes"][0]["channels"] = {{"-1", sample}};
         },
         "Missing channel 1 for bank 1"},
        {"channelKeyNoNumber",
         [](json& document) {
             document["recipes"][0]["channels"]["first"] = firstSample(document);
         },
         "recipes[0].channels.first: not a channel number"},
        {"sourceInsideTheDeviceFolder",
         [](json& document) {
             const auto out = document["sourceFolder"].get<std::string>() + "../out/";
             document["naming"]["sourceFolderName"] = "Old";
             document["sourceFolder"] = out + "Old/QZT508/Bank%201/";
         },
         "lies inside"},
        wrongType("versionText", "/version", "2", "version: not an integer"),
        wrongType("versionFraction", "/version", 2.5, "version: not an integer"),
        wrongType("recipesObject", "/recipes", json::object(), "recipes: not a list"),
        wrongType("recipeNumber", "/recipes/0", 5, "recipes[0]"),
        wrongType("recipesNull", "/recipes", nullptr, "recipes: not a list"),
        wrongType("seedNegative", "/recipes/0/seed", -1, "seed: an integer out of range"),
        wrongType("seedTooGreat", "/recipes/0/seed", 1e20, "seed: not an integer"),
        wrongType("modeUnknown", "/generationMode", "hits", "is no generation mode"),
        wrongType("dateNoDate", "/exportedAt", "yesterday", "not an ISO 8601 date"),
        wrongType("namingList", "/naming", json::array(), "naming"),
        wrongType("channelsList", "/recipes/0/channels", json::array(), "channels: not an object"),
        wrongType("compatibilityBoth", "/recipes/0/channels/1/compatibility",
                  {{"compatibleWav", json::object()}, {"requiresConversion", json::object()}},
                  "expected one"),
        wrongType("rateNoNumber", "/recipes/0/channels/1/formatDetails/sampleRate", "fast",
                  "sampleRate: not a number"),
    };
    return all;
}

/// A library next to files that a hostile document might target.
class HostileDocumentTests : public ::testing::TestWithParam<HostileDocument> {
protected:
    void SetUp() override {
        source_ = writeSmallLibrary(folder_);
        folder_.write("precious/kept.wav", wavFile(WavFormat{}, std::size_t{50}));
        folder_.write("precious/QZT508/Bank 1/1/kept.wav", wavFile(WavFormat{}, std::size_t{50}));
        out_ = folder_.createFolder("out");
        folder_.write("out/neighbour.txt", "not ours");
        folder_.write("out/Old/QZT508/Bank 1/1/old.wav", wavFile(WavFormat{}, std::size_t{50}));
        fs::create_symlink(folder_ / "precious/kept.wav", out_ / "link");
        document_ = json(services_.run(source_, folder_.createFolder("first"), 1, 3));
    }

    std::optional<std::string> import(const std::string& text) const {
        const auto path = folder_.write("hostile.json", text);
        before_ = snapshotOf(folder_.path());
        try {
            services_.exportDocument(services_.store().importDocument(FileURL(path)), out_);
            return std::nullopt;
        } catch (const std::exception& error) {
            return userFacingDescription(error);
        }
    }

    /// Everything outside the new run folder, and the output of an earlier run with another name
    /// inside.
    void expectNothingElseTouched(const std::string& runFolder) const {
        for (const auto& line : differences(before_, snapshotOf(folder_.path()))) {
            const auto path = line.substr(2);
            EXPECT_TRUE(path == "out" || path == runFolder || path.starts_with(runFolder + "/"))
                << line;
        }
        EXPECT_TRUE(fs::exists(out_ / "Old/QZT508/Bank 1/1/old.wav"));
    }

    TemporaryFolder folder_;
    CoreServices services_{systemFileManager()};
    fs::path source_;
    fs::path out_;
    json document_;
    mutable TreeSnapshot before_;
};

TEST_P(HostileDocumentTests, failsClearlyOrStaysInsideTheOutputFolder) {
    GetParam().edit(document_);
    const auto failure = import(document_.dump());
    if (GetParam().message) {
        ASSERT_TRUE(failure);
        EXPECT_THAT(*failure, HasSubstr(*GetParam().message));
    } else {
        EXPECT_EQ(failure, std::nullopt);
    }
    expectNothingElseTouched("out/Kit");
}

INSTANTIATE_TEST_SUITE_P(Documents, HostileDocumentTests, ::testing::ValuesIn(documents()),
                         [](const auto& each) { return each.param.name; });

TEST_F(HostileDocumentTests, refuses100MegabytesOfNesting) {
    for (const char bracket : {'[', '{'}) {
        std::string text;
        while (text.size() < 100'000'000)
            text += bracket == '[' ? "[" : "{\"a\":";
        const auto failure = import(text);
        ASSERT_TRUE(failure);
        EXPECT_THAT(*failure, HasSubstr("nested too deeply"));
    }
    expectNothingElseTouched("out/Kit");
}

TEST_F(HostileDocumentTests, writesOneBankForTenThousandRecipesOfIt) {
    // Without channels, so the bank is recreated ten thousand times and stays empty.
    document_["recipes"][0]["channels"] = json::object();
    const json recipe = document_["recipes"][0];
    for (int i = 1; i < 10'000; ++i)
        document_["recipes"].push_back(recipe);
    EXPECT_EQ(import(document_.dump()), std::nullopt);
    expectNothingElseTouched("out/Kit");
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(out_ / "Kit/QZT508"))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, ::testing::UnorderedElementsAre("Bank 1", "Pool"));
}

TEST_F(HostileDocumentTests, writesTenThousandBanks) {
    document_["recipes"][0]["channels"] = json::object();
    const json recipe = document_["recipes"][0];
    for (int i = 2; i <= 10'000; ++i) {
        document_["recipes"].push_back(recipe);
        document_["recipes"].back()["bankIndex"] = i;
    }
    EXPECT_EQ(import(document_.dump()), std::nullopt);
    expectNothingElseTouched("out/Kit");
    EXPECT_TRUE(fs::exists(out_ / "Kit/QZT508/Bank 10000/info.txt"));
}

TEST_F(HostileDocumentTests, addsTheSecondRecipeOfABankToItsPool) {
    document_["recipes"].push_back(document_["recipes"][0]);
    EXPECT_EQ(import(document_.dump()), std::nullopt);
    std::size_t poolFiles = 0;
    for ([[maybe_unused]] const auto& entry :
         fs::directory_iterator(out_ / "Kit/QZT508/Pool/Bank 01"))
        ++poolFiles;
    EXPECT_EQ(poolFiles, 16U);
}

TEST_F(HostileDocumentTests, doesNotBlockOnAPipeNamedLikeASample) {
    const auto pipe = folder_ / "pipe.wav";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    firstSample(document_)["sourceURL"] = FileURL(pipe).absoluteString();
    const auto failure = import(document_.dump());
    ASSERT_TRUE(failure);
    EXPECT_THAT(*failure, StartsWith("Unable to"));
    expectNothingElseTouched("out/Kit");
}

/// A document truncated at any byte is an error that names it, never a partial document.
TEST_F(HostileDocumentTests, refusesTruncatedDocuments) {
    const auto text = document_.dump();
    for (std::size_t length = 0; length < text.size(); length += 37) {
        const auto failure = import(text.substr(0, length));
        ASSERT_TRUE(failure) << length;
        EXPECT_THAT(*failure, StartsWith("hostile.json cannot be used: ")) << length;
    }
    EXPECT_FALSE(fs::exists(out_ / "Kit"));
}

} // namespace
} // namespace torvo::test
