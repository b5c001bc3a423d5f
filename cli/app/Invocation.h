// One run of a command: its options, the provider that it talks to, and where it writes.
#pragma once

#include "app/Connection.h"
#include "app/Options.h"
#include "ending/Failure.h"
#include "ending/Interrupt.h"
#include "files/KeptMachine.h"
#include "terminal/Terminal.h"
#include "texts/Json.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace quilletctl {

/// Writes JSON as every command does.
void PrintJson(const Json& json, std::ostream& out);
/// Writes JSON in one line, for readers that take a line for a document.
void PrintJsonLine(const Json& json, std::ostream& out);

class Invocation {
  public:
    /// @param mayChange whether the command may change the machine
    Invocation(const GlobalOptions& options, Terminal& terminal, bool mayChange);

    /// The session with the provider; connects when it is first asked for. Throws Refusal or UsageError.
    quillet::Session& Session();
    /// Disconnects, where there is a connection; what Session() yielded is gone.
    void Disconnect() noexcept { m_connection.reset(); }

    bool WantsJson() const noexcept { return m_options.json; }
    const Terminal& Screen() const noexcept { return m_terminal; }
    std::ostream& Out() noexcept { return m_terminal.out; }
    /// Writes the command's answer for programs.
    void Print(const Json& json);
    /// The same in one line.
    void PrintLine(const Json& json);
    /// Whether that was done.
    bool HasAnswered() const noexcept { return m_hasAnswered; }

    /// Whether a person agrees, or --yes was given. Throws UsageError where nobody can be asked.
    bool Confirm(const std::string& question);
    /// The same before something is deleted; a person who does not agree is told that nothing was changed.
    bool ConfirmChange(const std::string& question);

    /// From here on a request to end is remembered: what is begun is brought to an end. Before, it ends the
    /// process at once.
    void HoldInterrupts() noexcept;
    /// Whether to begin the next of several steps. No longer after a request to end; the command then answers
    /// with what was done and what not.
    bool MayGoOn() noexcept;
    bool IsInterrupted() const noexcept { return m_interrupt.Requested(); }
    /// Whether that kept the command from a step.
    bool HasStopped() const noexcept { return m_hasStopped; }

    /// Keeps a failure that must not keep the command from its answer: it is told after it.
    void FailAfterAnswer(Refusal refusal) { m_refusals.push_back(std::move(refusal)); }
    const std::vector<Refusal>& RefusalsAfterAnswer() const noexcept { return m_refusals; }
    /// Notes what closing a client set said on the way out of a failure.
    void NoteRestart(std::optional<bool> isNeeded) noexcept { m_restartNeeded = isNeeded; }
    /// Nothing where no client set was closed so.
    std::optional<bool> RestartNeeded() const noexcept { return m_restartNeeded; }

    /// After the command: disconnects, saves the simulated machine if asked to, and prints the journal if
    /// asked to. Throws UsageError when the state file cannot be written.
    void Finish();

  private:
    void PrintJournal();

    const GlobalOptions& m_options;
    Terminal& m_terminal;
    bool m_mayChange;
    std::optional<KeptMachine> m_machine;
    std::optional<Connection> m_connection;
    bool m_hasAnswered = false;
    Interrupt m_interrupt;
    bool m_hasStopped = false;
    std::vector<Refusal> m_refusals;
    std::optional<bool> m_restartNeeded;
};

} // namespace quilletctl
