#include "AudioSupport/Resampler.h"

#include "AudioSupport/AudioError.h"
#include "Models/Device.h"

#include <soxr.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <limits>
#include <numeric>

namespace torvo {

namespace {

constexpr std::size_t blockFrames = 4096;
constexpr std::uint64_t outputRate = device::sampleRate;
constexpr std::uint64_t leadInPerSecond = 50; // the lead-in is at least 1/50 s
constexpr std::array<double, blockFrames> silence{};

} // namespace

std::uint64_t resampledFrameCount(std::uint64_t frames, std::uint64_t rate) {
    const std::uint64_t whole = frames / rate;
    const std::uint64_t rest = frames % rate;
    if (whole > std::numeric_limits<std::uint64_t>::max() / outputRate - 1)
        return std::numeric_limits<std::uint64_t>::max();
    return whole * outputRate + (2 * rest * outputRate + rate) / (2 * rate);
}

struct Resampler::Filter {
    explicit Filter(double inputRate) {
        const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
        const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
        const soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
        soxr_error_t error = nullptr;
        handle = soxr_create(inputRate, device::sampleRate, 1, &error, &io, &quality, &runtime);
        if (handle == nullptr || error != nullptr)
            throw AudioError(-ENOMEM);
    }
    ~Filter() { soxr_delete(handle); }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    soxr_t handle = nullptr;
};

Resampler::Resampler(AudioReader& source)
    : source_(source),
      inputRate_(static_cast<std::uint64_t>(std::llround(source.format().sampleRate))) {
    if (inputRate_ == 0)
        throw AudioError(-EINVAL);
    if (inputRate_ == outputRate)
        return;
    filter_ = std::make_unique<Filter>(static_cast<double>(inputRate_));
    input_.resize(blockFrames);
    // The first output frames of soxr are wrong when frame 0 is loud and the ratio is not an
    // integer. Therefore silence is resampled first and discarded. Its length is an integer number
    // of frames at both rates, so that it can be removed exactly.
    const std::uint64_t divisor = std::gcd(inputRate_, outputRate);
    const std::uint64_t inputPeriod = inputRate_ / divisor;
    const std::uint64_t minLeadIn = inputRate_ / leadInPerSecond + 1;
    // Both rates are positive, so inputPeriod is too: NOLINTNEXTLINE(*DivideZero)
    const std::uint64_t periods = (minLeadIn + inputPeriod - 1) / inputPeriod;
    leadInLeft_ = periods * inputPeriod;
    dropLeft_ = periods * (outputRate / divisor);
}

Resampler::~Resampler() = default;

std::optional<std::uint64_t> Resampler::expectedFrameCount() const {
    const auto frames = source_.expectedFrameCount();
    return frames ? std::optional(resampledFrameCount(*frames, inputRate_)) : std::nullopt;
}

std::span<const double> Resampler::nextInput() {
    if (leadInLeft_ > 0) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(leadInLeft_, blockFrames));
        leadInLeft_ -= count;
        return std::span(silence).first(count);
    }
    if (!hasSourceEnded_) {
        const std::size_t count = source_.read(input_);
        sourceFrames_ += count;
        hasSourceEnded_ = count < input_.size();
        if (count > 0)
            return std::span<const double>(input_).first(count);
    }
    return silence;
}

std::size_t Resampler::read(std::span<double> frames) {
    if (!filter_)
        return source_.read(frames);
    std::size_t done = 0;
    std::array<double, blockFrames> dropped;
    while (done < frames.size()) {
        // Read input before checking the length, because this call may reach the end of the source.
        if (pendingInput_.empty())
            pendingInput_ = nextInput();
        if (hasSourceEnded_) {
            const std::uint64_t left =
                resampledFrameCount(sourceFrames_, inputRate_) - outputFrames_;
            frames = frames.first(done + static_cast<std::size_t>(
                                             std::min<std::uint64_t>(left, frames.size() - done)));
            if (done == frames.size())
                break;
        }
        const std::span<double> target =
            dropLeft_ > 0 ? std::span<double>(dropped).first(static_cast<std::size_t>(
                                std::min<std::uint64_t>(dropLeft_, dropped.size())))
                          : frames.subspan(done);
        std::size_t consumed = 0;
        std::size_t produced = 0;
        if (soxr_process(filter_->handle, pendingInput_.data(), pendingInput_.size(), &consumed,
                         target.data(), target.size(), &produced) != nullptr)
            throw AudioError(-ENOMEM);
        pendingInput_ = pendingInput_.subspan(consumed);
        if (dropLeft_ > 0) {
            dropLeft_ -= produced;
        } else {
            done += produced;
            outputFrames_ += produced;
        }
    }
    return done;
}

} // namespace torvo
