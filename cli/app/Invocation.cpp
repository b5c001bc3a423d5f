// Connecting on demand, answering, and what follows a command.
#include "app/Invocation.h"

#include "app/SimulatedMachine.h"
#include "files/Files.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

Invocation::Invocation(const GlobalOptions& options, Terminal& terminal, bool mayChange)
    : m_options(options), m_terminal(terminal), m_mayChange(mayChange) {}

quillet::Session& Invocation::Session() {
    if (!m_connection) {
        if (!m_machine && UsesSimulator(m_options)) {
            if (!AsksForSimulator(m_options)) {
                m_terminal.err << "quilletctl: this host has no WMI, so a simulated machine answers; with "
                                  "--simulate it does so without this line\n";
            }
            m_machine.emplace(m_options.machineFile, m_options.stateFile, m_mayChange);
            for (const quillet::simulator::FaultRule& fault : m_options.faults) {
                m_machine->Machine()->Rules().Add(fault);
            }
        }
        m_connection.emplace(m_options, m_terminal, m_machine ? m_machine->Machine() : nullptr);
    }
    return m_connection->Session();
}

quillet::Session& Invocation::Reconnect() {
    if (IsOutdated()) {
        m_connection.reset();
        m_machine.reset();
    }
    return m_connection ? m_connection->Reconnect() : Session();
}

unsigned Invocation::SideBySide() const noexcept {
    constexpr unsigned kOverANetwork = 8;
    return m_options.machine.empty() || AsksForSimulator(m_options) ? 1 : kOverANetwork;
}

void PrintJson(const Json& json, std::ostream& out) {
    constexpr int kIndent = 2;
    out << json.dump(kIndent, ' ', false, Json::error_handler_t::replace) << '\n';
}

void PrintJsonLine(const Json& json, std::ostream& out) {
    out << json.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

void Invocation::Print(const Json& json) {
    m_hasAnswered = true;
    PrintJson(json, m_terminal.out);
}

void Invocation::PrintLine(const Json& json) {
    m_hasAnswered = true;
    PrintJsonLine(json, m_terminal.out);
}

bool Invocation::Confirm(const std::string& question) {
    if (m_options.yes || m_options.dryRun) {
        return true;
    }
    // A program that reads JSON is no person, whoever sits before the terminal.
    if (m_terminal.in == nullptr || WantsJson()) {
        throw UsageError("nobody can be asked \"" + question + "\"; add --yes to agree");
    }
    m_terminal.out.flush();
    m_terminal.err << Printable(question) << " [y/N] " << std::flush;
    std::string answer;
    std::getline(*m_terminal.in, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

bool Invocation::MayReplace(const std::string& file) {
    if (FileExists(file) && !Confirm("Overwrite " + file + "?")) {
        m_terminal.out << "nothing was written\n";
        return false;
    }
    CheckReplaceable(file); // what comes before the writing may take a while
    return true;
}

bool Invocation::ConfirmChange(const std::string& question) {
    const bool agreed = Confirm(question);
    if (!agreed) {
        m_terminal.out << "nothing was changed\n";
    }
    return agreed;
}

void Invocation::BeginChanges(const std::vector<std::string>& steps,
                              const std::vector<std::string>& remarks) {
    if (!m_options.dryRun) {
        HoldInterrupts();
        return;
    }
    if (WantsJson()) {
        Print(Json{{"dryRun", true}, {"steps", steps}, {"remarks", remarks}});
        throw DryRunEnd();
    }
    for (const std::string& remark : remarks) {
        m_terminal.out << Printable(remark) << '\n';
    }
    for (const std::string& step : steps) {
        m_terminal.out << Printable("would " + step) << '\n';
    }
    m_terminal.out << (steps.empty() ? "nothing would be changed\n" : "");
    throw DryRunEnd();
}

void Invocation::HoldInterrupts() noexcept {
    m_interrupt.Hold(m_terminal.errIsTerminal
                         ? "\nquilletctl: interrupted; what is begun is brought to an end\n"
                         : nullptr);
}

bool Invocation::MayGoOn() noexcept {
    m_hasStopped = m_hasStopped || IsInterrupted();
    return !m_hasStopped;
}

void Invocation::Finish() {
    // Neither a session nor a file is left half-way.
    HoldInterrupts();
    Disconnect();
    // The journal first: it is most wanted when things went wrong.
    if (m_options.journal) {
        PrintJournal();
    }
    if (m_machine) {
        m_machine->Save();
    }
}

namespace {

/// What the context of a call asks of the provider: a client set, or only a part of the data. Values that ask
/// for nothing are left out; most calls have no others.
std::string AskedInContext(const quillet::simulator::JournalEntry& call) {
    std::string asked;
    for (const quillet::simulator::NamedValue& value : call.context) {
        const quillet::simulator::Scalar* scalar = value.value.AsScalar();
        const bool* flag = scalar == nullptr ? nullptr : std::get_if<bool>(scalar);
        const std::int64_t* number = scalar == nullptr ? nullptr : std::get_if<std::int64_t>(scalar);
        if ((flag != nullptr && *flag) || (number != nullptr && *number != 0 && *number != -1)) {
            asked += (asked.empty() ? " {" : ", ") + ToUtf8(value.name) + '=' +
                     (flag != nullptr ? std::string("true") : std::to_string(*number));
        }
    }
    return asked.empty() ? asked : asked + '}';
}

} // namespace

void Invocation::PrintJournal() {
    // What a program parses stays clean.
    std::ostream& stream = WantsJson() ? m_terminal.err : m_terminal.out;
    const auto calls = m_machine ? m_machine->Machine()->Calls().ProviderCalls()
                                 : std::vector<quillet::simulator::JournalEntry>();
    stream << (WantsJson() ? "" : "\n") << "Calls to the provider: " << calls.size() << '\n';
    for (const auto& call : calls) {
        stream << "  " << Printable(ToUtf8(call.Line()) + AskedInContext(call)) << '\n';
    }
}

} // namespace quilletctl
