#include "WavFixture.h"

#include "TemporaryFolder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace torvo::test {

namespace {

void appendSample(std::vector<std::byte>& to, const WavFormat& format, double sample) {
    if (format.encoding == WavEncoding::floatingPoint) {
        if (format.bits == 64)
            appendLittleEndian(to, std::bit_cast<std::uint64_t>(sample), 8);
        else
            appendLittleEndian(to, std::bit_cast<std::uint32_t>(static_cast<float>(sample)), 4);
        return;
    }
    const double scale = std::ldexp(1.0, format.bits - 1);
    const double rounded = std::clamp(std::round(sample * scale), -scale, scale - 1);
    // Eight bits are stored as an offset from the middle, more as two's complement.
    const auto value = static_cast<std::int64_t>(rounded) + (format.bits == 8 ? 128 : 0);
    appendLittleEndian(to, static_cast<std::uint64_t>(value), format.bits / 8U);
}

} // namespace

std::vector<std::byte> riffChunk(std::string_view id, std::span<const std::byte> payload) {
    std::vector<std::byte> chunk;
    append(chunk, id);
    appendUInt32(chunk, static_cast<std::uint32_t>(payload.size()));
    append(chunk, payload);
    if (payload.size() % 2 == 1)
        chunk.push_back(std::byte{0});
    return chunk;
}

std::vector<std::byte> riffFile(const std::vector<std::vector<std::byte>>& chunks) {
    std::vector<std::byte> body;
    append(body, "WAVE");
    for (const auto& chunk : chunks)
        append(body, chunk);
    std::vector<std::byte> file;
    append(file, "RIFF");
    appendUInt32(file, static_cast<std::uint32_t>(body.size()));
    append(file, body);
    return file;
}

std::vector<std::byte> wavFile(const WavFormat& format, std::span<const double> samples) {
    const std::uint16_t blockAlign = static_cast<std::uint16_t>(format.channels * format.bits / 8);
    std::vector<std::byte> fmt;
    appendUInt16(fmt, format.encoding == WavEncoding::floatingPoint ? 3 : 1);
    appendUInt16(fmt, format.channels);
    appendUInt32(fmt, format.sampleRate);
    appendUInt32(fmt, format.sampleRate * blockAlign);
    appendUInt16(fmt, blockAlign);
    appendUInt16(fmt, format.bits);
    std::vector<std::byte> data;
    data.reserve(samples.size() * format.bits / 8);
    for (const double sample : samples)
        appendSample(data, format, sample);
    return riffFile({riffChunk("fmt ", fmt), riffChunk("data", data)});
}

std::vector<std::byte> wavFile(const WavFormat& format, std::size_t frameCount) {
    std::vector<double> samples(frameCount * format.channels);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            0.5 * std::sin(static_cast<double>(i) * 0.0371 + 1.0 / (1.0 + static_cast<double>(i)));
    return wavFile(format, samples);
}

std::vector<std::byte> smallWav() {
    return riffFile({riffChunk("data", bytes("0123"))});
}

} // namespace torvo::test
