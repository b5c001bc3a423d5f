// Keys and passwords.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace quillet {

/// A key or a password. It is overwritten when it goes, when it is replaced and when it is moved from; it
/// cannot be put into a stream, and converts to no text by itself.
class Secret {
  public:
    /// No secret: an empty text.
    Secret() noexcept = default;
    /// Takes a copy. The text that it is made from is the caller's to overwrite.
    explicit Secret(std::wstring_view text);
    /// Copies it.
    Secret(const Secret& other);
    /// Takes it over; the other one holds none any more.
    Secret(Secret&& other) noexcept;
    /// Overwrites the secret that was there.
    Secret& operator=(Secret other) noexcept;
    ~Secret();

    /// Whether there is none.
    bool IsEmpty() const noexcept { return m_length == 0; }
    /// The text, for whoever must have it: valid as long as the secret is not changed. Nobody overwrites a
    /// copy that is made of it.
    std::wstring_view Reveal() const noexcept { return {m_text, m_length}; }
    /// Overwrites it. There is none then.
    void Clear() noexcept;

    /// Whether they are the same, in a time that does not tell where they differ.
    friend bool operator==(const Secret& left, const Secret& right) noexcept;

  private:
    wchar_t* m_text = nullptr;
    std::size_t m_length = 0;
};

/// A secret is not printed.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>&, const Secret&) = delete;
/// As the one before.
template <class Traits>
std::basic_ostream<wchar_t, Traits>& operator<<(std::basic_ostream<wchar_t, Traits>&, const Secret&) = delete;

} // namespace quillet
