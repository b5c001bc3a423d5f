// Aligned columns.
#include "Table.h"

#include "Text.h"

#include <algorithm>
#include <utility>

namespace quilletctl {

namespace {

constexpr std::size_t GAP = 2;
/// Below this a shortened text says nothing any more.
constexpr std::size_t NARROWEST = 8;

void PrintRow(std::ostream& out, const std::vector<std::string>& cells,
              const std::vector<std::size_t>& widths) {
    std::size_t blanks = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::string cell = Shortened(cells[i], widths[i]);
        // Blanks are owed until the next text comes, so that no line ends with them.
        if (!cell.empty()) {
            out << std::string(blanks, ' ') << cell;
            blanks = 0;
        }
        blanks += widths[i] - DisplayWidth(cell) + GAP;
    }
}

} // namespace

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::AddRow(const std::vector<std::string>& cells) {
    std::vector<std::string>& row = m_rows.emplace_back();
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        row.push_back(i < cells.size() ? Printable(cells[i]) : std::string());
    }
}

std::vector<std::size_t> Table::Widths(const Terminal& terminal) const {
    std::vector<std::size_t> widths;
    std::size_t total = 0;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        std::size_t width = DisplayWidth(m_columns[i].title);
        for (const auto& row : m_rows) {
            width = std::max(width, DisplayWidth(row[i]));
        }
        widths.push_back(width);
        total += width + (i == 0 ? 0 : GAP);
    }
    // The widest text gives way first, column by column, until the row fits or nothing may be cut any more.
    while (terminal.outIsTerminal && total > terminal.width) {
        std::size_t* widest = nullptr;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            if (m_columns[i].fit == Fit::MayShorten && widths[i] > NARROWEST &&
                (widest == nullptr || widths[i] > *widest)) {
                widest = &widths[i];
            }
        }
        if (widest == nullptr) {
            break;
        }
        --*widest;
        --total;
    }
    return widths;
}

void Table::Print(const Terminal& terminal) const {
    const std::vector<std::size_t> widths = Widths(terminal);
    std::vector<std::string> titles;
    for (const Column& column : m_columns) {
        titles.push_back(column.title);
    }
    terminal.out << (terminal.outColour ? "\x1b[1m" : "");
    PrintRow(terminal.out, titles, widths);
    terminal.out << (terminal.outColour ? "\x1b[0m\n" : "\n");
    for (const auto& row : m_rows) {
        PrintRow(terminal.out, row, widths);
        terminal.out << '\n';
    }
}

} // namespace quilletctl
