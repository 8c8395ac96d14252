#pragma once

#include "AudioSupport/RiffChunks.h"
#include "Models/SampleRecords.h"
#include "Platform/FileURL.h"
#include "Platform/SystemFileManager.h"

#include <cstddef>
#include <memory>
#include <stop_token>
#include <vector>

namespace torvo {

/// Reads the format of audio files. Thread-safe.
class AudioFileInspecting {
public:
    virtual ~AudioFileInspecting() = default;
    /// The format of the file. Throws `GenerationError::unsupportedAudio` when it cannot be read as
    /// audio, `FileError` when it cannot be read at all, and `BrokenInstallation`.
    virtual AudioFormatDetails inspectAudioFile(const FileURL& url) const = 0;
};

/// Reads PCM in WAV with `WavReader` and every other format with FFmpeg. The file's content selects
/// the demuxer.
class AVAudioFileInspector final : public AudioFileInspecting {
public:
    explicit AVAudioFileInspector(
        std::shared_ptr<const FileManager> fileManager = systemFileManager());
    AudioFormatDetails inspectAudioFile(const FileURL& url) const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

/// Decides which files the device plays unchanged: WAV, 44100 Hz, 16 or 24-bit linear PCM, any
/// number of channels.
struct AudioCompatibilityEvaluator {
    /// The compatibility, with every reason for a conversion. The sample rate must be finite (a
    /// precondition).
    SampleCompatibility compatibility(const AudioFormatDetails& details) const;
};

/// How `prepare` wrote a sample.
enum class SamplePreparationMode { copied, converted };

/// The contents of a converted WAV file, header included.
using ConvertedFile = std::vector<std::byte>;

/// Writes samples in a format that the device plays.
class AudioFilePreparing {
public:
    virtual ~AudioFilePreparing() = default;

    /// Writes the sample to the destination, replacing any existing item. An `edit` is applied
    /// while the file is written, so that the card is not asked for it a second time. Throws
    /// `GenerationError`, `FileError` or the error of `edit`; a partial file may then remain.
    virtual SamplePreparationMode prepare(const SampleCandidate& sample,
                                          const FileURL& destinationURL,
                                          const SampleEdit& edit = {}) const = 0;

    /// Converts a sample in memory and returns the file that `prepare` would write without an edit.
    /// Null when it would exceed `maxSize` bytes, when `stop` was requested, or when this preparer
    /// cannot convert in memory. Throws the errors that `prepare` throws for the source.
    /// Thread-safe.
    virtual std::shared_ptr<const ConvertedFile> convertedFile(const SampleCandidate& sample,
                                                               std::size_t maxSize,
                                                               const std::stop_token& stop) const;
};

/// Copies files that the device plays and converts all others to 44100 Hz, 16-bit mono WAV. Also
/// converts a compatible WAV file for which `isStampable` is false (truncated, written to a pipe,
/// or RF64), using the audio that it contains.
class AVAudioSamplePreparer final : public AudioFilePreparing {
public:
    explicit AVAudioSamplePreparer(
        std::shared_ptr<const FileManager> fileManager = systemFileManager());
    SamplePreparationMode prepare(const SampleCandidate& sample, const FileURL& destinationURL,
                                  const SampleEdit& edit = {}) const override;
    std::shared_ptr<const ConvertedFile> convertedFile(const SampleCandidate& sample,
                                                       std::size_t maxSize,
                                                       const std::stop_token& stop) const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

} // namespace torvo
