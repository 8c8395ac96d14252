#pragma once

#include <exception>
#include <string>

namespace torvo {

/// Base class of the errors that have a text for the user.
class Error : public std::exception {
public:
    /// One sentence for the user.
    virtual std::string userFacingDescription() const = 0;
};

} // namespace torvo
