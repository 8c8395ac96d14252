#pragma once

#include "AudioSupport/RiffChunks.h"

#include <cstdint>
#include <optional>

namespace torvo {

/// The files that are read as audio; every one is covered by a test.
enum class AudioContainer {
    wav,  ///< RIFF, RIFX, RF64 and BW64 with the type WAVE
    w64,  ///< Sony Wave64
    aiff, ///< AIFF and AIFF-C
    caf,
    flac,
    ogg,
    mp4, ///< MP4, M4A, MOV: ISO base media with a file type box
    asf, ///< Windows Media Audio
    wavPack,
    trueAudio,
    au,
    matroska,  ///< and WebM
    mpegAudio, ///< layers II and III without a container
    adts,      ///< AAC without a container
};

struct AudioFileType {
    AudioContainer container = AudioContainer::wav;
    std::uint64_t offset = 0; ///< in bytes; where the audio begins, behind ID3v2 tags
};

/// Which format the bytes are in, by their magic number or, where the format has none, by several
/// consistent frame headers. Absent for everything else.
std::optional<AudioFileType> audioFileType(const ByteSource& bytes);

} // namespace torvo
