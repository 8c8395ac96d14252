#include "FakeAudio.h"

#include "AudioSupport/RiffChunks.h"
#include "Models/GenerationError.h"
#include "Platform/FileOperations.h"
#include "Platform/SystemFileManager.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <algorithm>
#include <array>
#include <span>
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
                                            const FileURL& destinationURL,
                                            const SampleEdit& edit) const {
    calls_.push_back({sample.sourceURL, destinationURL});
    if (beforePreparing)
        beforePreparing(calls_.back());
    const bool isCopy = std::holds_alternative<CompatibleWav>(sample.compatibility);
    const auto content =
        isCopy ? readFile(*systemFileManager(), sample.sourceURL.path()) : convertedBytes();
    const auto [offset, replacedSize, inserted] = edit(MemoryByteSource(content));
    const auto rest = std::span(content).subspan(offset + replacedSize);
    const auto file = systemFileManager()->open(destinationURL.path(), OpenMode::create);
    file->writeParts(0,
                     std::array<File::Bytes, 3>{std::span(content).first(offset), inserted, rest});
    file->close();
    return isCopy ? SamplePreparationMode::copied : SamplePreparationMode::converted;
}

std::vector<std::byte> FakePreparer::convertedBytes() {
    return riffFile({riffChunk("data", bytes("converted."))});
}

} // namespace torvo::test
