#include "Platform/TemporaryFile.h"

#include "Platform/TemporaryName.h"

#include <cerrno>
#include <exception>
#include <utility>

namespace torvo {

namespace fs = std::filesystem;

namespace {

bool isUnsupported(const FileError& error) {
    return error.code() == std::errc::operation_not_permitted ||
           error.code() == std::errc::permission_denied ||
           error.code() == std::errc::operation_not_supported ||
           error.code() == std::errc::function_not_supported;
}

} // namespace

TemporaryFile::TemporaryFile(const FileManager& fileManager, fs::path path)
    : fileManager_(fileManager),
      path_(std::move(path)),
      removal_(fileManager_, path_),
      file_(fileManager_.open(path_, OpenMode::createUnique)) {}

FileStatus TemporaryFile::status() const {
    const auto status = fileManager_.linkStatus(path_);
    if (!status)
        throw FileError(FileOperation::inspect, path_, ENOENT);
    return *status;
}

void TemporaryFile::setPermissions(fs::perms permissions) {
    if (status().permissions == permissions)
        return;
    try {
        file_->setPermissions(permissions);
    } catch (const FileError& error) {
        if (!isUnsupported(error))
            throw;
    }
}

void TemporaryFile::replace(const fs::path& destination) {
    try {
        fileManager_.replaceItem(destination, path_);
    } catch (const FileError& error) {
        throw FileError(FileOperation::write, destination, error.code());
    }
    removal_.cancel();
}

TemporaryFile::Removal::~Removal() {
    if (isCancelled_)
        return;
    try {
        fileManager_.removeItem(path_);
    } catch (const std::exception&) {
        // The original error is reported instead.
    }
}

std::unique_ptr<TemporaryFile> writeTemporaryFile(const FileManager& fileManager,
                                                  const fs::path& destination,
                                                  std::optional<fs::perms> permissions,
                                                  const std::function<void(File&)>& write) {
    const auto path = destination.parent_path() / temporaryName();
    try {
        auto file = std::make_unique<TemporaryFile>(fileManager, path);
        if (permissions)
            file->setPermissions(*permissions);
        write(file->content());
        file->content().close();
        return file;
    } catch (const FileError& error) {
        // The user does not know the temporary file.
        if (error.path() != path)
            throw;
        throw FileError(FileOperation::write, destination, error.code());
    }
}

} // namespace torvo
