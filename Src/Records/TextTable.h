// Numbers and their texts for people.
#pragma once

#include <quillet/TeamTexts.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

namespace quillet {

using TextTable = std::span<const CTeamTexts::Entry>;

/// The text of a number or a bit; null for one without a text.
inline const wchar_t* FindText(TextTable table, ULONGLONG ullValue) {
    const auto found = std::find_if(table.begin(), table.end(), [ullValue](const CTeamTexts::Entry& rEntry) {
        return rEntry.m_ullValue == ullValue;
    });
    return found == table.end() ? nullptr : found->m_pszText;
}

/// The text of a number; empty for one without a text, as every negative one is.
inline std::wstring TextOf(TextTable table, LONG lValue) {
    const wchar_t* const pszText = lValue < 0 ? nullptr : FindText(table, static_cast<ULONGLONG>(lValue));
    return pszText != nullptr ? pszText : L"";
}

/// A sentence for each bit of a mask, lowest first; one without a text is the other words, its number and
/// that it is unknown.
inline std::vector<std::wstring> SentencesOf(TextTable table, ULONGLONG ullMask,
                                             const std::wstring& rwsOther) {
    std::vector<std::wstring> sentences;
    for (unsigned bit = 0; bit < 64; ++bit) {
        const ULONGLONG value = ULONGLONG{1} << bit;
        if ((ullMask & value) != 0) {
            const wchar_t* const pszText = FindText(table, value);
            sentences.push_back(pszText != nullptr ? pszText
                                                   : rwsOther + std::to_wstring(bit) + L" (unknown)");
        }
    }
    return sentences;
}

} // namespace quillet
