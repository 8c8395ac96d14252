#pragma once

#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/AudioReader.h"

namespace torvo {

/// Opens every format but PCM in WAV. The decoders are a library of their own, which is loaded with
/// the first such file: with all that they need they weigh more than the rest of the program and
/// would delay every start. Throws `BrokenInstallation` when they are missing.
std::unique_ptr<AudioReader> openCompressedAudio(const ByteSource& bytes,
                                                 const AudioFileType& type);

} // namespace torvo

/// What the library of the decoders exports; `bytes` outlives the reader, which is the caller's.
/// Throws as `torvo::AudioReader` does.
extern "C" torvo::AudioReader* torvoOpenCompressedAudio(const torvo::ByteSource& bytes,
                                                        const torvo::AudioFileType& type);
