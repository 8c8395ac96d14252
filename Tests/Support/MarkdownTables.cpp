#include "MarkdownTables.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace torvo::test {

namespace {

std::string trimmed(std::string_view text) {
    constexpr std::string_view around = " `\r";
    const auto first = text.find_first_not_of(around);
    if (first == std::string_view::npos)
        return "";
    return std::string(text.substr(first, text.find_last_not_of(around) - first + 1));
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find(separator, begin), text.size());
        parts.push_back(trimmed(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    return parts;
}

/// The text between the first and the last bar of a line.
std::vector<std::string> cells(std::string_view line) {
    const auto last = line.find_last_of('|');
    return split(line.substr(1, last - 1), '|');
}

} // namespace

MarkdownPage::MarkdownPage(const std::string& text) {
    std::istringstream lines(text);
    std::string heading;
    bool inTable = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('#'))
            heading = trimmed(line.substr(line.find_first_not_of('#')));
        if (!line.starts_with('|')) {
            inTable = false;
        } else if (!inTable) {
            tables_.push_back({heading, cells(line), {}});
            inTable = true;
        } else if (!line.starts_with("|-")) {
            tables_.back().rows.push_back(cells(line));
            if (tables_.back().rows.back().size() != tables_.back().head.size())
                throw std::runtime_error("a row of another length: " + line);
        }
    }
}

MarkdownTable MarkdownPage::table(const std::vector<std::string>& head, std::size_t skip) const {
    for (const auto& table : tables_) {
        if (table.head == head && skip-- == 0)
            return table.rows;
    }
    throw std::runtime_error("no such table: " + head.front());
}

MarkdownTable MarkdownPage::tableOf(const std::string& heading) const {
    const auto found = std::ranges::find(tables_, heading, &Table::heading);
    if (found == tables_.end())
        throw std::runtime_error("no table below " + heading);
    return found->rows;
}

std::vector<std::string> MarkdownPage::headingsOfTables() const {
    std::vector<std::string> headings;
    for (const auto& table : tables_)
        headings.push_back(table.heading);
    return headings;
}

std::vector<std::string> listed(const std::string& cell) {
    return split(cell, ',');
}

} // namespace torvo::test
