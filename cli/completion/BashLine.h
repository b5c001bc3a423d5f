// A command line as bash has it: taken apart by its quotes, and completed so that bash reads it back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

class BashLine {
  public:
    /// @param line up to the cursor @param breaks the characters at which readline takes words apart
    /// (COMP_WORDBREAKS)
    BashLine(std::string_view line, std::string_view breaks);

    /// The words before the cursor's, without the program's name and without quotes.
    const std::vector<std::string>& Words() const noexcept { return m_words; }
    /// The word at the cursor, without quotes.
    const std::string& Current() const noexcept { return m_current; }
    /// What takes the place of readline's word, which may begin within the current one, for this to become a
    /// word.
    std::string Completed(std::string_view word) const;

  private:
    void Take(char character);
    void TakeUnquoted(char character);
    void EndWord();

    std::string m_breaks; ///< without blanks and quotes
    std::vector<std::string> m_words;
    std::string m_current;
    bool m_isWord = false;    ///< something of the current word is there, if only quotes
    bool m_isEscaped = false; ///< the last character was a backslash that quotes the next
    char m_quote = '\0';      ///< that is open
    std::size_t m_begin = 0;  ///< where in the current word readline's begins
};

} // namespace quilletctl
