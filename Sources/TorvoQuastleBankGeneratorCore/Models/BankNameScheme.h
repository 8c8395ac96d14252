#pragma once

#include <cstdint>
#include <string>

namespace torvo {

/// The names of a run's banks and files, derived from the name of the source folder.
struct BankNameScheme {
    std::string sourceFolderName;
    /// Up to 6 characters when derived from the folder name; up to 8 when the upper case of the
    /// first character is longer.
    std::string prefix;

    BankNameScheme() = default;
    /// Derives the prefix from the name.
    explicit BankNameScheme(std::string folderName);
    /// Uses both names unchanged.
    BankNameScheme(std::string folderName, std::string bankPrefix);

    /// The name of the folder that an export creates in the chosen folder.
    const std::string& exportFolderName() const { return sourceFolderName; }
    /// The prefix and the index, zero-padded to three digits.
    std::string bankName(std::int64_t index) const;
    std::string firstBankName() const { return bankName(1); }
    /// The default file name of the mapping document.
    std::string manifestFileName() const { return firstBankName() + ".json"; }

    friend bool operator==(const BankNameScheme&, const BankNameScheme&) = default;
};

/// The decimal digits of `number`, padded with zeros on the left to at least `width` characters.
std::string zeroPadded(std::int64_t number, int width);

} // namespace torvo
