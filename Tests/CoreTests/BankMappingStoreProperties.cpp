#include "BankMappingStore.h"
#include "Platform/UnicodeText.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace torvo::test {
namespace {

rc::Gen<std::string> anyText() {
    return rc::gen::map<std::string>(
        [](const std::string& bytes) { return text::validUTF8(bytes); });
}

rc::Gen<FileURL> anyURL() {
    return rc::gen::map<std::string>([](std::string bytes) {
        std::erase(bytes, '\0');
        return FileURL("/" + bytes);
    });
}

rc::Gen<ChannelRole> anyRole() {
    return rc::gen::elementOf(allChannelRoles);
}

rc::Gen<SampleCompatibility> anyCompatibility() {
    return rc::gen::oneOf(rc::gen::just(SampleCompatibility(CompatibleWav{})),
                          rc::gen::map(anyText(), [](const std::string& reason) {
                              return SampleCompatibility(RequiresConversion{reason});
                          }));
}

rc::Gen<AudioFormatDetails> anyDetails() {
    return rc::gen::build<AudioFormatDetails>(
        rc::gen::set(&AudioFormatDetails::fileExtension, anyText()),
        rc::gen::set(&AudioFormatDetails::sampleRate), rc::gen::set(&AudioFormatDetails::channels),
        rc::gen::set(&AudioFormatDetails::bitDepth),
        rc::gen::set(&AudioFormatDetails::isLinearPCM));
}

rc::Gen<SampleCandidate> anyCandidate() {
    return rc::gen::build<SampleCandidate>(
        rc::gen::set(&SampleCandidate::sourceURL, anyURL()),
        rc::gen::set(&SampleCandidate::role, anyRole()),
        rc::gen::set(&SampleCandidate::displayName, anyText()),
        rc::gen::set(&SampleCandidate::compatibility, anyCompatibility()),
        rc::gen::set(&SampleCandidate::formatDetails, anyDetails()));
}

rc::Gen<BankRecipe> anyRecipe() {
    return rc::gen::build<BankRecipe>(
        rc::gen::set(&BankRecipe::bankIndex), rc::gen::set(&BankRecipe::shortName, anyText()),
        rc::gen::set(&BankRecipe::channels,
                     rc::gen::container<std::map<std::int64_t, SampleCandidate>>(
                         rc::gen::arbitrary<std::int64_t>(), anyCandidate())),
        rc::gen::set(&BankRecipe::seed, rc::gen::arbitrary<std::uint64_t>()),
        rc::gen::set(&BankRecipe::reusedSamples));
}

rc::Gen<TemplateSlot> anySlot() {
    return rc::gen::build<TemplateSlot>(rc::gen::set(&TemplateSlot::channel),
                                        rc::gen::set(&TemplateSlot::role, anyRole()),
                                        rc::gen::set(&TemplateSlot::label, anyText()));
}

/// Only four-digit years, as ISO 8601 requires.
rc::Gen<std::chrono::sys_seconds> anyDate() {
    return rc::gen::map(rc::gen::inRange<std::int64_t>(-62'167'219'200, 253'402'300'800),
                        [](std::int64_t seconds) {
                            return std::chrono::sys_seconds(std::chrono::seconds(seconds));
                        });
}

RC_GTEST_PROP(BankMappingStore, roundTripsAnyDocument, ()) {
    const BankMappingDocument document{
        .version = *rc::gen::arbitrary<std::int64_t>(),
        .sourceFolder = *anyURL(),
        .generationMode = *rc::gen::elementOf(allGenerationModes),
        .naming = BankNameScheme(*anyText(), *anyText()),
        .generationTemplate = {*anyText(),
                               *rc::gen::container<std::vector<TemplateSlot>>(anySlot())},
        .recipes = *rc::gen::resize(20, rc::gen::container<std::vector<BankRecipe>>(anyRecipe())),
        .exportedAt = *anyDate()};
    const TemporaryFolder folder;
    const FileURL url(folder / "Kit001.json");
    BankMappingStore().exportDocument(document, url);
    RC_ASSERT((BankMappingStore().importDocument(url) == document));
}

} // namespace
} // namespace torvo::test
