#include "AudioSupport/RunPreparer.h"

#include "AudioSupport/Conversion.h"
#include "AudioSupport/ConvertedFileWriter.h"
#include "Models/Device.h"

#include <algorithm>
#include <utility>

namespace torvo {

namespace {

// A channel's file and its copy in the pool.
constexpr int preparationsPerChannel = 2;
// A multiple of eight, as the fingerprint wants its parts.
constexpr std::size_t copyBlockSize = std::size_t{1024} * 1024; // bytes

bool needsConversion(const SampleCandidate& sample) {
    return std::holds_alternative<RequiresConversion>(sample.compatibility);
}

/// A converted file of this run that may have grown since by its stamp, read again from its header
/// on. What cannot be read, or is not what was written, counts as gone.
class WrittenAudio {
public:
    WrittenAudio(const FileManager& fileManager, const FileURL& written,
                 const ConvertedAudio& expected)
        : expected_(expected) {
        try {
            file_ = fileManager.open(written.path(), OpenMode::read);
        } catch (const FileError&) {
            // Nothing will be read.
        }
    }

    /// Fills `bytes` with what comes next. False when it is not there.
    bool readNext(std::span<std::byte> bytes) {
        try {
            if (!file_ || file_->read(position_, bytes) < bytes.size())
                return false;
        } catch (const FileError&) {
            return false;
        }
        position_ += bytes.size();
        return true;
    }

    bool readHeader(std::span<std::byte> header) {
        return readNext(header) &&
               std::ranges::equal(header,
                                  convertedHeader(static_cast<std::uint32_t>(expected_.dataSize)));
    }

    bool readAudio(std::span<std::byte> part) {
        if (!readNext(part))
            return false;
        found_.dataSize += part.size();
        found_.fingerprint.add(part);
        return true;
    }

    std::uint64_t bytesLeft() const { return expected_.dataSize - found_.dataSize; }
    /// True when all that was read is what was written.
    bool isUnchanged() const { return found_ == expected_; }

private:
    const ConvertedAudio& expected_;
    std::unique_ptr<const File> file_;
    std::uint64_t position_ = 0;
    ConvertedAudio found_;
};

/// Copies the audio of a converted file. False when it is not there any more as it was; the
/// destination is then worth nothing.
bool copyConverted(const FileManager& fileManager, const FileURL& written,
                   const ConvertedAudio& audio, const FileURL& destination) {
    WrittenAudio source(fileManager, written, audio);
    std::vector<std::byte> block(
        convertedHeaderSize +
        static_cast<std::size_t>(std::min<std::uint64_t>(copyBlockSize, audio.dataSize)));
    const auto header = std::span(block).first(convertedHeaderSize);
    const auto data = std::span(block).subspan(convertedHeaderSize);
    if (!source.readHeader(header) || !source.readAudio(data))
        return false;
    if (source.bytesLeft() == 0) {
        if (!source.isUnchanged())
            return false;
        ConvertedFileWriter(fileManager, destination).writeWhole(block);
        return true;
    }
    ConvertedFileWriter output(fileManager, destination);
    output.configure(audio.dataSize);
    output.write(data);
    while (source.bytesLeft() > 0) {
        const auto part = data.first(
            static_cast<std::size_t>(std::min<std::uint64_t>(data.size(), source.bytesLeft())));
        if (!source.readAudio(part))
            return false;
        output.write(part);
    }
    output.finish();
    return source.isUnchanged();
}

} // namespace

RunPreparer::RunPreparer(std::shared_ptr<const FileManager> fileManager,
                         const std::vector<BankRecipe>& recipes, std::size_t memoryBudget)
    : fileManager_(fileManager), plain_(fileManager) {
    std::vector<FileURL> sources;
    for (const BankRecipe& recipe : recipes) {
        for (std::int64_t channel = 1; channel <= device::channelCount; ++channel) {
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
