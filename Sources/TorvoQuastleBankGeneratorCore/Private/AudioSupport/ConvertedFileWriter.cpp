#include "AudioSupport/ConvertedFileWriter.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/RiffChunks.h"
#include "Models/Device.h"
#include "Platform/Precondition.h"

#include <cerrno>
#include <string>
#include <string_view>

namespace torvo {

namespace {

constexpr std::string_view unableToWrite = "Unable to write converted audio data.";

class HeaderBytes {
public:
    void text(std::string_view value) {
        for (const char character : value)
            bytes_[length_++] = static_cast<std::byte>(character);
    }
    void integer(std::uint32_t value, unsigned byteCount) {
        for (unsigned i = 0; i < byteCount; ++i)
            bytes_[length_++] = static_cast<std::byte>(value >> (8 * i) & 0xFF);
    }
    const std::array<std::byte, convertedHeaderSize>& bytes() const { return bytes_; }

private:
    std::array<std::byte, convertedHeaderSize> bytes_{};
    std::size_t length_ = 0;
};

} // namespace

std::array<std::byte, convertedHeaderSize> convertedHeader(std::uint32_t dataSize) {
    constexpr std::uint32_t integerPCM = 1;
    constexpr std::uint32_t channels = 1;
    constexpr std::uint32_t bytesPerFrame = 2;
    HeaderBytes header;
    header.text("RIFF");
    header.integer(static_cast<std::uint32_t>(convertedHeaderSize - 8) + dataSize, 4);
    header.text("WAVE");
    header.text("fmt ");
    header.integer(16, 4);
    header.integer(integerPCM, 2);
    header.integer(channels, 2);
    header.integer(device::sampleRate, 4);
    header.integer(device::sampleRate * bytesPerFrame, 4);
    header.integer(bytesPerFrame, 2);
    header.integer(8 * bytesPerFrame, 2);
    header.text("data");
    header.integer(dataSize, 4);
    return header.bytes();
}

void removeExisting(const FileManager& fileManager, const FileURL& destination) {
    if (fileManager.linkStatus(destination.path()))
        fileManager.removeItem(destination.path());
}

ConvertedFileWriter::ConvertedFileWriter(const FileManager& fileManager, const FileURL& destination)
    : path_(destination.path()) {
    withStatus("Unable to create destination WAV file " + destination.lastPathComponent() + ".",
               path_, [&] { file_ = fileManager.open(path_, OpenMode::create); });
}

void ConvertedFileWriter::configure(std::optional<std::uint64_t> expectedDataSize) {
    withStatus("Unable to configure destination audio conversion.", path_, [&] {
        headerDataSize_ = expectedDataSize.value_or(0);
        if (headerDataSize_ > maxConvertedDataSize)
            throw AudioError(-EFBIG);
        file_->write(0, convertedHeader(static_cast<std::uint32_t>(headerDataSize_)));
    });
}

void ConvertedFileWriter::write(std::span<const std::byte> data) {
    withStatus(unableToWrite, path_, [&] {
        if (data.size() > maxConvertedDataSize - dataSize_)
            throw AudioError(-EFBIG);
        file_->write(convertedHeaderSize + dataSize_, data);
        dataSize_ += data.size();
    });
}

void ConvertedFileWriter::writeWhole(std::span<const std::byte> file, const SampleEdit& edit) {
    withStatus(unableToWrite, path_, [&] {
        const auto [offset, replacedSize, bytes] = edit(MemoryByteSource(file));
        file_->writeParts(0, std::array<File::Bytes, 3>{file.first(offset), bytes,
                                                        file.subspan(offset + replacedSize)});
        file_->close();
    });
}

void ConvertedFileWriter::finish(const SampleEdit& edit) {
    withStatus(unableToWrite, path_, [&] {
        if (headerDataSize_ != dataSize_)
            file_->write(0, convertedHeader(static_cast<std::uint32_t>(dataSize_)));
        if (edit) {
            const auto tail = edit(FileByteSource(*file_));
            precondition(tail.offset == convertedHeaderSize + dataSize_ && tail.replacedSize == 0,
                         "a converted file is only appended to");
            file_->write(tail.offset, tail.bytes);
        }
        file_->close();
    });
}

} // namespace torvo
