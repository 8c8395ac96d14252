#pragma once

#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/AudioReader.h"

namespace torvo {

/// Opens every format except PCM in WAV. The decoders are a separate shared library that is loaded
/// when the first such file is opened, because loading FFmpeg and its dependencies would delay
/// every start of the program. Throws `AudioError` or the `FileError` of `bytes`, and
/// `BrokenInstallation` when the library is missing or belongs to another build.
std::unique_ptr<AudioReader> openCompressedAudio(const ByteSource& bytes,
                                                 const AudioFileType& type);

} // namespace torvo

/// Exported by the decoder library. The caller owns the reader; `bytes` must outlive it. Throws as
/// `torvo::AudioReader` does.
extern "C" torvo::AudioReader* torvoOpenCompressedAudio(const torvo::ByteSource& bytes,
                                                        const torvo::AudioFileType& type);
/// Identifies the build of the decoder library.
extern "C" const char* torvoBuildStamp();
