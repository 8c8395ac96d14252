#pragma once

#include "AudioSupport.h"

#include <functional>
#include <mutex>
#include <vector>

namespace torvo::test {

/// Takes for audio what begins with "audio": a file "audio 48000" is stored at that many hertz, a
/// file "audio" at 44100; 16 bits, stereo, linear PCM. Everything else is no audio.
class FakeInspector final : public AudioFileInspecting {
public:
    AudioFormatDetails inspectAudioFile(const FileURL& at) const override;

    /// The files it was asked for, sorted by path.
    std::vector<std::filesystem::path> inspected() const;

private:
    mutable std::mutex mutex_; ///< a scan asks from several threads
    mutable std::vector<std::filesystem::path> inspected_;
};

/// Copies what counts as compatible and writes `convertedBytes()` for everything else.
class FakePreparer final : public AudioFilePreparing {
public:
    struct Call {
        FileURL source;
        FileURL destination;
        friend bool operator==(const Call&, const Call&) = default;
    };

    SamplePreparationMode prepare(const SampleCandidate& sample,
                                  const FileURL& destinationURL) const override;

    /// Runs before each preparation; what it throws is the preparation's failure.
    std::function<void(const Call&)> beforePreparing;

    const std::vector<Call>& calls() const { return calls_; }

    static std::vector<std::byte> convertedBytes();

private:
    mutable std::vector<Call> calls_;
};

} // namespace torvo::test
