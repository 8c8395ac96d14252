#include "AudioSupport/CompressedAudio.h"

#include "BuildStamp.h"
#include "Platform/LoadedLibrary.h"

namespace torvo {

std::unique_ptr<AudioReader> openCompressedAudio(const ByteSource& bytes,
                                                 const AudioFileType& type) {
    static const auto open = reinterpret_cast<decltype(&torvoOpenCompressedAudio)>(
        symbolOfLibrary(installedLibrary(TORVO_DECODERS), "torvoOpenCompressedAudio",
                        "torvoBuildStamp", TORVO_BUILD_STAMP));
    return std::unique_ptr<AudioReader>(open(bytes, type));
}

} // namespace torvo
