#include "AudioSupport/AudioReader.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/CompressedAudioReader.h"
#include "AudioSupport/WavReader.h"

namespace torvo {

std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes) {
    auto type = audioFileType(bytes);
    if (!type)
        throw AudioError::invalidData();
    if (type->container == AudioContainer::wav) {
        if (auto reader = WavReader::open(bytes))
            return reader;
        if (const auto offset = oggStreamInWav(bytes))
            type = AudioFileType{AudioContainer::ogg, *offset};
    }
    return std::make_unique<CompressedAudioReader>(bytes, *type);
}

} // namespace torvo
