// Comparing names with what was typed.
#include "names/NameLookup.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "texts/Nearest.h"
#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

namespace {

constexpr char32_t kEllipsis = 0x2026;

/// An identifier is often typed without its braces.
std::string_view WithoutBraces(std::string_view id) {
    return id.size() > 2 && id.front() == '{' && id.back() == '}' ? id.substr(1, id.size() - 2) : id;
}

/// Whether a text fits a pattern. Steps back to the last gap where a letter does not fit, so that the time is
/// bounded by the product of the lengths.
bool Fits(const std::u32string& text, const std::u32string& pattern, char32_t any, char32_t one) {
    std::size_t at = 0;
    std::size_t in = 0;
    std::optional<std::size_t> gap;
    std::size_t gapEnd = 0;
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == any) {
            gap = in++;
            gapEnd = at;
        } else if (in < pattern.size() && (pattern[in] == text[at] || pattern[in] == one)) {
            ++in;
            ++at;
        } else if (gap) {
            in = *gap + 1;
            at = ++gapEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(any, in) == std::u32string::npos;
}

bool IsNamed(std::string_view name, std::string_view text, Match match) {
    switch (match) {
    case Match::Whole:
        return SameIgnoringCase(name, text);
    case Match::Beginning:
        return SameIgnoringCase(name.substr(0, text.size()), text);
    case Match::Shortened:
        return text.find("…") != std::string_view::npos &&
               Fits(Folded(name), Folded(text), kEllipsis, kEllipsis);
    case Match::Pattern:
        return Fits(Folded(name), Folded(text), U'*', U'?');
    }
    return false;
}

} // namespace

bool IsPattern(std::string_view text) {
    return text.find_first_of("*?") != std::string_view::npos;
}

std::vector<std::size_t> FindNamed(const std::vector<Named>& things, const std::string& text, Match match) {
    std::size_t kinds = 0;
    for (const Named& thing : things) {
        kinds = std::max(kinds, thing.names.size());
    }
    std::vector<std::size_t> found;
    for (std::size_t kind = 0; kind < kinds && found.empty() && !text.empty(); ++kind) {
        for (std::size_t i = 0; i < things.size(); ++i) {
            const std::string name = kind < things[i].names.size() ? things[i].names[kind] : std::string();
            // A pattern is meant for names that people see; nearly any would fit somewhere in a path.
            const bool isHidden = match == Match::Pattern && IsObjectPath(name);
            if (!name.empty() && !isHidden &&
                (IsNamed(name, text, match) || IsNamed(Printable(name), text, match) ||
                 IsNamed(WithoutBraces(name), WithoutBraces(text), match))) {
                found.push_back(i);
            }
        }
    }
    return found;
}

std::optional<std::size_t> FindOneNamed(const std::vector<Named>& things, const std::string& text,
                                        const std::string& kind, std::initializer_list<Match> matches) {
    std::vector<std::size_t> found;
    for (const Match match : matches) {
        if (found.empty()) {
            found = FindNamed(things, text, match);
        }
    }
    if (found.size() > 1) {
        std::string candidates;
        for (const std::size_t i : found) {
            candidates += (candidates.empty() ? "" : ", ") + things[i].id;
            // The name that they share is in the message already.
            if (!SameIgnoringCase(things[i].called, text)) {
                candidates += " (" + things[i].called + ')';
            }
        }
        throw UsageError("several " + kind + " are called \"" + text + "\": " + candidates);
    }
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<std::size_t> ChooseNamed(const std::vector<Named>& things, const std::vector<std::string>& texts,
                                     const std::string& kind) {
    std::vector<bool> isChosen(things.size(), texts.empty());
    for (const std::string& text : texts) {
        std::vector<std::size_t> found;
        for (const Match match : {Match::Whole, Match::Shortened, Match::Pattern}) {
            found = found.empty() ? FindNamed(things, text, match) : found;
        }
        if (found.empty()) {
            std::vector<std::string> names;
            for (const Named& thing : things) {
                names.insert(names.end(), thing.names.begin(), thing.names.end());
            }
            throw UsageError(std::string("no ").append(kind) + " is called \"" + text + '"' +
                             DidYouMean(text, names));
        }
        for (const std::size_t i : found) {
            isChosen[i] = true;
        }
    }
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < things.size(); ++i) {
        if (isChosen[i]) {
            chosen.push_back(i);
        }
    }
    return chosen;
}

} // namespace quilletctl
