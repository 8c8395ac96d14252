#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

/// The least that a piece of work must cost on this machine, done here and now with nothing around
/// it. Each takes the wall time in seconds.
namespace torvo::bench {

/// Opens each file and reads its first 4 KiB.
double secondsToReadHeads(std::span<const std::filesystem::path> files, std::size_t threads);

/// Reads each file, writes its bytes beside it, flushes them and renames the new file over the old.
double secondsToRewrite(std::span<const std::filesystem::path> files);

/// Decodes each file with the bare media library, mixes it to mono, resamples it to 44100 Hz with
/// the bare resampler at the program's quality and rounds it to 16 bits. Nothing is written.
double secondsToConvert(std::span<const std::filesystem::path> files, std::size_t threads);

} // namespace torvo::bench
