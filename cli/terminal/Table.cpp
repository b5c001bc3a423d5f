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
/// Down to this it is read with ease.
constexpr std::size_t kReadable = 24;

std::string Coloured(const std::string& text, Tone tone) {
    switch (tone) {
    case Tone::Plain:
        break;
    case Tone::Good:
        return "\x1b[32m" + text + "\x1b[0m";
    case Tone::Warning:
        return "\x1b[33m" + text + "\x1b[0m";
    case Tone::Bad:
        return "\x1b[31m" + text + "\x1b[0m";
    }
    return text;
}

/// One line of a row: that of each cell which has so many.
void PrintLine(const Terminal& terminal, const std::vector<Cell>& cells,
               const std::vector<std::size_t>& widths, std::size_t line) {
    std::size_t blanks = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::vector<std::string>& lines = cells[i].lines;
        const std::string text = line < lines.size() ? Shortened(lines[line], widths[i]) : std::string();
        // Blanks are owed until the next text comes, so that no line ends with them.
        if (!text.empty()) {
            terminal.out << std::string(blanks, ' ')
                         << (terminal.outColour ? Coloured(text, cells[i].tone) : text);
            blanks = 0;
        }
        blanks += widths[i] - DisplayWidth(text) + kGap;
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

/// The cell with all of it on one line.
Cell OnOneLine(const Cell& cell) {
    Cell joined(cell.Text());
    joined.tone = cell.tone;
    return joined;
}

std::size_t WidthOf(const Cell& cell) {
    std::size_t width = 0;
    for (const std::string& line : cell.lines) {
        width = std::max(width, DisplayWidth(line));
    }
    return width;
}

} // namespace

Cell Cell::Briefly(std::string text) && {
    brief = std::move(text);
    return std::move(*this);
}

Cell Cell::Below(std::string text) && {
    below = std::move(text);
    return std::move(*this);
}

std::string Cell::Text() const {
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : ", ") + line;
    }
    return text;
}

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::AddRow(const std::vector<Cell>& cells) {
    std::vector<Cell>& row = m_rows.emplace_back();
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        row.push_back(i < cells.size() ? cells[i] : Cell(""));
        for (std::string& line : row.back().lines) {
            line = Printable(line);
        }
        row.back().brief = Printable(row.back().brief);
        row.back().below = Printable(row.back().below);
    }
}

std::size_t Table::WidthOf(std::size_t column) const {
    std::size_t width = DisplayWidth(m_columns[column].title);
    for (const auto& row : m_rows) {
        width = std::max(width, quilletctl::WidthOf(row[column]));
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

std::size_t Table::LeastWidth() const {
    std::size_t total = 0;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const std::size_t width = WidthOf(i);
        total +=
            (m_columns[i].fit == Fit::MayShorten ? std::min(width, kReadable) : width) + (i == 0 ? 0 : kGap);
    }
    return total;
}

std::size_t Table::IndexOf(std::string_view title) const {
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const Column& each) { return each.title == title; });
    return static_cast<std::size_t>(found - m_columns.begin());
}

bool Table::Repeats(std::size_t column, std::size_t other) const {
    return other < m_columns.size() && std::all_of(m_rows.begin(), m_rows.end(), [&](const auto& row) {
               return row[other].Text().starts_with(row[column].Text());
           });
}

void Table::Remove(std::size_t column) {
    const auto place = static_cast<std::ptrdiff_t>(column);
    m_columns.erase(m_columns.begin() + place);
    for (auto& row : m_rows) {
        row.erase(row.begin() + place);
    }
}

void Table::RemoveRepeatedColumns(std::size_t width) {
    for (std::size_t i = m_columns.size(); i-- > 0 && TotalWidth() > width;) {
        if (!m_columns[i].repeats.empty() && Repeats(i, IndexOf(m_columns[i].repeats))) {
            Remove(i);
        }
    }
}

void Table::RemoveColumns(Stay stay, std::size_t width, std::size_t (Table::*widthNow)() const) {
    for (std::size_t i = m_columns.size(); i-- > 0 && (this->*widthNow)() > width;) {
        if (m_columns[i].stay == stay) {
            Remove(i);
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
            cells.emplace_back(row[i].lines.front());
        }
        const std::size_t common = CommonBeginning(cells);
        // Fewer would not be worth the mark.
        constexpr std::size_t kLeastCommon = 4;
        for (auto& row : m_rows) {
            if (common >= kLeastCommon) {
                row[i].lines.front().replace(0, common, "…");
            }
        }
    }
}

void Table::UseBriefTexts() {
    for (auto& row : m_rows) {
        for (Cell& cell : row) {
            if (!cell.brief.empty()) {
                cell.lines = {cell.brief};
            }
        }
    }
}

void Table::MoveBelow() {
    for (auto& row : m_rows) {
        std::string below;
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            if (m_columns[i].stay == Stay::Below && !row[i].below.empty()) {
                below += (below.empty() ? "  " : ", ") + row[i].below;
            }
        }
        if (!below.empty()) {
            row.front().lines.push_back(std::move(below));
        }
    }
    for (std::size_t i = m_columns.size(); i-- > 0;) {
        if (m_columns[i].stay == Stay::Below) {
            Remove(i);
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

void Table::Print(const Terminal& terminal, bool withTitles) const {
    Table fitted(*this);
    if (!terminal.outIsTerminal) {
        for (auto& row : fitted.m_rows) {
            std::transform(row.begin(), row.end(), row.begin(), OnOneLine);
        }
        fitted.Print(terminal, fitted.WidthsWithin(fitted.TotalWidth()), withTitles);
        return;
    }
    fitted.RemoveRepeatedColumns(terminal.width);
    fitted.RemoveColumns(Stay::WhileAllFits, terminal.width, &Table::TotalWidth);
    if (fitted.TotalWidth() > terminal.width) {
        fitted.UseBriefTexts();
    }
    if (fitted.LeastWidth() > terminal.width) {
        fitted.MoveBelow();
    }
    for (const Stay stay : {Stay::Third, Stay::Second, Stay::First}) {
        fitted.RemoveColumns(stay, terminal.width, &Table::LeastWidth);
    }
    fitted.RemoveCommonBeginnings(terminal.width);
    fitted.Print(terminal, fitted.WidthsWithin(terminal.width), withTitles);
}

void Table::Print(const Terminal& terminal, const std::vector<std::size_t>& widths, bool withTitles) const {
    if (withTitles) {
        std::vector<Cell> titles;
        for (const Column& column : m_columns) {
            titles.emplace_back(column.title);
        }
        terminal.out << (terminal.outColour ? "\x1b[1m" : "");
        PrintLine(terminal, titles, widths, 0);
        terminal.out << (terminal.outColour ? "\x1b[0m\n" : "\n");
    }
    for (const auto& row : m_rows) {
        std::size_t lines = 1;
        for (const Cell& cell : row) {
            lines = std::max(lines, cell.lines.size());
        }
        for (std::size_t line = 0; line < lines; ++line) {
            PrintLine(terminal, row, widths, line);
            terminal.out << '\n';
        }
    }
}

} // namespace quilletctl
