#pragma once

#include "AudioSupport.h"
#include "AudioSupport/AheadConverter.h"
#include "Platform/FileManager.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace torvo {

/// The preparer of one export: it converts ahead, and each source only once. A source is needed for
/// a channel and its pool, one right after the other, from memory; when later banks use it again,
/// the audio comes from the file that this run wrote first, as long as that still holds it. Called
/// from one thread.
class RunPreparer final : public AudioFilePreparing {
public:
    static constexpr std::size_t defaultMemoryBudget = std::size_t{128} * 1024 * 1024; // bytes

    RunPreparer(std::shared_ptr<const FileManager> fileManager,
                const std::vector<BankRecipe>& recipes,
                std::size_t memoryBudget = defaultMemoryBudget);

    SamplePreparationMode prepare(const SampleCandidate& sample,
                                  const FileURL& destinationURL) const override;

private:
    struct Use {
        std::size_t index = 0; ///< in the order of conversion
        int timesPrepared = 0;
        std::optional<FileURL> written = std::nullopt; ///< a file of this run that holds the audio
        ConvertedAudio audio = {};
    };

    void prepareConverted(Use& use, const FileURL& source, const FileURL& destination) const;

    std::shared_ptr<const FileManager> fileManager_;
    AVAudioSamplePreparer plain_;
    // What a run remembers; the recipes, and with them the answers, stay the same.
    mutable std::map<std::filesystem::path, Use> uses_;
    mutable std::optional<AheadConverter> ahead_;
};

} // namespace torvo
