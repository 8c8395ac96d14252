#include "AudioFixtures.h"

#include "AudioSupport/OpenAudio.h"
#include "AudioSupport/RiffChunks.h"
#include "Models/GenerationError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

std::uint32_t byteCount(std::span<const std::int16_t> frames) {
    return static_cast<std::uint32_t>(2 * frames.size());
}

} // namespace

void runTool(const fs::path& folder, const std::string& command) {
    const std::string line = "cd " + quoted(folder.string()) + " && " + command + " </dev/null";
    if (std::system(line.c_str()) != 0)
        throw std::runtime_error("this command failed: " + command);
}

void encode(const TemporaryFolder& folder, const std::string& source,
            const std::vector<Encoding>& encodings) {
    std::string command = "ffmpeg -v error -y -i " + quoted(source);
    for (const Encoding& encoding : encodings)
        command += " " + encoding.arguments + " " + quoted(encoding.name);
    runTool(folder.path(), command);
}

void encode(const TemporaryFolder& folder, const std::string& source, const std::string& arguments,
            const std::string& name) {
    encode(folder, source, {{arguments, name}});
}

std::vector<std::int16_t> deviceFrames(const fs::path& path) {
    const auto file = bytesOf(path);
    std::vector<std::int16_t> frames;
    for (std::size_t i = 44; i + 1 < file.size(); i += 2)
        frames.push_back(static_cast<std::int16_t>(std::to_integer<unsigned>(file[i]) |
                                                   std::to_integer<unsigned>(file[i + 1]) << 8));
    if (file != wavOf(44100, frames))
        throw std::runtime_error(path.string() + " is no plain 44100 Hz, 16-bit, mono file");
    return frames;
}

SampleCandidate sampleToConvert(const fs::path& path) {
    SampleCandidate sample;
    sample.sourceURL = FileURL(path);
    sample.compatibility = RequiresConversion{"non-WAV source"};
    return sample;
}

SampleCandidate sampleToCopy(const fs::path& path) {
    SampleCandidate sample;
    sample.sourceURL = FileURL(path);
    sample.compatibility = CompatibleWav{};
    return sample;
}

std::vector<std::int16_t> convertedFrames(const fs::path& path) {
    const fs::path destination = path.string() + ".converted";
    AVAudioSamplePreparer{}.prepare(sampleToConvert(path), FileURL(destination));
    return deviceFrames(destination);
}

std::vector<double> decodedFrames(const fs::path& path) {
    const auto file = systemFileManager()->open(path, OpenMode::read);
    const FileByteSource bytes(*file);
    const auto reader = openAudio(bytes, audioNameHint(FileURL(path)));
    std::vector<double> frames;
    std::array<double, 4096> block;
    while (const std::size_t count = reader->read(block))
        frames.insert(frames.end(), block.begin(),
                      block.begin() + static_cast<std::ptrdiff_t>(count));
    return frames;
}

std::vector<double> normalized(std::span<const std::int16_t> frames) {
    std::vector<double> result;
    for (const std::int16_t frame : frames)
        result.push_back(frame / 32768.0);
    return result;
}

std::ptrdiff_t bestLag(std::span<const double> original, std::span<const double> decoded) {
    constexpr std::ptrdiff_t maxLag = 2200;
    constexpr std::ptrdiff_t window = 8000;
    const auto size = static_cast<std::ptrdiff_t>(decoded.size());
    const auto count = std::min(static_cast<std::ptrdiff_t>(original.size()), window);
    std::ptrdiff_t best = 0;
    double highest = 0;
    for (std::ptrdiff_t lag = -maxLag; lag <= maxLag; ++lag) {
        double product = 0;
        const std::ptrdiff_t first = std::max<std::ptrdiff_t>(0, -lag);
        for (std::ptrdiff_t i = first; i < std::min(count, size - lag); ++i)
            product +=
                original[static_cast<std::size_t>(i)] * decoded[static_cast<std::size_t>(i + lag)];
        if (product > highest) {
            highest = product;
            best = lag;
        }
    }
    return best;
}

double decibelsBetween(std::span<const double> original, std::span<const double> decoded) {
    double signal = 0;
    double error = 0;
    for (std::size_t i = 0; i < original.size(); ++i) {
        const double difference = original[i] - (i < decoded.size() ? decoded[i] : 0);
        signal += original[i] * original[i];
        error += difference * difference;
    }
    return 10 * std::log10(signal / error);
}

std::string failureOf(const AudioFilePreparing& preparer, const SampleCandidate& sample,
                      const fs::path& destination) {
    try {
        preparer.prepare(sample, FileURL(destination));
        return "none";
    } catch (const GenerationError& error) {
        return error.errorDescription();
    }
}

std::vector<std::byte> formatChunk(std::uint16_t tag, std::uint16_t channels,
                                   std::uint32_t sampleRate, std::uint16_t blockAlign,
                                   std::uint16_t bits, std::span<const std::byte> extension) {
    std::vector<std::byte> payload;
    appendUInt16(payload, tag);
    appendUInt16(payload, channels);
    appendUInt32(payload, sampleRate);
    appendUInt32(payload, sampleRate * blockAlign);
    appendUInt16(payload, blockAlign);
    appendUInt16(payload, bits);
    append(payload, extension);
    return riffChunk("fmt ", payload);
}

std::vector<std::byte> extensibleTail(std::uint16_t validBits, std::uint16_t tag) {
    std::vector<std::byte> tail;
    appendUInt16(tail, 22);
    appendUInt16(tail, validBits);
    appendUInt32(tail, 0);
    appendUInt32(tail, tag);
    appendUInt16(tail, 0);
    appendUInt16(tail, 0x10);
    append(tail, std::string_view("\x80\x00\x00\xAA\x00\x38\x9B\x71", 8));
    return tail;
}

std::vector<std::byte> wavOf(std::uint32_t sampleRate, std::span<const std::int16_t> frames) {
    std::vector<std::byte> data;
    appendSamples(data, frames);
    return riffFile({formatChunk(1, 1, sampleRate, 2, 16), riffChunk("data", data)});
}

std::vector<std::byte> bigEndianWav(std::uint32_t sampleRate,
                                    std::span<const std::int16_t> frames) {
    std::vector<std::byte> file;
    append(file, "RIFX");
    appendBigEndian(file, 36 + byteCount(frames), 4);
    append(file, "WAVEfmt ");
    appendBigEndian(file, 16, 4);
    appendBigEndian(file, 1, 2);
    appendBigEndian(file, 1, 2);
    appendBigEndian(file, sampleRate, 4);
    appendBigEndian(file, sampleRate * 2, 4);
    appendBigEndian(file, 2, 2);
    appendBigEndian(file, 16, 2);
    append(file, "data");
    appendBigEndian(file, byteCount(frames), 4);
    appendBigEndianSamples(file, frames);
    return file;
}

std::vector<std::byte> longWav(std::string_view id, std::uint32_t sampleRate,
                               std::span<const std::int16_t> frames) {
    std::vector<std::byte> file;
    append(file, id);
    appendUInt32(file, 0xFFFFFFFF);
    append(file, "WAVEds64");
    appendUInt32(file, 28);
    appendUInt32(file, 72 + byteCount(frames));
    appendUInt32(file, 0);
    appendUInt32(file, byteCount(frames));
    appendUInt32(file, 0);
    appendUInt32(file, byteCount(frames) / 2);
    appendUInt32(file, 0);
    appendUInt32(file, 0);
    append(file, formatChunk(1, 1, sampleRate, 2, 16));
    append(file, "data");
    appendUInt32(file, 0xFFFFFFFF);
    appendSamples(file, frames);
    return file;
}

std::vector<std::int16_t> testSignal(std::size_t frameCount) {
    std::vector<std::int16_t> frames(frameCount);
    for (std::size_t i = 0; i < frameCount; ++i) {
        const auto time = static_cast<double>(i);
        frames[i] = static_cast<std::int16_t>(
            std::lround(12000 * std::sin(0.05 * time + 1e-5 * time * time) +
                        9000 * std::cos(0.31 * time) * std::exp(-0.0002 * time)));
    }
    return frames;
}

} // namespace torvo::test
