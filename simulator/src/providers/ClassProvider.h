// What the provider does for one class: one small provider for each class that has behaviour.
#pragma once

#include <quillet-simulator/Machine.h>

#include <quillet-wmi/Connection.h>

#include <optional>

namespace quillet::simulator {

/// A call that may change the machine: who makes it, and inside which client set.
class Request {
  public:
    Request(Machine& machine, const CallContext& context);

    Machine& Target() const noexcept { return m_machine; }
    /// The client set that the call's context names; 0 when it names none.
    LONG ClientSet() const noexcept { return m_clientSet; }
    /// To be called before a change. WBEM_E_ACCESS_DENIED when the machine is strict and the client set is
    /// not open; otherwise such a change is noted and may go on.
    HRESULT Change();
    /// The change takes effect only after this follow-up action; the "Apply" of its set reports it.
    void RequireFollowup(LONG action);
    /// What a method is to answer instead of doing anything, when a fault says so.
    std::optional<LONG> verdict;
    /// To be called after a change of an instance of this class: asks for the follow-up action that the
    /// machine's own description says.
    void Changed(const ClassDefinition& definition);
    /// The power fails while the call is at work, and the call then returns this code.
    void CutPower(HRESULT code) noexcept { m_powerCut = code; }
    std::optional<HRESULT> PowerCut() const noexcept { return m_powerCut; }
    /// Tells the reader of the journal what a stricter machine would have refused.
    void Note(std::wstring text) { m_note = std::move(text); }
    const std::wstring& Notes() const noexcept { return m_note; }

  private:
    Machine& m_machine;
    LONG m_clientSet = 0;
    std::optional<HRESULT> m_powerCut;
    std::wstring m_note;
};

/// A method call on a class or an instance.
struct MethodCall {
    Request& request;
    ClassPtr definition;  ///< the class that the path names
    const Method& method; ///< the method as that class has it
    InstancePtr instance; ///< null when the path names the class
    Instance in;  ///< in-parameters; those not given are null. No definition when the method has none.
    Instance out; ///< to be filled; no definition when the method has no out-parameters

    /// Sets an integer or boolean out-parameter; one that the schema does not have is left out.
    void Answer(std::wstring_view name, std::int64_t number);
};

/// The behaviour of a class and of the classes below it that have no provider of their own.
class ClassProvider {
  public:
    ClassProvider() = default;
    virtual ~ClassProvider() = default;
    ClassProvider(const ClassProvider&) = delete;
    ClassProvider& operator=(const ClassProvider&) = delete;

    /// Runs a method. WBEM_E_NOT_SUPPORTED unless the class has behaviour for it.
    virtual HRESULT ExecMethod(MethodCall& call);
    /// How much simulated time a method takes; it has passed when ExecMethod is called.
    virtual std::chrono::milliseconds Duration(const MethodCall& call) const;
    /// Whether a method may change instances, so that all such calls run one after the other.
    virtual bool Changes(const MethodCall&) const { return true; }
    /// Stores an instance.
    virtual HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode);
    /// Removes an instance.
    virtual HRESULT DeleteInstance(Request& request, const ObjectPath& path, const Instance& instance);
};

/// The providers by class name.
using ClassProviders = std::map<std::wstring, std::unique_ptr<ClassProvider>, NameLess>;

/// "BeginApply", "Apply" and "GetKavlorWarnings" of Zorel_NetService.
std::unique_ptr<ClassProvider> MakeNetServiceProvider();
/// "CreateVLAN" of Zorel_802dot1QVLANService.
std::unique_ptr<ClassProvider> MakeVlanServiceProvider();
/// Changing and removing a Zorel_VLAN.
std::unique_ptr<ClassProvider> MakeVlanProvider();
/// "IdentifyAdapter", "GetHbaPath", "GetNDISVersion", "GetAdapterWarnings", "ValidateSettingOnNewTeam" and
/// the power options of Zorel_PhysicalEthernetAdapter; an adapter that is written takes its team along.
std::unique_ptr<ClassProvider> MakePhysicalAdapterProvider();
/// The methods of Zorel_TeamOfAdapters; a team that changes or goes takes along what depends on it.
std::unique_ptr<ClassProvider> MakeTeamProvider();
/// The members that join and leave a team (Zorel_TeamedMemberAdapter), and their roles.
std::unique_ptr<ClassProvider> MakeTeamMembershipProvider();
/// Writes to advanced settings (Zorel_Setting and the classes below it).
std::unique_ptr<ClassProvider> MakeSettingProvider();
/// The methods of Zorel_BootAgent and of the list of iSCSI adapters.
std::unique_ptr<ClassProvider> MakeNetworkBootProvider();
/// "RunTest" and "DiscontinueTest" of Zorel_DiagTest.
std::unique_ptr<ClassProvider> MakeDiagTestProvider();

} // namespace quillet::simulator
