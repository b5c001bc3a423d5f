// Comparing what people write with names and addresses.
#pragma once

#include <string>
#include <string_view>

namespace quillet::state {

/// Whether a text fits a pattern. Steps back to the last gap where a character does not fit, so that the time
/// is bounded by the product of the lengths.
/// @param any  stands for any text
/// @param one  stands for one character
/// @param same whether two characters are the same
template <class Text, class Same>
bool FitsPattern(const Text& text, const Text& pattern, typename Text::value_type any,
                 typename Text::value_type one, Same same) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t gap = Text::npos;
    std::size_t gapEnd = 0;
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == any) {
            gap = in++;
            gapEnd = at;
        } else if (in < pattern.size() && (pattern[in] == one || same(pattern[in], text[at]))) {
            ++in;
            ++at;
        } else if (gap != Text::npos) {
            in = gap + 1;
            at = ++gapEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(any, in) == Text::npos;
}

/// The twelve digits of a MAC address in capital letters, however they are set apart; empty for what is none.
std::string MacDigits(std::string_view text);

} // namespace quillet::state
