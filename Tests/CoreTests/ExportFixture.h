#pragma once

#include "BankExporter.h"
#include "FakeAudio.h"
#include "Platform/SystemFileManager.h"
#include "Samples.h"
#include "TemporaryFolder.h"
#include "TreeSnapshot.h"
#include "WavFixture.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace torvo::test {

/// A card to export to, a source folder with one sample, and an exporter of fake audio.
struct ExportFixture {
    TemporaryFolder folder;
    FileURL card = FileURL::directory(folder.createFolder("card"));
    std::filesystem::path source =
        folder.write("source/a.wav", riffFile({riffChunk("data", bytes("source"))}));
    std::shared_ptr<FakePreparer> preparer = std::make_shared<FakePreparer>();
    ExportJob job = emptyJob();
    std::vector<ProgressUpdate> updates;

    ExportSummary run(std::shared_ptr<const FileManager> fileManager = systemFileManager()) {
        const BankExporter exporter(fileManager, preparer, TorvoWAVMetadataWriter(fileManager));
        return exporter.exportBanks(
            job, [&](const ProgressUpdate& update) { updates.push_back(update); });
    }

    /// Copies and converts as the program does.
    ExportSummary runForReal(std::shared_ptr<const FileManager> fileManager = systemFileManager()) {
        return BankExporter(fileManager, std::make_shared<AVAudioSamplePreparer>(fileManager),
                            TorvoWAVMetadataWriter(fileManager))
            .exportBanks(job);
    }

    SampleCandidate sample(const std::string& displayName) const {
        return sampleAt(source, displayName);
    }

    /// A bank whose eight channels have samples of these names, the last one repeated.
    BankRecipe bank(std::int64_t index, const std::vector<std::string>& names) const {
        BankRecipe recipe{index, job.naming.bankName(index), {}, job.seed, false};
        for (std::int64_t channel = 1; channel <= 8; ++channel) {
            const auto at = std::min(static_cast<std::size_t>(channel - 1), names.size() - 1);
            recipe.channels.emplace(channel, sample(names[at]));
        }
        return recipe;
    }

    std::filesystem::path inDevice(const std::string& relative) const {
        return card.path() / job.naming.sourceFolderName / "QZT508" / relative;
    }

private:
    ExportJob emptyJob() const {
        ExportJob made;
        made.sourceFolder = FileURL::directory(folder / "source");
        made.exportFolder = card;
        made.generationTemplate = GenerationTemplate::torvoV1();
        made.seed = 7;
        made.naming = BankNameScheme("Kit");
        return made;
    }
};

} // namespace torvo::test
