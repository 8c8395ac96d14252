#pragma once

#include "ForwardingFileManager.h"

namespace torvo::test {

/// The operating system's files, except in device folders: what is written there is discarded. A
/// run of 99 banks then takes almost no time.
class ForgetfulFileManager final : public ForwardingFileManager {
public:
    void createDirectory(const std::filesystem::path& path) const override;
    std::unique_ptr<File> open(const std::filesystem::path& path, OpenMode mode) const override;
    void flushVolume(const std::filesystem::path& path) const override;
};

} // namespace torvo::test
