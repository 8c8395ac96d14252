#include "BankMappingStore.h"
#include "FileKinds.h"
#include "Json.h"
#include "LockedFolderFileManager.h"
#include "Models/DecodingError.h"
#include "Models/GenerationError.h"
#include "RecordingFileManager.h"
#include "Samples.h"
#include "TemporaryFolder.h"
#include "Thrown.h"
#include "TreeSnapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::sys_seconds;

BankMappingDocument smallDocument() {
    return {.version = 2,
            .sourceFolder = FileURL::directory("/Samples/My Kit"),
            .generationMode = GenerationMode::loops,
            .naming = BankNameScheme("My Kit"),
            .generationTemplate = {"T", {{1, ChannelRole::loop, "Loop 1"}}},
            .recipes = {{1, "MyKit001", {{1, compatibleSample(ChannelRole::loop, 1)}}, 9, false}},
            .exportedAt = sys_seconds(1772373909s)}; // 2026-03-01T14:05:09Z
}

/// A document's JSON that a test edits and the store then reads.
class Reading {
public:
    BankMappingDocument operator()(const std::string& text) const {
        return BankMappingStore().importDocument(FileURL(folder_.write("Kit001.json", text)));
    }
    BankMappingDocument with(const std::string& key, const nlohmann::json& value) const {
        nlohmann::json document = smallDocument();
        document[key] = value;
        return (*this)(document.dump());
    }
    BankMappingDocument without(const std::string& key) const {
        nlohmann::json document = smallDocument();
        document.erase(key);
        return (*this)(document.dump());
    }

private:
    TemporaryFolder folder_;
};

std::string errorOf(const auto& action) {
    const auto error = thrown<DecodingError>(action);
    return error ? error->errorDescription() : "none";
}

TEST(BankMappingStore, buildsADocumentFromAReport) {
    const auto before = std::chrono::system_clock::now() - 1s;
    const auto wanted = smallDocument();
    const auto document =
        BankMappingStore().document(wanted.sourceFolder, wanted.generationMode, wanted.naming,
                                    wanted.generationTemplate, wanted.recipes);
    EXPECT_GT(document.exportedAt, before);
    EXPECT_LE(document.exportedAt, std::chrono::system_clock::now());
    auto expected = wanted;
    expected.exportedAt = document.exportedAt;
    EXPECT_EQ(document, expected);
    EXPECT_EQ(document.version, 2);
}

TEST(BankMappingStore, writesSortedKeysWithTwoSpaces) {
    const TemporaryFolder folder;
    const FileURL url(folder / "Kit001.json");
    BankMappingStore().exportDocument(smallDocument(), url);
    EXPECT_EQ(textOf(url.path()), R"({
  "exportedAt": "2026-03-01T14:05:09Z",
  "generationMode": "loops",
  "naming": {
    "prefix": "MyKit",
    "sourceFolderName": "My Kit"
  },
  "recipes": [
    {
      "bankIndex": 1,
      "channels": {
        "1": {
          "compatibility": {
            "compatibleWav": {}
          },
          "displayName": "loop1",
          "formatDetails": {
            "bitDepth": 16,
            "channels": 1,
            "fileExtension": "wav",
            "isLinearPCM": true,
            "sampleRate": 44100.0
          },
          "role": "loop",
          "sourceURL": "file:///Kit/loop1.wav"
        }
      },
      "reusedSamples": false,
      "seed": 9,
      "shortName": "MyKit001"
    }
  ],
  "sourceFolder": "file:///Samples/My%20Kit/",
  "template": {
    "name": "T",
    "slots": [
      {
        "channel": 1,
        "label": "Loop 1",
        "role": "loop"
      }
    ]
  },
  "version": 2
}
)");
}

TEST(BankMappingStore, readsBackWhatItWrote) {
    const TemporaryFolder folder;
    const FileURL url(folder / "Kit001.json");
    BankMappingStore().exportDocument(smallDocument(), url);
    EXPECT_EQ(BankMappingStore().importDocument(url), smallDocument());
}

TEST(BankMappingStore, replacesAnExistingFileWithoutLeftovers) {
    const TemporaryFolder folder;
    const FileURL url(folder.write("Kit001.json", std::string(100'000, 'x')));
    BankMappingStore().exportDocument(smallDocument(), url);
    EXPECT_EQ(BankMappingStore().importDocument(url), smallDocument());
    EXPECT_EQ(systemFileManager()->contentsOfDirectory(folder.path()).size(), 1U);
}

TEST(BankMappingStore, keepsThePermissionsOfAnExistingDocument) {
    const TemporaryFolder folder;
    const FileURL url(folder.write("Kit001.json", "old"));
    // Neither mode is that of a new file under any common umask.
    for (const auto permissions : {fs::perms(0600), fs::perms(0444)}) {
        fs::permissions(url.path(), permissions);
        BankMappingStore().exportDocument(smallDocument(), url);
        EXPECT_EQ(fs::status(url.path()).permissions(), permissions);
        EXPECT_EQ(BankMappingStore().importDocument(url), smallDocument());
    }
    const FileURL fresh(folder / "new.json");
    BankMappingStore().exportDocument(smallDocument(), fresh);
    EXPECT_EQ(fs::status(fresh.path()).permissions(), ordinaryFilePermissions());
}

TEST(BankMappingStore, writesThroughALinkToItsTarget) {
    struct Row {
        const char* link;
        const char* says;
        const char* target;
        bool isDead;
    };
    const Row rows[] = {
        {"a.json", "elsewhere/target.json", "elsewhere/target.json", false},
        {"elsewhere/deep/b.json", "../target.json", "elsewhere/target.json", false},
        {"chain.json", "elsewhere/deep/b.json", "elsewhere/target.json", false},
        {"dead.json", "elsewhere/new.json", "elsewhere/new.json", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.link);
        const TemporaryFolder folder;
        folder.createFolder("elsewhere/deep");
        const auto target = folder / row.target;
        if (!row.isDead)
            folder.write(row.target, "old");
        if (std::string_view(row.link) == "chain.json")
            fs::create_symlink("../target.json", folder / row.says);
        fs::create_symlink(row.says, folder / row.link);
        if (!row.isDead)
            fs::permissions(target, fs::perms(0600));

        BankMappingStore().exportDocument(smallDocument(), FileURL(folder / row.link));
        EXPECT_EQ(fs::read_symlink(folder / row.link), row.says);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target)));
        EXPECT_EQ(BankMappingStore().importDocument(FileURL(target)), smallDocument());
        EXPECT_EQ(fs::status(target).permissions(),
                  row.isDead ? ordinaryFilePermissions() : fs::perms(0600));
        EXPECT_EQ(std::distance(fs::directory_iterator(target.parent_path()), {}), 2)
            << "the target and the folder beside it, nothing else";
    }
}

TEST(BankMappingStore, removesTemporaryFilesOfAnEarlierSave) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    fs::create_symlink(elsewhere / "target.json", folder / "link.json");
    for (const auto& url : {FileURL(elsewhere / "direct.json"), FileURL(folder / "link.json")}) {
        const auto left = elsewhere.write(".torvo-0123456789abcdef.tmp", "part");
        fs::last_write_time(left, fs::last_write_time(left) - std::chrono::hours(48));
        BankMappingStore().exportDocument(smallDocument(), url);
        EXPECT_FALSE(fs::exists(left));
    }
}

TEST(BankMappingStore, writesThroughAnAbsoluteLink) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    const auto target = elsewhere.write("target.json", "old");
    fs::create_symlink(target, folder / "Kit001.json");
    BankMappingStore().exportDocument(smallDocument(), FileURL(folder / "Kit001.json"));
    EXPECT_TRUE(fs::is_symlink(folder / "Kit001.json"));
    EXPECT_EQ(BankMappingStore().importDocument(FileURL(target)), smallDocument());
}

TEST(BankMappingStore, refusesToReplaceNonRegularFiles) {
    const FileKinds kinds;
    fs::create_symlink("missing folder/x", kinds.folder / "lost link");
    struct Row {
        fs::path path;
        fs::path told;
        std::errc code;
    };
    const Row rows[] = {
        {kinds.pipe, kinds.pipe, std::errc::invalid_argument},
        {kinds.directory, kinds.directory, std::errc::is_a_directory},
        {kinds.directoryLink, kinds.directory, std::errc::is_a_directory},
        {kinds.circularLink, kinds.circularLink, std::errc::too_many_symbolic_link_levels},
        {kinds.folder / "lost link", kinds.folder / "missing folder/x",
         std::errc::no_such_file_or_directory},
    };
    const auto before = snapshotOf(kinds.folder.path());
    for (const auto& row : rows) {
        const auto error = thrown<FileError>(
            [&] { BankMappingStore().exportDocument(smallDocument(), FileURL(row.path)); });
        ASSERT_TRUE(error) << row.path;
        EXPECT_EQ(error->path(), row.told);
        EXPECT_EQ(error->code(), row.code) << row.path;
    }
    EXPECT_THAT(differences(before, snapshotOf(kinds.folder.path())), testing::IsEmpty());
}

TEST(BankMappingStore, readsEarlierDocumentsWithoutVersionModeAndDate) {
    const Reading read;
    EXPECT_EQ(read.without("version").version, 1);
    EXPECT_EQ(read.without("generationMode").generationMode, GenerationMode::drums);
    const auto before = std::chrono::system_clock::now() - 1s;
    const auto exportedAt = read.without("exportedAt").exportedAt;
    EXPECT_GT(exportedAt, before);
    EXPECT_LE(exportedAt, std::chrono::system_clock::now());
}

TEST(BankMappingStore, requiresAllOtherKeys) {
    const Reading read;
    for (const auto* key : {"sourceFolder", "naming", "template", "recipes"})
        EXPECT_EQ(errorOf([&] { read.without(key); }), std::string(key) + ": missing");
}

TEST(BankMappingStore, rejectsValuesOfTheWrongType) {
    const Reading read;
    for (const auto* key : {"version", "sourceFolder", "generationMode", "naming", "template",
                            "recipes", "exportedAt"}) {
        // An explicit null is not a missing value.
        const auto error = errorOf([&] { read.with(key, nullptr); });
        EXPECT_TRUE(error.starts_with(std::string(key) + ": not ") ||
                    error.starts_with(std::string(key) + ".") || error.ends_with("not an object"))
            << key << " gave " << error;
        EXPECT_NE(error, "none") << key;
    }
    EXPECT_EQ(errorOf([&] { read.with("version", 2.0); }), "version: not an integer");
    EXPECT_EQ(errorOf([&] { read.with("version", "2"); }), "version: not an integer");
    EXPECT_EQ(errorOf([&] { read.with("version", true); }), "version: not an integer");
    EXPECT_EQ(errorOf([&] { read.with("sourceFolder", "https://x/"); }),
              "sourceFolder: \"https://x/\" is no file URL");
    EXPECT_EQ(errorOf([&] { read.with("generationMode", "Drums"); }),
              "generationMode: \"Drums\" is no generation mode");
    EXPECT_EQ(errorOf([&] { read.with("recipes", nlohmann::json::object()); }),
              "recipes: not a list");
    EXPECT_EQ(errorOf([&] { read.with("recipes", {1}); }), "recipes[0]: not an object");
}

TEST(BankMappingStore, namesTheKeyPathAndTheDocumentInErrors) {
    const Reading read;
    nlohmann::json document = smallDocument();
    auto& recipes = document["recipes"];
    recipes.push_back(recipes[0]);
    recipes[1]["channels"]["1"].erase("sourceURL");
    const auto error = thrown<DecodingError>([&] { read(document.dump()); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->errorDescription(), "recipes[1].channels.1.sourceURL: missing");
    EXPECT_EQ(error->documentName(), "Kit001.json");
}

TEST(BankMappingStore, readsDatesInWholeSecondsWithAnOffset) {
    const Reading read;
    struct Row {
        const char* text;
        sys_seconds expected;
    };
    const sys_seconds moment(1772373909s);
    const Row rows[] = {
        {"2026-03-01T14:05:09Z", moment},
        {"2026-03-01T14:05:09+00:00", moment},
        {"2026-03-01T16:05:09+02:00", moment},
        {"2026-03-01T08:35:09-05:30", moment},
        {"2026-03-02T00:05:09+10:00", moment},
        {"1970-01-01T00:00:00Z", sys_seconds(0s)},
        {"1969-12-31T23:59:59Z", sys_seconds(-1s)},
        {"2024-02-29T00:00:00Z", sys_seconds(1709164800s)},
        {"9999-12-31T23:59:59Z", sys_seconds(253402300799s)},
    };
    for (const auto& row : rows)
        EXPECT_EQ(read.with("exportedAt", row.text).exportedAt, row.expected) << row.text;
}

TEST(BankMappingStore, refusesOtherDateFormats) {
    const Reading read;
    for (const auto* text : {"",
                             "2026-03-01",
                             "2026-03-01T14:05:09",
                             "2026-03-01T14:05:09.5Z",
                             "2026-03-01T14:05:09.000Z",
                             "2026-03-01 14:05:09Z",
                             "2026-03-01t14:05:09z",
                             "2026-02-29T14:05:09Z",
                             "2026-13-01T14:05:09Z",
                             "2026-00-01T14:05:09Z",
                             "2026-03-00T14:05:09Z",
                             "2026-04-31T14:05:09Z",
                             "2026-03-01T24:00:00Z",
                             "2026-03-01T14:60:09Z",
                             "2026-03-01T14:05:60Z",
                             "2026-03-01T14:05:09+0200",
                             "2026-03-01T14:05:09+02",
                             "2026-03-01T14:05:09+24:00",
                             "2026-03-01T14:05:09+02:60",
                             "2026-03-01T14:05:09Zx",
                             "2026-03-01T14:05:09Z ",
                             "26-03-01T14:05:09Z",
                             "+2026-03-01T14:05:09Z",
                             "2026-3-01T14:05:09Z",
                             "2026-03-01T1:05:09Z",
                             "yesterday"}) {
        EXPECT_EQ(errorOf([&] { read.with("exportedAt", text); }),
                  "exportedAt: not an ISO 8601 date")
            << text;
    }
    EXPECT_EQ(errorOf([&] { read.with("exportedAt", 1772373909); }), "exportedAt: not a text");
}

TEST(BankMappingStore, refusesInvalidJSON) {
    const Reading read;
    EXPECT_EQ(errorOf([&] { read(""); }), "malformed JSON at byte 1");
    EXPECT_EQ(errorOf([&] { read("{\"version\": }"); }), "malformed JSON at byte 13");
    EXPECT_EQ(errorOf([&] { read("{} {}"); }), "malformed JSON at byte 4");
    EXPECT_EQ(errorOf([&] { read("{\"a\": \"\xFF\"}"); }), "malformed JSON at byte 8");
    EXPECT_EQ(errorOf([&] { read("{\"a\": 1e999}"); }), "a number is out of range");
    EXPECT_EQ(errorOf([&] { read("[]"); }), "not an object");
    EXPECT_EQ(errorOf([&] { read("null"); }), "not an object");
}

TEST(BankMappingStore, refusesExcessiveNesting) {
    const Reading read;
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    const auto within = [](const std::string& extra) {
        auto text = nlohmann::json(smallDocument()).dump();
        text.insert(1, "\"extra\":" + extra + ",");
        return text;
    };
    EXPECT_EQ(errorOf([&] { read(within(nested(30))); }), "none") << "an unknown key is ignored";
    EXPECT_EQ(errorOf([&] { read(within(nested(100))); }), "nested too deeply");
    // Would overflow the stack of a recursive parser.
    EXPECT_EQ(errorOf([&] { read(std::string(1'000'000, '[')); }), "nested too deeply");
    std::string objects;
    for (int i = 0; i < 100'000; ++i)
        objects += "{\"a\":";
    EXPECT_EQ(errorOf([&] { read(objects); }), "nested too deeply");
}

TEST(BankMappingStore, refusesAFileAbove100MegabytesBeforeReadingIt) {
    const TemporaryFolder folder;
    const auto path = folder.write("Take 1.json", "{}");
    const auto log = std::make_shared<FileCallLog>();
    const BankMappingStore store(std::make_shared<RecordingFileManager>(log));
    fs::resize_file(path, 100'000'001);
    EXPECT_EQ(thrown<GenerationError>([&] { store.importDocument(FileURL(path)); }),
              GenerationError::exportFailed("Take 1.json is too large to be a bank mapping."));
    EXPECT_THAT(log->described(folder.path(), {"open read", "read"}), testing::IsEmpty());
    fs::resize_file(path, 100'000'000);
    // Exactly at the limit: nlohmann/json stops at the first zero byte.
    EXPECT_EQ(errorOf([&] { store.importDocument(FileURL(path)); }), "sourceFolder: missing");
}

TEST(BankMappingStore, propagatesFileErrors) {
    const TemporaryFolder folder;
    const auto missing = thrown<FileError>(
        [&] { BankMappingStore().importDocument(FileURL(folder / "missing.json")); });
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->errorDescription(), "Unable to read " + (folder / "missing.json").string() +
                                               ": No such file or directory.");
    const auto aFolder =
        thrown<FileError>([&] { BankMappingStore().importDocument(folder.url()); });
    ASSERT_TRUE(aFolder);
    EXPECT_EQ(aFolder->code(), std::errc::is_a_directory);

    const auto locked = std::make_shared<LockedFolderFileManager>(folder.path());
    folder.write("Kit001.json", "old");
    const auto denied = thrown<FileError>([&] {
        BankMappingStore(locked).exportDocument(smallDocument(), FileURL(folder / "Kit001.json"));
    });
    ASSERT_TRUE(denied);
    EXPECT_EQ(denied->path(), folder / "Kit001.json") << "not the hidden file beside it";
    EXPECT_EQ(denied->code(), std::errc::permission_denied);
    EXPECT_EQ(textOf(folder / "Kit001.json"), "old");
}

} // namespace
} // namespace torvo::test
