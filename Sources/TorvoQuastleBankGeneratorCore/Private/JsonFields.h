#pragma once

#include "Models/DecodingError.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads fields of JSON objects with exact types: 2.0 is not an integer, `null` is not a string.
/// Every function throws `DecodingError` with the key path relative to the object.
namespace torvo::jsonFields {

/// Joins two key paths: "recipes" and "[3]" give "recipes[3]", "naming" and "prefix" give
/// "naming.prefix".
std::string joinedKeyPath(const std::string& outer, const std::string& inner);

/// Runs `decode` and prepends `key` to the key path of a `DecodingError` that it throws.
template <typename Decode>
auto within(const std::string& key, Decode decode) {
    try {
        return decode();
    } catch (const DecodingError& error) {
        throw DecodingError(joinedKeyPath(key, error.keyPath()), error.reason());
    }
}

/// Throws `DecodingError` with `reason` and an empty key path when `condition` is false.
void require(bool condition, const char* reason);

template <typename Value>
Value decoded(const nlohmann::json& value) {
    return value.get<Value>();
}

template <>
bool decoded<bool>(const nlohmann::json& value);
template <>
std::string decoded<std::string>(const nlohmann::json& value);
template <>
double decoded<double>(const nlohmann::json& value);
template <>
std::int64_t decoded<std::int64_t>(const nlohmann::json& value);
/// Accepts the full 64-bit range, which seeds use.
template <>
std::uint64_t decoded<std::uint64_t>(const nlohmann::json& value);

template <typename Value>
std::vector<Value> decodedList(const nlohmann::json& value) {
    require(value.is_array(), "not a list");
    std::vector<Value> list;
    list.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        list.push_back(
            within("[" + std::to_string(i) + "]", [&] { return decoded<Value>(value[i]); }));
    }
    return list;
}

/// The value of `key`, or null when the key is missing.
const nlohmann::json* findField(const nlohmann::json& object, std::string_view key);
const nlohmann::json& requiredField(const nlohmann::json& object, std::string_view key);

template <typename Value>
Value field(const nlohmann::json& object, const std::string& key) {
    const auto& value = requiredField(object, key);
    return within(key, [&] { return decoded<Value>(value); });
}

template <typename Value>
Value fieldOr(const nlohmann::json& object, const std::string& key, Value whenMissing) {
    return findField(object, key) == nullptr ? whenMissing : field<Value>(object, key);
}

template <typename Value>
std::vector<Value> listField(const nlohmann::json& object, const std::string& key) {
    const auto& value = requiredField(object, key);
    return within(key, [&] { return decodedList<Value>(value); });
}

} // namespace torvo::jsonFields
