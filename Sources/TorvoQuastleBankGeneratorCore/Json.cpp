#include "Json.h"

#include "Models/DecodingError.h"

#include <charconv>
#include <cstdio>
#include <limits>
#include <utility>

namespace torvo {

namespace {

std::string joinedKeyPath(const std::string& outer, const std::string& inner) {
    if (inner.empty() || inner.starts_with('['))
        return outer + inner;
    return outer + "." + inner;
}

/// Runs `decode` and puts `key` in front of the key path of what it throws.
template <typename Decode>
auto within(const std::string& key, Decode decode) {
    try {
        return decode();
    } catch (const DecodingError& error) {
        throw DecodingError(joinedKeyPath(key, error.keyPath()), error.reason());
    }
}

void require(bool condition, const char* reason) {
    if (!condition)
        throw DecodingError("", reason);
}

template <typename Value>
Value decoded(const nlohmann::json& value) {
    return value.get<Value>();
}

template <>
bool decoded<bool>(const nlohmann::json& value) {
    require(value.is_boolean(), "not true or false");
    return value.get<bool>();
}

template <>
std::string decoded<std::string>(const nlohmann::json& value) {
    require(value.is_string(), "not a text");
    return value.get<std::string>();
}

template <>
double decoded<double>(const nlohmann::json& value) {
    require(value.is_number(), "not a number");
    return value.get<double>();
}

template <>
std::int64_t decoded<std::int64_t>(const nlohmann::json& value) {
    require(value.is_number_integer(), "not an integer");
    require(!value.is_number_unsigned() ||
                value.get<std::uint64_t>() <= std::numeric_limits<std::int64_t>::max(),
            "an integer out of range");
    return value.get<std::int64_t>();
}

/// Seeds use the whole range.
template <>
std::uint64_t decoded<std::uint64_t>(const nlohmann::json& value) {
    require(value.is_number_integer(), "not an integer");
    require(value.is_number_unsigned(), "an integer out of range");
    return value.get<std::uint64_t>();
}

template <typename Value>
std::vector<Value> decodedList(const nlohmann::json& value) {
    require(value.is_array(), "not a list");
    std::vector<Value> list;
    list.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        list.push_back(
            within("[" + std::to_string(i) + "]", [&] { return decoded<Value>(value[i]); }));
    }
    return list;
}

const nlohmann::json* find(const nlohmann::json& object, const std::string& key) {
    require(object.is_object(), "not an object");
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const nlohmann::json& required(const nlohmann::json& object, const std::string& key) {
    const auto* value = find(object, key);
    if (value == nullptr)
        throw DecodingError(key, "missing");
    return *value;
}

template <typename Value>
Value field(const nlohmann::json& object, const std::string& key) {
    const auto& value = required(object, key);
    return within(key, [&] { return decoded<Value>(value); });
}

template <typename Value>
Value fieldOr(const nlohmann::json& object, const std::string& key, Value whenMissing) {
    return find(object, key) == nullptr ? whenMissing : field<Value>(object, key);
}

template <typename Value>
std::vector<Value> listField(const nlohmann::json& object, const std::string& key) {
    const auto& value = required(object, key);
    return within(key, [&] { return decodedList<Value>(value); });
}

/// The case of a string enumeration, or an error that says what the names are for.
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
    // "01" and "1" would be one channel under two keys.
    if (error != std::errc() || stopped != end || std::to_string(channel) != key)
        throw DecodingError(key, "not a channel number");
    return channel;
}

std::string iso8601(std::chrono::sys_seconds time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::array<char, 40> text{};
    static_cast<void>(std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count())));
    return text.data();
}

/// Reads fixed fields of digits and separators from the front of a text.
class DateReader {
public:
    explicit DateReader(std::string_view text) : rest_(text) {}

    int digits(std::size_t count) {
        if (rest_.size() < count)
            fail();
        int value = 0;
        for (const char c : rest_.substr(0, count)) {
            if (c < '0' || c > '9')
                fail();
            value = value * 10 + (c - '0');
        }
        rest_.remove_prefix(count);
        return value;
    }

    char oneOf(std::string_view allowed) {
        if (rest_.empty() || allowed.find(rest_.front()) == std::string_view::npos)
            fail();
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    void end() const {
        if (!rest_.empty())
            fail();
    }

    [[noreturn]] static void fail() { throw DecodingError("", "not an ISO 8601 date"); }

private:
    std::string_view rest_;
};

/// "2026-03-01T14:05:09Z", or with an offset from UTC in the place of the Z. Whole seconds only.
std::chrono::sys_seconds decodedDate(const nlohmann::json& value) {
    using namespace std::chrono;
    const auto text = decoded<std::string>(value);
    DateReader reader(text);
    const year y(reader.digits(4));
    reader.oneOf("-");
    const month m(static_cast<unsigned>(reader.digits(2)));
    reader.oneOf("-");
    const day d(static_cast<unsigned>(reader.digits(2)));
    reader.oneOf("T");
    const hours hour(reader.digits(2));
    reader.oneOf(":");
    const minutes minute(reader.digits(2));
    reader.oneOf(":");
    const seconds second(reader.digits(2));
    hours offsetHour{0};
    minutes offsetMinute{0};
    const char zone = reader.oneOf("Z+-");
    if (zone != 'Z') {
        offsetHour = hours(reader.digits(2));
        reader.oneOf(":");
        offsetMinute = minutes(reader.digits(2));
    }
    reader.end();
    const year_month_day date(y, m, d);
    if (!date.ok() || hour >= 24h || minute >= 60min || second >= 60s || offsetHour >= 24h ||
        offsetMinute >= 60min)
        DateReader::fail();
    const auto offset = offsetHour + offsetMinute;
    return sys_days(date) + hour + minute + second + (zone == '-' ? offset : -offset);
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
    const auto& channels = required(json, "channels");
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
    // A document of the earlier format has no version, mode and date: a version 1 run of drums.
    const auto* exportedAt = find(json, "exportedAt");
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
    // Field by field: a decoded record holds what the document holds, without the corrections of
    // the constructor.
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

void adl_serializer<SampleCompatibility>::to_json(nlohmann::json& json,
                                                  const SampleCompatibility& compatibility) {
    if (const auto* conversion = std::get_if<RequiresConversion>(&compatibility))
        json = {{"requiresConversion", {{"reason", conversion->reason}}}};
    else
        json = {{"compatibleWav", nlohmann::json::object()}};
}

void adl_serializer<SampleCompatibility>::from_json(const nlohmann::json& json,
                                                    SampleCompatibility& compatibility) {
    torvo::require(json.is_object(), "not an object");
    const bool isCompatible = json.contains("compatibleWav");
    if (json.size() != 1 || (!isCompatible && !json.contains("requiresConversion")))
        throw DecodingError("", "Invalid number of keys found, expected one.");
    if (isCompatible) {
        torvo::within("compatibleWav",
                      [&] { torvo::require(json["compatibleWav"].is_object(), "not an object"); });
        compatibility = CompatibleWav{};
        return;
    }
    compatibility = torvo::within("requiresConversion", [&] {
        return RequiresConversion{torvo::field<std::string>(json["requiresConversion"], "reason")};
    });
}

void adl_serializer<FileURL>::to_json(nlohmann::json& json, const FileURL& url) {
    json = url.absoluteString();
}

void adl_serializer<FileURL>::from_json(const nlohmann::json& json, FileURL& url) {
    const auto text = torvo::decoded<std::string>(json);
    const auto parsed = FileURL::parse(text);
    if (!parsed)
        throw DecodingError("", "\"" + text + "\" is no file URL");
    url = *parsed;
}

} // namespace nlohmann
