// Comparing names with what was typed.
#include "names/NameLookup.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "texts/Nearest.h"
#include "texts/Text.h"

#include <quillet-state/Matching.h>

#include <algorithm>
#include <functional>
#include <iterator>

namespace quilletctl {

namespace {

constexpr char32_t kEllipsis = 0x2026;

/// An identifier is often typed without its braces.
std::string_view WithoutBraces(std::string_view id) {
    return id.size() > 2 && id.front() == '{' && id.back() == '}' ? id.substr(1, id.size() - 2) : id;
}

bool Fits(std::string_view name, std::string_view text, char32_t any, char32_t one) {
    return quillet::state::FitsPattern(Folded(name), Folded(text), any, one, std::equal_to<>());
}

bool IsNamed(std::string_view name, std::string_view text, Match match) {
    switch (match) {
    case Match::Whole:
        return SameIgnoringCase(name, text);
    case Match::Beginning:
        return SameIgnoringCase(name.substr(0, text.size()), text);
    case Match::Shortened:
        return text.find("…") != std::string_view::npos && Fits(name, text, kEllipsis, kEllipsis);
    case Match::Pattern:
        return Fits(name, text, U'*', U'?');
    }
    return false;
}

/// The names that people see.
std::vector<std::string> VisibleNames(const std::vector<Named>& things) {
    std::vector<std::string> names;
    for (const Named& thing : things) {
        std::copy_if(thing.names.begin(), thing.names.end(), std::back_inserter(names),
                     [](const std::string& name) { return !IsObjectPath(name); });
    }
    return names;
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

std::vector<std::size_t> FindNamedOrFitting(const std::vector<Named>& things, const std::string& text) {
    std::vector<std::size_t> found;
    for (const Match match : {Match::Whole, Match::Shortened, Match::Pattern}) {
        found = found.empty() ? FindNamed(things, text, match) : found;
    }
    return found;
}

std::vector<std::size_t> ChooseNamed(const std::vector<Named>& things, const std::vector<std::string>& texts,
                                     const std::string& kind) {
    std::vector<bool> isChosen(things.size(), texts.empty());
    for (const std::string& text : texts) {
        const std::vector<std::size_t> found = FindNamedOrFitting(things, text);
        if (found.empty()) {
            throw UsageError(std::string("no ").append(kind) + " is called \"" + text + '"' +
                             DidYouMean(text, VisibleNames(things)));
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

std::string MeantOrListed(const std::vector<Named>& things, const std::string& text,
                          const std::string& list) {
    return DidYouMeanOr(text, VisibleNames(things), "; see quilletctl " + list);
}

} // namespace quilletctl
