#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace torvo::test {

/// The expected content of a stamp.
struct ExpectedStamp {
    std::uint32_t dataSize = 0; ///< bytes of the "data" chunk
    unsigned channelIndex = 0;  ///< 0 to 7
    unsigned bits = 16;
    unsigned rateByte = 0; ///< 0 for 44 kHz to 7 for 4 kHz
    unsigned filterCode = 0;
    bool routesCV = false;
};

/// A new payload for the device, written from its table and independently of the code under test.
std::vector<std::byte> freshBusyPayload(const ExpectedStamp& stamp);

} // namespace torvo::test
