#include "AudioSupport/AudioReader.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/AudioFileType.h"
#include "AudioSupport/CompressedAudioReader.h"
#include "AudioSupport/WavReader.h"

namespace torvo {

std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes) {
    const auto type = audioFileType(bytes);
    if (!type)
        throw AudioError::invalidData();
    return openAudio(bytes, *type);
}

std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes, const AudioFileType& type) {
    if (type.container == AudioContainer::wav) {
        if (auto reader = WavReader::open(bytes))
            return reader;
        if (const auto offset = oggStreamInWav(bytes))
            return std::make_unique<CompressedAudioReader>(
                bytes, AudioFileType{AudioContainer::ogg, *offset});
    }
    return std::make_unique<CompressedAudioReader>(bytes, type);
}

} // namespace torvo
