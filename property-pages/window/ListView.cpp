// A list with columns.
#include "window/ListView.h"

namespace quillet::pages {

namespace {

void SetCell(HWND list, int row, int column, const std::wstring& text) {
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text.c_str());
    SendMessageW(list, LVM_SETITEMTEXTW, WPARAM(row), reinterpret_cast<LPARAM>(&item));
}

/// The states of a row before and after, of one notification.
const NMLISTVIEW* NewState(const NMHDR& told) {
    const auto* change = reinterpret_cast<const NMLISTVIEW*>(&told);
    return told.code == LVN_ITEMCHANGED && (change->uChanged & LVIF_STATE) != 0 ? change : nullptr;
}

} // namespace

void ListView::Attach(HWND list, const std::vector<Column>& columns, DWORD style) {
    m_list = list;
    m_rows.clear();
    const DWORD styles = LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP | style;
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, styles, LPARAM(styles));
    RECT size{};
    GetClientRect(list, &size);
    const int width = int(size.right) - GetSystemMetrics(SM_CXVSCROLL);
    int number = 0;
    for (const Column& column : columns) {
        LVCOLUMNW described{};
        described.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        described.cx = width * column.percent / 100;
        described.pszText = const_cast<wchar_t*>(column.heading.c_str());
        described.iSubItem = number;
        SendMessageW(list, LVM_INSERTCOLUMNW, WPARAM(number++), reinterpret_cast<LPARAM>(&described));
    }
}

void ListView::Fill(const std::vector<std::vector<std::wstring>>& rows) {
    for (std::size_t count = m_rows.size(); count > rows.size(); --count) {
        SendMessageW(m_list, LVM_DELETEITEM, count - 1, 0);
    }
    for (std::size_t count = m_rows.size(); count < rows.size(); ++count) {
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = int(count);
        item.pszText = const_cast<wchar_t*>(L"");
        SendMessageW(m_list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
    m_rows.resize(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        m_rows[row].resize(rows[row].size());
        for (std::size_t column = 0; column < rows[row].size(); ++column) {
            if (m_rows[row][column] != rows[row][column]) {
                SetCell(m_list, int(row), int(column), rows[row][column]);
            }
        }
    }
    m_rows = rows;
}

int ListView::Chosen() const {
    return int(SendMessageW(m_list, LVM_GETNEXTITEM, WPARAM(-1), MAKELPARAM(LVNI_SELECTED, 0)));
}

void ListView::Choose(int row) const {
    if (row >= 0 && row != Chosen()) {
        LVITEMW item{};
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        item.state = item.stateMask;
        SendMessageW(m_list, LVM_SETITEMSTATE, WPARAM(row), reinterpret_cast<LPARAM>(&item));
        SendMessageW(m_list, LVM_ENSUREVISIBLE, WPARAM(row), FALSE);
    }
}

bool ListView::IsTicked(int row) const {
    return ((SendMessageW(m_list, LVM_GETITEMSTATE, WPARAM(row), LVIS_STATEIMAGEMASK) >> 12) & 0xF) == 2;
}

void ListView::Tick(int row, bool isTicked) const {
    if (IsTicked(row) != isTicked) {
        LVITEMW item{};
        item.stateMask = LVIS_STATEIMAGEMASK;
        item.state = INDEXTOSTATEIMAGEMASK(isTicked ? 2 : 1);
        SendMessageW(m_list, LVM_SETITEMSTATE, WPARAM(row), reinterpret_cast<LPARAM>(&item));
    }
}

bool IsNewChoice(const NMHDR& told) {
    const NMLISTVIEW* change = NewState(told);
    return change != nullptr && (change->uNewState & LVIS_SELECTED) != 0 &&
           (change->uOldState & LVIS_SELECTED) == 0;
}

bool IsNewTick(const NMHDR& told) {
    const NMLISTVIEW* change = NewState(told);
    return change != nullptr && (change->uOldState & LVIS_STATEIMAGEMASK) != 0 &&
           (change->uNewState & LVIS_STATEIMAGEMASK) != 0 &&
           ((change->uNewState ^ change->uOldState) & LVIS_STATEIMAGEMASK) != 0;
}

} // namespace quillet::pages
