// Derives names from arbitrary bytes: the results must have the documented form.

#include "Models/BankNameScheme.h"
#include "Platform/FileURL.h"
#include "Platform/UnicodeText.h"
#include "Require.h"
#include "RoleClassifier.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace torvo::fuzz {
namespace {

void classifyAnything(std::string_view name) {
    const auto normalized = normalize(name);
    require(text::validUTF8(normalized) == normalized, "a normalised name is UTF-8");
    require(!normalized.starts_with(' ') && !normalized.ends_with(' ') &&
                normalized.find("  ") == std::string::npos,
            "words are joined by single spaces");
    const auto role = classifyRole(name);
    require(role == classifyRole(normalized), "only the words decide");
    require(!role || !normalized.empty(), "a role needs a word");
    static_cast<void>(namesIgnoredFolder(name));

    const BankNameScheme naming{std::string(name)};
    // Upper-casing the first character may give up to three characters, as in "ß" to "SS".
    require(text::characterCount(naming.prefix) <= 8, "a prefix has six characters at most");
    require(naming.bankName(7).ends_with("007"), "a bank's name ends in its number");

    const auto ascii = text::lossyASCII(name);
    require(std::ranges::all_of(ascii, [](char c) { return static_cast<unsigned char>(c) < 128; }),
            "info.txt is ASCII");
    static_cast<void>(text::uppercased(name));
    require(text::equalsIgnoringCase(name, name), "a name equals itself");

    std::string component(name);
    std::erase_if(component, [](char c) { return c == '/' || c == '\0'; });
    const FileURL url(std::filesystem::path("/samples/" + component + "x"));
    require(url.lastPathComponent().size() >= url.pathExtension().size(), "extension in name");
}

} // namespace
} // namespace torvo::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string name(data, data + size);
    torvo::fuzz::classifyAnything(name);
    return 0;
}
