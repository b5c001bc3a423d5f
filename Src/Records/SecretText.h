// Overwriting texts that hold a secret: nothing of it may stay in a block that goes back to the heap.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace quillet {

/// Overwrites the text and all that its buffer still holds of longer ones, and empties it. The buffer stays
/// with the string.
inline void OverwriteText(std::wstring& rwsText) noexcept {
    // Within the capacity nothing is allocated, so that this is the one buffer there is.
    rwsText.resize(rwsText.capacity());
    SecureZeroMemory(rwsText.data(), rwsText.size() * sizeof(wchar_t));
    rwsText.clear();
}

/// Copies a secret. A string that has to grow frees its old buffer as it is; what that held goes first.
inline void AssignSecret(std::wstring& rwsTo, const wchar_t* pwszText, std::size_t nLength) {
    OverwriteText(rwsTo);
    rwsTo.assign(pwszText, nLength);
}

} // namespace quillet
