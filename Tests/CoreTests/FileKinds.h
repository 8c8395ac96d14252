#pragma once

#include "Platform/SystemFileManager.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace torvo::test {

inline const FileManager& files() {
    return *systemFileManager();
}

/// The permissions of a new file under the current umask.
inline std::filesystem::perms ordinaryFilePermissions() {
    const auto mask = ::umask(0);
    ::umask(mask);
    return static_cast<std::filesystem::perms>(0666U & ~mask);
}

/// A folder, a file, a pipe and four links: to the file, to the folder, dangling, to itself.
struct FileKinds {
    TemporaryFolder folder;
    std::filesystem::path file = folder.write("file", "12345");
    std::filesystem::path directory = folder.createFolder("directory");
    std::filesystem::path pipe = folder / "pipe";
    std::filesystem::path fileLink = folder / "file link";
    std::filesystem::path directoryLink = folder / "directory link";
    std::filesystem::path deadLink = folder / "dead link";
    std::filesystem::path circularLink = folder / "circular link";

    FileKinds() {
        namespace fs = std::filesystem;
        EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        fs::create_symlink(file, fileLink);
        fs::create_directory_symlink(directory, directoryLink);
        fs::create_symlink(folder / "missing", deadLink);
        fs::create_symlink(circularLink, circularLink);
    }
};

} // namespace torvo::test
