// How far one word is from another.
#include "texts/Nearest.h"

#include "texts/Text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quilletctl {

namespace {

/// What was typed may be of any length; names are short.
constexpr std::size_t kLongest = 128;

/// How many characters are to be put in, left out, changed or swapped with their neighbour to make one text
/// of the other.
std::size_t Distance(const std::u32string& left, const std::u32string& right) {
    std::vector<std::size_t> before;
    std::vector<std::size_t> last(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= left.size(); ++i) {
        before = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            row[j] =
                std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
    }
    return row.back();
}

} // namespace

std::string Nearest(std::string_view typed, const std::vector<std::string>& words) {
    const std::u32string wanted = Folded(typed.substr(0, kLongest));
    // A third of the characters may be wrong, and one of a short word.
    std::size_t most = std::max<std::size_t>(1, wanted.size() / 3);
    std::string nearest;
    for (const std::string& word : words) {
        const std::u32string candidate = Folded(std::string_view(word).substr(0, kLongest));
        const std::size_t distance = Distance(wanted, candidate);
        if (distance <= most && distance < candidate.size() && (nearest.empty() || distance < most)) {
            nearest = word;
            most = distance;
        }
    }
    return nearest;
}

std::string DidYouMean(std::string_view typed, const std::vector<std::string>& words) {
    const std::string nearest = Nearest(typed, words);
    return nearest.empty() ? std::string() : "; did you mean \"" + nearest + "\"?";
}

std::string DidYouMeanOr(std::string_view typed, const std::vector<std::string>& words,
                         const std::string& otherwise) {
    const std::string meant = DidYouMean(typed, words);
    return meant.empty() ? otherwise : meant;
}

} // namespace quilletctl
