// A simulated machine: the provider's classes and instances, what its methods do, its journal and faults.
#pragma once

#include <quillet-simulator/Faults.h>
#include <quillet-simulator/Journal.h>
#include <quillet-simulator/Repository.h>
#include <quillet-wmi/Mof.h>
#include <quillet-wmi/Registration.h>

#include <chrono>

namespace quillet::simulator {

/// Where a machine's text comes from and how it behaves.
struct MachineOptions {
    std::wstring serverName; ///< the name in object paths; empty: this computer's (GetComputerNameW)
    std::wstring namespaceName = L"ROOT\\MarloLUM2"; ///< where clients connect to
    /// A change outside an open client set is refused (WBEM_E_ACCESS_DENIED) instead of only noted, and so
    /// is an "Apply" of a set that is not open (WBEM_E_INVALID_PARAMETER).
    bool strict = false;
};

/// One instance of QuilletSimulator_Machine in its text sets the server name (where the options leave it
/// empty), strictness and clock of a machine; each instance of QuilletSimulator_FollowUp says what changes of
/// a class ask for, and each instance of QuilletSimulator_Fault is a fault rule.
class Machine {
  public:
    /// The provider's schema with no instance but the network service.
    static std::shared_ptr<Machine> Empty(const MachineOptions& options = {});
    /// The schema and the machine that ships with the simulator.
    static std::shared_ptr<Machine> BuiltIn(const MachineOptions& options = {});
    /// The schema and a machine from MOF. Throws MofError.
    static std::shared_ptr<Machine> FromText(std::string_view mof, const std::string& fileName,
                                             const MachineOptions& options = {});
    /// The same from a file. What it includes is looked for beside it.
    static std::shared_ptr<Machine> FromFile(const std::filesystem::path& file,
                                             const MachineOptions& options = {});
    /// A new machine with the classes and instances that this one has now: far quicker than to compile its
    /// text again. Everything else (the journal, the rules that were added, clock, client sets, runs of
    /// tests) begins anew, as of a machine that was just made from a text.
    std::shared_ptr<Machine> Copy() const;
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    /// The classes and instances. A change made here is in no journal and meets no fault.
    Repository& Store() noexcept;
    /// What clients called.
    Journal& Calls() noexcept;
    /// The fault rules.
    Faults& Rules() noexcept;

    /// Simulated time since the machine was made; it stands still until it is advanced, unless it follows
    /// the real clock.
    std::chrono::milliseconds Now() const;
    /// Lets simulated time pass, and what runs in it go on.
    void Advance(std::chrono::milliseconds time);
    /// Whether simulated time runs with real time from now on.
    void FollowRealTime(bool follow);

    /// How much longer, in simulated time, this adapter blinks after an "IdentifyAdapter"; zero when it does
    /// not.
    std::chrono::milliseconds BlinksFor(std::wstring_view deviceId) const;

    /// Pulls the cable of an adapter (2), plugs it in (3), unloads its driver (1) or takes its hardware out
    /// (0): gives it this "HardwareStatus" with all that goes with it, and its team follows.
    /// WBEM_E_NOT_FOUND for an adapter that the machine does not have, WBEM_E_INVALID_PARAMETER for another
    /// number.
    HRESULT SetHardwareStatus(std::wstring_view deviceId, LONG status);

    /// The client set that was opened last of those open now; 0 when none is.
    LONG OpenClientSet() const;
    /// The follow-up action that the next "Apply" will report, and clears. The greatest one counts.
    void RequireFollowup(LONG action);

    /// Writes the instances as MOF that FromFile reads back.
    std::string Save() const;

    /// COM objects of this simulator that are alive in the process, of all machines.
    static long LiveObjects() noexcept;

    /// What the class providers share; only the simulator's own sources know it.
    struct State;
    /// See State.
    State& Internals() noexcept { return *m_state; }

  private:
    explicit Machine(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// A machine for whoever serves it otherwise than as this process's WMI: where connections to its namespace
/// come from, with its journal and its faults.
std::shared_ptr<Host> HostOf(std::shared_ptr<Machine> machine);

/// Puts a machine behind CLSID_WbemLocator (and CLSID_WbemContext) for this process while it lives.
/// COM looks class objects up by apartment on some hosts: make one on every thread that connects, but only
/// one at a time in an apartment, where a second one may share the registration of the first. COM must have
/// been initialised on the thread.
class Registration {
  public:
    /// Registers the machine on this thread's apartment; see Result.
    explicit Registration(std::shared_ptr<Machine> machine);
    /// S_OK, or why COM did not take the registration.
    HRESULT Result() const noexcept { return m_registration.Result(); }

  private:
    ClassRegistration m_registration;
};

} // namespace quillet::simulator
