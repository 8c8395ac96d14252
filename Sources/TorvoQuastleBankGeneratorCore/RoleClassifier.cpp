#include "RoleClassifier.h"

#include "Platform/UnicodeText.h"

#include <algorithm>
#include <array>
#include <span>

namespace torvo {

namespace {

using Words = std::span<const std::string_view>;

constexpr auto closedHatWords = std::to_array<std::string_view>({"closed hat",
                                                                 "closed hats",
                                                                 "closed hihat",
                                                                 "closed hihats",
                                                                 "closed hi hat",
                                                                 "closed hi hats",
                                                                 "closed high hat",
                                                                 "closed high hats",
                                                                 "closed hh",
                                                                 "chh",
                                                                 "chhs",
                                                                 "chat",
                                                                 "chats",
                                                                 "short hat",
                                                                 "short hats",
                                                                 "short hihat",
                                                                 "short hihats",
                                                                 "short hi hat",
                                                                 "short hi hats",
                                                                 "short high hat",
                                                                 "short high hats",
                                                                 "short hh"});

constexpr auto closedHatExclusionWords =
    std::to_array<std::string_view>({"open", "ohat", "ohats", "ohh", "ohhs", "long"});

// Intended: a bare "hat" is classified as open.
constexpr auto openHatWords =
    std::to_array<std::string_view>({"open hat",      "open hats",      "open hihat",
                                     "open hihats",   "open hi hat",    "open hi hats",
                                     "open high hat", "open high hats", "open hh",
                                     "ohat",          "ohats",          "ohh",
                                     "ohhs",          "long hat",       "long hats",
                                     "long hihat",    "long hihats",    "long hi hat",
                                     "long hi hats",  "long high hat",  "long high hats",
                                     "hihat",         "hihats",         "hi hat",
                                     "hi hats",       "high hat",       "high hats",
                                     "hat",           "hats",           "hh"});

constexpr auto kickWords = std::to_array<std::string_view>(
    {"kick", "kicks", "bass drum", "bass drums", "bassdrum", "bassdrums", "bd"});
constexpr auto snareWords = std::to_array<std::string_view>({"snare", "snares"});
constexpr auto clapWords = std::to_array<std::string_view>({"clap", "claps"});

// Intended: no bare "perc". In a folder named only "Perc" the file names decide the role, and the
// banks of existing seeds depend on this.
constexpr auto percWords = std::to_array<std::string_view>(
    {"percussion hits", "percussion hit", "percussion", "perc hits", "tuned perc",
     "tuned percussion", "tom", "toms", "bongo", "conga", "timbale", "agogo", "clave", "woodblock",
     "cowbell", "bell", "rim", "rimshot"});

constexpr auto ignoredFolderWords =
    std::to_array<std::string_view>({"crash", "ride", "shaker", "shakers"});

struct RoleAliasMap {
    ChannelRole role;
    Words aliases;
};

/// When a name matches several rows, the first one applies.
constexpr std::array<RoleAliasMap, 4> roleAliases{{{ChannelRole::kick, kickWords},
                                                   {ChannelRole::snare, snareWords},
                                                   {ChannelRole::clap, clapWords},
                                                   {ChannelRole::perc, percWords}}};

/// Whether the text contains `word` as one or more whole words.
bool containsWord(std::string_view normalized, std::string_view word) {
    for (auto position = normalized.find(word); position != std::string_view::npos;
         position = normalized.find(word, position + 1)) {
        const auto end = position + word.size();
        const bool startsWord = position == 0 || normalized[position - 1] == ' ';
        const bool endsWord = end == normalized.size() || normalized[end] == ' ';
        if (startsWord && endsWord)
            return true;
    }
    return false;
}

bool containsAny(std::string_view normalized, Words words) {
    return std::ranges::any_of(words, [&](auto word) { return containsWord(normalized, word); });
}

} // namespace

std::string normalize(std::string_view text) {
    std::string normalized;
    for (const auto& word : text::alphanumericWords(text::lowercased(text))) {
        if (!normalized.empty())
            normalized += ' ';
        normalized += word;
    }
    return normalized;
}

std::optional<ChannelRole> classifyRole(std::string_view text) {
    const auto normalized = normalize(text);
    if (containsAny(normalized, closedHatWords) &&
        !containsAny(normalized, closedHatExclusionWords))
        return ChannelRole::closedHat;
    if (containsAny(normalized, openHatWords))
        return ChannelRole::openHat;
    const auto row = std::ranges::find_if(roleAliases, [&](const RoleAliasMap& candidate) {
        return containsAny(normalized, candidate.aliases);
    });
    return row == roleAliases.end() ? std::nullopt : std::optional(row->role);
}

bool namesIgnoredFolder(std::string_view text) {
    return containsAny(normalize(text), ignoredFolderWords);
}

} // namespace torvo
