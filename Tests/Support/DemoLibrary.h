#pragma once

#include <filesystem>

namespace torvo::test {

/// Fills a folder with a small, messy drum library as musicians have them: synthesised kicks, hats,
/// snares, claps and percussion, in folders and loose, as WAV, AIFF and AU in several rates and
/// depths, with a few files that are no samples. The same bytes every time.
void makeDemoLibrary(const std::filesystem::path& folder);

} // namespace torvo::test
