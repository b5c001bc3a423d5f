// Aligned columns.
#include "terminal/Table.h"

#include "texts/Text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quilletctl {

namespace {

constexpr std::size_t kGap = 2;
/// Below this a shortened text says nothing any more.
constexpr std::size_t kNarrowest = 8;

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
        blanks += widths[i] - DisplayWidth(cell) + kGap;
    }
}

/// How many bytes all texts begin with, up to the last mark that parts words; 0 where there are no two that
/// differ.
std::size_t CommonBeginning(const std::vector<std::string_view>& texts) {
    if (texts.empty()) {
        return 0;
    }
    const auto [least, greatest] = std::minmax_element(texts.begin(), texts.end());
    const auto end = std::mismatch(least->begin(), least->end(), greatest->begin(), greatest->end()).first;
    const auto common = least->substr(0, static_cast<std::size_t>(end - least->begin()));
    return *least == *greatest ? 0 : common.find_last_of(" -:.") + 1;
}

} // namespace

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::AddRow(const std::vector<std::string>& cells) {
    std::vector<std::string>& row = m_rows.emplace_back();
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        row.push_back(i < cells.size() ? Printable(cells[i]) : std::string());
    }
}

std::size_t Table::WidthOf(std::size_t column) const {
    std::size_t width = DisplayWidth(m_columns[column].title);
    for (const auto& row : m_rows) {
        width = std::max(width, DisplayWidth(row[column]));
    }
    return width;
}

std::size_t Table::TotalWidth() const {
    std::size_t total = 0;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        total += WidthOf(i) + (i == 0 ? 0 : kGap);
    }
    return total;
}

std::size_t Table::IndexOf(const std::string& title) const {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const Column& each) { return each.title == title; });
    return static_cast<std::size_t>(found - m_columns.begin());
}

bool Table::Repeats(std::size_t column, std::size_t other) const {
    return other < m_columns.size() && std::all_of(m_rows.begin(), m_rows.end(), [&](const auto& row) {
               return row[other].starts_with(row[column]);
           });
}

void Table::RemoveRepeatedColumns(std::size_t width) {
    for (std::size_t i = m_columns.size(); i-- > 0 && TotalWidth() > width;) {
        if (!m_columns[i].repeats.empty() && Repeats(i, IndexOf(m_columns[i].repeats))) {
            const auto place = static_cast<std::ptrdiff_t>(i);
            m_columns.erase(m_columns.begin() + place);
            for (auto& row : m_rows) {
                row.erase(row.begin() + place);
            }
        }
    }
}

void Table::RemoveCommonBeginnings(std::size_t width) {
    for (std::size_t i = 0; i < m_columns.size() && TotalWidth() > width; ++i) {
        if (m_columns[i].fit != Fit::Whole) {
            continue;
        }
        std::vector<std::string_view> cells;
        for (const auto& row : m_rows) {
            cells.push_back(row[i]);
        }
        const std::size_t common = CommonBeginning(cells);
        // Fewer would not be worth the mark.
        constexpr std::size_t kLeast = 4;
        for (auto& row : m_rows) {
            if (common >= kLeast) {
                row[i].replace(0, common, "…");
            }
        }
    }
}

std::vector<std::size_t> Table::WidthsWithin(std::size_t width) const {
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        widths.push_back(WidthOf(i));
    }
    // The widest text gives way first, column by column, until the row fits or nothing may be cut any more.
    for (std::size_t total = TotalWidth(); total > width; --total) {
        std::size_t* widest = nullptr;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            if (m_columns[i].fit == Fit::MayShorten && widths[i] > kNarrowest &&
                (widest == nullptr || widths[i] > *widest)) {
                widest = &widths[i];
            }
        }
        if (widest == nullptr) {
            break;
        }
        --*widest;
    }
    return widths;
}

void Table::Print(const Terminal& terminal) const {
    if (!terminal.outIsTerminal) {
        Print(terminal, WidthsWithin(TotalWidth()));
        return;
    }
    Table fitted(*this);
    fitted.RemoveRepeatedColumns(terminal.width);
    fitted.RemoveCommonBeginnings(terminal.width);
    fitted.Print(terminal, fitted.WidthsWithin(terminal.width));
}

void Table::Print(const Terminal& terminal, const std::vector<std::size_t>& widths) const {
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
