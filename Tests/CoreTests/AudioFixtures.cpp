#include "AudioFixtures.h"

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

class FaultyFile final : public File {
public:
    FaultyFile(std::unique_ptr<File> file, fs::path path, std::shared_ptr<const Faults> faults)
        : file_(std::move(file)), path_(std::move(path)), faults_(std::move(faults)) {}

    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        if (faults_->onRead)
            faults_->onRead(path_, offset);
        return file_->read(offset, bytes);
    }
    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (faults_->onWrite)
            faults_->onWrite(path_, offset);
        file_->write(offset, bytes);
    }
    std::uint64_t size() const override { return file_->size(); }
    void resize(std::uint64_t size) override { file_->resize(size); }
    void setPermissions(fs::perms permissions) override { file_->setPermissions(permissions); }
    void flush() override { file_->flush(); }
    void close() override { file_->close(); }

private:
    std::unique_ptr<File> file_;
    fs::path path_;
    std::shared_ptr<const Faults> faults_;
};

class FaultyFileManager final : public FileManager {
public:
    explicit FaultyFileManager(Faults faults)
        : faults_(std::make_shared<const Faults>(std::move(faults))) {}

    std::optional<FileStatus> linkStatus(const fs::path& path) const override {
        return system_->linkStatus(path);
    }
    std::optional<FileStatus> status(const fs::path& path) const override {
        return system_->status(path);
    }
    fs::path resolve(const fs::path& path) const override { return system_->resolve(path); }
    std::vector<DirectoryEntry> contentsOfDirectory(const fs::path& path) const override {
        return system_->contentsOfDirectory(path);
    }
    void createDirectory(const fs::path& path) const override { system_->createDirectory(path); }
    void removeItem(const fs::path& path) const override {
        if (faults_->onRemove)
            faults_->onRemove(path);
        system_->removeItem(path);
    }
    void copyItem(const fs::path& source, const fs::path& destination) const override {
        if (faults_->onCopy)
            faults_->onCopy(source);
        system_->copyItem(source, destination);
    }
    void replaceItem(const fs::path& destination, const fs::path& source) const override {
        system_->replaceItem(destination, source);
    }
    std::unique_ptr<File> open(const fs::path& path, OpenMode mode) const override {
        if (faults_->onOpen)
            faults_->onOpen(path, mode);
        return std::make_unique<FaultyFile>(system_->open(path, mode), path, faults_);
    }
    void flushVolume(const fs::path& path) const override { system_->flushVolume(path); }

private:
    std::shared_ptr<const FileManager> system_ = systemFileManager();
    std::shared_ptr<const Faults> faults_;
};

void appendBigEndian(std::vector<std::byte>& to, std::uint32_t value, unsigned byteCount) {
    for (unsigned i = byteCount; i-- > 0;)
        to.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFF));
}

std::vector<std::byte> samplesLittleEndian(std::span<const std::int16_t> frames) {
    std::vector<std::byte> data;
    for (const std::int16_t frame : frames)
        appendUInt16(data, static_cast<std::uint16_t>(frame));
    return data;
}

std::vector<std::byte> samplesBigEndian(std::span<const std::int16_t> frames) {
    std::vector<std::byte> data;
    for (const std::int16_t frame : frames)
        appendBigEndian(data, static_cast<std::uint16_t>(frame), 2);
    return data;
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

void encode(const TemporaryFolder& folder, const std::string& source, const std::string& arguments,
            const std::string& name) {
    runTool(folder.path(),
            "ffmpeg -v error -y -i " + quoted(source) + " " + arguments + " " + quoted(name));
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
    return riffFile(
        {formatChunk(1, 1, sampleRate, 2, 16), riffChunk("data", samplesLittleEndian(frames))});
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
    append(file, samplesBigEndian(frames));
    return file;
}

std::vector<std::byte> longWav(std::uint32_t sampleRate, std::span<const std::int16_t> frames) {
    std::vector<std::byte> file;
    append(file, "RF64");
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
    append(file, samplesLittleEndian(frames));
    return file;
}

std::vector<std::byte> aiffFile(std::uint32_t sampleRate, std::span<const std::int16_t> frames) {
    std::vector<std::byte> file;
    append(file, "FORM");
    appendBigEndian(file, 46 + byteCount(frames), 4);
    append(file, "AIFFCOMM");
    appendBigEndian(file, 18, 4);
    appendBigEndian(file, 1, 2);
    appendBigEndian(file, byteCount(frames) / 2, 4);
    appendBigEndian(file, 16, 2);
    // The rate as an 80-bit float: exponent, then the mantissa with its leading one.
    appendBigEndian(file, 0x3FFF + 15, 2);
    appendBigEndian(file, sampleRate << 16U, 4);
    appendBigEndian(file, 0, 4);
    append(file, "SSND");
    appendBigEndian(file, 8 + byteCount(frames), 4);
    appendBigEndian(file, 0, 4);
    appendBigEndian(file, 0, 4);
    append(file, samplesBigEndian(frames));
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

std::shared_ptr<const FileManager> faultyFileManager(Faults faults) {
    return std::make_shared<FaultyFileManager>(std::move(faults));
}

} // namespace torvo::test
