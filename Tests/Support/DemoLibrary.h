#pragma once

#include <filesystem>

namespace torvo::test {

/// Fills a folder with a small, messy drum library like those of musicians: synthesised kicks,
/// hats, snares, claps and percussion, in folders and loose, as WAV, AIFF and AU in several rates
/// and depths, with a few files that are not samples. The output is deterministic.
void makeDemoLibrary(const std::filesystem::path& folder);

} // namespace torvo::test
