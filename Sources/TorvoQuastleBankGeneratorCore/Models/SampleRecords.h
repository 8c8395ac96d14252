#pragma once

#include "Models/GenerationMode.h"
#include "Platform/FileURL.h"

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace torvo {

/// The stored format of an audio file.
struct AudioFormatDetails {
    std::string fileExtension; ///< lower case, without the dot
    double sampleRate = 0;     ///< Hz
    std::int64_t channels = 0;
    std::int64_t bitDepth = 0; ///< bits per stored sample, 0 where the encoding has none
    bool isLinearPCM = false;

    friend bool operator==(const AudioFormatDetails&, const AudioFormatDetails&) = default;
};

/// The device plays the file unchanged; it is copied byte for byte.
struct CompatibleWav {
    friend bool operator==(const CompatibleWav&, const CompatibleWav&) = default;
};

/// The file must be converted; `reason` lists all reasons.
struct RequiresConversion {
    std::string reason;

    friend bool operator==(const RequiresConversion&, const RequiresConversion&) = default;
};

using SampleCompatibility = std::variant<CompatibleWav, RequiresConversion>;

/// One usable sample.
struct SampleCandidate {
    FileURL sourceURL; ///< links resolved, standardised
    ChannelRole role = ChannelRole::kick;
    std::string displayName; ///< the file name without its extension
    SampleCompatibility compatibility;
    AudioFormatDetails formatDetails;

    friend bool operator==(const SampleCandidate&, const SampleCandidate&) = default;
};

/// The usable samples by role, each list in the order in which the scanner added them.
struct RoleBuckets {
    std::vector<SampleCandidate> kick;
    std::vector<SampleCandidate> closedHat;
    std::vector<SampleCandidate> openHat;
    std::vector<SampleCandidate> snare;
    std::vector<SampleCandidate> clap;
    std::vector<SampleCandidate> perc;
    std::vector<SampleCandidate> loop;
    std::vector<SampleCandidate> stab;

    const std::vector<SampleCandidate>& samples(ChannelRole role) const;
    std::vector<SampleCandidate>& samples(ChannelRole role);
    /// The number of samples of all eight roles, including roles without samples.
    std::map<ChannelRole, std::int64_t> countsByRole() const;

    friend bool operator==(const RoleBuckets&, const RoleBuckets&) = default;
};

/// A file or folder that the scanner ignored.
struct IgnoredItem {
    std::string path;   ///< relative to the scanned folder, as shown
    std::string reason; ///< one of the scanner's fixed texts

    friend bool operator==(const IgnoredItem&, const IgnoredItem&) = default;
};

/// The result of one scan.
struct ScanReport {
    GenerationMode mode = GenerationMode::drums;
    FileURL sourceFolder;
    RoleBuckets buckets;
    std::vector<IgnoredItem> ignoredFiles;
    std::vector<IgnoredItem> ignoredFolders;

    std::map<ChannelRole, std::int64_t> countsByRole() const { return buckets.countsByRole(); }

    friend bool operator==(const ScanReport&, const ScanReport&) = default;
};

} // namespace torvo
