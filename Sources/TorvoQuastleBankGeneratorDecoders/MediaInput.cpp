#include "MediaInput.h"

#include "AudioSupport/AudioError.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <new>

namespace torvo {

namespace {

static_assert(AudioError::invalidDataStatus == AVERROR_INVALIDDATA);

constexpr std::size_t bufferSize = std::size_t{16} * 1024; // bytes
// Limits a single FFmpeg allocation, because damaged headers may declare huge sizes.
constexpr std::size_t maxAllocation = std::size_t{64} * 1024 * 1024; // bytes
constexpr int maxStreams = 64;

const char* demuxerName(AudioContainer container) {
    switch (container) {
    case AudioContainer::wav:
        return "wav";
    case AudioContainer::w64:
        return "w64";
    case AudioContainer::aiff:
        return "aiff";
    case AudioContainer::caf:
        return "caf";
    case AudioContainer::flac:
        return "flac";
    case AudioContainer::ogg:
        return "ogg";
    case AudioContainer::mp4:
        return "mov";
    case AudioContainer::asf:
        return "asf";
    case AudioContainer::wavPack:
        return "wv";
    case AudioContainer::trueAudio:
        return "tta";
    case AudioContainer::musepack:
        return "mpc8";
    case AudioContainer::amr:
        return "amr";
    case AudioContainer::au:
        return "au";
    case AudioContainer::matroska:
        return "matroska";
    case AudioContainer::mpegAudio:
        return "mp3";
    case AudioContainer::adts:
        return "aac";
    }
    return "";
}

void initializeFFmpegOnce() {
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(maxAllocation);
    });
}

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EACCES);
}

template <typename Handle>
Handle allocated(Handle handle) {
    if (!handle)
        throw std::bad_alloc();
    return handle;
}

} // namespace

MediaInput::MediaInput(const ByteSource& bytes, const AudioFileType& type)
    : bytes_(bytes), base_(type.offset) {
    initializeFFmpegOnce();
    auto* const buffer = allocated(static_cast<unsigned char*>(av_malloc(bufferSize)));
    io_.reset(avio_alloc_context(buffer, int{bufferSize}, 0, this, readBytes, nullptr, seek));
    if (!io_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    const AVInputFormat* const demuxer = av_find_input_format(demuxerName(type.container));
    if (demuxer == nullptr) // without a demuxer, FFmpeg would probe the format
        throw AudioError(AVERROR_DEMUXER_NOT_FOUND);
    auto* context = allocated(avformat_alloc_context());
    context->pb = io_.get();
    context->io_open = refuseToOpen;
    context->max_streams = maxStreams;
    // On failure, FFmpeg frees the context and sets the pointer to null.
    const int status = avformat_open_input(&context, "", demuxer, nullptr);
    context_.reset(context);
    rethrowReadError();
    if (status < 0)
        throw AudioError(status);
}

bool MediaInput::readPacket(AVPacket& packet) {
    const int status = av_read_frame(context_.get(), &packet);
    rethrowReadError();
    if (status == AVERROR(ENOMEM))
        throw std::bad_alloc();
    return status >= 0;
}

void MediaInput::rethrowReadError() {
    if (readError_)
        std::rethrow_exception(readError_);
}

int MediaInput::readBytes(void* self, std::uint8_t* destination, int size) noexcept {
    auto& input = *static_cast<MediaInput*>(self);
    try {
        const auto target =
            std::as_writable_bytes(std::span(destination, static_cast<std::size_t>(size)));
        const std::size_t count = input.bytes_.read(input.base_ + input.position_, target);
        input.position_ += count;
        return count == 0 ? AVERROR_EOF : static_cast<int>(count);
    } catch (...) {
        input.readError_ = std::current_exception();
        return AVERROR(EIO);
    }
}

std::int64_t MediaInput::seek(void* self, std::int64_t offset, int whence) noexcept {
    auto& input = *static_cast<MediaInput*>(self);
    const auto size =
        static_cast<std::int64_t>(input.bytes_.size() - std::min(input.bytes_.size(), input.base_));
    std::int64_t origin = 0;
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return size;
    case SEEK_SET:
        break;
    case SEEK_CUR:
        origin = static_cast<std::int64_t>(input.position_);
        break;
    case SEEK_END:
        origin = size;
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (offset < -origin || offset > std::numeric_limits<std::int64_t>::max() - origin)
        return AVERROR(EINVAL);
    input.position_ = static_cast<std::uint64_t>(origin + offset);
    return origin + offset;
}

} // namespace torvo
