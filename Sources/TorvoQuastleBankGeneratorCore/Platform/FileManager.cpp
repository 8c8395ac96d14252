#include "Platform/FileManager.h"

#include "Platform/UnicodeText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <string_view>

namespace torvo {

namespace fs = std::filesystem;

namespace {

/// Folders that the desktop shows as one item.
constexpr std::array<std::string_view, 10> packageExtensions{
    "app", "bundle", "framework", "plugin", "kext", "component", "vst", "vst3", "logicx", "band"};

bool isPackage(const FileURL& folder) {
    return std::ranges::find(packageExtensions, text::lowercased(folder.pathExtension())) !=
           packageExtensions.end();
}

std::vector<DirectoryEntry> sortedContents(const FileManager& fileManager, const fs::path& folder) {
    auto entries = fileManager.contentsOfDirectory(folder);
    std::ranges::sort(entries, {}, &DirectoryEntry::name);
    return entries;
}

/// Short, so that it fits beside a name of the greatest length; hidden, so that neither the device
/// nor a scan takes it for a sample.
std::string temporaryName() {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    std::array<char, 40> name{};
    const auto length = std::snprintf(name.data(), name.size(), ".torvo-%016llx.tmp",
                                      static_cast<unsigned long long>(random()));
    return {name.data(), static_cast<std::size_t>(length)};
}

/// Depth first with an explicit stack: folders may be nested deeper than the call stack is.
class DeepEnumeration {
public:
    DeepEnumeration(const FileManager& fileManager, EnumerationOptions options)
        : fileManager_(fileManager), options_(options) {}

    std::vector<EnumeratedItem> below(const FileURL& root) {
        enter(root, sortedContents(fileManager_, root.path()));
        while (!levels_.empty()) {
            auto& level = levels_.back();
            if (level.next == level.entries.size()) {
                levels_.pop_back();
                continue;
            }
            const auto& entry = level.entries[level.next++];
            if (options_ == EnumerationOptions::skipHidden && entry.name.starts_with('.'))
                continue;
            const bool isFolder = entry.kind == FileKind::directory;
            const auto url = level.folder.appendingPathComponent(
                entry.name, isFolder ? FileURL::Kind::directory : FileURL::Kind::file);
            items_.push_back({url, entry.kind});
            if (isFolder &&
                !(options_ == EnumerationOptions::skipPackageContents && isPackage(url)))
                enterIfReadable(url);
        }
        return std::move(items_);
    }

private:
    struct Level {
        FileURL folder;
        std::vector<DirectoryEntry> entries;
        std::size_t next = 0;
    };

    void enter(const FileURL& folder, std::vector<DirectoryEntry> entries) {
        levels_.push_back({folder, std::move(entries)});
    }

    void enterIfReadable(const FileURL& folder) {
        try {
            enter(folder, sortedContents(fileManager_, folder.path()));
        } catch (const FileError&) {
            // Locked folders are passed over, as a file browser does.
        }
    }

    const FileManager& fileManager_;
    EnumerationOptions options_;
    std::vector<Level> levels_;
    std::vector<EnumeratedItem> items_;
};

} // namespace

std::vector<std::byte> readFile(const FileManager& fileManager, const fs::path& path) {
    const auto file = fileManager.open(path, OpenMode::read);
    std::vector<std::byte> bytes(file->size());
    bytes.resize(file->read(0, bytes));
    return bytes;
}

void writeFileAtomically(const FileManager& fileManager, const fs::path& path,
                         std::span<const std::byte> bytes, std::optional<fs::perms> permissions) {
    const auto temporary = path.parent_path() / temporaryName();
    try {
        const auto file = fileManager.open(temporary, OpenMode::createUnique);
        file->write(0, bytes);
        if (permissions)
            file->setPermissions(*permissions);
        file->flush();
        file->close();
        fileManager.replaceItem(path, temporary);
    } catch (const FileError& error) {
        try {
            fileManager.removeItem(temporary);
        } catch (const FileError&) {
            // The first failure is the one to report.
        }
        // The user knows the file's own name, not the hidden one beside it.
        throw FileError(FileOperation::write, path, error.code());
    }
}

FileURL resolvingSymlinks(const FileManager& fileManager, const FileURL& url) {
    const auto standardized = url.standardized();
    const auto kind = url.hasDirectoryPath() ? FileURL::Kind::directory : FileURL::Kind::file;
    // The text is standardised after the links, so that "link/.." is the parent of the link's
    // target.
    std::vector<std::string> missing;
    auto existing = url;
    while (existing.path() != "/") {
        if (fileManager.linkStatus(existing.path())) {
            try {
                auto resolved = FileURL(fileManager.resolve(existing.path()), kind);
                for (auto name = missing.rbegin(); name != missing.rend(); ++name)
                    resolved = resolved.appendingPathComponent(*name, kind);
                return resolved.standardized();
            } catch (const FileError&) {
                // A dead link is as far as the path goes; it stays in the result by its own name.
            }
        }
        missing.push_back(existing.path().filename().native());
        existing = existing.deletingLastPathComponent();
    }
    return standardized;
}

std::optional<std::vector<EnumeratedItem>>
enumerateDeep(const FileManager& fileManager, const FileURL& root, EnumerationOptions options) {
    try {
        return DeepEnumeration(fileManager, options).below(root);
    } catch (const FileError&) {
        return std::nullopt;
    }
}

} // namespace torvo
