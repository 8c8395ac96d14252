#pragma once

#include "ForwardingFileManager.h"
#include "Gate.h"

#include <map>
#include <memory>
#include <mutex>

namespace torvo::test {

/// Answers for the items that are named here only when their gates are opened, as a slow share
/// does.
class GatedFileManager final : public ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    /// The status of this item is found at once but told late.
    std::shared_ptr<Gate> holdInspection(const std::filesystem::path& path);
    /// This item is removed late.
    std::shared_ptr<Gate> holdRemoval(const std::filesystem::path& path);
    /// The volume that holds this item is flushed late.
    std::shared_ptr<Gate> holdFlush(const std::filesystem::path& path);
    void openAll();

    std::optional<FileStatus> linkStatus(const std::filesystem::path& path) const override;
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
};

} // namespace torvo::test
