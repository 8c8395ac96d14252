#include "AudioSupport/OpenAudio.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/CompressedAudio.h"
#include "AudioSupport/WavReader.h"

namespace torvo {

std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes, AudioNameHint hint) {
    const auto type = audioFileType(bytes, hint);
    if (!type)
        throw AudioError::invalidData();
    return openAudio(bytes, *type);
}

std::unique_ptr<AudioReader> openAudio(const ByteSource& bytes, const AudioFileType& type) {
    if (type.container == AudioContainer::wav) {
        if (auto reader = WavReader::open(bytes))
            return reader;
        if (const auto offset = oggStreamInWav(bytes))
            return openCompressedAudio(bytes, {AudioContainer::ogg, *offset});
    }
    return openCompressedAudio(bytes, type);
}

} // namespace torvo
