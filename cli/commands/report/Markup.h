// Texts in HTML and SVG.
#pragma once

#include <string>
#include <string_view>

namespace quilletctl {

/// A text (UTF-8) as both take it, in an attribute as well: nothing in it is markup, and nothing in it is a
/// character that XML does not know. One that is longer than anybody reads is cut in its middle.
std::string Escaped(std::string_view utf8);

/// How wide a text is at most in a usual font without serifs, in hundredths of the font's size.
int EstimatedWidth(std::string_view utf8);
/// The text cut in its middle so that it is no wider.
std::string ShortenedTo(std::string_view utf8, int width);

} // namespace quilletctl
