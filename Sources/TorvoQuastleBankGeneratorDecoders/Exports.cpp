#include "AudioSupport/CompressedAudio.h"
#include "BuildStamp.h"
#include "CompressedAudioReader.h"

__attribute__((visibility("default"))) const char* torvoBuildStamp() {
    return TORVO_BUILD_STAMP;
}

__attribute__((visibility("default"))) torvo::AudioReader*
torvoOpenCompressedAudio(const torvo::ByteSource& bytes, const torvo::AudioFileType& type) {
    return torvo::makeCompressedAudioReader(bytes, type).release();
}
