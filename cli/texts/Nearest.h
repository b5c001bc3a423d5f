// What may have been meant by a word that is none.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

/// The word that is most like what was typed; empty where none is like it. Case does not count.
std::string Nearest(std::string_view typed, const std::vector<std::string>& words);
/// What a message about what was typed goes on with: `; did you mean "word"?`. Empty where nothing is like
/// it.
std::string DidYouMean(std::string_view typed, const std::vector<std::string>& words);
/// The same; where nothing is like it, what the message goes on with else.
std::string DidYouMeanOr(std::string_view typed, const std::vector<std::string>& words,
                         const std::string& otherwise);

} // namespace quilletctl
