#include "FakeAudio.h"

#include "Models/GenerationError.h"
#include "Platform/SystemFileManager.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <algorithm>
#include <string>

namespace torvo::test {

namespace fs = std::filesystem;

AudioFormatDetails FakeInspector::inspectAudioFile(const FileURL& at) const {
    {
        const std::lock_guard lock(mutex_);
        inspected_.push_back(at.path());
    }
    const auto content = textOf(at.path());
    if (!content.starts_with("audio"))
        throw GenerationError::unsupportedAudio(at);
    return {at.pathExtension(), content == "audio" ? 44100.0 : std::stod(content.substr(6)), 2, 16,
            true};
}

std::vector<fs::path> FakeInspector::inspected() const {
    const std::lock_guard lock(mutex_);
    auto sorted = inspected_;
    std::ranges::sort(sorted);
    return sorted;
}

SamplePreparationMode FakePreparer::prepare(const SampleCandidate& sample,
                                            const FileURL& destinationURL) const {
    calls_.push_back({sample.sourceURL, destinationURL});
    if (beforePreparing)
        beforePreparing(calls_.back());
    if (std::holds_alternative<CompatibleWav>(sample.compatibility)) {
        if (systemFileManager()->linkStatus(destinationURL.path()))
            systemFileManager()->removeItem(destinationURL.path());
        systemFileManager()->copyItem(sample.sourceURL.path(), destinationURL.path());
        return SamplePreparationMode::copied;
    }
    const auto file = systemFileManager()->open(destinationURL.path(), OpenMode::create);
    file->write(0, convertedBytes());
    file->close();
    return SamplePreparationMode::converted;
}

std::vector<std::byte> FakePreparer::convertedBytes() {
    return riffFile({riffChunk("data", bytes("converted."))});
}

} // namespace torvo::test
