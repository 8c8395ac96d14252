#include "SourceReadAhead.h"

#include <system_error>
#include <utility>

namespace torvo {

SourceReadAhead::SourceReadAhead(std::shared_ptr<const AudioFilePreparing> preparer,
                                 const std::vector<const SampleCandidate*>& uses, Prefetch prefetch)
    : preparer_(std::move(preparer)), prefetch_(std::move(prefetch)) {
    for (const auto* sample : uses) {
        if (indexByPath_.try_emplace(sample->sourceURL.nativePath(), sources_.size()).second)
            sources_.push_back({.path = sample->sourceURL.path()});
    }
    try {
        thread_.emplace([this](const std::stop_token& stop) { readAhead(stop); });
    } catch (const std::system_error&) {
        // The system allows no more threads: every sample is read when it is needed.
    }
}

SamplePreparationMode SourceReadAhead::prepare(const SampleCandidate& sample,
                                               const FileURL& destinationURL,
                                               const SampleEdit& edit) const {
    use(sample);
    return preparer_->prepare(sample, destinationURL, edit);
}

std::shared_ptr<const ConvertedFile>
SourceReadAhead::convertedFile(const SampleCandidate& sample, std::size_t maxSize,
                               const std::stop_token& stop) const {
    use(sample);
    return preparer_->convertedFile(sample, maxSize, stop);
}

void SourceReadAhead::use(const SampleCandidate& sample) const {
    const auto found = indexByPath_.find(sample.sourceURL.nativePath());
    if (found == indexByPath_.end())
        return;
    const std::scoped_lock lock(mutex_);
    auto& source = sources_[found->second];
    source.isUsed = true;
    bytesAhead_ -= std::exchange(source.bytesAhead, 0);
    used_.notify_one();
}

void SourceReadAhead::readAhead(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    for (auto& source : sources_) {
        if (!used_.wait(lock, stop, [this] { return bytesAhead_ < maxBytesAhead; }))
            return;
        if (source.isUsed)
            continue;
        const auto maxSize = maxBytesAhead - bytesAhead_;
        lock.unlock();
        const auto size = prefetch_(source.path, maxSize);
        lock.lock();
        if (!source.isUsed) {
            source.bytesAhead = size;
            bytesAhead_ += size;
        }
    }
}

} // namespace torvo
