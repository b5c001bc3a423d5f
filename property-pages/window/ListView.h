// A list with columns.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace quillet::pages {

/// A column's heading, and how much of the list's width it takes.
struct Column {
    std::wstring heading;
    int percent = 0;
};

/// A list view of rows of texts. It is shown anew without losing its place.
class ListView {
  public:
    ListView() = default;
    /// @param style LVS_EX_CHECKBOXES and the like
    void Attach(HWND list, const std::vector<Column>& columns, DWORD style = 0);

    /// Shows rows; what is the same stays untouched.
    void Fill(const std::vector<std::vector<std::wstring>>& rows);
    /// The row that is chosen; -1 for none.
    int Chosen() const;
    void Choose(int row) const;
    bool IsTicked(int row) const;
    void Tick(int row, bool isTicked) const;

    HWND Handle() const noexcept { return m_list; }

  private:
    HWND m_list = nullptr;
    std::vector<std::vector<std::wstring>> m_rows; ///< as they are shown
};

/// Whether a notification says that another row is chosen.
bool IsNewChoice(const NMHDR& told);
/// Whether a notification says that a row was ticked or the tick taken away.
bool IsNewTick(const NMHDR& told);

} // namespace quillet::pages
