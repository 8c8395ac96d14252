#pragma once

#include "AudioSupport/AudioFileType.h"
#include "FFmpegHandles.h"

#include <exception>

namespace torvo {

/// A file opened with the demuxer of a known type. The library sees nothing but the bytes: it has
/// no path, and asking for another file is refused.
class MediaInput {
public:
    /// Throws `AudioError`, or the `FileError` of the bytes.
    MediaInput(const ByteSource& bytes, const AudioFileType& type);
    MediaInput(const MediaInput&) = delete;
    MediaInput& operator=(const MediaInput&) = delete;

    AVFormatContext& context() const { return *context_; }
    /// False at the end of what can be read. Damage ends a file where it stands; a failure of the
    /// disk throws.
    bool readPacket(AVPacket& packet);

private:
    static int readBytes(void* self, std::uint8_t* destination, int size) noexcept;
    static std::int64_t seek(void* self, std::int64_t offset, int whence) noexcept;
    void rethrowReadError();

    const ByteSource& bytes_;
    std::uint64_t base_;
    std::uint64_t position_ = 0; ///< bytes, from `base_`
    std::exception_ptr readError_;
    ffmpeg::IOContext io_;
    ffmpeg::FormatContext context_;
};

} // namespace torvo
