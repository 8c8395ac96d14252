#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace torvo::test {

/// The rows below a table's head; cells without the spaces and backticks around them.
using MarkdownTable = std::vector<std::vector<std::string>>;

/// The tables of a Markdown page, found by their heads, so that a test can hold a document against
/// the code. Throws `std::runtime_error` when the page has no such table.
class MarkdownPage {
public:
    explicit MarkdownPage(const std::string& text);

    /// The table with exactly this head; the first of several, or the one after `skip` others.
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

/// The parts of a list with commas.
std::vector<std::string> listed(const std::string& cell);

} // namespace torvo::test
