#pragma once

#include "AudioSupport.h"

#include <functional>
#include <mutex>
#include <vector>

namespace torvo::test {

/// Accepts files that begin with "audio": "audio 48000" has that sample rate in hertz, "audio" has
/// 44100; 16 bits, stereo, linear PCM. All other files are not audio.
class FakeInspector final : public AudioFileInspecting {
public:
    AudioFormatDetails inspectAudioFile(const FileURL& at) const override;

    /// The files that were inspected, sorted by path.
    std::vector<std::filesystem::path> inspected() const;

private:
    mutable std::mutex mutex_; ///< a scan inspects on several threads
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

    SamplePreparationMode prepare(const SampleCandidate& sample, const FileURL& destinationURL,
                                  const SampleEdit& edit = {}) const override;

    /// Called before each preparation; its exceptions make the preparation fail.
    std::function<void(const Call&)> beforePreparing;

    const std::vector<Call>& calls() const { return calls_; }

    static std::vector<std::byte> convertedBytes();

private:
    mutable std::vector<Call> calls_;
};

} // namespace torvo::test
