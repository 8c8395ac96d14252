#include "BusyPayload.h"

#include "Bytes.h"

#include <algorithm>
#include <initializer_list>

namespace torvo::test {

namespace {

void put(std::vector<std::byte>& payload, std::size_t offset,
         std::initializer_list<unsigned> values) {
    for (const unsigned value : values)
        payload.at(offset++) = static_cast<std::byte>(value);
}

void putLittleEndian(std::vector<std::byte>& payload, std::size_t offset, std::uint32_t value) {
    std::vector<std::byte> number;
    appendUInt32(number, value);
    std::ranges::copy(number, payload.begin() + static_cast<std::ptrdiff_t>(offset));
}

} // namespace

std::vector<std::byte> freshBusyPayload(const ExpectedStamp& stamp) {
    std::vector<std::byte> payload(1936);
    put(payload, 0, {0x77, 0x56, 0x34, 0x12});
    putLittleEndian(payload, 16, stamp.dataSize);
    putLittleEndian(payload, 20, stamp.dataSize);
    put(payload, 24, {stamp.bits});
    put(payload, 43, {4});
    put(payload, 48, {1});
    put(payload, 50, {stamp.filterCode, 0});
    put(payload, 54, {stamp.rateByte, stamp.rateByte});
    put(payload, 58, {0xEE, 0x7F, 0xCC, 0x4C});
    put(payload, 62, {stamp.channelIndex, stamp.channelIndex});
    put(payload, 72, {0xFF, 0xFF, 0xFF, 0xFF});
    for (const std::size_t block : {110U, 198U, 286U, 374U, 462U, 550U, 638U, 726U}) {
        for (std::size_t offset = block; offset <= block + 64; offset += 4)
            put(payload, offset, {99});
    }
    put(payload, 904, {4});
    put(payload, 909, {stamp.channelIndex});
    putLittleEndian(payload, 916, stamp.dataSize);
    put(payload, 1680, {1});
    put(payload, 1684, {0xE8, 0x03});
    if (stamp.routesCV) {
        putLittleEndian(payload, 76, 0x4000);
        putLittleEndian(payload, 80, 0x8000);
        putLittleEndian(payload, 84, 0x20);
        put(payload, 160, {0, 0, 99, 0});
        put(payload, 252, {0, 0, 99, 0});
        put(payload, 300, {0, 0, 99, 0});
    }
    return payload;
}

} // namespace torvo::test
