// Where the secrets of a command come from: a file descriptor, or a prompt that shows nothing of what is
// typed. Never the command line, which every user of a machine can read.
#pragma once

#include "app/Invocation.h"
#include "app/Syntax.h"

#include <quillet/client/Secret.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quilletctl {

/// The longest secret, in bytes of UTF-8.
inline constexpr std::size_t kLongestSecret = 4096;

/// A line on its way in. It moves nowhere, and is overwritten when it goes.
class SecretLine {
  public:
    SecretLine() = default;
    ~SecretLine();
    SecretLine(const SecretLine&) = delete;
    SecretLine& operator=(const SecretLine&) = delete;

    /// Throws UsageError when the line is too long.
    void Append(char byte);
    std::string_view Text() const noexcept { return {m_bytes, m_length}; }
    /// Puts the text, without a carriage return at its end, into a string that is large enough beforehand, so
    /// that growing it leaves no copy behind. Throws UsageError for a text that is not valid UTF-8: a secret
    /// is taken to the byte, or not at all.
    void MoveTo(std::wstring& secret) const;

  private:
    char m_bytes[kLongestSecret]{};
    std::size_t m_length = 0;
};

/// What an empty secret means.
enum class Blank {
    Refused,      ///< nothing: a mistake
    KeepsAtPrompt ///< typed at a prompt, that what is there stays; read from a descriptor, a mistake as well
};

/// The option and the reading of secrets.
class SecretInput {
  public:
    void Declare(Syntax& syntax);
    /// Whether a descriptor was named.
    bool IsNamed() const noexcept { return m_descriptor.has_value(); }
    /// Reads the next secret: the next line of the descriptor, or what a person types. Throws UsageError
    /// where there is neither a line nor a person, where the line is empty (a script's variable that was
    /// never set) and where it is no text.
    /// @param asked what the prompt asks for
    quillet::Secret Read(const std::string& asked, Blank blank = Blank::Refused) const;
    /// The same for a change. A dry run of it asks nobody: it yields a text that only shows that there would
    /// be one.
    quillet::Secret Read(const Invocation& run, const std::string& asked, Blank blank = Blank::Refused) const;

  private:
    void ReadLine(const std::string& asked, std::wstring& secret) const;

    std::optional<LONG> m_descriptor;
};

// What differs between hosts; one implementation file each.

/// Reads one byte, so that nothing behind the line is taken away from a later reader. False at the end;
/// throws UsageError when the descriptor cannot be read.
bool ReadByte(int descriptor, char& byte);
/// Shows a prompt on the process's terminal and reads a line without echo. False where there is no terminal.
bool AskTerminal(const std::string& prompt, std::wstring& secret);

} // namespace quilletctl
