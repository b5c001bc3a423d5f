// Aligned columns for people.
#pragma once

#include "Terminal.h"

#include <string>
#include <vector>

namespace quilletctl {

/// Whether a column may be cut where the terminal is too narrow. Identifiers must stay whole, because they
/// are copied.
enum class Fit { Whole, MayShorten };

struct Column {
    std::string title;
    Fit fit = Fit::Whole;
};

/// Rows of cells (UTF-8) under titles. Columns are as wide as their widest cell on the screen.
class Table {
  public:
    explicit Table(std::vector<Column> columns);
    /// One cell per column; characters that would steer the terminal are replaced.
    void AddRow(const std::vector<std::string>& cells);
    /// In a terminal, long texts are shortened to its width; elsewhere nothing is cut.
    void Print(const Terminal& terminal) const;

  private:
    std::vector<std::size_t> Widths(const Terminal& terminal) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace quilletctl
