#include "JsonFields.h"

#include <limits>

namespace torvo::jsonFields {

std::string joinedKeyPath(const std::string& outer, const std::string& inner) {
    if (inner.empty() || inner.starts_with('['))
        return outer + inner;
    return outer + "." + inner;
}

void require(bool condition, const char* reason) {
    if (!condition)
        throw DecodingError("", reason);
}

template <>
bool decoded<bool>(const nlohmann::json& value) {
    require(value.is_boolean(), "not true or false");
    return value.get<bool>();
}

template <>
std::string decoded<std::string>(const nlohmann::json& value) {
    require(value.is_string(), "not a text");
    return value.get<std::string>();
}

template <>
double decoded<double>(const nlohmann::json& value) {
    require(value.is_number(), "not a number");
    return value.get<double>();
}

template <>
std::int64_t decoded<std::int64_t>(const nlohmann::json& value) {
    require(value.is_number_integer(), "not an integer");
    require(!value.is_number_unsigned() ||
                value.get<std::uint64_t>() <= std::numeric_limits<std::int64_t>::max(),
            "an integer out of range");
    return value.get<std::int64_t>();
}

template <>
std::uint64_t decoded<std::uint64_t>(const nlohmann::json& value) {
    require(value.is_number_integer(), "not an integer");
    require(value.is_number_unsigned(), "an integer out of range");
    return value.get<std::uint64_t>();
}

const nlohmann::json* findField(const nlohmann::json& object, std::string_view key) {
    require(object.is_object(), "not an object");
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const nlohmann::json& requiredField(const nlohmann::json& object, std::string_view key) {
    const auto* value = findField(object, key);
    if (value == nullptr)
        throw DecodingError(std::string(key), "missing");
    return *value;
}

} // namespace torvo::jsonFields
