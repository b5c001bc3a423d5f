// CLumString: a wide string that can be formatted.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

/// A wide text. It converts to a zero-terminated one and from any other, so it can stand where either is
/// expected.
class CLumString {
  public:
    CLumString() = default;
    /// Null gives the empty text.
    CLumString(const wchar_t* text) : m_text(text == nullptr ? L"" : text) {}
    CLumString(std::wstring text) noexcept : m_text(std::move(text)) {}

    /// Replaces the text. The format has its Windows meaning on every host ("%s" is wide); there is no limit
    /// to the length, and this text may itself be an argument.
    /// @return the new length; -1 for a null format or one that can not be formatted, which leaves the text
    /// as it was
    int FormatString(const wchar_t* format, ...);

    operator const wchar_t*() const noexcept { return m_text.c_str(); }
    const std::wstring& ToString() const noexcept { return m_text; }
    std::size_t Length() const noexcept { return m_text.size(); }
    bool IsEmpty() const noexcept { return m_text.empty(); }

    CLumString& operator+=(const CLumString& tail) {
        m_text += tail.m_text;
        return *this;
    }

    friend bool operator==(const CLumString& left, const CLumString& right) noexcept {
        return left.m_text == right.m_text;
    }
    friend bool operator!=(const CLumString& left, const CLumString& right) noexcept {
        return left.m_text != right.m_text;
    }
    friend bool operator<(const CLumString& left, const CLumString& right) noexcept {
        return left.m_text < right.m_text;
    }
    // Spelt out because a comparison with a plain text could otherwise be one of two pointers.
    friend bool operator==(const CLumString& left, const wchar_t* right) { return left == CLumString(right); }
    friend bool operator==(const wchar_t* left, const CLumString& right) { return CLumString(left) == right; }
    friend bool operator!=(const CLumString& left, const wchar_t* right) { return !(left == right); }
    friend bool operator!=(const wchar_t* left, const CLumString& right) { return !(left == right); }
    friend bool operator<(const CLumString& left, const wchar_t* right) { return left < CLumString(right); }
    friend bool operator<(const wchar_t* left, const CLumString& right) { return CLumString(left) < right; }

  private:
    std::wstring m_text;
};
