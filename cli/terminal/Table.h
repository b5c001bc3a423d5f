// Aligned columns for people.
#pragma once

#include "terminal/Terminal.h"

#include <string>
#include <vector>

namespace quilletctl {

/// What may be done to a column where the terminal is too narrow. Of identifiers and numbers, only what all
/// of them begin with may go.
enum class Fit { Whole, MayShorten };

struct Column {
    std::string title;
    Fit fit = Fit::Whole;
    /// The title of a column that this one often repeats: each of its cells begins as the cell here, so that
    /// this column may go as a whole.
    std::string repeats{};
};

/// Rows of cells (UTF-8) under titles. Columns are as wide as their widest cell on the screen.
class Table {
  public:
    explicit Table(std::vector<Column> columns);
    /// One cell per column; characters that would steer the terminal are replaced.
    void AddRow(const std::vector<std::string>& cells);
    bool IsEmpty() const noexcept { return m_rows.empty(); }
    /// In a terminal that is too narrow, what repeats is left out first, and then long texts are cut in their
    /// middle. Elsewhere nothing is cut.
    void Print(const Terminal& terminal) const;

  private:
    std::size_t WidthOf(std::size_t column) const;
    std::size_t TotalWidth() const;
    std::size_t IndexOf(const std::string& title) const;
    bool Repeats(std::size_t column, std::size_t other) const;
    void RemoveRepeatedColumns(std::size_t width);
    void RemoveCommonBeginnings(std::size_t width);
    /// The columns' widths, with the widest texts giving way.
    std::vector<std::size_t> WidthsWithin(std::size_t width) const;
    void Print(const Terminal& terminal, const std::vector<std::size_t>& widths) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace quilletctl
