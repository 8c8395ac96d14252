#include "Json.h"

#include "JsonFields.h"
#include "Platform/Iso8601Date.h"

#include <charconv>
#include <utility>

namespace torvo {

using namespace jsonFields;

namespace {

/// Decodes a string enumeration. `what` names the type in the error message.
template <typename Case, typename FromRawValue>
Case decodedCase(const nlohmann::json& value, FromRawValue fromRawValue, const char* what) {
    const auto name = decoded<std::string>(value);
    const std::optional<Case> found = fromRawValue(name);
    if (!found)
        throw DecodingError("", "\"" + name + "\" is no " + what);
    return *found;
}

std::int64_t channelFromKey(const std::string& key) {
    std::int64_t channel = 0;
    const auto* end = key.data() + key.size();
    const auto [stopped, error] = std::from_chars(key.data(), end, channel);
    // Reject "01", which would be the same channel as "1".
    if (error != std::errc() || stopped != end || std::to_string(channel) != key)
        throw DecodingError(key, "not a channel number");
    return channel;
}

std::chrono::sys_seconds decodedDate(const nlohmann::json& value) {
    const auto date = iso8601Date(decoded<std::string>(value));
    require(date.has_value(), "not an ISO 8601 date");
    return *date;
}

} // namespace

void to_json(nlohmann::json& json, ChannelRole role) {
    json = rawValue(role);
}
void from_json(const nlohmann::json& json, ChannelRole& role) {
    role = decodedCase<ChannelRole>(json, channelRole, "channel role");
}

void to_json(nlohmann::json& json, GenerationMode mode) {
    json = rawValue(mode);
}
void from_json(const nlohmann::json& json, GenerationMode& mode) {
    mode = decodedCase<GenerationMode>(json, generationMode, "generation mode");
}

void to_json(nlohmann::json& json, const TemplateSlot& slot) {
    json = {{"channel", slot.channel}, {"role", slot.role}, {"label", slot.label}};
}
void from_json(const nlohmann::json& json, TemplateSlot& slot) {
    slot = {field<std::int64_t>(json, "channel"), field<ChannelRole>(json, "role"),
            field<std::string>(json, "label")};
}

void to_json(nlohmann::json& json, const GenerationTemplate& generationTemplate) {
    json = {{"name", generationTemplate.name}, {"slots", generationTemplate.slots}};
}
void from_json(const nlohmann::json& json, GenerationTemplate& generationTemplate) {
    generationTemplate = {field<std::string>(json, "name"), listField<TemplateSlot>(json, "slots")};
}

void to_json(nlohmann::json& json, const AudioFormatDetails& details) {
    json = {{"fileExtension", details.fileExtension},
            {"sampleRate", details.sampleRate},
            {"channels", details.channels},
            {"bitDepth", details.bitDepth},
            {"isLinearPCM", details.isLinearPCM}};
}
void from_json(const nlohmann::json& json, AudioFormatDetails& details) {
    details = {field<std::string>(json, "fileExtension"), field<double>(json, "sampleRate"),
               field<std::int64_t>(json, "channels"), field<std::int64_t>(json, "bitDepth"),
               field<bool>(json, "isLinearPCM")};
}

void to_json(nlohmann::json& json, const SampleCandidate& candidate) {
    json = {{"sourceURL", candidate.sourceURL},
            {"role", candidate.role},
            {"displayName", candidate.displayName},
            {"compatibility", candidate.compatibility},
            {"formatDetails", candidate.formatDetails}};
}
void from_json(const nlohmann::json& json, SampleCandidate& candidate) {
    candidate = {field<FileURL>(json, "sourceURL"), field<ChannelRole>(json, "role"),
                 field<std::string>(json, "displayName"),
                 field<SampleCompatibility>(json, "compatibility"),
                 field<AudioFormatDetails>(json, "formatDetails")};
}

void to_json(nlohmann::json& json, const IgnoredItem& item) {
    json = {{"path", item.path}, {"reason", item.reason}};
}
void from_json(const nlohmann::json& json, IgnoredItem& item) {
    item = {field<std::string>(json, "path"), field<std::string>(json, "reason")};
}

void to_json(nlohmann::json& json, const BankNameScheme& naming) {
    json = {{"sourceFolderName", naming.sourceFolderName}, {"prefix", naming.prefix}};
}
void from_json(const nlohmann::json& json, BankNameScheme& naming) {
    naming = BankNameScheme(field<std::string>(json, "sourceFolderName"),
                            field<std::string>(json, "prefix"));
}

void to_json(nlohmann::json& json, const BankRecipe& recipe) {
    auto channels = nlohmann::json::object();
    for (const auto& [channel, candidate] : recipe.channels)
        channels[std::to_string(channel)] = candidate;
    json = {{"bankIndex", recipe.bankIndex},
            {"shortName", recipe.shortName},
            {"channels", std::move(channels)},
            {"seed", recipe.seed},
            {"reusedSamples", recipe.reusedSamples}};
}
void from_json(const nlohmann::json& json, BankRecipe& recipe) {
    recipe = {field<std::int64_t>(json, "bankIndex"),
              field<std::string>(json, "shortName"),
              {},
              field<std::uint64_t>(json, "seed"),
              field<bool>(json, "reusedSamples")};
    const auto& channels = requiredField(json, "channels");
    within("channels", [&] {
        require(channels.is_object(), "not an object");
        for (const auto& [key, candidate] : channels.items())
            recipe.channels.emplace(channelFromKey(key), field<SampleCandidate>(channels, key));
    });
}

void to_json(nlohmann::json& json, const BankMappingDocument& document) {
    json = {{"version", document.version},
            {"sourceFolder", document.sourceFolder},
            {"generationMode", document.generationMode},
            {"naming", document.naming},
            {"template", document.generationTemplate},
            {"recipes", document.recipes},
            {"exportedAt", iso8601(document.exportedAt)}};
}
void from_json(const nlohmann::json& json, BankMappingDocument& document) {
    // Documents of version 1 have no version, mode and date, and always contain drums.
    const auto* exportedAt = findField(json, "exportedAt");
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    document = {.version = fieldOr<std::int64_t>(json, "version", 1),
                .sourceFolder = field<FileURL>(json, "sourceFolder"),
                .generationMode = fieldOr(json, "generationMode", GenerationMode::drums),
                .naming = field<BankNameScheme>(json, "naming"),
                .generationTemplate = field<GenerationTemplate>(json, "template"),
                .recipes = listField<BankRecipe>(json, "recipes"),
                .exportedAt = exportedAt == nullptr ? now : within("exportedAt", [&] {
                    return decodedDate(*exportedAt);
                })};
}

void to_json(nlohmann::json& json, TorvoPlaybackRate rate) {
    json = rawValue(rate);
}
void from_json(const nlohmann::json& json, TorvoPlaybackRate& rate) {
    const auto found = torvoPlaybackRate(decoded<std::int64_t>(json));
    require(found.has_value(), "no playback rate of the device");
    rate = *found;
}

void to_json(nlohmann::json& json, TorvoFilterType filter) {
    json = rawValue(filter);
}
void from_json(const nlohmann::json& json, TorvoFilterType& filter) {
    const auto found = torvoFilterType(decoded<std::int64_t>(json));
    require(found.has_value(), "no filter type of the device");
    filter = *found;
}

void to_json(nlohmann::json& json, const TorvoMetadataOptions& options) {
    json = {{"bits", options.bits},
            {"rate", options.rate},
            {"filterType", options.filterType},
            {"cvAssignmentsEnabled", options.cvAssignmentsEnabled},
            {"cvAssignedChannels", options.cvAssignedChannels}};
}
void from_json(const nlohmann::json& json, TorvoMetadataOptions& options) {
    // Assign the fields one by one, because the constructor would clamp values of the document.
    options.bits = field<std::int64_t>(json, "bits");
    options.rate = field<TorvoPlaybackRate>(json, "rate");
    options.filterType = field<TorvoFilterType>(json, "filterType");
    options.cvAssignmentsEnabled = field<bool>(json, "cvAssignmentsEnabled");
    const auto channels = listField<std::int64_t>(json, "cvAssignedChannels");
    options.cvAssignedChannels = {channels.begin(), channels.end()};
}

} // namespace torvo

namespace nlohmann {

using torvo::CompatibleWav;
using torvo::DecodingError;
using torvo::FileURL;
using torvo::RequiresConversion;
using torvo::SampleCompatibility;
using namespace torvo::jsonFields;

void adl_serializer<SampleCompatibility>::to_json(nlohmann::json& json,
                                                  const SampleCompatibility& compatibility) {
    if (const auto* conversion = std::get_if<RequiresConversion>(&compatibility))
        json = {{"requiresConversion", {{"reason", conversion->reason}}}};
    else
        json = {{"compatibleWav", nlohmann::json::object()}};
}

void adl_serializer<SampleCompatibility>::from_json(const nlohmann::json& json,
                                                    SampleCompatibility& compatibility) {
    require(json.is_object(), "not an object");
    const bool isCompatible = json.contains("compatibleWav");
    if (json.size() != 1 || (!isCompatible && !json.contains("requiresConversion")))
        throw DecodingError("", "Invalid number of keys found, expected one.");
    if (isCompatible) {
        within("compatibleWav",
               [&] { require(json["compatibleWav"].is_object(), "not an object"); });
        compatibility = CompatibleWav{};
        return;
    }
    compatibility = within("requiresConversion", [&] {
        return RequiresConversion{field<std::string>(json["requiresConversion"], "reason")};
    });
}

void adl_serializer<FileURL>::to_json(nlohmann::json& json, const FileURL& url) {
    json = url.absoluteString();
}

void adl_serializer<FileURL>::from_json(const nlohmann::json& json, FileURL& url) {
    const auto text = decoded<std::string>(json);
    const auto parsed = FileURL::parse(text);
    if (!parsed)
        throw DecodingError("", "\"" + text + "\" is no file URL");
    url = *parsed;
}

} // namespace nlohmann
