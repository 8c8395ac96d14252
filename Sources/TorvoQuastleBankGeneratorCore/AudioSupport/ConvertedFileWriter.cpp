#include "AudioSupport/ConvertedFileWriter.h"

#include "AudioSupport/AudioError.h"
#include "AudioSupport/Conversion.h"
#include "AudioSupport/StatusCheck.h"

#include <cerrno>
#include <string>

namespace torvo {

namespace {

constexpr std::string_view unableToWrite = "Unable to write converted audio data.";

} // namespace

void removeExisting(const FileManager& fileManager, const FileURL& destination) {
    if (fileManager.linkStatus(destination.path()))
        fileManager.removeItem(destination.path());
}

ConvertedFileWriter::ConvertedFileWriter(const FileManager& fileManager,
                                         const FileURL& destination) {
    checkingStatus("Unable to create destination WAV file " + destination.lastPathComponent() + ".",
                   [&] { file_ = fileManager.open(destination.path(), OpenMode::create); });
}

void ConvertedFileWriter::configure(std::optional<std::uint64_t> expectedDataSize) {
    checkingStatus("Unable to configure destination audio conversion.", [&] {
        headerDataSize_ = expectedDataSize.value_or(0);
        if (headerDataSize_ > longestConvertedData)
            throw AudioError(-EFBIG);
        file_->write(0, convertedHeader(static_cast<std::uint32_t>(headerDataSize_)));
    });
}

void ConvertedFileWriter::write(std::span<const std::byte> data) {
    checkingStatus(unableToWrite, [&] {
        if (data.size() > longestConvertedData - dataSize_)
            throw AudioError(-EFBIG);
        file_->write(convertedHeaderSize + dataSize_, data);
        dataSize_ += data.size();
    });
}

void ConvertedFileWriter::writeWhole(std::span<const std::byte> file) {
    checkingStatus(unableToWrite, [&] {
        file_->write(0, file);
        file_->close();
    });
}

void ConvertedFileWriter::finish() {
    checkingStatus(unableToWrite, [&] {
        if (headerDataSize_ != dataSize_)
            file_->write(0, convertedHeader(static_cast<std::uint32_t>(dataSize_)));
        file_->close();
    });
}

} // namespace torvo
