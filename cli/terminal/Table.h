// Aligned columns for people.
#pragma once

#include "terminal/Terminal.h"
#include "texts/States.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quilletctl {

/// What may be done to a column where the terminal is too narrow: nothing; of identifiers, what all of them
/// begin with may go; texts may be cut.
enum class Fit { Intact, Whole, MayShorten };

/// How long a column stays as a terminal gets narrower. What comes first here goes first.
enum class Stay : std::uint8_t {
    WhileAllFits, ///< until a text would have to be cut
    Third,        ///< until texts would have to be cut so short that they are no longer read with ease
    Second,       ///< likewise, and after all the others of that kind
    First,
    Below, ///< likewise, before any of those; what its cells say of a row then stands below the row
    Always
};

struct Column {
    std::string title;
    Fit fit = Fit::Whole;
    /// The title of a column that this one often repeats: each of its cells begins as the cell here, so that
    /// this column may go as a whole.
    std::string repeats{};
    /// When it goes as a whole.
    Stay stay = Stay::Always;
};

/// One cell of a row.
struct Cell {
    Cell(std::string line) : lines{std::move(line)} {}
    Cell(const char* line) : lines{line} {}
    Cell(std::string line, std::int64_t sorted) : lines{std::move(line)}, number(sorted) {}
    Cell(std::string line, Tone shown) : lines{std::move(line)}, tone(shown) {}
    /// Several texts, below each other in a terminal.
    explicit Cell(std::vector<std::string> several) : lines(std::move(several)) {
        lines.resize(std::max<std::size_t>(lines.size(), 1));
    }

    /// The cell with a shorter text for a table that is too wide.
    Cell Briefly(std::string text) &&;
    /// The cell of a column that may go below (Stay::Below), with what it says there; empty: nothing.
    Cell Below(std::string text) &&;

    /// All of it on one line.
    std::string Text() const;

    std::vector<std::string> lines;
    Tone tone = Tone::Plain;
    std::optional<std::int64_t> number{}; ///< what it is sorted by; else the text
    std::string brief{};                  ///< empty: there is no shorter text
    std::string below{};
};

/// Rows of cells (UTF-8) under titles. Columns are as wide as their widest cell on the screen.
class Table {
  public:
    explicit Table(std::vector<Column> columns);
    /// One cell per column; characters that would steer the terminal are replaced.
    void AddRow(const std::vector<Cell>& cells);
    bool IsEmpty() const noexcept { return m_rows.empty(); }
    /// In a terminal that is too narrow, what repeats is left out first, then short texts take the place of
    /// long ones, then columns go below or go as a whole, and then long texts are cut in their middle.
    /// Elsewhere nothing is cut, and a row is one line.
    void Print(const Terminal& terminal, bool withTitles = true) const;

  private:
    std::size_t WidthOf(std::size_t column) const;
    std::size_t TotalWidth() const;
    /// How wide it is when texts are cut as far as they are still read with ease.
    std::size_t LeastWidth() const;
    std::size_t IndexOf(std::string_view title) const;
    bool Repeats(std::size_t column, std::size_t other) const;
    void Remove(std::size_t column);
    void RemoveRepeatedColumns(std::size_t width);
    /// Removes columns that stay no longer than so, the last first, while the table is too wide.
    void RemoveColumns(Stay stay, std::size_t width, std::size_t (Table::*widthNow)() const);
    void RemoveCommonBeginnings(std::size_t width);
    void UseBriefTexts();
    /// Columns that may go below do, as lines of the first column.
    void MoveBelow();
    /// The columns' widths, with the widest texts giving way.
    std::vector<std::size_t> WidthsWithin(std::size_t width) const;
    void Print(const Terminal& terminal, const std::vector<std::size_t>& widths, bool withTitles) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<Cell>> m_rows;
};

} // namespace quilletctl
