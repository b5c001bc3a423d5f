// Finding what the command line names, whatever kind of thing it is.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

/// A thing and everything that it goes by (UTF-8).
struct Named {
    std::string id;     ///< what names it alone, for messages that list several
    std::string called; ///< what people call it
    /// From what can name one thing only to what several may share; the same kind of name at the same place
    /// in all things of a list, empty where a thing has none.
    std::vector<std::string> names;
};

/// How a text may stand for a name. Case never counts, nor do braces around a name; what is printed of a name
/// that would steer the terminal is the name as well.
enum class Match {
    Whole,     ///< it is the name
    Beginning, ///< the name begins with it
    Shortened, ///< it is the name as a table shows it, with "…" for what was left out
    Pattern    ///< it stands for every name that fits, with `*` for any text and `?` for any character
};

/// Whether the text has a `*` or a `?`.
bool IsPattern(std::string_view text);

/// The places of the things that a text names, by the first kind of name by which it names any.
std::vector<std::size_t> FindNamed(const std::vector<Named>& things, const std::string& text, Match match);

/// The place of the one thing that a text names; nothing where it names none. Throws UsageError, with all
/// candidates, where it names several.
/// @param kind what the message calls things of this kind: "adapters"
/// @param matches the ways in which it may name it, in their order
std::optional<std::size_t>
FindOneNamed(const std::vector<Named>& things, const std::string& text, const std::string& kind,
             std::initializer_list<Match> matches = {Match::Whole, Match::Shortened});

/// The places of the things that a text names, by a name or as a pattern.
std::vector<std::size_t> FindNamedOrFitting(const std::vector<Named>& things, const std::string& text);

/// The places of the things that any of the texts names, by a name or as a pattern, in the order of the
/// things; all of them without a text. Throws UsageError where a text names none.
/// @param kind what the message calls a thing of this kind: "team"
std::vector<std::size_t> ChooseNamed(const std::vector<Named>& things, const std::vector<std::string>& texts,
                                     const std::string& kind);

/// What a message about a text that names none of the things goes on with: the name that may have been meant,
/// or else the command that lists them ("team list").
std::string MeantOrListed(const std::vector<Named>& things, const std::string& text, const std::string& list);

} // namespace quilletctl
