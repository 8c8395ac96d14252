#include "Support/ForgetfulFileManager.h"

#include "WavFixture.h"

#include <algorithm>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

bool isInDeviceFolder(const fs::path& path) {
    return path.native().find("/QZT508/") != std::string::npos;
}

class ForgottenFile final : public File {
public:
    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        const auto rest = std::span(content_).subspan(
            std::min(static_cast<std::size_t>(offset), content_.size()));
        const auto count = std::min(rest.size(), bytes.size());
        std::ranges::copy(rest.first(count), bytes.begin());
        return count;
    }
    void write(std::uint64_t, std::span<const std::byte>) override {}
    std::uint64_t size() const override { return content_.size(); }
    void resize(std::uint64_t) override {}
    void setPermissions(fs::perms) override {}
    void flush() override {}
    void close() override {}

private:
    std::vector<std::byte> content_ = wavFile(WavFormat{}, std::size_t{1});
};

} // namespace

void ForgetfulFileManager::createDirectory(const fs::path& path) const {
    if (!isInDeviceFolder(path))
        ForwardingFileManager::createDirectory(path);
}

std::unique_ptr<File> ForgetfulFileManager::open(const fs::path& path, OpenMode mode) const {
    if (isInDeviceFolder(path))
        return std::make_unique<ForgottenFile>();
    return ForwardingFileManager::open(path, mode);
}

void ForgetfulFileManager::flushVolume(const fs::path& /*path*/) const {}

} // namespace torvo::test
