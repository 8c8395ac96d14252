#include "AudioSupport.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/Conversion.h"
#include "AudioSupport/ConvertedFileWriter.h"
#include "AudioSupport/OpenAudio.h"
#include "AudioSupport/RiffChunks.h"
#include "Models/Device.h"
#include "Models/GenerationError.h"
#include "Platform/Precondition.h"
#include "Platform/UnicodeText.h"

#include <cmath>
#include <utility>

namespace torvo {

namespace {

bool isWavExtension(const AudioFormatDetails& details) {
    return text::lowercased(details.fileExtension) == "wav";
}

bool isDeviceRate(const AudioFormatDetails& details) {
    return std::abs(details.sampleRate - device::sampleRate) < 0.5;
}

bool isDeviceDepth(const AudioFormatDetails& details) {
    return details.bitDepth == 16 || details.bitDepth == 24;
}

bool willBeCopied(const AudioFormatDetails& details, const ByteSource& bytes) {
    return std::holds_alternative<CompatibleWav>(
               AudioCompatibilityEvaluator{}.compatibility(details)) &&
           isStampable(bytes);
}

/// Copies the file. Returns false, without having written anything, when it is not stampable.
bool copyStampable(const FileManager& fileManager, const FileURL& sourceURL,
                   const FileURL& destinationURL, const SampleEdit& edit) {
    const auto source = fileManager.open(sourceURL.path(), OpenMode::read);
    const FileByteSource bytes(*source);
    if (!isStampable(bytes))
        return false;
    const auto destination = fileManager.open(destinationURL.path(), OpenMode::createUnique);
    destination->copyFrom(*source, edit ? edit(bytes) : FileEdit{});
    destination->close();
    return true;
}

} // namespace

AVAudioFileInspector::AVAudioFileInspector(std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)) {}

AudioFormatDetails AVAudioFileInspector::inspectAudioFile(const FileURL& url) const {
    const auto file = fileManager_->open(url.path(), OpenMode::read);
    const FileByteSource bytes(*file);
    // Reject other files early: a sample library may contain more of them than samples.
    const auto type = audioFileType(bytes, audioNameHint(url));
    if (!type)
        throw GenerationError::unsupportedAudio(url);
    try {
        const auto reader = openAudio(bytes, *type);
        const AudioStreamFormat& format = reader->format();
        AudioFormatDetails details{text::lowercased(url.pathExtension()), format.sampleRate,
                                   format.channels, format.bitDepth, format.isLinearPCM};
        // Reject the file now; otherwise the export would fail halfway.
        if (isTooLongToConvert(*reader) && !willBeCopied(details, bytes))
            throw GenerationError::unsupportedAudio(url);
        return details;
    } catch (const AudioError&) {
        throw GenerationError::unsupportedAudio(url);
    }
}

SampleCompatibility
AudioCompatibilityEvaluator::compatibility(const AudioFormatDetails& details) const {
    const double roundedRate = std::round(details.sampleRate);
    precondition(std::abs(roundedRate) < std::ldexp(1.0, 63),
                 "a sample rate is finite and fits a 64-bit integer");
    std::string reason;
    const auto add = [&reason](const std::string& failed) {
        reason += (reason.empty() ? "" : ", ") + failed;
    };
    if (!isWavExtension(details))
        add("non-WAV source");
    if (!isDeviceRate(details))
        add("sample rate " + std::to_string(static_cast<std::int64_t>(roundedRate)) + " Hz");
    if (!isDeviceDepth(details))
        add("bit depth " + std::to_string(details.bitDepth));
    if (!details.isLinearPCM)
        add("non-PCM encoding");
    if (reason.empty())
        return CompatibleWav{};
    return RequiresConversion{reason};
}

std::shared_ptr<const ConvertedFile>
AudioFilePreparing::convertedFile(const SampleCandidate&, std::size_t,
                                  const std::stop_token&) const {
    return nullptr;
}

AVAudioSamplePreparer::AVAudioSamplePreparer(std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)) {}

SamplePreparationMode AVAudioSamplePreparer::prepare(const SampleCandidate& sample,
                                                     const FileURL& destinationURL,
                                                     const SampleEdit& edit) const {
    removeExisting(*fileManager_, destinationURL);
    if (std::holds_alternative<CompatibleWav>(sample.compatibility) &&
        copyStampable(*fileManager_, sample.sourceURL, destinationURL, edit))
        return SamplePreparationMode::copied;
    convertFile(*fileManager_, sample.sourceURL, destinationURL, edit);
    return SamplePreparationMode::converted;
}

std::shared_ptr<const ConvertedFile>
AVAudioSamplePreparer::convertedFile(const SampleCandidate& sample, std::size_t maxSize,
                                     const std::stop_token& stop) const {
    return convertInMemory(*fileManager_, sample.sourceURL, maxSize, stop);
}

} // namespace torvo
