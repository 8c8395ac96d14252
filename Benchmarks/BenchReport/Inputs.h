#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

namespace torvo::bench {

/// The sizes of the inputs and the number of runs.
struct Sizes {
    std::size_t wavFiles;      ///< ordinary drum samples, three in four compatible
    std::size_t smallWavFiles; ///< a whole collection, 2 to 4 KB each
    std::size_t fullFolders;   ///< of 1000 files each
    std::size_t mixedFiles;    ///< half of them WAV
    std::size_t otherFiles;    ///< no audio
    std::size_t loops;         ///< distinct, at 48 and 96 kHz
    double shortestLoop;       ///< seconds; the longest takes twice as long
    std::size_t banks;
    std::size_t runs; ///< of each measurement
};

constexpr Sizes fullSizes{2000, 100'000, 1000, 2000, 20'000, 96, 5, 99, 7};
// Folders of two hundred: the seventh holds the percussion that banks need.
constexpr Sizes quickSizes{1400, 4000, 4, 300, 2000, 16, 1, 12, 3};

/// The sample libraries, each created on first use and kept in its own folder. Libraries left
/// incomplete by an interrupted run are created again.
class Inputs {
public:
    Inputs(std::filesystem::path folder, const Sizes& sizes);

    std::filesystem::path wavLibrary() const;
    std::filesystem::path smallLibrary() const;
    /// Folders of 1000 hard links each, whose names have 15 letters.
    std::filesystem::path hugeLibrary() const;
    /// As many files as `wavLibrary` has; the device plays all of them.
    std::filesystem::path compatibleLibrary() const;
    std::filesystem::path mixedLibrary() const;
    std::filesystem::path otherFiles() const;
    std::filesystem::path loops() const;
    /// The loops under eight names each: as many samples as a run of 99 banks has channels.
    std::filesystem::path manyLoops() const;

private:
    template <typename Make>
    std::filesystem::path made(const char* name, Make make) const;

    std::filesystem::path folder_;
    Sizes sizes_;
};

/// Every regular file below a folder, in no particular order.
std::vector<std::filesystem::path> filesBelow(const std::filesystem::path& folder);

} // namespace torvo::bench
