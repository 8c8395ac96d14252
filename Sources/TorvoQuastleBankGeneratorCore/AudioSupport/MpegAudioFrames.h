#pragma once

#include "AudioSupport/RiffChunks.h"

#include <cstdint>
#include <optional>

namespace torvo {

/// Where a stream without a container begins.
struct MpegAudioStart {
    bool isADTS = false;
    std::uint64_t offset = 0; ///< bytes, of the first frame
};

/// MPEG audio of layer II or III (ISO/IEC 11172-3, 13818-3) or AAC in ADTS (ISO/IEC 13818-7) at
/// `offset`, zero padding passed over. The formats have no magic number: several frames must follow
/// each other, each where the header before says, or a shorter file must end with a frame.
std::optional<MpegAudioStart> findMpegAudio(const ByteSource& bytes, std::uint64_t offset);

} // namespace torvo
