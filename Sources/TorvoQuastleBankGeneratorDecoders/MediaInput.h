#pragma once

#include "AudioSupport/AudioFileType.h"
#include "FFmpegHandles.h"

#include <exception>

namespace torvo {

/// Opens a file with the FFmpeg demuxer for a known type. FFmpeg reads only the given bytes: it
/// gets no path, and its requests to open other files are refused.
class MediaInput {
public:
    /// Throws `AudioError`, or the `FileError` of `bytes`.
    MediaInput(const ByteSource& bytes, const AudioFileType& type);
    MediaInput(const MediaInput&) = delete;
    MediaInput& operator=(const MediaInput&) = delete;

    AVFormatContext& context() const { return *context_; }
    /// Reads the next packet. Returns false at the end of the file or at damaged data. Throws the
    /// `FileError` of `bytes`.
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
