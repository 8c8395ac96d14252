#include "Support/ForgetfulFileManager.h"

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

bool isInDeviceFolder(const fs::path& path) {
    return path.native().find("/QZT508/") != std::string::npos;
}

class ForgottenFile final : public File {
public:
    std::size_t read(std::uint64_t, std::span<std::byte>) const override { return 0; }
    void writeParts(std::uint64_t, std::span<const Bytes>) override {}
    void copyFrom(const File&, const FileEdit&) override {}
    fs::path path() const override { return {}; }
    std::optional<int> descriptor() const override { return std::nullopt; }
    std::uint64_t size() const override { return 0; }
    void setPermissions(fs::perms) override {}
    void flush() override {}
    void close() override {}
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
