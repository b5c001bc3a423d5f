// What a test of an operation needs: a simulated machine, a session with it, and the two witnesses of what
// the library did, the provider's journal and the trace file.
#pragma once

#include "QuilletTestAccess.h"
#include "TraceFile.h"
#include "Way.h"

#include <quillet-simulator/Machine.h>
#include <quillet/Quillet.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using quillet::simulator::Effect;
using quillet::simulator::FaultRule;
using quillet::simulator::JournalEntry;
using quillet::simulator::Machine;
using quillet::simulator::MachineOptions;
using quillet::simulator::NamedValue;
using quillet::simulator::Operation;

/// A result code in either of the forms that the SDK declares them in: HRESULTs, and WMI's unsigned
/// enumeration.
struct ResultCode {
    template <class Value>
    ResultCode(Value code) noexcept : value(static_cast<HRESULT>(code)) {}
    HRESULT value;
};

/// A result code as people know it, "0x80041001", so that a failed comparison says something.
std::string Code(ResultCode result);
/// UTF-8, to compare with literals.
std::string Narrow(std::wstring_view text);

/// The fixture. Every test starts with the machine that ships with the simulator, a trace file of its own and
/// an object that is not connected, and ends with the connection closed.
///
/// A test with parameters derives from testing::WithParamInterface<T> as well.
class ProviderTest : public testing::Test {
  protected:
    /// The computer's name in the object paths of the machines.
    static constexpr const wchar_t* kServer = L"TESTHOST";
    /// The path of the network service of every machine that the simulator ships with.
    static constexpr const char* kNetService =
        R"(\\TESTHOST\ROOT\MarloLUM2:Zorel_NetService.Name="ZorelNetService")";
    /// The MOF of that service.
    static constexpr const char* kNetServiceMof =
        R"(instance of Zorel_NetService { Name = "ZorelNetService"; };)";

    /// Starts with the machine that ships with the simulator.
    ProviderTest();
    /// Starts with a machine of these MOF instances and no others; quicker, and easier to foretell.
    explicit ProviderTest(std::string_view mof);
    ~ProviderTest() override;

    /// @name Machine
    /// @{
    /// Options with the fixture's server name.
    static MachineOptions Options();
    /// Answers with this machine from now on; with none, nothing is registered.
    void Use(std::shared_ptr<Machine> replacement);
    /// Answers with a machine of these instances and no others.
    void UseText(std::string_view mof, MachineOptions options = Options());
    /// Connects, and forgets what was called and traced until then.
    void Connect();
    /// @}

    /// @name Faults
    /// @{
    void Inject(FaultRule rule) { machine->Rules().Add(std::move(rule)); }
    /// Makes a call fail with this code. @param target a class, path or property; empty: any
    void Fail(Operation operation, ResultCode code, const wchar_t* target = L"", unsigned nth = 1);
    /// Makes a call do something else. @param target as above
    void Spoil(Operation operation, Effect effect, const wchar_t* target = L"", unsigned nth = 1);
    /// @}

    /// @name Witnesses
    /// @{
    /// The texts traced since the last call, without the heads of their lines.
    std::vector<std::string> Traced();
    /// The calls since the last call of this function, a line each: what JournalEntry::Line() says and, if
    /// the call came with a context, the context's values in braces. Only provider calls, unless
    /// RecordLocalCalls() was asked for.
    std::vector<std::string> Called();
    /// The entries behind Called(), which are then forgotten as well.
    std::vector<JournalEntry> Calls();
    /// Those of one operation; nothing is forgotten.
    std::vector<JournalEntry> CallsOf(Operation operation) const;
    /// Forgets them unread.
    void ForgetCalls();
    /// Writes the calls that stay with the client (Get, Put, SetBlanket, …) into the journal, too.
    void RecordLocalCalls() { machine->Calls().RecordLocal(true); }
    static std::string Describe(const JournalEntry& entry);
    /// @}

    /// Runs an operation once as it is, and then once for each provider call that it made, with that call
    /// failing. Each time the code must come back, the failed call must be the last one, and the trace must
    /// have a line that the good run had not.
    /// @param operation must leave the session as it found it
    /// @param expected  what comes back when this call fails with `code`; nothing: the code itself
    void FailEachProviderCall(
        const std::function<HRESULT()>& operation,
        const std::function<HRESULT(const JournalEntry& failed, HRESULT code)>& expected = {});

    std::shared_ptr<Machine> machine;
    CQuillet quillet;

  private:
    std::unique_ptr<quillet::tests::Way> m_way;
    std::optional<quillet::wmi::ClassRegistration> m_registration;
    quillet::tests::TraceFile m_trace;
};
