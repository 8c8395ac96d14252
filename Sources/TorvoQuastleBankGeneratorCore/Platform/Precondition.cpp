#include "Platform/Precondition.h"

#include <cstdlib>
#include <iostream>

namespace torvo {

void precondition(bool condition, std::string_view violated) {
    if (condition)
        return;
    std::cerr << "Broken precondition: " << violated << std::endl;
    std::abort();
}

} // namespace torvo
