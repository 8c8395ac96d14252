#include "Support/GatedFileManager.h"

namespace torvo::test {

namespace fs = std::filesystem;

std::shared_ptr<Gate> GatedFileManager::holdInspection(const fs::path& path) {
    return hold(inspections_, path);
}

std::shared_ptr<Gate> GatedFileManager::holdRemoval(const fs::path& path) {
    return hold(removals_, path);
}

std::shared_ptr<Gate> GatedFileManager::holdFlush(const fs::path& path) {
    return hold(flushes_, path);
}

void GatedFileManager::mount(const fs::path& folder) {
    const std::scoped_lock lock(mutex_);
    mounted_ = otherDevice_ = fs::canonical(folder);
}

void GatedFileManager::makeSubvolume(const fs::path& folder) {
    const std::scoped_lock lock(mutex_);
    otherDevice_ = fs::canonical(folder);
}

void GatedFileManager::openAll() {
    const std::scoped_lock lock(mutex_);
    for (const auto* gates : {&inspections_, &removals_, &flushes_})
        for (const auto& [path, gate] : *gates)
            gate->open();
}

std::optional<FileStatus> GatedFileManager::status(const fs::path& path) const {
    auto status = ForwardingFileManager::status(path);
    pass(inspections_, path);
    const std::scoped_lock lock(mutex_);
    if (status && !otherDevice_.empty() &&
        (path.native() + '/').starts_with(otherDevice_.native() + '/'))
        ++status->identity.device;
    return status;
}

std::optional<FileStatus> GatedFileManager::linkStatus(const fs::path& path) const {
    auto status = ForwardingFileManager::linkStatus(path);
    pass(inspections_, path);
    return status;
}

fs::path GatedFileManager::resolve(const fs::path& path) const {
    auto resolved = ForwardingFileManager::resolve(path);
    pass(inspections_, path);
    return resolved;
}

bool GatedFileManager::isMountPoint(const fs::path& folder) const {
    const std::scoped_lock lock(mutex_);
    return fs::canonical(folder) == mounted_;
}

void GatedFileManager::removeItem(const fs::path& path) const {
    pass(removals_, path);
    ForwardingFileManager::removeItem(path);
}

void GatedFileManager::flushVolume(const fs::path& path) const {
    pass(flushes_, path);
    ForwardingFileManager::flushVolume(path);
}

std::shared_ptr<Gate> GatedFileManager::hold(Gates& gates, const fs::path& path) {
    const std::scoped_lock lock(mutex_);
    return gates[path] = std::make_shared<Gate>();
}

void GatedFileManager::pass(const Gates& gates, const fs::path& path) const {
    std::shared_ptr<Gate> gate;
    {
        const std::scoped_lock lock(mutex_);
        if (const auto found = gates.find(path); found != gates.end())
            gate = found->second;
    }
    if (gate)
        gate->pass();
}

} // namespace torvo::test
