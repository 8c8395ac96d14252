#include "AudioSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace torvo::test {
namespace {

std::string reasonFor(const AudioFormatDetails& details) {
    const auto compatibility = AudioCompatibilityEvaluator{}.compatibility(details);
    const auto* const conversion = std::get_if<RequiresConversion>(&compatibility);
    return conversion == nullptr ? "compatible" : conversion->reason;
}

TEST(AudioCompatibility, reportsReasonsInAFixedOrder) {
    struct Row {
        const char* name;
        AudioFormatDetails details;
        const char* reason;
    };
    const Row rows[] = {
        {"the device's own", {"wav", 44100, 1, 16, true}, "compatible"},
        {"24 bits", {"wav", 44100, 2, 24, true}, "compatible"},
        {"six channels", {"wav", 44100, 6, 16, true}, "compatible"},
        {"capitals", {"WAV", 44100, 2, 24, true}, "compatible"},
        {"just within the rate, below", {"wav", 44099.6, 1, 16, true}, "compatible"},
        {"just within the rate, above", {"wav", 44100.4, 1, 16, true}, "compatible"},
        {"just outside, below", {"wav", 44099.5, 1, 16, true}, "sample rate 44100 Hz"},
        {"just outside, above", {"wav", 44100.5, 1, 16, true}, "sample rate 44101 Hz"},
        {"48 kHz", {"wav", 48000, 1, 16, true}, "sample rate 48000 Hz"},
        {"8 bits", {"wav", 44100, 1, 8, true}, "bit depth 8"},
        {"32 bits", {"wav", 44100, 1, 32, true}, "bit depth 32"},
        {"float", {"wav", 44100, 1, 32, false}, "bit depth 32, non-PCM encoding"},
        {"AIFF", {"aif", 44100, 2, 16, true}, "non-WAV source"},
        {"no extension", {"", 44100, 2, 16, true}, "non-WAV source"},
        {"another that begins alike", {"wave", 44100, 2, 16, true}, "non-WAV source"},
        {"MP3", {"mp3", 44100, 2, 0, false}, "non-WAV source, bit depth 0, non-PCM encoding"},
        {"MP3 named WAV", {"wav", 44100, 2, 0, false}, "bit depth 0, non-PCM encoding"},
        {"everything",
         {"ogg", 22050, 1, 0, false},
         "non-WAV source, sample rate 22050 Hz, bit depth 0, non-PCM encoding"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(reasonFor(row.details), row.reason) << row.name;
}

TEST(AudioCompatibilityDeathTest, abortsOnAnInvalidSampleRate) {
    for (const double rate :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(), 1e19})
        EXPECT_DEATH(reasonFor({"wav", rate, 1, 16, true}), "sample rate");
}

} // namespace
} // namespace torvo::test
