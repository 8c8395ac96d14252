#include "BankExporter.h"

#include "AudioSupport/ConvertedFileWriter.h"
#include "ExportChecks.h"
#include "Models/BankNameScheme.h"
#include "Models/Device.h"
#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"
#include "Platform/Prefetch.h"
#include "Platform/UnicodeText.h"
#include "SourceReadAhead.h"
#include "WriterLock.h"

#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace torvo {

namespace {

FileURL folderIn(const FileURL& parent, std::string_view name) {
    return parent.appendingPathComponent(name, FileURL::Kind::directory);
}

/// Keeps ASCII letters and digits, and replaces each run of other characters between them by one
/// "-". Returns "Sample" when nothing is left.
std::string sanitizedFileName(std::string_view displayName) {
    const auto isASCIIAlphanumeric = [](char32_t c) {
        return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9');
    };
    std::string name;
    for (const char32_t scalar : text::scalars(displayName)) {
        if (isASCIIAlphanumeric(scalar))
            name += static_cast<char>(scalar);
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    if (name.ends_with('-'))
        name.pop_back();
    return name.empty() ? "Sample" : name;
}

/// The file names used in one pool folder. Names that differ only in case count as equal, because
/// the FAT file system of the card ignores case.
class PoolNames {
public:
    std::string nextAvailable(const SampleCandidate& sample) {
        const auto base = sanitizedFileName(sample.displayName);
        auto name = base + ".wav";
        for (std::int64_t n = 2; !taken_.insert(text::lowercased(name)).second; ++n)
            name = base + "-" + zeroPadded(n, 3) + ".wav";
        return name;
    }

private:
    std::set<std::string> taken_;
};

void writeInfo(const FileManager& fileManager, const FileURL& bankFolder,
               const std::string& shortName) {
    const auto ascii = text::lossyASCII(shortName);
    const auto file =
        fileManager.open(bankFolder.appendingPathComponent("info.txt").path(), OpenMode::create);
    file->write(0, std::as_bytes(std::span(ascii)));
    file->close();
}

/// The samples in the order in which the export prepares them.
std::vector<const SampleCandidate*> samplesInOrder(const std::vector<BankRecipe>& recipes) {
    std::vector<const SampleCandidate*> samples;
    for (const BankRecipe& recipe : recipes) {
        for (const auto& [channel, sample] : recipe.channels) {
            if (device::hasChannel(channel))
                samples.push_back(&sample);
        }
    }
    return samples;
}

/// Reads the samples ahead where they are on another volume than the banks. On the same one, a copy
/// may share its blocks and read nothing, and a disk cannot read while it writes.
std::shared_ptr<const AudioFilePreparing>
readingAhead(std::shared_ptr<const AudioFilePreparing> preparer, const ExportJob& job,
             const FileURL& deviceFolder) {
    if (!areOnTwoVolumes(job.sourceFolder.path(), deviceFolder.path()))
        return preparer;
    return std::make_shared<SourceReadAhead>(std::move(preparer), samplesInOrder(job.recipes),
                                             prefetch);
}

/// Writes the banks of one export and counts the files.
class Run {
public:
    Run(const FileManager& fileManager, std::shared_ptr<const AudioFilePreparing> preparer,
        const TorvoWAVMetadataWriter& metadataWriter, const ExportJob& job,
        const FileURL& deviceFolder, std::size_t conversionMemory)
        : fileManager_(fileManager),
          preparer_(readingAhead(std::move(preparer), job, deviceFolder)),
          metadataWriter_(metadataWriter),
          job_(job),
          poolFolder_(folderIn(deviceFolder, "Pool")),
          conversions_(preparer_, samplesInOrder(job.recipes), conversionMemory) {
        summary_.rootFolder = deviceFolder;
        summary_.banksWritten = static_cast<std::int64_t>(job.recipes.size());
        fileManager_.createDirectory(poolFolder_.path());
    }

    void write(const BankRecipe& recipe) {
        const auto bankFolder =
            folderIn(summary_.rootFolder, "Bank " + std::to_string(recipe.bankIndex));
        fileManager_.createDirectory(bankFolder.path());
        writeInfo(fileManager_, bankFolder, recipe.shortName);
        const auto bankPool = folderIn(poolFolder_, "Bank " + zeroPadded(recipe.bankIndex, 2));
        fileManager_.createDirectory(bankPool.path());

        summary_.reusedBankCount += recipe.reusedSamples ? 1 : 0;
        if (recipe.channels.empty())
            return;
        // Intended: counts eight files for each bank with channels, before any file is written. The
        // summary reports the pool files of a full bank, not a tally.
        summary_.poolFilesWritten += device::channelCount;
        for (std::int64_t channel = 1; channel <= device::channelCount; ++channel)
            writeChannel(recipe, channel, bankFolder, bankPool);
    }

    const ExportSummary& summary() const { return summary_; }

private:
    void writeChannel(const BankRecipe& recipe, std::int64_t channel, const FileURL& bankFolder,
                      const FileURL& bankPool) {
        const auto found = recipe.channels.find(channel);
        if (found == recipe.channels.end()) {
            throw GenerationError::exportFailed("Missing channel " + std::to_string(channel) +
                                                " for bank " + std::to_string(recipe.bankIndex));
        }
        const auto& sample = found->second;
        const auto channelFolder = folderIn(bankFolder, std::to_string(channel));
        fileManager_.createDirectory(channelFolder.path());
        writeStamped(
            sample, channel,
            channelFolder.appendingPathComponent(sanitizedFileName(sample.displayName) + ".wav"));
        writeStamped(
            sample, channel,
            bankPool.appendingPathComponent(poolNames_[recipe.bankIndex].nextAvailable(sample)));
        ++preparedSamples_;
    }

    SamplePreparationMode prepare(const SampleCandidate& sample, const FileURL& destination,
                                  const SampleEdit& stamp) {
        if (std::holds_alternative<CompatibleWav>(sample.compatibility))
            return preparer_->prepare(sample, destination, stamp);
        removeExisting(fileManager_, destination);
        const auto converted = conversions_.take(preparedSamples_);
        if (!converted)
            return preparer_->prepare(sample, destination, stamp);
        ConvertedFileWriter(fileManager_, destination).writeWhole(*converted, stamp);
        return SamplePreparationMode::converted;
    }

    void writeStamped(const SampleCandidate& sample, std::int64_t channel,
                      const FileURL& destination) {
        const auto stamp = [&](const ByteSource& bytes) {
            FileEdit edit;
            withFileInErrors(destination.path(), [&] {
                edit = metadataWriter_.busyChunkEdit(bytes, job_.metadataOptions, channel);
            });
            return edit;
        };
        switch (prepare(sample, destination, stamp)) {
        case SamplePreparationMode::copied:
            ++summary_.copiedFiles;
            break;
        case SamplePreparationMode::converted:
            ++summary_.convertedFiles;
            break;
        }
    }

    const FileManager& fileManager_;
    std::shared_ptr<const AudioFilePreparing> preparer_;
    const TorvoWAVMetadataWriter& metadataWriter_;
    const ExportJob& job_;
    FileURL poolFolder_;
    ConversionCache conversions_;
    std::size_t preparedSamples_ = 0; ///< channels written so far, in all banks
    std::unordered_map<std::int64_t, PoolNames> poolNames_; ///< by bank
    ExportSummary summary_;
};

} // namespace

BankExporter::BankExporter(std::shared_ptr<const FileManager> fileManager,
                           std::shared_ptr<const AudioFilePreparing> preparer,
                           TorvoWAVMetadataWriter metadataWriter, std::size_t conversionMemory)
    : fileManager_(std::move(fileManager)),
      preparer_(std::move(preparer)),
      metadataWriter_(std::move(metadataWriter)),
      conversionMemory_(conversionMemory) {}

ExportSummary BankExporter::exportBanks(const ExportJob& job, const Progress& progress) const {
    const auto& name = job.naming.exportFolderName();
    const auto runFolder = folderIn(job.exportFolder, name);
    const auto deviceFolder = folderIn(runFolder, device::folderName);
    requireValidRunFolder(*fileManager_, runFolder, name);
    requireSourceOutside(*fileManager_, deviceFolder, job);

    fileManager_->createDirectory(runFolder.path());
    const auto lock = lockForWriting(*fileManager_, runFolder);
    const MountGuard guard(fileManager_, runFolder.path());
    if (const auto earlier = fileManager_->linkStatus(deviceFolder.path())) {
        // Do not delete the existing banks for a run that cannot succeed.
        const auto neededSpace = openSamples(*fileManager_, job.recipes);
        requireSpace(*fileManager_, deviceFolder, *earlier, neededSpace);
        fileManager_->removeItem(deviceFolder.path());
    }
    fileManager_->createDirectory(deviceFolder.path());

    Run run(*fileManager_, preparer_, metadataWriter_, job, deviceFolder, conversionMemory_);
    std::int64_t completed = 0;
    for (const auto& recipe : job.recipes) {
        guard.requireSameVolume();
        run.write(recipe);
        ++completed;
        if (progress)
            progress({completed, run.summary().banksWritten, recipe.shortName});
    }
    // Flush before returning, because the user may remove the card as soon as the run is reported
    // as finished.
    guard.flush();
    return run.summary();
}

} // namespace torvo
