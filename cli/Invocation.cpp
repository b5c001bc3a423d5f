// Connecting on demand, answering, and what follows a command.
#include "Invocation.h"

#include "SimulatedMachine.h"
#include "Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

Invocation::Invocation(const GlobalOptions& options, Terminal& terminal)
    : m_options(options), m_terminal(terminal) {}

CQuillet& Invocation::Session() {
    if (!m_connection) {
        if (!m_machine && UsesSimulator(m_options)) {
            m_machine = LoadMachine(m_options);
        }
        m_connection.emplace(m_options.machine, m_machine);
    }
    return m_connection->Quillet();
}

void Invocation::Check(HRESULT code, const std::string& asked) {
    if (FAILED(code)) {
        throw Refusal(asked, code);
    }
}

void Invocation::Print(const Json& json) {
    constexpr int INDENT = 2;
    m_terminal.out << json.dump(INDENT, ' ', false, Json::error_handler_t::replace) << '\n';
}

bool Invocation::Confirm(const std::string& question) {
    if (m_options.yes) {
        return true;
    }
    if (m_terminal.in == nullptr) {
        throw UsageError("nobody can be asked \"" + question + "\"; add --yes to agree");
    }
    m_terminal.out.flush();
    m_terminal.err << Printable(question) << " [y/N] " << std::flush;
    std::string answer;
    std::getline(*m_terminal.in, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

void Invocation::Finish() {
    Disconnect();
    // The journal first: it is most wanted when things went wrong.
    if (m_options.journal) {
        PrintJournal();
    }
    if (m_machine && !m_options.stateFile.empty()) {
        SaveMachine(*m_machine, m_options.stateFile);
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
    const auto calls =
        m_machine ? m_machine->Calls().ProviderCalls() : std::vector<quillet::simulator::JournalEntry>();
    stream << (WantsJson() ? "" : "\n") << "Calls to the provider: " << calls.size() << '\n';
    for (const auto& call : calls) {
        stream << "  " << Printable(ToUtf8(call.Line()) + AskedInContext(call)) << '\n';
    }
}

} // namespace quilletctl
