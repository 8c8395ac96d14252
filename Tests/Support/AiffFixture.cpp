#include "AiffFixture.h"

#include "Bytes.h"

#include <cmath>

namespace torvo::test {

namespace {

/// As an 80-bit float: exponent, then the mantissa with its leading one.
void appendRate(std::vector<std::byte>& to, std::uint32_t sampleRate) {
    int exponent = 0;
    const double mantissa = std::frexp(static_cast<double>(sampleRate), &exponent);
    appendBigEndian(to, static_cast<std::uint64_t>(16382 + exponent), 2);
    appendBigEndian(to, static_cast<std::uint64_t>(std::ldexp(mantissa, 64)), 8);
}

} // namespace

std::vector<std::byte> aiffFile(std::uint32_t sampleRate, std::span<const std::int16_t> samples,
                                std::uint16_t channels) {
    const std::uint64_t dataSize = samples.size_bytes();
    std::vector<std::byte> file;
    append(file, "FORM");
    appendBigEndian(file, 4 + 26 + 16 + dataSize, 4);
    append(file, "AIFFCOMM");
    appendBigEndian(file, 18, 4);
    appendBigEndian(file, channels, 2);
    appendBigEndian(file, samples.size() / channels, 4);
    appendBigEndian(file, 16, 2);
    appendRate(file, sampleRate);
    append(file, "SSND");
    appendBigEndian(file, 8 + dataSize, 4);
    appendBigEndian(file, 0, 8); // offset and block size
    appendBigEndianSamples(file, samples);
    return file;
}

} // namespace torvo::test
