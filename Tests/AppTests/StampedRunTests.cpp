#include "BusyPayload.h"
#include "Support/AppFixture.h"
#include "WavFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using namespace torvo;
using namespace torvo::test;

namespace {

constexpr std::uint32_t frames = 32; ///< of every sample of the fixture, 2 bytes each

const TorvoMetadataOptions chosen{
    7, TorvoPlaybackRate::rate9, TorvoFilterType::notch, true, {1, 3, 8}};
/// Changes settings during a run.
const TorvoMetadataOptions later{
    12, TorvoPlaybackRate::rate4, TorvoFilterType::highPass, true, {2, 4, 5}};

std::vector<std::byte> expectedPayload(unsigned channel) {
    return freshBusyPayload({.dataSize = frames * 2,
                             .channelIndex = channel - 1,
                             .bits = 7,
                             .rateByte = 4,
                             .filterCode = 3,
                             .routesCV = channel == 1 || channel == 3 || channel == 8});
}

/// Banks are written with the settings at the start of the run.
class StampedRunTest : public testing::Test, protected AppFixture {
protected:
    StampedRunTest() : AppFixture(Banks::written) {}

    void expectStamped(const FileURL& root, int banks) const {
        int files = 0;
        for (int bank = 1; bank <= banks; ++bank) {
            for (unsigned channel = 1; channel <= 8; ++channel) {
                const auto at =
                    root.path() / ("Bank " + std::to_string(bank)) / std::to_string(channel);
                for (const auto& entry : std::filesystem::directory_iterator(at)) {
                    SCOPED_TRACE(entry.path());
                    const auto sample = wavFile(WavFormat{}, frames);
                    const auto stamp = riffChunk("busy", expectedPayload(channel));
                    const auto written = bytesOf(entry.path());
                    ASSERT_EQ(written.size(), sample.size() + stamp.size());
                    EXPECT_TRUE(
                        std::equal(stamp.begin(), stamp.end(), written.end() - std::ssize(stamp)));
                    ++files;
                }
            }
        }
        EXPECT_EQ(files, banks * 8);
    }
};

} // namespace

TEST_F(StampedRunTest, generatesWithTheSettingsAtTheStart) {
    model.setExportFolder(outputFolder());
    model.setMetadataOptions(chosen);
    scan(drumKit());
    const auto gate = preparer->holdBank(1);
    model.generateBanks();
    model.setMetadataOptions(later);
    gate->open();
    waitForWork();
    expectStamped(*model.expectedExportRoot(), 99);
}

TEST_F(StampedRunTest, importsWithTheSettingsAtTheStart) {
    const FileURL saved(folder / "mapping.json");
    model.setExportFolder(outputFolder("first"));
    scan(drumKit());
    model.generateBanks();
    waitForWork();
    panels->saveTarget = saved;
    model.exportJSON();

    panels->document = saved;
    model.setExportFolder(outputFolder("second"));
    model.setMetadataOptions(chosen);
    const auto gate = preparer->holdBank(1);
    model.importJSON();
    model.setMetadataOptions(later);
    gate->open();
    waitForWork();
    expectStamped(*model.expectedExportRoot(), 99);
}

// An import uses the settings at the time at which the document was chosen, before the folder
// panel.
TEST_F(StampedRunTest, importsWithTheSettingsFromBeforeTheFolderPanel) {
    panels->document = savedRun();
    model.setExportFolder(std::nullopt);
    model.setMetadataOptions(chosen);
    panels->folder = outputFolder("second");
    panels->whilePickingFolder = [this] { model.setMetadataOptions(later); };
    model.importJSON();
    waitForWork();
    ASSERT_EQ(model.exportFolder(), panels->folder);
    expectStamped(*model.expectedExportRoot(), 99);
}
