#pragma once

#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/AudioReader.h"

#include <memory>

namespace torvo {

/// Detects the format of an audio file and opens it. `bytes` must outlive the reader. Throws
/// `AudioError`, the `FileError` of `bytes`, or `BrokenInstallation`.
std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes, AudioNameHint hint);
/// Opens an audio file of a known type.
std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes, const AudioFileType& type);

} // namespace torvo
