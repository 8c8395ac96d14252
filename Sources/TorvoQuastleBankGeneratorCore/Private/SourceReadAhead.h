#pragma once

#include "AudioSupport.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace torvo {

/// Has the operating system read the next samples of an export while the last ones are written:
/// the samples are usually on another device than the card. What is read ahead is kept in the page
/// cache and limited to `maxBytesAhead`. The files and the errors are those of another preparer.
class SourceReadAhead final : public AudioFilePreparing {
public:
    static constexpr std::uint64_t maxBytesAhead = std::uint64_t{32} * 1024 * 1024;

    /// Starts to read the beginning of a file, at most `maxSize` bytes. Returns their number.
    /// Called on another thread; must not throw.
    using Prefetch =
        std::function<std::uint64_t(const std::filesystem::path&, std::uint64_t maxSize)>;

    /// `uses` lists the samples in the order in which the export needs them, with repetitions.
    SourceReadAhead(std::shared_ptr<const AudioFilePreparing> preparer,
                    const std::vector<const SampleCandidate*>& uses, Prefetch prefetch);

    SamplePreparationMode prepare(const SampleCandidate& sample, const FileURL& destinationURL,
                                  const SampleEdit& edit = {}) const override;
    std::shared_ptr<const ConvertedFile> convertedFile(const SampleCandidate& sample,
                                                       std::size_t maxSize,
                                                       const std::stop_token& stop) const override;

private:
    struct Source {
        std::filesystem::path path;
        std::uint64_t bytesAhead = 0; ///< asked for and not used yet
        bool isUsed = false;
    };

    void use(const SampleCandidate& sample) const;
    void readAhead(const std::stop_token& stop);

    std::shared_ptr<const AudioFilePreparing> preparer_;
    Prefetch prefetch_;
    std::unordered_map<std::string, std::size_t> indexByPath_;
    mutable std::mutex mutex_; ///< guards the members below
    mutable std::condition_variable_any used_;
    mutable std::vector<Source> sources_; ///< each file once, in the order of its first use
    mutable std::uint64_t bytesAhead_ = 0;
    std::optional<std::jthread> thread_; ///< joined before the other members are destroyed
};

} // namespace torvo
