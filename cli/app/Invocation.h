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
    /// The session anew: after a failure, or where the simulated machine is another now in its state file.
    /// Throws as Session(), and can be tried again then.
    quillet::Session& Reconnect();
    /// Whether somebody else has changed the simulated machine's state file since it was read.
    bool IsOutdated() const { return m_machine && m_machine->IsOutdated(); }
    /// Disconnects, where there is a connection; what Session() yielded is gone.
    void Disconnect() noexcept { m_connection.reset(); }

    /// The machine to manage; empty: this one.
    const std::string& MachineName() const noexcept { return m_options.machine; }
    bool WantsJson() const noexcept { return m_options.json; }
    /// How many questions to the provider may well be under way at once: over a network each waits for its
    /// answer.
    unsigned SideBySide() const noexcept;
    const Terminal& Screen() const noexcept { return m_terminal; }
    std::ostream& Out() noexcept { return m_terminal.out; }
    /// Writes the command's answer for programs.
    void Print(const Json& json);
    /// Writes one of several such answers, on a line of its own.
    void PrintLine(const Json& json);
    /// Whether that was done.
    bool HasAnswered() const noexcept { return m_hasAnswered; }

    /// Whether a person agrees, or --yes was given, or it is a dry run. Throws UsageError where nobody can be
    /// asked.
    bool Confirm(const std::string& question);
    /// Whether a file may be written: there is none, or a person agrees to overwrite it, and else is told
    /// that nothing was written. Throws UsageError where nobody can be asked, or it cannot be replaced.
    bool MayReplace(const std::string& file);
    /// The same before something is deleted; a person who does not agree is told that nothing was changed.
    bool ConfirmChange(const std::string& question);

    /// Whether the command only tells what it would change.
    bool IsDryRun() const noexcept { return m_options.dryRun; }
    /// Between the last check and the first change: every command that changes something calls it. From here
    /// on a request to end is remembered: what is begun is brought to an end. Before, it ends the process at
    /// once. A dry run answers with the steps instead, and throws DryRunEnd.
    /// @param steps complete "would …"; none: there is nothing to change
    /// @param remarks what else there is to say of it, a sentence each
    void BeginChanges(const std::vector<std::string>& steps, const std::vector<std::string>& remarks = {});
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
    /// From here on a request to end is remembered: what is begun is brought to an end. Before, it ends the
    /// process at once.
    void HoldInterrupts() noexcept;
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
