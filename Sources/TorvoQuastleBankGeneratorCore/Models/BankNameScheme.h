#pragma once

#include <cstdint>
#include <string>

namespace torvo {

/// How a run's banks and files are named, made from the name of the source folder.
struct BankNameScheme {
    std::string sourceFolderName;
    /// Up to 6 characters when derived from the name, 8 where the upper case of the first is
    /// longer.
    std::string prefix;

    BankNameScheme() = default;
    /// Derives the prefix from the name.
    explicit BankNameScheme(std::string folderName);
    /// Takes both as they are.
    BankNameScheme(std::string folderName, std::string bankPrefix);

    /// The folder that an export creates below the chosen one.
    const std::string& exportFolderName() const { return sourceFolderName; }
    /// The prefix and the index, padded with zeros to three digits.
    std::string bankName(std::int64_t index) const;
    std::string firstBankName() const { return bankName(1); }
    /// The name under which the mapping document is offered for saving.
    std::string manifestFileName() const { return firstBankName() + ".json"; }

    friend bool operator==(const BankNameScheme&, const BankNameScheme&) = default;
};

/// The decimal digits of `number`, padded with zeros on the left to at least `width` characters.
std::string zeroPadded(std::int64_t number, int width);

} // namespace torvo
