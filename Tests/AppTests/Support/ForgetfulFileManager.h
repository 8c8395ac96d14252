#pragma once

#include "ForwardingFileManager.h"

namespace torvo::test {

/// The operating system's files, but for device folders: what is written into one is forgotten at
/// once, and every file opened there is the same short WAV. A run of 99 banks costs next to
/// nothing.
class ForgetfulFileManager final : public ForwardingFileManager {
public:
    void createDirectory(const std::filesystem::path& path) const override;
    std::unique_ptr<File> open(const std::filesystem::path& path, OpenMode mode) const override;
    void flushVolume(const std::filesystem::path& path) const override;
};

} // namespace torvo::test
