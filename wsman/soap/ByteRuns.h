// Arrays of bytes while they come in: an element for each byte is twenty times what they hold.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet::wsman {

/// The attribute that has the bytes of a run, two hexadecimal digits each.
inline constexpr std::string_view kRunAttribute = "quillet-run";

/// Takes a message piece by piece and keeps it with each run of elements such as
/// "<p:Data>0</p:Data><p:Data>255</p:Data>" as one, "<p:Data quillet-run="00ff"/>", which Values reads. Of a
/// message in another encoding than UTF-8, and of one with comments or CDATA, nothing is changed.
class ByteRuns {
  public:
    /// @param names of the elements that are bytes, without prefixes
    explicit ByteRuns(std::vector<std::string> names) : m_names(std::move(names)) {}

    /// Appends the next piece to what is kept.
    void Append(std::string_view piece, std::string& kept);
    /// Appends what was held back at the end.
    void Finish(std::string& kept);

  private:
    /// Takes the beginning of what is held back; false where more is needed to know what it is.
    bool Step(std::string& kept);
    bool StepInRun(std::string& kept);
    bool IsByteName(std::string_view name) const;

    const std::vector<std::string> m_names;
    std::string m_held;
    std::size_t m_place = 0; ///< in what is held: taken up to here
    std::string m_name;      ///< of the elements of the run, with prefix; empty: there is none
    bool m_isOff = false;
};

/// The bytes of a run. Nothing for what is none.
bool DecodeRun(std::string_view digits, std::vector<unsigned char>& bytes);

} // namespace quillet::wsman
