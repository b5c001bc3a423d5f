// Quotes of bash.
#include "completion/BashLine.h"

#include <algorithm>

namespace quilletctl {

namespace {

bool IsPlain(char character) {
    constexpr std::string_view kMarks = "_./:=@%+,-";
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') || kMarks.find(character) != std::string_view::npos;
}

} // namespace

BashLine::BashLine(std::string_view line, std::string_view breaks) {
    for (const char character : breaks) {
        if (std::string_view(" \t\n\"'").find(character) == std::string_view::npos) {
            m_breaks += character;
        }
    }
    for (const char character : line) {
        Take(character);
    }
    // The first word is the program.
    if (!m_words.empty()) {
        m_words.erase(m_words.begin());
    }
}

void BashLine::Take(char character) {
    if (m_isEscaped) {
        // Between double quotes a backslash quotes only what would mean something there.
        if (m_quote == '"' && std::string_view("\"\\$`").find(character) == std::string_view::npos) {
            m_current += '\\';
        }
        m_current += character;
        m_isEscaped = false;
    } else if (m_quote == '\0') {
        TakeUnquoted(character);
    } else if (character == m_quote) {
        m_quote = '\0';
    } else if (character == '\\' && m_quote == '"') {
        m_isEscaped = true;
    } else {
        m_current += character;
    }
}

void BashLine::TakeUnquoted(char character) {
    if (character == ' ' || character == '\t' || character == '\n') {
        EndWord();
        return;
    }
    m_isWord = true;
    if (character == '\\') {
        m_isEscaped = true;
    } else if (character == '"' || character == '\'') {
        m_quote = character;
        m_begin = m_current.size();
    } else {
        m_current += character;
        m_begin = m_breaks.find(character) != std::string::npos ? m_current.size() : m_begin;
    }
}

void BashLine::EndWord() {
    if (m_isWord) {
        m_words.push_back(std::move(m_current));
    }
    m_current.clear();
    m_isWord = false;
    m_begin = 0;
}

std::string BashLine::Completed(std::string_view word) const {
    std::string text;
    for (const char character : word.substr(std::min(m_begin, word.size()))) {
        if (m_quote == '\'') {
            text += character == '\'' ? "'\\''" : std::string(1, character);
        } else if (m_quote == '"' && character == '!') {
            text += "\"\\!\""; // nothing quotes it there
        } else {
            const bool isPlain = m_quote == '"'
                                     ? std::string_view("\"\\$`").find(character) == std::string_view::npos
                                     : IsPlain(character);
            text += isPlain ? "" : "\\";
            text += character;
        }
    }
    // Readline closes the quotes, unless they look closed already.
    const bool looksClosed = m_quote != '\0' && text.ends_with(m_quote);
    return looksClosed ? text + m_quote : text;
}

} // namespace quilletctl
