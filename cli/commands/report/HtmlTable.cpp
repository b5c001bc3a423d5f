// Writing tables.
#include "commands/report/HtmlTable.h"

#include "commands/report/Markup.h"

#include <utility>

namespace quilletctl {

HtmlTable::HtmlTable(std::vector<HtmlColumn> columns) : m_columns(std::move(columns)) {}

void HtmlTable::AddRow(const std::vector<std::string>& cells) {
    m_rows += "<tr role=\"row\">";
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const std::string cell = i < cells.size() && !cells[i].empty() ? Escaped(cells[i]) : "–";
        m_rows +=
            i == 0 ? "<th scope=\"row\" role=\"rowheader\">" + cell + "</th>"
                   : "<td role=\"cell\" data-title=\"" + Escaped(m_columns[i].title) + "\">" + cell + "</td>";
    }
    m_rows += "</tr>\n";
}

std::string HtmlTable::Markup(const std::string& none) const {
    if (m_rows.empty()) {
        return none.empty() ? none : Paragraph(none);
    }
    // The roles stay when narrow screens show cells as blocks.
    std::string markup = "<table role=\"table\"><colgroup>";
    for (const HtmlColumn& column : m_columns) {
        markup += "<col style=\"width: " + std::to_string(column.share) + "%\">";
    }
    markup += "</colgroup><thead role=\"rowgroup\"><tr role=\"row\">";
    for (const HtmlColumn& column : m_columns) {
        markup += "<th scope=\"col\" role=\"columnheader\">" + Escaped(column.title) + "</th>";
    }
    return markup + "</tr></thead>\n<tbody role=\"rowgroup\">\n" + m_rows + "</tbody></table>\n";
}

std::string Paragraph(const std::string& text) {
    return "<p>" + Escaped(text) + "</p>\n";
}

std::string NotTold(const std::string& what, const std::string& failure) {
    return failure.empty() ? std::string()
                           : "<p class=\"untold\">" +
                                 Escaped("The provider does not tell " + what + ": " + failure) + "</p>\n";
}

} // namespace quilletctl
