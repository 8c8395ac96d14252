#include "AudioSupport/Conversion.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/ConvertedFileWriter.h"
#include "AudioSupport/OpenAudio.h"

#include <algorithm>
#include <cmath>

namespace torvo {

namespace {

std::int16_t rounded(double sample) {
    constexpr double fullScale = 32768;
    return static_cast<std::int16_t>(
        std::lrint(std::clamp(sample * fullScale, -fullScale, fullScale - 1)));
}

/// Runs a step of opening `url` and reports its failure.
template <typename Step>
void withOpeningStatus(const FileURL& url, Step step) {
    withStatus("Unable to open source audio file " + url.lastPathComponent() + ".", url.path(),
               step);
}

/// The size of `frames` 16-bit frames in bytes, saturated.
std::uint64_t dataSizeOf(std::uint64_t frames) {
    return std::min<std::uint64_t>(frames, UINT64_MAX / sizeof(std::int16_t)) *
           sizeof(std::int16_t);
}

} // namespace

std::unique_ptr<const File> openConversionSource(const FileManager& fileManager,
                                                 const FileURL& url) {
    std::unique_ptr<const File> file;
    withOpeningStatus(url, [&] { file = fileManager.open(url.path(), OpenMode::read); });
    return file;
}

ConversionSource::ConversionSource(const FileManager& fileManager, const FileURL& url)
    : path_(url.path()), file_(openConversionSource(fileManager, url)) {
    withOpeningStatus(url, [&] {
        bytes_ = std::make_unique<FileByteSource>(*file_);
        reader_ = openAudio(*bytes_, audioNameHint(url));
    });
}

ConversionSource::~ConversionSource() = default;

void ConversionSource::configure() {
    withStatus("Unable to configure source audio conversion.", path_,
               [&] { resampler_.emplace(*reader_); });
}

std::optional<std::uint64_t> ConversionSource::expectedDataSize() const {
    const auto frames = resampler_->expectedFrameCount();
    return frames ? std::optional(dataSizeOf(*frames)) : std::nullopt;
}

std::size_t ConversionSource::read(std::span<std::byte> block) {
    std::array<double, conversionBlockFrames> frames;
    const auto wanted =
        std::span(frames).first(std::min(frames.size(), block.size() / sizeof(std::int16_t)));
    std::size_t count = 0;
    withStatus("Unable to read source audio data.", path_,
               [&] { count = resampler_->read(wanted); });
    for (std::size_t i = 0; i < count; ++i) {
        const auto word = static_cast<std::uint16_t>(rounded(frames[i]));
        block[2 * i] = static_cast<std::byte>(word & 0xFF);
        block[2 * i + 1] = static_cast<std::byte>(word >> 8);
    }
    return count * sizeof(std::int16_t);
}

bool isTooLongToConvert(const AudioReader& reader) {
    const auto frames = reader.expectedFrameCount();
    if (!frames)
        return false;
    const auto rate = static_cast<std::uint64_t>(std::llround(reader.format().sampleRate));
    return dataSizeOf(resampledFrameCount(*frames, rate)) > maxConvertedDataSize;
}

void convertFile(const FileManager& fileManager, const FileURL& source, const FileURL& destination,
                 const SampleEdit& edit) {
    ConversionSource input(fileManager, source);
    ConvertedFileWriter output(fileManager, destination);
    input.configure();
    output.configure(input.expectedDataSize());
    std::array<std::byte, conversionBlockFrames * sizeof(std::int16_t)> block;
    while (const std::size_t count = input.read(block))
        output.write(std::span(block).first(count));
    output.finish(edit);
}

std::shared_ptr<const std::vector<std::byte>> convertInMemory(const FileManager& fileManager,
                                                              const FileURL& source,
                                                              std::size_t maxSize,
                                                              const std::stop_token& stop) {
    ConversionSource input(fileManager, source);
    input.configure();
    const auto expected = input.expectedDataSize();
    if (maxSize < convertedHeaderSize || expected.value_or(0) > maxSize - convertedHeaderSize)
        return nullptr;
    auto file = std::make_shared<std::vector<std::byte>>();
    file->reserve(convertedHeaderSize + static_cast<std::size_t>(expected.value_or(0)));
    file->resize(convertedHeaderSize);
    std::array<std::byte, conversionBlockFrames * sizeof(std::int16_t)> block;
    while (const std::size_t count = input.read(block)) {
        if (stop.stop_requested() || count > maxSize - file->size())
            return nullptr;
        const auto part = std::span(block).first(count);
        file->insert(file->end(), part.begin(), part.end());
    }
    const auto dataSize = static_cast<std::uint32_t>(file->size() - convertedHeaderSize);
    std::ranges::copy(convertedHeader(dataSize), file->begin());
    return file;
}

} // namespace torvo
