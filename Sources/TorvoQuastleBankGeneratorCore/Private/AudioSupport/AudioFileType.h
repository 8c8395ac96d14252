#pragma once

#include "AudioSupport/RiffChunks.h"
#include "Platform/FileURL.h"

#include <cstdint>
#include <optional>

namespace torvo {

/// The supported audio formats; a test covers each of them.
enum class AudioContainer {
    wav,  ///< RIFF, RIFX, RF64 and BW64 with the type WAVE
    w64,  ///< Sony Wave64
    aiff, ///< AIFF and AIFF-C
    caf,
    flac,
    ogg,
    mp4, ///< MP4, M4A, MOV: ISO base media with an "ftyp" box
    asf, ///< Windows Media Audio
    wavPack,
    trueAudio,
    musepack, ///< stream version 8
    amr,      ///< narrowband, one channel
    au,
    matroska,  ///< also WebM
    mpegAudio, ///< layers II and III without a container
    adts,      ///< AAC without a container
};

struct AudioFileType {
    AudioContainer container = AudioContainer::wav;
    std::uint64_t offset = 0; ///< in bytes; the start of the audio after any tags
};

/// The format that a file name suggests. It sets how far `audioFileType` searches for MPEG audio,
/// which has no magic number; it never excludes a file.
enum class AudioNameHint { none, mpegAudio };

/// Determines the hint from the file name extension.
AudioNameHint audioNameHint(const FileURL& url);

/// Detects the format by its magic number or, for MPEG audio and ADTS, by several consecutive frame
/// headers. Empty for every other file.
std::optional<AudioFileType> audioFileType(const ByteSource& bytes, AudioNameHint hint);

} // namespace torvo
