#pragma once

#include <string>
#include <string_view>

namespace torvo {

/// A name for a file that is written beside another one and then takes its place. It counts as
/// being written as long as this lives.
class TemporaryName {
public:
    TemporaryName();
    ~TemporaryName();
    TemporaryName(const TemporaryName&) = delete;
    TemporaryName& operator=(const TemporaryName&) = delete;

    const std::string& text() const { return text_; }

private:
    std::string text_;
};

/// The name of a temporary file whose writer is gone or has failed, and not of one that somebody
/// writes now: another window of this program, or this one itself.
bool isAbandonedTemporary(std::string_view name);

} // namespace torvo
