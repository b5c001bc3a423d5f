// Tables of the page.
#pragma once

#include <string>
#include <vector>

namespace quilletctl {

struct HtmlColumn {
    std::string title;
    int share; ///< of the table's width, in per cent
};

/// Rows under titles (UTF-8, escaped here). Where the screen is narrow each cell stands below its title, so
/// that no table makes a page scroll to the side.
class HtmlTable {
  public:
    explicit HtmlTable(std::vector<HtmlColumn> columns);
    /// One cell per title; the first one names the row.
    void AddRow(const std::vector<std::string>& cells);
    /// The markup; the sentence (which may be empty) where there are no rows.
    std::string Markup(const std::string& none) const;

  private:
    std::vector<HtmlColumn> m_columns;
    std::string m_rows;
};

/// A paragraph.
std::string Paragraph(const std::string& text);
/// What was not told, in its place; nothing where it was.
std::string NotTold(const std::string& what, const std::string& failure);

} // namespace quilletctl
