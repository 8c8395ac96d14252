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
constexpr std::uint64_t leadInPerSecond = 50; // at least 1/50 s of silence
constexpr std::array<double, blockFrames> silence{};

/// frames × 44100 / rate, rounded half up, without overflow.
std::uint64_t resampledCount(std::uint64_t frames, std::uint64_t rate) {
    const std::uint64_t whole = frames / rate;
    const std::uint64_t rest = frames % rate;
    if (whole > std::numeric_limits<std::uint64_t>::max() / outputRate - 1)
        return std::numeric_limits<std::uint64_t>::max();
    return whole * outputRate + (2 * rest * outputRate + rate) / (2 * rate);
}

} // namespace

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
    // The library's first outputs are wrong when frame 0 is loud and the ratio is no integer. The
    // silence is a whole number of both rates' periods, so that it can be taken off again exactly.
    const std::uint64_t divisor = std::gcd(inputRate_, outputRate);
    const std::uint64_t inputPeriod = inputRate_ / divisor;
    const std::uint64_t leastLeadIn = inputRate_ / leadInPerSecond + 1;
    // Two positive numbers have a positive divisor and so a period: NOLINTNEXTLINE(*DivideZero)
    const std::uint64_t periods = (leastLeadIn + inputPeriod - 1) / inputPeriod;
    leadInLeft_ = periods * inputPeriod;
    dropLeft_ = periods * (outputRate / divisor);
}

Resampler::~Resampler() = default;

std::optional<std::uint64_t> Resampler::expectedFrameCount() const {
    const auto frames = source_.expectedFrameCount();
    return frames ? std::optional(resampledCount(*frames, inputRate_)) : std::nullopt;
}

std::span<const double> Resampler::nextInput() {
    if (leadInLeft_ > 0) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(leadInLeft_, blockFrames));
        leadInLeft_ -= count;
        return std::span(silence).first(count);
    }
    if (!sourceEnded_) {
        const std::size_t count = source_.read(input_);
        sourceFrames_ += count;
        sourceEnded_ = count < input_.size();
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
        // Before the length is judged: this may be where the source ends.
        if (pendingInput_.empty())
            pendingInput_ = nextInput();
        if (sourceEnded_) {
            const std::uint64_t left = resampledCount(sourceFrames_, inputRate_) - outputFrames_;
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
