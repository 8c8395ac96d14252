#pragma once

#include "ForwardingFileManager.h"
#include "Support/Gate.h"

#include <map>
#include <memory>
#include <mutex>

namespace torvo::test {

/// A file manager that answers for chosen items only when their gates are opened, like a slow
/// share.
class GatedFileManager final : public ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    /// Reads the status or the resolved path of this item at once but returns it late.
    std::shared_ptr<Gate> holdInspection(const std::filesystem::path& path);
    /// Removes this item late.
    std::shared_ptr<Gate> holdRemoval(const std::filesystem::path& path);
    /// The volume that holds this item is flushed late.
    std::shared_ptr<Gate> holdFlush(const std::filesystem::path& path);
    void openAll();
    /// Makes an existing folder the top of another volume.
    void mount(const std::filesystem::path& folder);
    /// Gives an existing folder another device number without mounting anything, as Btrfs does.
    void makeSubvolume(const std::filesystem::path& folder);

    std::optional<FileStatus> status(const std::filesystem::path& path) const override;
    std::optional<FileStatus> linkStatus(const std::filesystem::path& path) const override;
    std::filesystem::path resolve(const std::filesystem::path& path) const override;
    bool isMountPoint(const std::filesystem::path& folder) const override;
    void removeItem(const std::filesystem::path& path) const override;
    void flushVolume(const std::filesystem::path& path) const override;

private:
    using Gates = std::map<std::filesystem::path, std::shared_ptr<Gate>>;

    std::shared_ptr<Gate> hold(Gates& gates, const std::filesystem::path& path);
    void pass(const Gates& gates, const std::filesystem::path& path) const;

    mutable std::mutex mutex_;
    Gates inspections_;
    Gates removals_;
    Gates flushes_;
    std::filesystem::path mounted_;
    std::filesystem::path otherDevice_; ///< mounted or a subvolume
};

} // namespace torvo::test
