// Reading secrets without leaving copies of them behind.
#include "secrets/SecretInput.h"

#include "ending/Failure.h"
#include "texts/Text.h"

#include <windows.h>

namespace quilletctl {

namespace {

/// The bytes of the character that begins with this one.
std::size_t LengthOfCharacter(char first) {
    const auto byte = static_cast<unsigned char>(first);
    return byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
}

} // namespace

SecretLine::~SecretLine() {
    SecureZeroMemory(m_bytes, sizeof m_bytes);
}

void SecretLine::Append(char byte) {
    if (m_length == kLongestSecret) {
        throw UsageError("a secret has at most " + std::to_string(kLongestSecret) + " bytes");
    }
    m_bytes[m_length++] = byte;
}

void SecretLine::MoveTo(std::wstring& secret) const {
    std::string_view rest = Text();
    if (rest.ends_with('\r')) {
        rest.remove_suffix(1);
    }
    if (!IsUtf8(rest)) {
        throw UsageError("a secret must be valid UTF-8");
    }
    // A string that has to grow frees its old block as it is.
    SecureZeroMemory(secret.data(), secret.size() * sizeof(wchar_t));
    secret.clear();
    secret.reserve(rest.size());
    while (!rest.empty()) {
        // A character at a time: no other string ever holds the whole.
        const std::string_view character = rest.substr(0, LengthOfCharacter(rest.front()));
        secret += ToWide(character);
        rest.remove_prefix(character.size());
    }
}

void SecretInput::Declare(Syntax& syntax) {
    syntax.TakesSecrets();
    syntax.Number("--secret-fd", m_descriptor, 0, 65535,
                  "Read secrets from this file descriptor, a line each, instead of asking");
}

void SecretInput::ReadLine(const std::string& asked, std::wstring& secret) const {
    SecretLine line;
    char byte = '\0';
    bool isLine = false;
    while (ReadByte(static_cast<int>(*m_descriptor), byte)) {
        isLine = true;
        if (byte == '\n') {
            break;
        }
        line.Append(byte);
    }
    SecureZeroMemory(&byte, sizeof byte);
    if (!isLine) {
        throw UsageError("--secret-fd: no line is left for \"" + asked + "\"");
    }
    line.MoveTo(secret);
}

quillet::Secret SecretInput::Read(const Invocation& run, const std::string& asked, Blank blank) const {
    return run.IsDryRun() && !m_descriptor ? quillet::Secret(L"***") : Read(asked, blank);
}

quillet::Secret SecretInput::Read(const std::string& asked, Blank blank) const {
    struct Overwritten {
        ~Overwritten() { SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t)); }
        std::wstring text;
    } read;
    std::wstring& secret = read.text;
    if (m_descriptor) {
        ReadLine(asked, secret);
    } else if (!AskTerminal(asked + (blank == Blank::KeepsAtPrompt ? " (empty: as it is): " : ": "),
                            secret)) {
        throw UsageError("a secret is needed, and there is no terminal to ask on; give --secret-fd");
    }
    if (!IsWellFormed(secret)) {
        throw UsageError("a secret must be a text: half a character is none");
    }
    if (secret.empty() && (m_descriptor || blank == Blank::Refused)) {
        throw UsageError(m_descriptor ? "--secret-fd: the line for \"" + asked + "\" is empty"
                                      : "nothing was typed for \"" + asked + '"');
    }
    return quillet::Secret(secret);
}

} // namespace quilletctl
