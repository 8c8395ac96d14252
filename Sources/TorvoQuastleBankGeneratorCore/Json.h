#pragma once

#include "Models/BankMappingDocument.h"
#include "Models/TorvoMetadataOptions.h"

#include <nlohmann/json.hpp>

#include <string>

/// Converts the records to and from JSON. Encoding sorts keys. Decoding requires exact types,
/// ignores unknown keys and throws `DecodingError` with the key path.
namespace torvo {

void to_json(nlohmann::json& json, ChannelRole role);
void to_json(nlohmann::json& json, GenerationMode mode);
void to_json(nlohmann::json& json, const TemplateSlot& slot);
void to_json(nlohmann::json& json, const GenerationTemplate& generationTemplate);
void to_json(nlohmann::json& json, const AudioFormatDetails& details);
void to_json(nlohmann::json& json, const SampleCandidate& candidate);
void to_json(nlohmann::json& json, const IgnoredItem& item);
void to_json(nlohmann::json& json, const BankNameScheme& naming);
void to_json(nlohmann::json& json, const BankRecipe& recipe);
void to_json(nlohmann::json& json, const BankMappingDocument& document);
void to_json(nlohmann::json& json, TorvoPlaybackRate rate);
void to_json(nlohmann::json& json, TorvoFilterType filter);
void to_json(nlohmann::json& json, const TorvoMetadataOptions& options);

void from_json(const nlohmann::json& json, ChannelRole& role);
void from_json(const nlohmann::json& json, GenerationMode& mode);
void from_json(const nlohmann::json& json, TemplateSlot& slot);
void from_json(const nlohmann::json& json, GenerationTemplate& generationTemplate);
void from_json(const nlohmann::json& json, AudioFormatDetails& details);
void from_json(const nlohmann::json& json, SampleCandidate& candidate);
void from_json(const nlohmann::json& json, IgnoredItem& item);
void from_json(const nlohmann::json& json, BankNameScheme& naming);
void from_json(const nlohmann::json& json, BankRecipe& recipe);
void from_json(const nlohmann::json& json, BankMappingDocument& document);
void from_json(const nlohmann::json& json, TorvoPlaybackRate& rate);
void from_json(const nlohmann::json& json, TorvoFilterType& filter);
void from_json(const nlohmann::json& json, TorvoMetadataOptions& options);

} // namespace torvo

/// nlohmann/json needs adl_serializer for a std::variant and for a class without setters.
template <>
struct nlohmann::adl_serializer<torvo::SampleCompatibility> {
    static void to_json(json& json, const torvo::SampleCompatibility& compatibility);
    static void from_json(const json& json, torvo::SampleCompatibility& compatibility);
};

template <>
struct nlohmann::adl_serializer<torvo::FileURL> {
    static void to_json(json& json, const torvo::FileURL& url);
    static void from_json(const json& json, torvo::FileURL& url);
};
