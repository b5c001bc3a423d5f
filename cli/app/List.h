// A list as the command line wants it: which columns, in which order, for people or for scripts.
#pragma once

#include "app/Invocation.h"
#include "app/Syntax.h"
#include "terminal/Table.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

/// What every list takes: --columns, --sort, --terse, --no-headings. The columns are called by their titles.
class ListOptions {
  public:
    explicit ListOptions(std::vector<Column> columns) : m_columns(std::move(columns)) {}
    /// Once; an unknown column is a UsageError when the command line is read.
    void Declare(Syntax& syntax);

  private:
    friend class List;
    struct Order {
        std::size_t column;
        bool isDescending;
    };

    /// The words for the columns, in their order.
    std::vector<std::string> Words() const;
    std::size_t Find(const std::string& word) const;

    std::vector<Column> m_columns;
    std::vector<std::size_t> m_chosen; ///< empty: all
    std::optional<Order> m_order;
    bool m_isTerse = false;
    bool m_isWithoutHeadings = false;
};

/// The rows of one answer. Each is a row for people and an entry for programs.
class List {
  public:
    /// The options must live as long.
    explicit List(const ListOptions& options) : m_options(options) {}

    /// What follows stands together, for people under a heading.
    void BeginGroup(std::string heading) { m_groups.push_back(std::move(heading)); }
    /// One cell for each column; an empty one for what is missing.
    void AddRow(std::vector<Cell> cells, Json entry);
    /// A column that tells nothing this time, and that people do not see unless they ask for it.
    void LeaveOut(std::string_view title);

    /// Answers, in the order that is wanted. @param answer makes the document of the entries
    /// @param none what people are told where there are no rows
    ExitStatus Answer(Invocation& run, const std::function<Json(Json entries)>& answer, const char* none);

  private:
    struct Row {
        std::vector<Cell> cells;
        Json entry;
        std::size_t group; ///< how many have begun
    };

    void Sort();
    std::vector<std::size_t> Shown() const;
    void PrintLines(std::ostream& out) const;
    void PrintTable(const Terminal& screen) const;
    void PrintTable(const Terminal& screen, std::size_t group) const;

    const ListOptions& m_options;
    std::vector<Row> m_rows;
    std::vector<std::string> m_groups; ///< their headings
    std::vector<std::string_view> m_leftOut;
};

/// The document that has the entries under one key.
std::function<Json(Json entries)> Under(const char* key);

} // namespace quilletctl
