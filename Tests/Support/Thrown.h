#pragma once

#include "Printers.h"

#include <optional>

namespace torvo::test {

/// The error of this type that the action ends with, or none when it succeeds. Any other error is
/// the test's failure.
template <typename Error, typename Action>
std::optional<Error> thrown(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error;
    }
    return std::nullopt;
}

} // namespace torvo::test
