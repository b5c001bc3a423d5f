// A combo box whose entries stand for values.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace quillet::pages {

/// Shows the entries anew only where they have changed, so that an open list stays open.
template <class Value>
class ComboBox {
  public:
    using Entries = std::vector<std::pair<Value, std::wstring>>;

    void Attach(HWND box) { m_box = box; }

    void Fill(const Entries& entries, const Value& chosen) {
        if (entries != m_entries) {
            m_entries = entries;
            SendMessageW(m_box, CB_RESETCONTENT, 0, 0);
            for (const auto& entry : entries) {
                SendMessageW(m_box, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.second.c_str()));
            }
        }
        for (std::size_t place = 0; place < entries.size(); ++place) {
            if (entries[place].first == chosen && Place() != place) {
                SendMessageW(m_box, CB_SETCURSEL, WPARAM(place), 0);
            }
        }
    }
    /// The value that is chosen; null where there is none.
    const Value* Chosen() const { return Place() < m_entries.size() ? &m_entries[Place()].first : nullptr; }

  private:
    std::size_t Place() const { return std::size_t(SendMessageW(m_box, CB_GETCURSEL, 0, 0)); }

    HWND m_box = nullptr;
    Entries m_entries;
};

} // namespace quillet::pages
