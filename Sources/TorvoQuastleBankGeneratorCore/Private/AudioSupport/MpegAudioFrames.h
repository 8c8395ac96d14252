#pragma once

#include "AudioSupport/RiffChunks.h"

#include <cstdint>
#include <optional>

namespace torvo {

/// The start of an MPEG audio or ADTS stream without a container.
struct MpegAudioStart {
    bool isADTS = false;
    std::uint64_t offset = 0; ///< in bytes, of the first frame
};

/// Finds MPEG audio of layer II or III (ISO/IEC 11172-3, 13818-3) or AAC in ADTS (ISO/IEC 13818-7)
/// at `offset`, skipping zero padding. These formats have no magic number, so several consecutive
/// frame headers must be consistent, or a shorter file must end with a frame.
std::optional<MpegAudioStart> findMpegAudio(const ByteSource& bytes, std::uint64_t offset);

/// Searches for such a stream after `offset`, for files that were cut from a longer stream or that
/// begin with an unknown tag. Searches 4 KB, and requires consecutive frames up to the end of the
/// file. With `isExpected` (the file name suggests MPEG audio), searches 64 KB and requires only
/// 16 consecutive frames.
std::optional<MpegAudioStart> searchMpegAudio(const ByteSource& bytes, std::uint64_t offset,
                                              bool isExpected);

} // namespace torvo
