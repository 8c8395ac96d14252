#include "Platform/LoadedLibrary.h"

#include <dlfcn.h>

namespace torvo {

namespace {

[[noreturn]] void throwLoadError() {
    const char* const reason = dlerror();
    throw BrokenInstallation("A part of this program cannot be loaded: " +
                             std::string(reason != nullptr ? reason : "unknown reason") +
                             ". Installing it again may help.");
}

} // namespace

std::filesystem::path installedLibrary(const std::filesystem::path& relative) {
    std::error_code code;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", code);
    if (code)
        throw BrokenInstallation(
            "The program cannot find itself: /proc/self/exe: " + code.message() + ".");
    return program.parent_path() / relative;
}

void* symbolOfLibrary(const std::filesystem::path& library, const char* name, const char* stampName,
                      std::string_view stamp) {
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        throwLoadError();
    const auto readStamp = reinterpret_cast<const char* (*)()>(dlsym(handle, stampName));
    if (readStamp == nullptr || readStamp() != stamp) {
        dlclose(handle);
        throw BrokenInstallation("A part of this program does not fit the rest of it. "
                                 "Start the program again.");
    }
    void* const symbol = dlsym(handle, name);
    if (symbol == nullptr)
        throwLoadError();
    return symbol;
}

} // namespace torvo
