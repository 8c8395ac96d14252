#pragma once

#include "Models/SampleRecords.h"
#include "Platform/FileManager.h"

#include <cstddef>
#include <memory>
#include <stop_token>
#include <vector>

namespace torvo {

/// Reads the format of an audio file, or throws when it cannot be read as audio. May be called from
/// any thread.
class AudioFileInspecting {
public:
    virtual ~AudioFileInspecting() = default;
    /// The format of the file. Throws `GenerationError::unsupportedAudio` when it cannot be read as
    /// audio, `FileError` when it cannot be read at all, and `BrokenInstallation`.
    virtual AudioFormatDetails inspectAudioFile(const FileURL& url) const = 0;
};

/// The inspector of the program: WAV by its own chunk walk, every other format through the media
/// library, the demuxer chosen by the file's first bytes.
class AVAudioFileInspector final : public AudioFileInspecting {
public:
    explicit AVAudioFileInspector(
        std::shared_ptr<const FileManager> fileManager = systemFileManager());
    AudioFormatDetails inspectAudioFile(const FileURL& url) const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

/// The rule that says which files the device takes unchanged: WAV, 44100 Hz, 16 or 24 bits of
/// linear PCM, any number of channels.
struct AudioCompatibilityEvaluator {
    /// A sample rate that is not finite ends the process.
    SampleCompatibility compatibility(const AudioFormatDetails& details) const;
};

/// How a sample came to its destination.
enum class SamplePreparationMode { copied, converted };

/// The contents of a converted WAV file, header included.
using ConvertedFile = std::vector<std::byte>;

/// Writes samples in a format that the device plays.
class AudioFilePreparing {
public:
    virtual ~AudioFilePreparing() = default;

    /// Replaces whatever stands at the destination. Throws `GenerationError` or `FileError`; a
    /// partial destination is then left as it stands.
    virtual SamplePreparationMode prepare(const SampleCandidate& sample,
                                          const FileURL& destinationURL) const = 0;

    /// Converts a sample in memory and returns the file that `prepare` would write. Null when it
    /// would exceed `maxSize` bytes, when `stop` was requested, or when this preparer cannot
    /// convert in memory. Throws the errors that `prepare` throws for the source. Thread-safe.
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
    SamplePreparationMode prepare(const SampleCandidate& sample,
                                  const FileURL& destinationURL) const override;
    std::shared_ptr<const ConvertedFile> convertedFile(const SampleCandidate& sample,
                                                       std::size_t maxSize,
                                                       const std::stop_token& stop) const override;

private:
    std::shared_ptr<const FileManager> fileManager_;
};

} // namespace torvo
