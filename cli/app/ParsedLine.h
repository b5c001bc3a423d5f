// A line of words as the parser took it: what it chose, and what is wrong with it.
#pragma once

#include "app/CommandDescription.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quilletctl {

class ParsedLine {
  public:
    /// Copies none of them; the words are those that the parser is given.
    ParsedLine(const CLI::App& app, const TreeDescription& tree,
               const std::vector<std::string>& words) noexcept
        : m_app(app), m_tree(tree), m_words(words) {}

    /// Noun and verb that it has chosen so far.
    std::vector<std::string> Chosen() const;
    /// Null where they are no command yet.
    const CommandDescription* Command() const;

    // What is wrong with it, in words.

    /// It has words or options too many. @param further words that its command takes no more
    std::string SuperfluousText(const std::vector<std::string>& further) const;
    /// The parser refused it for any other reason.
    std::string MistakeText(const std::string& parserText) const;
    /// It ends before there is a command.
    std::string UnfinishedText() const;

  private:
    const CLI::App& m_app;
    const TreeDescription& m_tree;
    const std::vector<std::string>& m_words;
};

} // namespace quilletctl
