#include "Json.h"
#include "Models/DecodingError.h"
#include "Samples.h"
#include "Thrown.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>

namespace torvo::test {
namespace {

using nlohmann::json;

/// "key path: reason" of the failure, or "none".
template <typename Record>
std::string errorOf(const json& value) {
    const auto error = thrown<DecodingError>([&] { static_cast<void>(value.get<Record>()); });
    return error ? error->errorDescription() : "none";
}

template <typename Record>
void expectIdentity(const Record& record) {
    const auto text = json(record).dump();
    EXPECT_EQ(json::parse(text).get<Record>(), record) << text;
}

json with(json object, const std::string& key, json value) {
    object[key] = std::move(value);
    return object;
}

json without(json object, const std::string& key) {
    object.erase(key);
    return object;
}

SampleCandidate convertedSample() {
    return {FileURL("/Kit/Hat #1 100%.aif"), ChannelRole::openHat, "Hat #1 100%",
            RequiresConversion{"non-WAV source, sample rate 48000 Hz"},
            AudioFormatDetails{"aif", 48000.5, 2, 24, true}};
}

TEST(Json, writesEnumerationsAsRawValues) {
    for (const auto role : allChannelRoles) {
        EXPECT_EQ(json(role), json(rawValue(role)));
        expectIdentity(role);
    }
    for (const auto mode : allGenerationModes) {
        EXPECT_EQ(json(mode), json(rawValue(mode)));
        expectIdentity(mode);
    }
    for (const auto rate : allTorvoPlaybackRates) {
        EXPECT_EQ(json(rate).dump(), std::to_string(rawValue(rate)));
        expectIdentity(rate);
    }
    for (const auto filter : allTorvoFilterTypes) {
        EXPECT_EQ(json(filter).dump(), std::to_string(rawValue(filter)));
        expectIdentity(filter);
    }
}

TEST(Json, refusesUnknownNamesAndNumbers) {
    EXPECT_EQ(errorOf<ChannelRole>("closedhat"), "\"closedhat\" is no channel role");
    EXPECT_EQ(errorOf<ChannelRole>("Kick"), "\"Kick\" is no channel role");
    EXPECT_EQ(errorOf<ChannelRole>(3), "not a text");
    EXPECT_EQ(errorOf<GenerationMode>("Drums"), "\"Drums\" is no generation mode");
    EXPECT_EQ(errorOf<GenerationMode>(nullptr), "not a text");
    EXPECT_EQ(errorOf<TorvoPlaybackRate>(8), "no playback rate of the device");
    EXPECT_EQ(errorOf<TorvoPlaybackRate>("44"), "not an integer");
    EXPECT_EQ(errorOf<TorvoFilterType>(5), "no filter type of the device");
    EXPECT_EQ(errorOf<TorvoFilterType>(-1), "no filter type of the device");
    EXPECT_EQ(errorOf<TorvoFilterType>(1.0), "not an integer");
}

TEST(Json, keepsTheOrderOfTemplateSlots) {
    const auto& drums = GenerationTemplate::torvoV1();
    EXPECT_EQ(json(drums.slots[1]), (json{{"channel", 2}, {"role", "clap"}, {"label", "Clap"}}));
    EXPECT_EQ(json(GenerationTemplate{"T", {}}).dump(), R"({"name":"T","slots":[]})");
    for (const auto mode : allGenerationModes)
        expectIdentity(generationTemplate(mode));
    auto reversed = drums;
    std::ranges::reverse(reversed.slots);
    expectIdentity(reversed);
}

TEST(Json, refusesIncompleteTemplates) {
    const json slot = GenerationTemplate::torvoV1().slots[0];
    const json whole = GenerationTemplate::torvoV1();
    EXPECT_EQ(errorOf<TemplateSlot>(without(slot, "channel")), "channel: missing");
    EXPECT_EQ(errorOf<TemplateSlot>(without(slot, "role")), "role: missing");
    EXPECT_EQ(errorOf<TemplateSlot>(without(slot, "label")), "label: missing");
    EXPECT_EQ(errorOf<TemplateSlot>(with(slot, "channel", "1")), "channel: not an integer");
    EXPECT_EQ(errorOf<TemplateSlot>(with(slot, "channel", 1.0)), "channel: not an integer");
    EXPECT_EQ(errorOf<TemplateSlot>(json::array()), "not an object");
    EXPECT_EQ(errorOf<GenerationTemplate>(without(whole, "name")), "name: missing");
    EXPECT_EQ(errorOf<GenerationTemplate>(without(whole, "slots")), "slots: missing");
    EXPECT_EQ(errorOf<GenerationTemplate>(with(whole, "slots", json::object())),
              "slots: not a list");
    auto badSlot = whole;
    badSlot["slots"][6]["role"] = "Perc";
    EXPECT_EQ(errorOf<GenerationTemplate>(badSlot), "slots[6].role: \"Perc\" is no channel role");
}

TEST(Json, writesCompatibilityAsAnObjectWithOneKey) {
    EXPECT_EQ(json(SampleCompatibility(CompatibleWav{})).dump(), R"({"compatibleWav":{}})");
    EXPECT_EQ(json(SampleCompatibility(RequiresConversion{"bit depth 8"})).dump(),
              R"({"requiresConversion":{"reason":"bit depth 8"}})");
    expectIdentity(SampleCompatibility(CompatibleWav{}));
    expectIdentity(SampleCompatibility(RequiresConversion{""}));
    const auto* wrongCount = "Invalid number of keys found, expected one.";
    EXPECT_EQ(errorOf<SampleCompatibility>(json::object()), wrongCount);
    EXPECT_EQ(errorOf<SampleCompatibility>({{"compatibleWav", json::object()},
                                            {"requiresConversion", {{"reason", "bit depth 8"}}}}),
              wrongCount);
    EXPECT_EQ(errorOf<SampleCompatibility>({{"compatibleWav", json::object()}, {"other", 1}}),
              wrongCount);
    EXPECT_EQ(errorOf<SampleCompatibility>({{"unsupported", json::object()}}), wrongCount);
    EXPECT_EQ(errorOf<SampleCompatibility>({{"compatibleWav", true}}),
              "compatibleWav: not an object");
    EXPECT_EQ(errorOf<SampleCompatibility>({{"requiresConversion", json::object()}}),
              "requiresConversion.reason: missing");
    EXPECT_EQ(errorOf<SampleCompatibility>({{"requiresConversion", "bit depth 8"}}),
              "requiresConversion: not an object");
    EXPECT_EQ(errorOf<SampleCompatibility>("compatibleWav"), "not an object");
}

TEST(Json, writesTheURLOfACandidateAsAString) {
    const json encoded = convertedSample();
    EXPECT_EQ(encoded.dump(),
              R"({"compatibility":{"requiresConversion":{"reason":"non-WAV source, )"
              R"(sample rate 48000 Hz"}},"displayName":"Hat #1 100%","formatDetails":)"
              R"({"bitDepth":24,"channels":2,"fileExtension":"aif","isLinearPCM":true,)"
              R"("sampleRate":48000.5},"role":"openHat",)"
              R"("sourceURL":"file:///Kit/Hat%20%231%20100%25.aif"})");
    expectIdentity(convertedSample());
    for (const auto role : allChannelRoles)
        expectIdentity(compatibleSample(role, 1));
}

TEST(Json, refusesIncompleteCandidates) {
    const json whole = convertedSample();
    for (const auto* key : {"sourceURL", "role", "displayName", "compatibility", "formatDetails"})
        EXPECT_EQ(errorOf<SampleCandidate>(without(whole, key)), std::string(key) + ": missing");
    for (const auto* key : {"fileExtension", "sampleRate", "channels", "bitDepth", "isLinearPCM"}) {
        const auto path = "formatDetails." + std::string(key);
        EXPECT_EQ(errorOf<SampleCandidate>(
                      with(whole, "formatDetails", without(whole["formatDetails"], key))),
                  path + ": missing");
        EXPECT_NE(errorOf<SampleCandidate>(
                      with(whole, "formatDetails", with(whole["formatDetails"], key, nullptr))),
                  "none")
            << path;
    }
    for (const auto* text : {"/Kit/a.wav", "https://example/a.wav", "file:///a?x", ""}) {
        EXPECT_EQ(errorOf<SampleCandidate>(with(whole, "sourceURL", text)),
                  "sourceURL: \"" + std::string(text) + "\" is no file URL");
    }
    EXPECT_EQ(errorOf<SampleCandidate>(with(whole, "sourceURL", 1)), "sourceURL: not a text");
    EXPECT_EQ(errorOf<SampleCandidate>(with(whole, "another key", 1)), "none");
}

TEST(Json, readsIntegerSampleRates) {
    const json details{{"fileExtension", "wav"},
                       {"sampleRate", 44100},
                       {"channels", 1},
                       {"bitDepth", 16},
                       {"isLinearPCM", true}};
    EXPECT_EQ(details.get<AudioFormatDetails>(), (AudioFormatDetails{"wav", 44100, 1, 16, true}));
    EXPECT_EQ(errorOf<AudioFormatDetails>(with(details, "sampleRate", "44100")),
              "sampleRate: not a number");
    EXPECT_EQ(errorOf<AudioFormatDetails>(with(details, "isLinearPCM", 1)),
              "isLinearPCM: not true or false");
    EXPECT_EQ(errorOf<AudioFormatDetails>(with(details, "bitDepth", 16.0)),
              "bitDepth: not an integer");
}

TEST(Json, refusesIntegersOutOfRange) {
    const auto slotWith = [](const std::string& number) {
        return json::parse(R"({"channel":)" + number + R"(,"role":"kick","label":""})");
    };
    EXPECT_EQ(slotWith("9223372036854775807").get<TemplateSlot>().channel,
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(slotWith("-9223372036854775808").get<TemplateSlot>().channel,
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(errorOf<TemplateSlot>(slotWith("9223372036854775808")),
              "channel: an integer out of range");
    EXPECT_EQ(errorOf<TemplateSlot>(slotWith("-9223372036854775809")), "channel: not an integer");
    EXPECT_EQ(errorOf<TemplateSlot>(slotWith("1e0")), "channel: not an integer");
}

TEST(Json, keepsAll64BitsOfSeeds) {
    BankRecipe recipe{1, "Kit001", {}, 0, false};
    for (const std::uint64_t seed :
         {std::uint64_t{0}, std::uint64_t{1}, (std::uint64_t{1} << 53U) + 1,
          std::uint64_t{1} << 63U, (std::uint64_t{1} << 63U) + 1,
          std::numeric_limits<std::uint64_t>::max()}) {
        recipe.seed = seed;
        expectIdentity(recipe);
        EXPECT_EQ(json(recipe)["seed"].dump(), std::to_string(seed));
    }
    const json encoded = recipe;
    EXPECT_EQ(errorOf<BankRecipe>(with(encoded, "seed", -1)), "seed: an integer out of range");
    EXPECT_EQ(errorOf<BankRecipe>(with(encoded, "seed", 1.0)), "seed: not an integer");
    EXPECT_EQ(errorOf<BankRecipe>(with(encoded, "seed", json::parse("18446744073709551616"))),
              "seed: not an integer");
    EXPECT_EQ(errorOf<BankRecipe>(with(encoded, "seed", "1")), "seed: not an integer");
}

TEST(Json, keysChannelsByNumber) {
    const BankRecipe recipe{7,
                            "Kit007",
                            {{1, compatibleSample(ChannelRole::kick, 1)},
                             {8, convertedSample()},
                             {-3, convertedSample()}},
                            5,
                            true};
    const json encoded = recipe;
    EXPECT_EQ(encoded["channels"].size(), 3U);
    EXPECT_EQ(encoded["channels"]["8"], json(convertedSample()));
    expectIdentity(recipe);
    for (const auto* key : {"", "one", "01", "+1", " 1", "1 ", "1.0", "9223372036854775808"}) {
        const auto path = std::string("channels") + (*key == '\0' ? "" : ".") + key;
        EXPECT_EQ(errorOf<BankRecipe>(with(encoded, "channels",
                                           json{{key, compatibleSample(ChannelRole::kick, 1)}})),
                  path + ": not a channel number")
            << key;
    }
    EXPECT_EQ(errorOf<BankRecipe>(with(encoded, "channels", json::array())),
              "channels: not an object");
    for (const auto* key : {"bankIndex", "shortName", "channels", "seed", "reusedSamples"})
        EXPECT_EQ(errorOf<BankRecipe>(without(encoded, key)), std::string(key) + ": missing");
}

TEST(Json, usesFieldNamesAsKeysOfOtherRecords) {
    EXPECT_EQ(json(IgnoredItem{"Kicks/a.txt", "Unsupported audio file"}).dump(),
              R"({"path":"Kicks/a.txt","reason":"Unsupported audio file"})");
    expectIdentity(IgnoredItem{"a", "b"});
    EXPECT_EQ(errorOf<IgnoredItem>({{"path", "a"}}), "reason: missing");
    EXPECT_EQ(json(BankNameScheme("my kit", "Own")).dump(),
              R"({"prefix":"Own","sourceFolderName":"my kit"})");
    expectIdentity(BankNameScheme("my kit", "Own"));
    EXPECT_EQ(errorOf<BankNameScheme>({{"prefix", "a"}}), "sourceFolderName: missing");
    EXPECT_EQ(errorOf<BankNameScheme>({{"sourceFolderName", "a"}}), "prefix: missing");
}

TEST(Json, writesMetadataOptionsWithFiveKeys) {
    const TorvoMetadataOptions options(12, TorvoPlaybackRate::rate22, TorvoFilterType::notch, true,
                                       {1, 3, 8});
    EXPECT_EQ(json(options).dump(), R"({"bits":12,"cvAssignedChannels":[1,3,8],)"
                                    R"("cvAssignmentsEnabled":true,"filterType":3,"rate":22})");
    expectIdentity(options);
    for (const auto rate : allTorvoPlaybackRates) {
        for (const auto filter : allTorvoFilterTypes)
            expectIdentity(TorvoMetadataOptions(9, rate, filter, false, {}));
    }
    const json encoded = options;
    for (const auto* key :
         {"bits", "rate", "filterType", "cvAssignmentsEnabled", "cvAssignedChannels"}) {
        EXPECT_EQ(errorOf<TorvoMetadataOptions>(without(encoded, key)),
                  std::string(key) + ": missing");
        EXPECT_NE(errorOf<TorvoMetadataOptions>(with(encoded, key, "x")), "none") << key;
    }
    EXPECT_EQ(errorOf<TorvoMetadataOptions>(with(without(encoded, "bits"), "Bits", 4)),
              "bits: missing")
        << "keys are case-sensitive";
    EXPECT_EQ(errorOf<TorvoMetadataOptions>(with(encoded, "unknown", 4)), "none");
    EXPECT_EQ(errorOf<TorvoMetadataOptions>(with(encoded, "rate", 8)),
              "rate: no playback rate of the device");
    EXPECT_EQ(errorOf<TorvoMetadataOptions>(with(encoded, "cvAssignedChannels", {1, "2"})),
              "cvAssignedChannels[1]: not an integer");
}

TEST(Json, doesNotCorrectDecodedOptions) {
    // Intended: the record keeps the values of the document; only the constructor clamps and
    // filters.
    for (const std::int64_t bits : {40, 0, -3}) {
        auto document = json::parse(R"({"bits":0,"rate":44,"filterType":0,)"
                                    R"("cvAssignmentsEnabled":false,"cvAssignedChannels":[9,0]})");
        document["bits"] = bits;
        const auto options = document.get<TorvoMetadataOptions>();
        EXPECT_EQ(options.bits, bits);
        EXPECT_EQ(options.cvAssignedChannels, (std::set<std::int64_t>{0, 9}));
    }
}

} // namespace
} // namespace torvo::test
