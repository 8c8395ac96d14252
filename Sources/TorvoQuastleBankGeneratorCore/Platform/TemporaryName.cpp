#include "Platform/TemporaryName.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <unistd.h>

namespace torvo {

namespace {

constexpr std::string_view temporaryPrefix = ".torvo-";
constexpr std::string_view temporarySuffix = ".tmp";
constexpr std::size_t processDigits = 8;
constexpr std::size_t temporaryDigits = 2 * processDigits;

std::string inHexadecimal(unsigned number) {
    std::array<char, processDigits + 1> digits{};
    static_cast<void>(std::snprintf(digits.data(), digits.size(), "%08x", number));
    return digits.data();
}

/// Short, so that it fits beside a name of the greatest length; hidden, so that neither the device
/// nor a scan takes it for a sample. The process that writes it stands in the first digits.
std::string temporaryName() {
    static thread_local std::mt19937 random{std::random_device{}()};
    return std::string(temporaryPrefix) + inHexadecimal(static_cast<unsigned>(::getpid())) +
           inHexadecimal(static_cast<unsigned>(random())) + std::string(temporarySuffix);
}

bool isRunning(std::string_view processInHexadecimal) {
    pid_t process = 0;
    const auto* const end = processInHexadecimal.data() + processInHexadecimal.size();
    const auto [stopped, error] = std::from_chars(processInHexadecimal.data(), end, process, 16);
    return error == std::errc() && process > 0 && (::kill(process, 0) == 0 || errno != ESRCH);
}

/// The temporary files that this process writes now, on whichever thread.
class OwnTemporaries {
public:
    static OwnTemporaries& shared() {
        static OwnTemporaries all;
        return all;
    }
    void add(const std::string& name) {
        const std::scoped_lock lock(mutex_);
        names_.insert(name);
    }
    void remove(const std::string& name) {
        const std::scoped_lock lock(mutex_);
        names_.erase(name);
    }
    bool contains(std::string_view name) const {
        const std::scoped_lock lock(mutex_);
        return names_.contains(name);
    }

private:
    mutable std::mutex mutex_;
    std::set<std::string, std::less<>> names_;
};

} // namespace

TemporaryName::TemporaryName() : text_(temporaryName()) {
    OwnTemporaries::shared().add(text_);
}

TemporaryName::~TemporaryName() {
    OwnTemporaries::shared().remove(text_);
}

bool isAbandonedTemporary(std::string_view name) {
    if (name.size() != temporaryPrefix.size() + temporaryDigits + temporarySuffix.size() ||
        !name.starts_with(temporaryPrefix) || !name.ends_with(temporarySuffix))
        return false;
    const auto digits = name.substr(temporaryPrefix.size(), temporaryDigits);
    if (digits.find_first_not_of("0123456789abcdef") != std::string_view::npos)
        return false;
    const auto process = digits.substr(0, processDigits);
    return process == inHexadecimal(static_cast<unsigned>(::getpid()))
               ? !OwnTemporaries::shared().contains(name)
               : !isRunning(process);
}

} // namespace torvo
