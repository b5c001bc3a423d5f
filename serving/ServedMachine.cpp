// Serving a machine.
#include "ServedMachine.h"

#include "Options.h"

#include <ending/Failure.h>
#include <quillet-wmi/Text.h>

#include <fcntl.h>
#include <unistd.h>

namespace quillet::serving {

namespace {

quilletctl::KeptMachine Kept(const std::string& file, const std::string& stateFile) {
    try {
        return {file == "builtin" ? std::string() : file, stateFile, true};
    } catch (const quilletctl::UsageError& mistake) {
        throw Mistake(mistake.what());
    }
}

} // namespace

CallLog::CallLog(const std::string& file) {
    if (file.empty()) {
        return;
    }
    // Names and addresses are in it: a new one is its owner's alone.
    const int made = open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (made >= 0) {
        close(made);
    }
    m_stream.open(file, std::ios::app);
    if (!m_stream) {
        throw Mistake(file + ": cannot be written");
    }
}

void CallLog::Write(simulator::Machine& machine, const std::string& prefix) {
    const std::lock_guard lock(m_mutex); // so that lines come in the order of the calls
    for (const simulator::JournalEntry& call : machine.Calls().Take()) {
        if (m_stream.is_open() && wmi::IsProviderCall(call.operation)) {
            m_stream << prefix << wmi::ToUtf8(call.Line()) << '\n';
        }
    }
    m_stream.flush();
}

ServedMachine::ServedMachine(const std::string& file, const std::string& stateFile, CallLog& calls,
                             std::string prefix)
    : m_kept(Kept(file, stateFile)), m_calls(calls), m_prefix(std::move(prefix)) {
    const std::shared_ptr<simulator::Machine>& machine = m_kept.Machine();
    wmi::ConnectArguments arguments;
    arguments.resource = L"ROOT\\MarloLUM2";
    const wmi::Outcome outcome = simulator::HostOf(machine)->Connect({}, arguments, m_connection);
    if (FAILED(outcome.status)) {
        throw Mistake(file + ": the machine takes no connection");
    }
    machine->Calls().Clear();
    m_service = std::make_unique<wsman::Service>(
        m_connection, [machine](std::wstring_view name) { return machine->Store().FindClass(name); });
    Save();
}

std::string ServedMachine::Name() const {
    return wmi::ToUtf8(m_connection->ServerName());
}

wsman::Reply ServedMachine::Answer(std::string request, const std::string& user) {
    wsman::Reply reply = m_service->Answer(std::move(request), user);
    m_calls.Write(*m_kept.Machine(), m_prefix);
    return reply;
}

void ServedMachine::Save() {
    const std::uint64_t generation = m_kept.Machine()->Store().Generation();
    if (generation == m_saved) {
        return; // to write a large machine as text takes a while
    }
    try {
        m_kept.Save();
        m_saved = generation;
    } catch (const quilletctl::UsageError& failure) {
        throw Mistake(failure.what());
    }
}

} // namespace quillet::serving
