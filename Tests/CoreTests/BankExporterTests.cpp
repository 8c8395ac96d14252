#include "BusyPayload.h"
#include "ExportFixture.h"
#include "Models/GenerationError.h"
#include "Thrown.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <thread>

namespace torvo::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::string asText(const std::vector<std::byte>& content) {
    std::string text;
    for (const auto byte : content)
        text += static_cast<char>(byte);
    return text;
}

/// The expected bytes of a stamped file with six data bytes.
std::string stamped(const std::string& data, const ExpectedStamp& stamp) {
    auto file = riffFile({riffChunk("data", bytes(data))});
    append(file, riffChunk("busy", freshBusyPayload(stamp)));
    return asText(file);
}

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

TEST(BankExporter, writesTheWholeTree) {
    ExportFixture fixture;
    fixture.job.recipes = {
        fixture.bank(7, {"Kick", "Clap", "Hat", "Ride", "Snare", "Tom", "Tom", "Tom"})};
    const auto summary = fixture.run();

    std::map<std::string, std::string> expected{
        {"Kit", "/"},
        {"Kit/QZT508", "/"},
        {"Kit/QZT508/Bank 7", "/"},
        {"Kit/QZT508/Bank 7/info.txt", "Kit007"},
        {"Kit/QZT508/Pool", "/"},
        {"Kit/QZT508/Pool/Bank 07", "/"},
    };
    const std::vector<std::pair<std::string, std::string>> names{
        {"Kick", "Kick"},   {"Clap", "Clap"}, {"Hat", "Hat"},     {"Ride", "Ride"},
        {"Snare", "Snare"}, {"Tom", "Tom"},   {"Tom", "Tom-002"}, {"Tom", "Tom-003"}};
    unsigned index = 0;
    for (const auto& [name, poolName] : names) {
        const auto content = stamped("source", {.dataSize = 6, .channelIndex = index});
        const auto channel = "Kit/QZT508/Bank 7/" + std::to_string(++index);
        expected[channel] = "/";
        expected[channel + "/" + name + ".wav"] = content;
        expected["Kit/QZT508/Pool/Bank 07/" + poolName + ".wav"] = content;
    }
    EXPECT_EQ(contentsOf(fixture.card.path()), expected);
    EXPECT_EQ(summary, (ExportSummary{FileURL::directory(fixture.inDevice("")), 1, 16, 0, 0, 8}));
    EXPECT_EQ(textOf(fixture.source), asText(riffFile({riffChunk("data", bytes("source"))})))
        << "the sample itself is left alone";
}

TEST(BankExporter, stampsTheJobSettingsOnEveryChannel) {
    ExportFixture fixture;
    fixture.job.metadataOptions = {8, TorvoPlaybackRate::rate22, TorvoFilterType::notch, true, {2}};
    fixture.job.recipes = {fixture.bank(1, {"Kick"})};
    fixture.run();
    for (unsigned channel = 1; channel <= 8; ++channel) {
        const auto expected = stamped("source", {.dataSize = 6,
                                                 .channelIndex = channel - 1,
                                                 .bits = 8,
                                                 .rateByte = 1,
                                                 .filterCode = 3,
                                                 .routesCV = channel == 2});
        const auto number = std::to_string(channel);
        const auto pooled = channel == 1 ? "Kick.wav" : "Kick-00" + number + ".wav";
        EXPECT_EQ(textOf(fixture.inDevice("Bank 1/" + number + "/Kick.wav")), expected);
        EXPECT_EQ(textOf(fixture.inDevice("Pool/Bank 01/" + pooled)), expected);
    }
}

TEST(BankExporter, zeroPadsBankNumbersInThePoolOnly) {
    ExportFixture fixture;
    for (const std::int64_t index : {1, 9, 10, 99, 100})
        fixture.job.recipes.push_back({index, fixture.job.naming.bankName(index), {}, 7, false});
    fixture.run();
    EXPECT_EQ(
        namesIn(fixture.inDevice("")),
        (std::set<std::string>{"Bank 1", "Bank 9", "Bank 10", "Bank 99", "Bank 100", "Pool"}));
    EXPECT_EQ(namesIn(fixture.inDevice("Pool")),
              (std::set<std::string>{"Bank 01", "Bank 09", "Bank 10", "Bank 99", "Bank 100"}));
    EXPECT_EQ(textOf(fixture.inDevice("Bank 10/info.txt")), "Kit010") << "no line end";
}

TEST(BankExporter, writesInfoAsASCII) {
    struct Row {
        const char* shortName;
        const char* info;
    };
    const Row rows[] = {{"Élanvi001", "Elanvi001"},
                        {"ドラム001", "???001"},
                        {"🥁", "?"},
                        {"", ""},
                        // One Hangul syllable, composed or decomposed.
                        {"\uAC01001", "?001"},
                        {"\u1100\u1161\u11A8001", "?001"}};
    for (const auto& row : rows) {
        ExportFixture fixture;
        fixture.job.recipes = {{1, row.shortName, {}, 7, false}};
        fixture.run();
        EXPECT_EQ(textOf(fixture.inDevice("Bank 1/info.txt")), row.info);
        EXPECT_THAT(fixture.updates, ElementsAre(ProgressUpdate{1, 1, row.shortName}));
    }
}

TEST(BankExporter, sanitizesFileNames) {
    struct Row {
        const char* displayName;
        const char* fileName;
    };
    const Row rows[] = {
        {"Big Kick (1)", "Big-Kick-1.wav"},
        {"Big_Kick_1", "Big-Kick-1.wav"},
        {"キック", "Sample.wav"},
        {"", "Sample.wav"},
        {"---", "Sample.wav"},
        {"-a--b---c-", "a-b-c.wav"},
        {"Kické", "Kick.wav"},
        {"été", "t.wav"},
        {"a.b/c\\d", "a-b-c-d.wav"},
        {"../../etc", "etc.wav"},
        {"a\nb", "a-b.wav"},
        {"Kick #1 100%", "Kick-1-100.wav"},
        {"ｋｉｃｋ１", "Sample.wav"},
        {"\xFF\xFFx", "x.wav"},
        {"Sample", "Sample.wav"},
        {"con", "con.wav"},
    };
    for (const auto& row : rows) {
        ExportFixture fixture;
        fixture.job.recipes = {fixture.bank(1, {row.displayName})};
        fixture.run();
        EXPECT_EQ(namesIn(fixture.inDevice("Bank 1/1")), std::set<std::string>{row.fileName})
            << row.displayName;
        EXPECT_TRUE(fs::exists(fixture.inDevice("Pool/Bank 01/" + std::string(row.fileName))));
    }
}

TEST(BankExporter, numbersClashingPoolNames) {
    ExportFixture fixture;
    // "KICK" and "Kick" are the same name on FAT, and "Kick-004" uses up the fourth number.
    fixture.job.recipes = {fixture.bank(1, {"Big Kick (1)", "Big_Kick_1", "Kick", "KICK", "kick",
                                            "Kick 002", "Kick-004", "Kick"}),
                           fixture.bank(2, {"a", "b", "c", "d", "e", "f", "g", "Kick"})};
    fixture.run();
    EXPECT_EQ(namesIn(fixture.inDevice("Pool/Bank 01")),
              (std::set<std::string>{"Big-Kick-1.wav", "Big-Kick-1-002.wav", "Kick.wav",
                                     "KICK-002.wav", "kick-003.wav", "Kick-002-002.wav",
                                     "Kick-004.wav", "Kick-005.wav"}));
    EXPECT_EQ(namesIn(fixture.inDevice("Bank 1/2")), std::set<std::string>{"Big-Kick-1.wav"})
        << "each channel has its own folder";
    EXPECT_TRUE(fs::exists(fixture.inDevice("Pool/Bank 02/Kick.wav")))
        << "each bank has its own pool";
}

TEST(BankExporter, keepsBothPoolsOfARepeatedBankIndex) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(3, {"Kick"}), fixture.bank(3, {"Kick"})};
    fixture.job.recipes[1].shortName = "Second";
    const auto summary = fixture.run();
    EXPECT_EQ(namesIn(fixture.inDevice("Pool/Bank 03")).size(), 16U);
    EXPECT_TRUE(fs::exists(fixture.inDevice("Pool/Bank 03/Kick-016.wav")));
    EXPECT_EQ(textOf(fixture.inDevice("Bank 3/info.txt")), "Second");
    EXPECT_EQ(namesIn(fixture.inDevice("Bank 3/1")), std::set<std::string>{"Kick.wav"});
    EXPECT_EQ(summary.banksWritten, 2);
}

TEST(BankExporter, countsCopiesConversionsAndReusedBanks) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"a"}), fixture.bank(2, {"b"}), fixture.bank(3, {"c"})};
    for (const std::int64_t channel : {1, 4, 8})
        fixture.job.recipes[1].channels.at(channel).compatibility = RequiresConversion{"x"};
    fixture.job.recipes[0].reusedSamples = true;
    fixture.job.recipes[2].reusedSamples = true;
    const auto summary = fixture.run();
    EXPECT_EQ(summary, (ExportSummary{FileURL::directory(fixture.inDevice("")), 3, 42, 6, 2, 24}));
    EXPECT_EQ(textOf(fixture.inDevice("Bank 2/4/b.wav")),
              stamped("converted.", {.dataSize = 10, .channelIndex = 3}));
}

TEST(BankExporter, countsEightPoolFilesForEachBankWithChannels) {
    // Intended: 8 per bank with channels, regardless of how many files are written.
    ExportFixture fixture;
    fixture.job.recipes = {{1, "Empty", {}, 7, false}, fixture.bank(2, {"a"})};
    fixture.job.recipes[1].channels.emplace(9, fixture.sample("beyond the device"));
    const auto summary = fixture.run();
    EXPECT_EQ(summary.poolFilesWritten, 8);
    EXPECT_EQ(summary.copiedFiles, 16);
    EXPECT_EQ(namesIn(fixture.inDevice("Bank 1")), std::set<std::string>{"info.txt"});
    EXPECT_FALSE(fs::exists(fixture.inDevice("Bank 2/9")));
}

TEST(BankExporter, createsOnlyFoldersWithoutRecipes) {
    ExportFixture fixture;
    const auto summary = fixture.run();
    EXPECT_EQ(summary, (ExportSummary{FileURL::directory(fixture.inDevice("")), 0, 0, 0, 0, 0}));
    EXPECT_EQ(contentsOf(fixture.card.path()),
              (std::map<std::string, std::string>{
                  {"Kit", "/"}, {"Kit/QZT508", "/"}, {"Kit/QZT508/Pool", "/"}}));
    EXPECT_THAT(fixture.updates, IsEmpty());
}

TEST(BankExporter, reportsProgressAfterEachBank) {
    ExportFixture fixture;
    fixture.job.recipes = {
        fixture.bank(1, {"a"}), {5, "Other", {}, 7, false}, fixture.bank(2, {"b"})};
    fixture.run();
    EXPECT_THAT(fixture.updates,
                ElementsAre(ProgressUpdate{1, 3, "Kit001"}, ProgressUpdate{2, 3, "Other"},
                            ProgressUpdate{3, 3, "Kit002"}));
    EXPECT_EQ(BankExporter(systemFileManager(), fixture.preparer, TorvoWAVMetadataWriter())
                  .exportBanks(fixture.job)
                  .banksWritten,
              3)
        << "the progress callback is optional";
}

TEST(BankExporter, reportsProgressOnTheExportingThread) {
    // The real preparer converts on other threads.
    ExportFixture fixture;
    fixture.source = fixture.folder.write("source/a.wav", wavFile({48000, 2, 24}, 4800));
    fixture.job.recipes = {fixture.bank(1, {"a"}), fixture.bank(2, {"b"}), fixture.bank(3, {"c"})};
    for (auto& recipe : fixture.job.recipes) {
        for (auto& [channel, sample] : recipe.channels)
            sample.compatibility = RequiresConversion{"sample rate 48000 Hz"};
    }
    const BankExporter exporter(systemFileManager(), std::make_shared<AVAudioSamplePreparer>(),
                                TorvoWAVMetadataWriter());
    std::vector<std::thread::id> told;
    std::thread::id exporting;
    std::thread([&] {
        exporting = std::this_thread::get_id();
        exporter.exportBanks(fixture.job,
                             [&](const auto&) { told.push_back(std::this_thread::get_id()); });
    }).join();
    EXPECT_THAT(told, ElementsAre(exporting, exporting, exporting));
}

TEST(BankExporter, createsTheExportFolderAndItsParents) {
    ExportFixture fixture;
    fixture.job.exportFolder = FileURL::directory(fixture.folder / "new/deep/card");
    fixture.run();
    EXPECT_TRUE(fs::is_directory(fixture.folder / "new/deep/card/Kit/QZT508/Pool"));
}

TEST(BankExporter, replacesOnlyTheDeviceFolderOnASecondExport) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"Old"}), fixture.bank(2, {"Old"})};
    fixture.run();
    fixture.folder.write("card/Kit/notes.txt", "kept");
    fixture.folder.write("card/Other/notes.txt", "kept");
    fixture.folder.write("card/Kit/QZT508/stray/.hidden", "goes");
    fixture.job.recipes = {fixture.bank(1, {"New"})};
    fixture.run();
    const auto tree = contentsOf(fixture.card.path());
    EXPECT_EQ(tree.at("Kit/notes.txt"), "kept");
    EXPECT_EQ(tree.at("Other/notes.txt"), "kept");
    EXPECT_EQ(namesIn(fixture.inDevice("")), (std::set<std::string>{"Bank 1", "Pool"}));
    EXPECT_EQ(namesIn(fixture.inDevice("Bank 1/1")), std::set<std::string>{"New.wav"});
    EXPECT_EQ(namesIn(fixture.inDevice("Pool")), std::set<std::string>{"Bank 01"});
}

TEST(BankExporter, removesAnyItemInPlaceOfTheDeviceFolder) {
    {
        ExportFixture fixture;
        fixture.folder.write("card/Kit/QZT508", "a file");
        fixture.run();
        EXPECT_TRUE(fs::is_directory(fixture.inDevice("Pool")));
    }
    for (const auto* target : {"missing", "QZT508"}) {
        // A dangling link, and a link to itself.
        ExportFixture fixture;
        fixture.folder.createFolder("card/Kit");
        fs::create_symlink(target, fixture.folder / "card/Kit/QZT508");
        fixture.run();
        EXPECT_TRUE(fs::is_directory(fs::symlink_status(fixture.folder / "card/Kit/QZT508")));
        EXPECT_TRUE(fs::is_directory(fixture.inDevice("Pool")));
    }
    ExportFixture fixture;
    fixture.folder.write("elsewhere/kept.txt", "kept");
    fixture.folder.createFolder("card/Kit");
    fs::create_directory_symlink(fixture.folder / "elsewhere", fixture.folder / "card/Kit/QZT508");
    fixture.run();
    EXPECT_FALSE(fs::is_symlink(fixture.folder / "card/Kit/QZT508"));
    EXPECT_EQ(textOf(fixture.folder / "elsewhere/kept.txt"), "kept") << "the link alone is removed";
}

TEST(BankExporter, failsOnAMissingChannel) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"a"}), fixture.bank(12, {"b"}),
                           fixture.bank(13, {"c"})};
    fixture.job.recipes[1].channels.erase(7);
    EXPECT_EQ(thrown<GenerationError>([&] { fixture.run(); }),
              GenerationError::exportFailed("Missing channel 7 for bank 12"));
    // The files written before the failure stay.
    EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 1/8/a.wav")));
    EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 12/6/b.wav")));
    EXPECT_FALSE(fs::exists(fixture.inDevice("Bank 12/7")));
    EXPECT_FALSE(fs::exists(fixture.inDevice("Bank 13")));
    EXPECT_EQ(fixture.updates.size(), 1U);
}

TEST(BankExporter, preparesEachChannelTwiceInOrder) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"a"})};
    fixture.run();
    std::vector<FakePreparer::Call> expected;
    for (int channel = 1; channel <= 8; ++channel) {
        const auto number = std::to_string(channel);
        const auto pooled = channel == 1 ? "a.wav" : "a-00" + number + ".wav";
        expected.push_back(
            {FileURL(fixture.source), FileURL(fixture.inDevice("Bank 1/" + number + "/a.wav"))});
        expected.push_back(
            {FileURL(fixture.source), FileURL(fixture.inDevice("Pool/Bank 01/" + pooled))});
    }
    EXPECT_EQ(fixture.preparer->calls(), expected);
}

TEST(BankExporter, propagatesPreparerErrorsUnchanged) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"a"}), fixture.bank(2, {"b"})};
    fixture.preparer->beforePreparing = [&](const auto&) {
        if (fixture.preparer->calls().size() == 20)
            throw std::runtime_error("no more");
    };
    const auto error = thrown<std::runtime_error>([&] { fixture.run(); });
    ASSERT_TRUE(error);
    EXPECT_STREQ(error->what(), "no more");
    EXPECT_THAT(fixture.updates, ElementsAre(ProgressUpdate{1, 2, "Kit001"}));
}

TEST(BankExporter, failsWhenAPreparedSampleIsNotWav) {
    ExportFixture fixture;
    fixture.source = fixture.folder.write("source/a.wav", "text");
    fixture.job.recipes = {fixture.bank(1, {"a"})};
    EXPECT_EQ(thrown<GenerationError>([&] { fixture.run(); }),
              GenerationError::exportFailed("Not a RIFF/WAVE file."));
}

TEST(BankExporter, namesAVanishedSample) {
    ExportFixture fixture;
    fixture.job.recipes = {fixture.bank(1, {"a"})};
    fs::remove(fixture.source);
    const auto error = thrown<FileError>([&] { fixture.run(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->path(), fixture.source);
    EXPECT_EQ(error->code(), std::errc::no_such_file_or_directory);
}

TEST(BankExporter, failsOnANameTooLongForTheFileSystem) {
    ExportFixture fixture;
    const std::string longest(251, 'x');
    fixture.job.recipes = {fixture.bank(1, {longest, "a"})};
    fixture.run();
    EXPECT_TRUE(fs::exists(fixture.inDevice("Bank 1/1/" + longest + ".wav")));
    // Names are not shortened; the number of the second file no longer fits.
    fixture.job.recipes = {fixture.bank(1, {longest})};
    const auto error = thrown<FileError>([&] { fixture.run(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), std::errc::filename_too_long);
}

} // namespace
} // namespace torvo::test
