// Session, the client layer's face: everything that CQuillet can do, as values, scopes and exceptions.
#pragma once

#include <quillet/client/Adapter.h>
#include <quillet/client/Boot.h>
#include <quillet/client/Diagnostics.h>
#include <quillet/client/Error.h>
#include <quillet/client/FetchOnce.h>
#include <quillet/client/Flags.h>
#include <quillet/client/Id.h>
#include <quillet/client/LinkSecurity.h>
#include <quillet/client/Power.h>
#include <quillet/client/Setting.h>
#include <quillet/client/Team.h>
#include <quillet/client/Vlan.h>
#include <quillet/client/Words.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillet {

/// Keeps COM usable in this process, on threads that have not initialised it as well: they belong to the
/// multithreaded apartment for so long. The apartments of threads that have one stay as they are.
class ComUsage {
  public:
    /// Throws Error.
    ComUsage();
    ~ComUsage();
    ComUsage(const ComUsage&) = delete;
    ComUsage& operator=(const ComUsage&) = delete;

  private:
    void* m_cookie = nullptr;
};

/// Which machine to manage.
struct SessionOptions {
    std::wstring machine{}; ///< its host name or address, without leading backslashes; empty: this machine
};

/// A session with one machine's provider: connected from its constructor to its destructor.
///
/// Whatever fails throws Error; lists that were begun throw PartialError of the list. What a check finds,
/// what a provider says to an image, whether a restart is needed are answers, and returned. No operation
/// makes a provider call that the one of CQuillet of the same purpose does not make, and none starts a
/// thread unless it is told how many.
///
/// Several threads may use a session at once, whether they have initialised COM or not. A Transaction belongs
/// to the session: whatever any thread changes meanwhile is in it.
class Session {
  public:
    /// Connects (CQuillet::InitQuillet).
    explicit Session(const SessionOptions& options = {});
    /// Disconnects.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The provider's pending warnings, its own bits (Zorel_NetService.GetKavlorWarnings); nothing where it
    /// does not tell them.
    std::optional<Flags<ProviderBit>> Warnings();

    /// @name Adapters
    /// Instances of Zorel_PhysicalEthernetAdapter and its methods.
    /// @{

    /// The machine's adapters. Throws PartialError<std::vector<Adapter>>.
    std::vector<Adapter> Adapters();
    /// The adapters with all that a list shows of them: slot, link, speed, MAC address, team. Fetches each
    /// adapter once, and asks each team for its members; throws only where the adapters cannot be listed.
    /// @param threads how many ask side by side: where every question travels over a network, waiting for one
    ///                answer after the other is what takes the time
    std::vector<AdapterOverview> AdapterOverviews(unsigned threads = 1);
    /// The same of some adapters. Throws nothing of the provider's.
    std::vector<AdapterOverview> AdapterOverviews(std::vector<Adapter> adapters, unsigned threads = 1);
    /// The object identifier (GUID text) in an adapter's path; empty where there is none.
    std::wstring ObjectIdOf(const AdapterId& adapter);
    /// The adapter of an object identifier on this computer. Asks nobody.
    AdapterId AdapterByObjectId(const std::wstring& objectId);
    /// Names and slot of an adapter.
    Adapter ReadAdapter(const AdapterId& adapter);
    /// Link and state of an adapter. Throws PartialError<AdapterState>.
    AdapterState ReadState(const AdapterId& adapter);
    /// "AdapterStatus" alone.
    Flags<AdapterCondition> ReadConditions(const AdapterId& adapter);
    /// What an adapter can do, by the codes.
    std::vector<Capability> Capabilities(const AdapterId& adapter);
    /// Identity on the bus, addresses.
    AdapterHardware ReadHardware(const AdapterId& adapter);
    /// The ports of an adapter's board, itself included, that are members of a team. Throws
    /// PartialError<std::vector<TeamedPort>>.
    std::vector<TeamedPort> TeamedPorts(const AdapterId& adapter);
    /// Lets an adapter show where it is (it blinks).
    void Identify(const AdapterId& adapter, std::chrono::seconds duration);
    /// The path of an adapter's storage host bus adapter.
    std::wstring HbaPath(const AdapterId& adapter);
    /// The NDIS version of an adapter's driver.
    NdisVersion ReadNdisVersion(const AdapterId& adapter);
    /// An adapter's own warnings, the provider's bits.
    Flags<ProviderBit> Warnings(const AdapterId& adapter);
    /// @}

    /// @name Advanced settings
    /// Instances of the classes below Zorel_Setting. A list throws PartialError<std::vector<Setting>>.
    /// @{

    /// The settings of an adapter.
    std::vector<Setting> Settings(const AdapterId& adapter, SettingSelector selector = kAllSettings);
    /// The settings of a team.
    std::vector<Setting> Settings(const TeamId& team);
    /// The settings of a VLAN.
    std::vector<Setting> Settings(const VlanId& vlan);
    /// The settings of a boot agent.
    std::vector<Setting> Settings(const BootAgentId& bootAgent);
    /// The settings of an adapter's virtual-machine queues.
    std::vector<Setting> QueueSettings(const AdapterId& adapter);
    /// The settings of one class and owner.
    /// @param objectId the owner's object identifier (GUID text)
    /// @param keyword  of the one that is wanted; empty: all
    std::vector<Setting> SettingsOfClass(const std::wstring& className, const std::wstring& objectId,
                                         const std::wstring& keyword = {},
                                         SettingSelector selector = kAllSettings);
    /// The speed and duplex setting of an adapter; nothing where it has none.
    /// @param standardKeyword whether to look for "*SpeedDuplex" or for the older "SpeedDuplex"
    std::optional<Setting> SpeedDuplex(const AdapterId& adapter, bool standardKeyword);
    /// Reads a setting with a list of values (ChoiceValue) again, by its keyword.
    /// @param objectId the adapter's object identifier (GUID text)
    void Refresh(const std::wstring& objectId, Setting& setting);
    /// Writes a setting's current value. Belongs into a Transaction.
    void Write(const Setting& setting);
    /// Asks an adapter's team whether the adapter may take a value.
    SettingVerdict ValidateSetting(const AdapterId& adapter, const std::wstring& keyword, std::int32_t value);
    /// Asks a VLAN whether it may take a value: the provider's reasons against it.
    Flags<ProviderBit> ValidateSetting(const VlanId& vlan, const std::wstring& keyword, std::int32_t value);
    /// Before a change of an adapter's jumbo-frame setting.
    JumboFrameVerdict CheckJumboFrames(const AdapterId& adapter);
    /// What a change of a team's members does to receive side scaling on it.
    Flags<RssProblem> CheckRss(std::span<const TeamMember> members, std::span<const AdapterId> wanted);
    /// @}

    /// @name Performance profiles
    /// The setting "PerformanceProfile".
    /// @{

    /// The profiles that an adapter offers. Throws PartialError<std::vector<OfferedProfile>>; WBEM_E_FAILED
    /// also for an adapter that has none.
    std::vector<OfferedProfile> Profiles(const AdapterId& adapter);
    /// The profiles that all adapters offer, in the order of the first.
    std::vector<OfferedProfile> CommonProfiles(std::span<const AdapterId> adapters);
    /// Moves every adapter that has the profile for hosts of virtual machines to another one, in a client set
    /// of its own.
    void ReplaceHyperVProfile(Profile profile);
    /// @}

    /// @name Power and wake-on-LAN
    /// Changes belong into a Transaction.
    /// @{
    PowerOptions ReadPower(const AdapterId& adapter); ///< Throws PartialError<PowerOptions>.
    WakeOptions ReadWake(const AdapterId& adapter);   ///< Throws PartialError<WakeOptions>.
    void SetPower(const AdapterId& adapter, const PowerOptions& options); ///< Sets mode and options.
    void SetWake(const AdapterId& adapter, const WakeOptions& options);   ///< Sets the options.
    /// Lets an adapter apply its power-management capabilities again.
    void ReapplyPower(const AdapterId& adapter);
    /// @}

    /// @name Teams
    /// Instances of Zorel_TeamOfAdapters and Zorel_TeamedMemberAdapter.
    /// @{

    /// The machine's teams. Throws PartialError<std::vector<Team>>.
    std::vector<Team> Teams();
    /// One team with its MAC address and its use by virtual machines.
    Team ReadTeam(const TeamId& team);
    /// The status of a team's logical adapter.
    StatusInfo ReadStatus(const TeamId& team);
    /// The team of an object identifier on this computer. Asks nobody.
    TeamId TeamByObjectId(const std::wstring& objectId);
    /// The members of a team. Throws PartialError<std::vector<TeamMember>>.
    std::vector<TeamMember> Members(const TeamId& team);
    /// Brings roles and status of members that were listed up to date.
    void RefreshMembers(const TeamId& team, std::vector<TeamMember>& members);
    /// Whether an adapter is the primary member of its team.
    bool IsPrimary(const AdapterId& adapter);
    /// How many members of a team are enabled.
    int EnabledMembers(const TeamId& team);
    /// Which of the adapters are members of a team, in their order.
    std::vector<bool> AreTeamed(std::span<const AdapterId> adapters);
    /// The modes that an adapter can be teamed in.
    std::vector<OfferedTeamMode> TeamModes(const AdapterId& adapter);
    /// The modes that all adapters can be teamed in, in the order of the first.
    std::vector<OfferedTeamMode> CommonTeamModes(std::span<const AdapterId> adapters);
    /// The mode that suits a team best.
    BestTeamMode FindBestTeamMode(const TeamId& team);
    /// Starts, asks or stops the test of a team's switch.
    SwitchTest TestSwitch(const TeamId& team, SwitchCommand command);
    /// The prefix that the provider proposes for the names of new teams.
    std::wstring TeamNamePrefix();
    /// @}

    /// @name Checks of teams
    /// The first reads the adapters' capabilities and the teams; the others ask the provider.
    /// @{

    /// What stands in the way of a team, by the rules that need no more than the adapters' capabilities.
    Flags<TeamProblem> CheckNewTeam(const NewTeam& team, TeamCheck check = TeamCheck::NameAndMembers);
    /// About a team's display name.
    /// @param team the team that is to take it; empty: one that is yet to be made
    Flags<TeamProblem> ValidateTeamName(const std::wstring& name, const TeamId& team = {});
    /// About a team's mode.
    Flags<TeamProblem> ValidateTeamMode(TeamMode mode, const TeamId& team = {});
    /// About the members of a new team.
    Flags<TeamProblem> ValidateNewMembers(std::span<const AdapterId> members, TeamMode mode);
    /// About the settings in which the members of a new team must agree.
    Flags<TeamProblem> ValidateMemberSettings(std::span<const AdapterId> members);
    /// About adapters that are to join a team.
    Flags<TeamProblem> ValidateAddedMembers(const TeamId& team, std::span<const TeamMember> members,
                                            std::span<const AdapterId> added);
    /// @}

    /// @name Changes of teams
    /// Belong into a Transaction. Nothing is rolled back: after a failure the changes made so far stay.
    /// @{

    /// Makes a team; its id, mode and name. Throws PartialError<Team> with the id of a team that was made and
    /// could not be read.
    Team CreateTeam(const NewTeam& team);
    /// Makes the wanted adapters the members of a team.
    /// @param members those that it has
    void SetMembers(const TeamId& team, std::span<const TeamMember> members,
                    std::span<const AdapterId> wanted);
    /// Adds one adapter to a team.
    void AddMember(const TeamId& team, const AdapterId& adapter);
    /// Takes one adapter out of a team.
    void RemoveMember(const TeamId& team, const AdapterId& adapter);
    /// Changes a team's display name and mode.
    void ModifyTeam(const TeamId& team, const std::wstring& name, TeamMode mode);
    /// Changes what a member is to its team.
    void SetRole(const AdapterId& member, MemberRole role);
    /// Removes a team with its VLANs.
    void RemoveTeam(const TeamId& team);
    /// @}

    /// @name VLANs
    /// Instances of Zorel_VLAN. Changes belong into a Transaction.
    /// @{

    /// The VLANs of an adapter or a team. Throws PartialError<std::vector<Vlan>>.
    std::vector<Vlan> Vlans(const VlanParentId& parent);
    /// One VLAN. Throws PartialError<Vlan>.
    Vlan ReadVlan(const VlanId& vlan);
    /// "StatusInfo" of a VLAN.
    StatusInfo ReadStatus(const VlanId& vlan);
    /// The VLAN of an object identifier.
    VlanId VlanByObjectId(const std::wstring& objectId);
    /// Whether VLANs may be put on an adapter or a team.
    VlanSupport SupportsVlans(const VlanParentId& parent);
    /// How many tagged VLANs the parent has; one whose VLANs cannot be read counts as one without.
    int TaggedVlans(const VlanParentId& parent);
    /// Whether the parent has a VLAN of an ID.
    bool HasVlan(const VlanParentId& parent, std::int32_t id);
    /// What stands in the way of a new VLAN, tagged or not.
    Flags<VlanProblem> CheckVlan(const VlanParentId& parent, const NewVlan& vlan);
    /// What stands in the way of several new tagged VLANs.
    Flags<VlanProblem> CheckVlans(const VlanParentId& parent, std::span<const NewVlan> vlans);
    /// What stands in the way of a change.
    /// @param vlan    as it is
    /// @param changed what it is to become
    Flags<VlanProblem> CheckVlanChange(const VlanParentId& parent, const Vlan& vlan, const NewVlan& changed);
    /// Makes a VLAN, and yields it as the provider made it.
    Vlan AddVlan(const VlanParentId& parent, const NewVlan& vlan);
    /// Changes a VLAN's ID and name.
    void ModifyVlan(const VlanId& vlan, const NewVlan& changed);
    /// Removes a VLAN with its settings.
    void RemoveVlan(const VlanId& vlan);
    /// @}

    /// @name Diagnostics
    /// A test runs inside the provider.
    /// @{

    /// The tests that an adapter offers. Throws PartialError<std::vector<Diagnostic>>.
    std::vector<Diagnostic> Diagnostics(const AdapterId& adapter);
    /// Starts a test. A provider that refuses does not say so: only the test's state tells.
    void StartDiagnostic(const DiagnosticId& test, const AdapterId& adapter);
    /// Asks the provider to stop a test.
    void StopDiagnostic(const DiagnosticId& test, const AdapterId& adapter);
    /// What is known of a test; nothing where it never ran. Throws PartialError<TestResult>.
    std::optional<TestResult> ReadResult(const DiagnosticId& test);
    /// The results that belong to a package, by its path and package name.
    std::vector<TestResult> ReadPackageResults(const DiagnosticId& test, const TestResult& package);
    /// Starts a test and follows it until it has ended, on the calling thread.
    FollowedRun RunDiagnostic(const DiagnosticId& test, const AdapterId& adapter,
                              const Following& following = {});
    /// @}

    /// @name Boot agent and flash images
    /// An image travels as it is: nobody looks into it but the provider.
    /// @{

    /// The boot agent of an adapter.
    BootAgent ReadBootAgent(const AdapterId& adapter);
    /// The contents of the flash memory.
    std::vector<std::byte> ReadFlash(const BootAgentId& bootAgent);
    /// The images in an image file.
    FlashContents ReadImageFile(const BootAgentId& bootAgent, std::span<const std::byte> file);
    /// Checks an image file.
    /// @param types of the images that are wanted
    FlashVerdict VerifyImages(const BootAgentId& bootAgent, std::span<const std::byte> file,
                              std::span<const std::wstring> types);
    /// Writes images into the flash memory, without a check. Belongs into a Transaction.
    FlashVerdict WriteFlash(const BootAgentId& bootAgent, std::span<const std::byte> file,
                            std::span<const std::wstring> types);
    /// Checks an image file, writes it and reads the memory back to compare.
    /// @param progress told each stage as it begins. What it throws before the writing prevents it.
    FlashOutcome ProgramFlash(const BootAgentId& bootAgent, std::span<const std::byte> file,
                              std::span<const std::wstring> types,
                              const std::function<void(FlashStage)>& progress = {});
    /// @}

    /// @name iSCSI boot
    /// @{

    /// The adapters that can boot from iSCSI. Throws PartialError<std::vector<IscsiAdapter>>.
    std::vector<IscsiAdapter> IscsiAdapters();
    /// Changes the part that a boot agent plays; what the provider says to it, 0 for yes.
    unsigned SetIscsiStatus(const BootAgentId& bootAgent, IscsiStatus status);
    /// Whether iSCSI boot is enabled and possible.
    IscsiSupport ReadIscsiSupport(const AdapterId& adapter);
    /// @}

    /// @name Link security
    /// Changes belong into a Transaction.
    /// @{
    ManualKeys ReadManualKeys(const AdapterId& adapter); ///< The manually entered keys.
    void SetManualKeys(const AdapterId& adapter, const ManualKeys& keys, Reload reload); ///< Sets all of it.
    Authentication ReadAuthentication(const AdapterId& adapter); ///< How the adapter authenticates.
    /// Sets how the adapter authenticates. Outer methods other than 1 to 4 are refused with E_FAIL.
    void SetAuthentication(const AdapterId& adapter, const Authentication& authentication, Reload reload);
    AuthenticationMethods ReadAuthenticationMethods(const AdapterId& adapter);    ///< The methods alone.
    void ImportPac(const AdapterId& adapter, const PacFile& file, Reload reload); ///< Imports a PAC file.
    void DeletePac(const AdapterId& adapter, const std::wstring& name); ///< Removes an imported PAC file.
    /// What an imported PAC file holds. Throws PartialError<PacContents>.
    PacContents ReadPac(const AdapterId& adapter, const std::wstring& name);
    MasterKey ReadMasterKey(const AdapterId& adapter); ///< The pairwise master key.
    void SetMasterKey(const AdapterId& adapter, const MasterKey& key, Reload reload); ///< Sets it.
    SavedCredentials ReadSavedCredentials(const AdapterId& adapter); ///< The credentials that it saved.
    std::wstring ReadSecurityLog(const AdapterId& adapter);          ///< The log of security statistics.
                                                                     /// @}

  private:
    friend class FetchOnce;
    friend class ProviderTexts;
    friend class Transaction;
    struct State;

    void NoteTeams(std::vector<AdapterOverview>& overviews);
    void Complete(AdapterOverview& overview);

    const std::unique_ptr<State> m_state;
};

/// What the changes of a transaction still need.
struct [[nodiscard]] Followup {
    bool restartNeeded = false; ///< whether the machine must be restarted for them to take effect
};

/// A client set: the changes made between its constructor and Apply() belong together. A scope that is left
/// without Apply() closes the set all the same, so that no later change gets into a set that nobody closes;
/// what was changed until then takes effect, and whether a restart is needed is not told.
class Transaction {
  public:
    /// Opens it (Zorel_NetService.BeginApply). A session has one at a time: a second one replaces the set.
    [[nodiscard]] explicit Transaction(Session& session);
    /// Closes it unless Apply() did; a failure to do so is not told.
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Closes it (Zorel_NetService.Apply). Throws Error; it is closed then as far as it can be, and not tried
    /// again.
    Followup Apply();

  private:
    Session& m_session;
    bool m_isOpen = true;
};

} // namespace quillet
