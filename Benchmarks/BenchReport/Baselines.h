#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

/// Minimal implementations of the program's work, as a lower bound for its time on this machine.
/// Each returns the wall time in seconds.
namespace torvo::bench {

/// Opens each file and reads its first 4 KiB.
double secondsToReadHeads(std::span<const std::filesystem::path> files, std::size_t threads);

/// Reads each file from its beginning to its end, one after the other.
double secondsToRead(std::span<const std::filesystem::path> files);

/// Reads each file, writes its bytes beside it, flushes them and renames the new file over the old.
double secondsToRewrite(std::span<const std::filesystem::path> files);

/// Fills a list with numbers as large as pointers and shuffles it once with the program's
/// generator.
double secondsToShuffle(std::size_t count);

/// Decodes each file with FFmpeg alone, mixes it to mono, resamples it to 44100 Hz with soxr at the
/// program's quality and rounds it to 16 bits. Nothing is written.
double secondsToConvert(std::span<const std::filesystem::path> files, std::size_t threads);

} // namespace torvo::bench
