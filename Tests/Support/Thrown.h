#pragma once

#include "Printers.h"

#include <optional>

namespace torvo::test {

/// Runs the action and returns the error of this type that it throws, or none on success. Any other
/// exception fails the test.
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
