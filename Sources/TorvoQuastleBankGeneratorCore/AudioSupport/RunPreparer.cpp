#include "AudioSupport/RunPreparer.h"

#include "AudioSupport/Conversion.h"
#include "AudioSupport/ConvertedFileWriter.h"

#include <algorithm>
#include <utility>

namespace torvo {

namespace {

constexpr std::int64_t channelCount = 8;
// A channel's file and its copy in the pool.
constexpr int preparationsPerChannel = 2;
// A multiple of eight, as the fingerprint wants its parts.
constexpr std::size_t copyBlockSize = std::size_t{1024} * 1024; // bytes

bool needsConversion(const SampleCandidate& sample) {
    return std::holds_alternative<RequiresConversion>(sample.compatibility);
}

/// Copies the audio of a converted file that may have grown since. False when it is not there any
/// more as it was; the destination is then worth nothing.
bool copyConverted(const FileManager& fileManager, const FileURL& written,
                   const ConvertedAudio& audio, const FileURL& destination) {
    std::unique_ptr<const File> file;
    ConvertedAudio copied;
    std::vector<std::byte> block(
        convertedHeaderSize +
        static_cast<std::size_t>(std::min<std::uint64_t>(copyBlockSize, audio.dataSize)));
    const auto header = convertedHeader(static_cast<std::uint32_t>(audio.dataSize));
    const auto readPart = [&](std::uint64_t offset, std::span<std::byte> bytes) {
        try {
            if (!file)
                file = fileManager.open(written.path(), OpenMode::read);
            return file->read(offset, bytes) == bytes.size();
        } catch (const FileError&) {
            return false;
        }
    };
    const auto addPart = [&copied](std::span<const std::byte> part) {
        copied.dataSize += part.size();
        copied.fingerprint.add(part);
    };

    if (!readPart(0, block) ||
        !std::ranges::equal(std::span(block).first(convertedHeaderSize), header))
        return false;
    const auto data = std::span(block).subspan(convertedHeaderSize);
    addPart(data);
    if (data.size() == audio.dataSize) {
        if (copied != audio)
            return false;
        ConvertedFileWriter(fileManager, destination).writeWhole(block);
        return true;
    }
    ConvertedFileWriter output(fileManager, destination);
    output.configure(audio.dataSize);
    output.write(data);
    while (copied.dataSize < audio.dataSize) {
        const auto part = data.first(static_cast<std::size_t>(
            std::min<std::uint64_t>(data.size(), audio.dataSize - copied.dataSize)));
        if (!readPart(convertedHeaderSize + copied.dataSize, part))
            return false;
        addPart(part);
        output.write(part);
    }
    output.finish();
    return copied == audio;
}

} // namespace

RunPreparer::RunPreparer(std::shared_ptr<const FileManager> fileManager,
                         const std::vector<BankRecipe>& recipes, std::size_t memoryBudget)
    : fileManager_(fileManager), plain_(fileManager) {
    std::vector<FileURL> sources;
    for (const BankRecipe& recipe : recipes) {
        for (std::int64_t channel = 1; channel <= channelCount; ++channel) {
            const auto found = recipe.channels.find(channel);
            if (found == recipe.channels.end() || !needsConversion(found->second))
                continue;
            const FileURL& source = found->second.sourceURL;
            if (uses_.try_emplace(source.path(), Use{.index = sources.size()}).second)
                sources.push_back(source);
        }
    }
    if (!sources.empty())
        ahead_.emplace(std::move(fileManager), std::move(sources), memoryBudget);
}

SamplePreparationMode RunPreparer::prepare(const SampleCandidate& sample,
                                           const FileURL& destinationURL) const {
    const auto use = uses_.find(sample.sourceURL.path());
    if (!needsConversion(sample) || use == uses_.end())
        return plain_.prepare(sample, destinationURL);
    prepareConverted(use->second, sample.sourceURL, destinationURL);
    return SamplePreparationMode::converted;
}

void RunPreparer::prepareConverted(Use& use, const FileURL& source,
                                   const FileURL& destination) const {
    removeExisting(*fileManager_, destination);
    ++use.timesPrepared;
    if (const auto result = ahead_->take(use.index)) {
        ConvertedFileWriter(*fileManager_, destination).writeWhole(result->file);
        use.audio = result->audio;
        use.written = destination;
        if (use.timesPrepared == preparationsPerChannel)
            ahead_->release(use.index);
        return;
    }
    if (use.written && copyConverted(*fileManager_, *use.written, use.audio, destination))
        return;
    use.audio = convertFile(*fileManager_, source, destination);
    use.written = destination;
}

} // namespace torvo
