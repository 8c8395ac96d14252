#pragma once

#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/AudioReader.h"

#include <memory>

namespace torvo {

/// Decodes every format except PCM in WAV with FFmpeg. Uses the demuxer for `type`, and never opens
/// other files or network connections. Reads the header, and decodes the first frame of compressed
/// formats. The reader skips damaged packets. Throws `AudioError` for a file with video (cover
/// pictures are ignored), or the `FileError` of `bytes`, which must outlive the reader.
std::unique_ptr<AudioReader> makeCompressedAudioReader(const ByteSource& bytes,
                                                       const AudioFileType& type);

} // namespace torvo
