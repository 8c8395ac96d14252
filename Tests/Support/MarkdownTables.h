#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace torvo::test {

/// The rows below the header of a table; cells without surrounding spaces and backticks.
using MarkdownTable = std::vector<std::vector<std::string>>;

/// The tables of a Markdown page, found by their headers, so that tests can compare a document with
/// the code. Throws `std::runtime_error` when the page has no such table.
class MarkdownPage {
public:
    explicit MarkdownPage(const std::string& text);

    /// The table with exactly this header; the first of several, or the one after `skip` others.
    MarkdownTable table(const std::vector<std::string>& head, std::size_t skip = 0) const;
    /// The first table below the heading of that text.
    MarkdownTable tableOf(const std::string& heading) const;
    /// The heading above each table, in order.
    std::vector<std::string> headingsOfTables() const;

private:
    struct Table {
        std::string heading;
        std::vector<std::string> head;
        MarkdownTable rows;
    };
    std::vector<Table> tables_;
};

/// The items of a comma-separated list.
std::vector<std::string> listed(const std::string& cell);

} // namespace torvo::test
