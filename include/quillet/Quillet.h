// CQuillet, the facade: one object per management session with the provider of one machine.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <wbemidl.h>
#include <comutil.h>
#include <atlbase.h>

#include <string>
#include <vector>

#include <quillet/Adapter.h>
#include <quillet/BootAgent.h>
#include <quillet/DiagTest.h>
#include <quillet/Export.h>
#include <quillet/ISCSIAdapter.h>
#include <quillet/LinkSecurity.h>
#include <quillet/PerformanceProfile.h>
#include <quillet/Power.h>
#include <quillet/RssWarning.h>
#include <quillet/Setting.h>
#include <quillet/SettingNames.h>
#include <quillet/Team.h>
#include <quillet/TeamTexts.h>
#include <quillet/VLAN.h>
#include <quillet/VLANTexts.h>

class CLumString;
class PropertyReader;
class ProviderSession;
struct ProviderName;

/// The management session of one client with one machine's provider.
///
/// Construct it for a machine, call InitQuillet, call operations from any thread that has initialised
/// COM, and call UninitQuillet at the end. Every operation returns an HRESULT: 0 on success, the
/// provider's or COM's own code where a call failed, 0x80041001 (WBEM_E_FAILED) where the connection or a
/// provider class is missing, 0x80004005 (E_FAIL) for an argument that cannot be used. The only exception
/// that leaves an operation is _com_error(E_OUTOFMEMORY), when a string cannot be allocated.
///
/// The object keeps its interfaces in the process's Global Interface Table and holds no lock: each
/// operation takes the calling thread's own proxies and releases them before it returns. InitQuillet,
/// UninitQuillet, BeginApply and ApplyDone must not run beside another operation on the same object.
class QUILLET_API CQuillet {
  public:
    /// A session with this machine, "127.0.0.1". Contacts nobody.
    CQuillet();
    /// A session with a machine, by host name or address without leading backslashes. Contacts nobody.
    explicit CQuillet(std::wstring machine);
    /// Copies share the connection: both name the same entries of the interface table, so after
    /// UninitQuillet on one the other is disconnected too.
    CQuillet(const CQuillet& other);
    /// Shares the connection, as a copy does.
    CQuillet& operator=(const CQuillet& other);
    /// Does not disconnect; call UninitQuillet first.
    virtual ~CQuillet();

    /// @name Session
    /// @{

    /// Connects: enables the process token's privileges, opens the provider's namespace
    /// (`\\machine\ROOT\MarloLUM2`, or what the registry's "Namespace" says) in the locale that the
    /// registry or the system chooses, and registers service, context and the Zorel_NetService instance
    /// for all threads. On an object that is connected the earlier registrations are revoked first.
    /// A provider without a Zorel_NetService instance is no failure.
    /// @return 0; 0x80041003 or 0x80041006 when the token's privileges cannot be enabled; otherwise the
    ///         code of the step that failed.
    HRESULT InitQuillet();
    /// Disconnects: takes the three registrations out of the interface table. @return always 0.
    HRESULT UninitQuillet();
    /// @}

    /// @name Apply transaction
    /// @{

    /// Opens a client set (Zorel_NetService.BeginApply): the changes made until ApplyDone belong together.
    /// A second call before ApplyDone replaces the set.
    HRESULT BeginApply();
    /// Closes the client set (Zorel_NetService.Apply).
    /// @param[out] followupNeeded whether the machine must be restarted for the changes to take effect.
    HRESULT ApplyDone(bool& followupNeeded);
    /// Reads the provider's pending warnings (Zorel_NetService.GetKavlorWarnings).
    /// @param[out] warnings the provider's bit mask; left untouched when the provider refuses to tell,
    ///             which is not an error.
    HRESULT GetWarnings(ULONGLONG& warnings);
    /// @}

    /// @name Adapters
    /// An adapter is an instance of Zorel_PhysicalEthernetAdapter, and its identifier the instance's object
    /// path. What is read of it are properties, what it does are methods of that class.
    /// @{

    /// Lists the physical adapters (instances of Zorel_PhysicalEthernetAdapter).
    /// @param[in,out] adapters receives one record per adapter, behind those it already holds, with
    ///                identifier, name, display name and device identifier filled in.
    /// @return 0x80004005 when an adapter's properties cannot be read; the adapters read before it stay.
    HRESULT EnumerateAdapters(CAdapters& adapters);
    /// The object identifier (GUID text) in an adapter's object path.
    /// @return 0x80041001, and an empty text, when the path is none.
    HRESULT GetGUI(const std::wstring& adapterId, std::wstring& objectId);
    /// The adapter's object path on this computer for an object identifier. @return always 0.
    HRESULT GetAdapterID(const std::wstring& objectId, std::wstring& adapterId);

    /// Reads the adapter's name, display name, device and slot identifier
    /// (Zorel_PhysicalEthernetAdapter: "Name", "OriginalDisplayName", "DeviceID", "SlotID").
    HRESULT GetAdapterBasicInfo(const std::wstring& adapterId, CAdapter& adapter);
    /// Makes the adapter's dynamic record and reads link, duplex, link security and state into it ("Speed",
    /// "LinkSecStatus", "FullDuplex", "AdapterStatus", "StatusInfo", "Availability", "HardwareStatus",
    /// "Status").
    /// @return 0x80004005 for an empty identifier or an adapter that has the record already. A record that a
    ///         later read could not complete stays with the adapter.
    HRESULT GetAdapterDynamicInfo(const std::wstring& adapterId, CAdapter& adapter);
    /// Reads "AdapterStatus" into the adapter's dynamic record, which it makes when there is none.
    HRESULT GetAdapterStatus(const std::wstring& adapterId, CAdapter& adapter);
    /// Makes the adapter's capability record from the codes in "Capabilities"; codes that are not known are
    /// left out.
    /// @return 0x80004005 for an empty identifier or an adapter that has the record already, 0x80041001 when
    ///         there is no array.
    HRESULT GetAdapterCapabilities(const std::wstring& adapterId, CAdapter& adapter);
    /// Reads the adapter's identity on its bus and its addresses, as texts for display; the members of
    /// CPCIInfo name the properties.
    HRESULT GetAdapterPCIInfo(const std::wstring& adapterId, CPCIInfo& info);

    /// Appends one record for every present adapter in the same slot (the adapter itself included) that is a
    /// member of a team (Zorel_TeamedMemberAdapter).
    HRESULT EnumerateOtherPortOfAdapter(const std::wstring& adapterId, CAdapterPorts& ports);
    /// Lets the adapter show where it is (it blinks) for so many seconds (IdentifyAdapter).
    HRESULT IdentifyAdapter(const std::wstring& adapterId, LONG seconds);
    /// The path of the adapter's storage host bus adapter (GetHbaPath).
    HRESULT GetHbaPath(const std::wstring& adapterId, std::wstring& path);
    /// The NDIS version of the adapter's driver (GetNDISVersion); both -1 when it cannot be read.
    HRESULT GetNDIS_Version(const std::wstring& adapterId, int& major, int& minor);
    /// The adapter's own warnings, the provider's bit mask (GetAdapterWarnings); 0 when they cannot be read.
    HRESULT GetAdapterWarnings(const std::wstring& adapterId, ULONGLONG& warnings);
    /// @}

    /// @name Advanced settings
    /// Each replaces what the collection holds with the settings of one owner, instances of the classes below
    /// Zorel_Setting: Zorel_AdapterSettingEnum is one of an adapter with a list of values. An empty
    /// identifier, or one that is no object path, is 0x80004005. When a setting cannot be read, those before
    /// it stay.
    /// @{

    /// The settings of an adapter (Zorel_AdapterSetting).
    /// @param selector what the provider is asked to retrieve; 0xFFFFFFFF for everything.
    HRESULT GetAdapterSettings(const std::wstring& adapterId, CSettings& settings, DWORD selector);
    /// The same with everything.
    HRESULT GetAdapterSettings(const std::wstring& adapterId, CSettings& settings);
    /// The settings of an adapter's virtual-machine queues.
    HRESULT GetAdapterVmqSettings(const CLumString& adapterId, CSettings& settings);
    /// The settings of a team (Zorel_TeamSetting), by the team's path.
    HRESULT GetTeamSettings(const std::wstring& teamId, CSettings& settings);
    /// The settings of a VLAN (Zorel_VLANSetting), by the VLAN's path.
    HRESULT GetVlanSettings(const std::wstring& vlanId, CSettings& settings);
    /// The settings of a boot agent (Zorel_BootAgentSetting), by the boot agent's path.
    HRESULT GetBootAgentSettings(const std::wstring& bootAgentId, CSettings& settings);
    /// The speed and duplex setting of an adapter.
    /// @param standardKeywords whether to look for "*SpeedDuplex" or for the older "SpeedDuplex".
    /// @return 0x80041002 when the adapter has no such setting; the output is then emptied but for its lists.
    HRESULT GetSpeedDuplexSetting(const std::wstring& adapterId, CSettingEnum& setting,
                                  bool standardKeywords);
    /// Reads one enumerated setting of an adapter again, in place.
    /// @param adapterId the adapter's object identifier (GUID text), not its path.
    /// @param setting   a CSettingEnum with its caption.
    HRESULT GetAdapterSettingAsync(const CLumString& adapterId, CSetting* setting);
    /// Appends the settings of one class and owner, all or those of one caption.
    /// @param parentId the owner's object identifier.
    HRESULT GetSettingFromClassOnAdapter(const _bstr_t& className, const _bstr_t& parentId,
                                         const _bstr_t& caption, CSettings& settings, DWORD selector);
    /// The same with everything.
    HRESULT GetSettingFromClassOnAdapter(const _bstr_t& className, const _bstr_t& parentId,
                                         const _bstr_t& caption, CSettings& settings);
    /// @}

    /// @name Writing and checking settings
    /// Settings are those of the classes below Zorel_Setting. A write belongs between BeginApply and
    /// ApplyDone. The checks change nothing; what they find is told by bit masks, and their result says only
    /// whether the check could be made.
    /// @{

    /// Writes a setting's current value back ("CurrentValue", or "CurrentValues" of a list of texts) and
    /// stores the instance.
    /// @param settingId the object path of the setting's instance, its `m_wsPath`.
    /// @return 0x80004005 for an empty path; 0x80041001 for a setting that has no value of its kind; else
    ///         what the provider says to the value.
    HRESULT SetSetting(const std::wstring& settingId, const CSetting& setting);
    /// Asks the adapter's team whether the adapter may take a value
    /// (Zorel_TeamOfAdapters.ValidateSetting). An adapter without a team may, as far as this goes.
    /// @param[out] isTeamed whether the adapter is a member of a team.
    /// @param[out] warnings the provider's reasons against it, its own bit mask; 0 for none.
    HRESULT ValidateSetSetting(const std::wstring& adapterId, bool& isTeamed, const std::wstring& settingName,
                               LONG value, ULONGLONG& warnings);
    /// Asks a VLAN whether it may take a value (Zorel_VLAN.ValidateSetting).
    /// @param vlanId the VLAN's object identifier (GUID text) or its object path.
    /// @param[out] warnings the provider's reasons against it, its own bit mask; 0 for none.
    HRESULT ValidateSetSettingOnVlan(const std::wstring& vlanId, const std::wstring& settingName, LONG value,
                                     ULONGLONG& warnings);
    /// Tells before a change of the jumbo-frame setting whether all that must change with it can.
    /// @param[out] onAllMembers true for an adapter without a team; else whether every member of its team has
    ///             a jumbo-frame setting.
    /// @param[out] isTeamed whether the adapter is a member of a team.
    HRESULT JumboFramePrecheckSetSetting(const std::wstring& adapterId, bool& onAllMembers, bool& isTeamed);
    /// Tells what a change of a team's members would do to receive side scaling on the team.
    /// @param currentMembers the members that the team has.
    /// @param wantedAdapters the members that it shall have.
    /// @param[out] warnings an `RssWarning`.
    HRESULT RSS_PrecheckOnTeamModify(const CTeamedAdapters& currentMembers, const CAdapters& wantedAdapters,
                                     ULONGLONG& warnings);
    /// @}

    /// @name Performance profiles
    /// The predefined tunings of the setting "PerformanceProfile" (Zorel_AdapterSettingEnum).
    /// @{

    /// The profiles that an adapter offers, in the provider's order; they replace what the collection holds.
    /// @return 0x80004005 for an empty identifier, or when a profile has no text (those before it stay);
    ///         0x80041001 when the adapter has no profiles or they cannot be read.
    HRESULT GetAdapterProfiles(const std::wstring& adapterId, CPerformanceProfiles& profiles);
    /// Moves every adapter that has the profile for hosts of virtual machines to another one, in one client
    /// set (Zorel_NetService.BeginApply and Apply); without such an adapter none is opened.
    /// @return the first failure to open the set, to write or to close the set. An adapter that cannot be
    ///         written does not keep the others from it.
    HRESULT ChangeAllAdapterProfilesFromHyperV(ePERFORMANCE_PROFILE newProfile);
    /// The profiles that all the adapters offer, in the order of the first; current where it is so on all.
    /// Empty when an adapter has no profiles. @return 0x80004005 without adapters.
    HRESULT GetCompatibleTeamProfilesWithAdapters(const CAdapters& adapters, CPerformanceProfiles& profiles);
    /// @}

    /// @name Power and wake-on-LAN
    /// Methods of Zorel_PhysicalEthernetAdapter. An empty identifier is 0x80004005. A "ReturnValue" of the
    /// provider's that is not 0 is traced, and no failure.
    /// @{

    /// Reads the power-saving options (Zorel_PhysicalEthernetAdapter.GetPowerUsageOptions). When one cannot
    /// be read, those before it are read already.
    HRESULT GetAdapterPowerUsageOptions(const std::wstring& adapterId, CAdapterPowerUsageInfo& info);
    /// Sets the power-saving options (SetPowerUsageOptions), without those that are not available.
    /// @return 0x80004005 for a mode that is none of 0, 1 and 2; nothing is set then.
    HRESULT SetAdapterPowerUsageOptions(const std::wstring& adapterId, const CAdapterPowerUsageInfo& info);
    /// Reads the wake-on-LAN options (GetWakeOnLanPowerOptions).
    HRESULT GetAdapterWakeOnLanOptions(const std::wstring& adapterId, CAdapterWakeOnLanInfo& info);
    /// Sets the wake-on-LAN options (SetWakeOnLanPowerOptions), without those that are not available.
    HRESULT SetAdapterWakeOnLanOptions(const std::wstring& adapterId, const CAdapterWakeOnLanInfo& info);
    /// Lets the adapter apply its power-management capabilities again (SetPowerMgmtCapabilities).
    HRESULT SetAdapterPowerManagementCapabilities(const std::wstring& adapterId);
    /// @}

    /// @name Teams
    /// A team is an instance of Zorel_TeamOfAdapters, and its identifier the instance's object path; what
    /// joins it with a member is a Zorel_TeamedMemberAdapter. An empty path is 0x80041001 unless an operation
    /// says otherwise.
    /// @{

    /// Lists the teams (instances of Zorel_TeamOfAdapters).
    /// @param[in,out] teams receives one record per team, behind those it already holds.
    /// @return 0x80041001 when a team lacks a value; the teams read before it stay.
    HRESULT EnumerateTeams(CTeams& teams);
    /// Reads one team, its MAC address and its use by virtual machines included.
    /// @return 0x80041001 whatever it is that cannot be read.
    HRESULT GetTeamInfo(const std::wstring& teamId, CTeam& team);
    /// The status of a team: "StatusInfo" of its logical adapter (Zorel_LogicalEthernetAdapter).
    HRESULT GetTeamStatus(const std::wstring& teamId, CTeam::TeamStatus& status);
    /// The object path of a team on this computer for an object identifier (GUID text). @return always 0.
    HRESULT GetTeamID(const std::wstring& objectId, std::wstring& teamId);
    /// Lists the members of a team with their roles and their status: what the provider says of a member
    /// (Zorel_TeamedMemberAdapter), put right by the state of its adapter.
    /// @param[in,out] members receives one record per member, behind those it already holds.
    HRESULT GetMemberAdapters(const std::wstring& teamId, CTeamedAdapters& members);
    /// Brings the roles and the status of members that have been listed up to date.
    /// @return 0x80041001 for an empty list.
    HRESULT GetMemberAdaptersStatus(const std::wstring& teamId, CTeamedAdapters& members);
    /// Whether an adapter is the primary member of its team; false for one that is in no team.
    HRESULT IsPrimaryAdapter(const std::wstring& adapterId, bool& primary);
    /// How many members of a team are enabled ("AdapterStatus" is 1). A member that cannot be read is not
    /// counted.
    HRESULT GetNumberEnabledMembers(const std::wstring& teamId, int& count);
    /// @}

    /// @name Creating teams
    /// The validation words are the provider's own: 0 is valid, any other value its reasons.
    /// @{

    /// Checks what is to become a team against the rules that need no more than the adapters' capabilities.
    /// @param kind 0: only the name; 1 or 2: only the members; 3: both. Any other kind checks nothing.
    /// @return the problems as `CTeam::Problem` bits, 0 for none. Never fails: a member whose capabilities
    ///         cannot be read is left out of account.
    ULONGLONG CreateTeamCheck(CTeam::TeamMode mode, const std::wstring& name, const CAdapters& members,
                              int kind);
    /// Makes a team (Zorel_TeamOfAdapters.CreateTeam) of the members in their order.
    /// @param[out] team the new team's mode, caption, path and name.
    /// @return 0x80041001 for an empty name, or when the provider answers without the new team's path. The
    ///         provider's "ReturnValue" is read, but the path decides.
    HRESULT CreateTeam(CTeam::TeamMode mode, const std::wstring& name, const CAdapters& members, CTeam& team,
                       ePERFORMANCE_PROFILE profile, bool mfoEnable, bool linkSecEnable);
    /// Asks the provider about a display name for a team (Zorel_TeamOfAdapters.ValidateTeamName).
    /// @param objectPath the team that is to take the name; for one that is yet to be made the class path,
    ///                   "Zorel_TeamOfAdapters". 0x80041001 for an empty one.
    /// @return the provider's "ReturnValue" where that is not 0.
    HRESULT ValidateTeamName(const std::wstring& name, const std::wstring& objectPath, DWORD& validation);
    /// Asks the provider about a team mode (Zorel_TeamOfAdapters.ValidateTeamMode).
    /// @param objectPath the team that is to take the mode; for one that is yet to be made the class path,
    ///                   "Zorel_TeamOfAdapters". 0x80041001 for an empty one.
    /// @return the provider's "ReturnValue" where that is not 0.
    HRESULT ValidateTeamMode(CTeam::TeamMode mode, const std::wstring& objectPath, DWORD& validation);
    /// Asks the provider whether adapters can make a team of a mode
    /// (Zorel_TeamOfAdapters.ValidateNewTeamMembers). No adapters are valid.
    /// @return the provider's "ReturnValue" where that is not 0.
    HRESULT ValidateNewTeamMembers(const CAdapters& members, CTeam::TeamMode mode, ULONGLONG& validation);
    /// Asks the provider whether adapters agree in the setting "*JumboPacket" well enough to be teamed
    /// (Zorel_PhysicalEthernetAdapter.ValidateSettingOnNewTeam). No adapters are valid.
    HRESULT ValidateSettingsOnNewTeam(const CAdapters& members, ULONGLONG& validation);
    /// Asks the provider whether adapters can join a team (Zorel_TeamOfAdapters.ValidateAddAdapters).
    /// @param current the members that the team has; the provider knows them itself.
    HRESULT ValidateAddAdapters(const std::wstring& teamId, const CTeamedAdapters& current,
                                const CAdapters& added, ULONGLONG& validation);
    /// The prefix that the provider proposes for the names of new teams: the qualifier "Values" of
    /// Zorel_TeamOfAdapters' "TeamPrefix".
    HRESULT GetTeamNamePrefix(std::wstring& prefix);
    /// @}

    /// @name Changing teams
    /// Writes and deletions of Zorel_TeamOfAdapters and Zorel_TeamedMemberAdapter. Nothing is rolled back:
    /// after a failure the changes made so far stay.
    /// @{

    /// Makes the wanted adapters the members of a team: removes the memberships of the others, then adds
    /// those that are missing. Adapters are compared by their identifiers, case included.
    HRESULT ModifyMemberList(const std::wstring& teamId, const CTeamedAdapters& current,
                             const CAdapters& wanted);
    /// Changes a team's mode and display name to those of the record.
    HRESULT ModifyTeamInfo(const std::wstring& teamId, const CTeam& team);
    /// Changes a member's priority; 1 makes it the primary member.
    /// @return 0x80041001 when the adapter is in no team.
    HRESULT SetTeamedAdapterPriority(const std::wstring& memberId, LONG priority);
    /// Removes a team. Its VLANs and memberships go with it.
    HRESULT RemoveTeam(const std::wstring& teamId);
    /// @}

    /// @name Team wizard
    /// @{

    /// Marks which of the given adapters are members of a team (`CAdapter::m_bTeamed`). An adapter that the
    /// provider does not know counts as free.
    HRESULT GetTeamableAdapters(CAdapters& adapters);
    /// Fills the adapter's collection of team modes anew, from its "Capabilities".
    /// @return 0x80004005 for an empty identifier, 0x80041001 when there is no array of numbers.
    HRESULT GetAdapterTeamModes(const std::wstring& adapterId, CAdapter& adapter);
    /// The team modes that all given adapters support, in the order of the first adapter's. Mode 5 is for two
    /// adapters at most.
    /// @param[out] modes replaces what the collection holds.
    /// @param refresh true reads the modes of every adapter; false only of those whose record has none. The
    ///                records stay as they are.
    /// @return 0x80004005 for an empty list.
    HRESULT GetCompatibleTeamModesWithAdapters(const CAdapters& adapters, CTeamWizTeamModes& modes,
                                               bool refresh);
    /// The mode that the provider recommends for a team (Zorel_TeamOfAdapters.GetBestTeamMode).
    /// @param[out] coverage how much of the network the search has seen, in per cent; 100 where the provider
    ///                      does not say.
    /// @return the provider's "ReturnValue" where that is not 0.
    HRESULT GetBestTeamMode(const std::wstring& teamId, CTeamWizTeamMode& mode,
                            CTeam::TeamAutoDetectStatus& status, unsigned int& coverage);
    /// Starts, queries or stops the test of the switch that a team is connected to
    /// (Zorel_TeamOfAdapters.TestSwitchConfiguration).
    /// @param[out] causes, solutions, causeIds, solutionIds what the test found, in the provider's order;
    /// they
    ///             replace what the lists hold.
    HRESULT TestSwitchConfiguration(const std::wstring& teamId, CTeam::SwitchCmd command,
                                    CTeam::SwitchCmdStatus& status, std::vector<std::wstring>& causes,
                                    std::vector<std::wstring>& solutions, std::vector<int>& causeIds,
                                    std::vector<int>& solutionIds);
    /// 0x2000 for a mode that needs the switch's cooperation, and so has a switch test; 0 for any other.
    LONG TestSwitchSupport(CTeam::TeamMode mode);
    /// @}

    /// @name Link security
    /// IEEE 802.1AE on one adapter, through methods of Zorel_PhysicalEthernetAdapter that are executed on the
    /// adapter's path. An empty identifier is 0x80004005. A "ReturnValue" of the provider's is not looked at.
    /// A text that the provider has not becomes empty, and what stands behind a failed read stays as it was.
    ///
    /// Keys and passwords pass as they are. Whatever the library itself held of them is overwritten before it
    /// is freed, and no trace line tells them; the records are the caller's (see LinkSecurity.h).
    /// @{

    /// Reads the manually entered keys and their parameters (GetLinksecManualCfgKeys).
    HRESULT GetAdapterLinksecManualAuthOptions(const std::wstring& adapterId, CAdapterManualAuthInfo& info);
    /// Sets the manually entered keys and their parameters, all ten (SetLinksecManualCfgKeys).
    /// @param driverReload whether the driver is reloaded, so that the change takes effect at once.
    HRESULT SetAdapterLinksecManualAuthOptions(const std::wstring& adapterId,
                                               const CAdapterManualAuthInfo& info, bool driverReload);
    /// Reads how the adapter authenticates (GetLinksecParams).
    HRESULT GetAdapterLinksecStrictPreferredOptions(const std::wstring& adapterId,
                                                    CAdapterAuthTypeInfo& info);
    /// Sets how the adapter authenticates (SetLinksecParams). With the outer method 1 no inner method and no
    /// credentials are sent; an inner method of 0, and a user name or password that is empty, never are; the
    /// PAC is sent with the outer method 4 only.
    /// @param driverReload as above.
    /// @return 0x80004005 for an outer method other than 1 to 4; nothing is set then. An inner method that is
    ///         not known is the provider's to judge.
    HRESULT SetAdapterLinksecStrictPreferredOptions(const std::wstring& adapterId,
                                                    const CAdapterAuthTypeInfo& info, bool driverReload);
    /// Reads the authentication methods alone (GetLinksecParams).
    HRESULT GetAdapterLinksecEapType(const std::wstring& adapterId, CAdapterEAPInfo& info);
    /// Imports a PAC file into the adapter's configuration (ImportManualPAC).
    /// @param reload whether the driver is reloaded, so that the change takes effect at once.
    HRESULT AdapterImportManualPAC(const std::wstring& adapterId, const CAdapterPACInfo& info, bool reload);
    /// Removes an imported PAC file (DeletePacFile). Its name is the provider's to judge, an empty one too.
    HRESULT DeletePacFile(const std::wstring& adapterId, std::wstring pacFile);
    /// Reads what an imported PAC file holds (GetPACFileContents).
    /// @param[in,out] info its `m_sPACFileName` says which. A kind that the provider does not tell is 0.
    HRESULT GetAdapterPacFileContents(const std::wstring& adapterId, CAdapterPacFileInfo& info);
    /// Sets the manually entered pairwise master key (SetLinksecManualPMKeys). The record's
    /// `m_bRandMACAddress` says whether a random MAC address is used.
    /// @param driverReload as above.
    /// @param reserved     not used.
    HRESULT SetAdapterManualPMKOptions(const std::wstring& adapterId, const CAdapterManualPMKInfo& info,
                                       bool driverReload, bool reserved);
    /// Reads the manually entered pairwise master key (GetLinksecManualPMKeys).
    /// @param[out] randomMacAddress whether a random MAC address is used; the record's member stays.
    HRESULT GetAdapterManualPMKOptions(const std::wstring& adapterId, CAdapterManualPMKInfo& info,
                                       bool& randomMacAddress);
    /// Reads the credentials that the adapter has saved (GetLinksecSavedCreds).
    HRESULT GetAdapterSavedCredOptions(const std::wstring& adapterId, CAdapterLinksecSavedCredInfo& info);
    /// Reads the log of security statistics, one text (GetLinksecSecurityStatsLog).
    HRESULT GetAdapterLinksecSecurityStats(const std::wstring& adapterId, std::wstring& log);
    /// @}

    /// @name VLANs
    /// A VLAN is an instance of Zorel_VLAN. It sits on a parent, which is an adapter or a team. An empty
    /// identifier is 0x80041001 unless an operation says otherwise. CVLANTexts has the words for people.
    /// @{

    /// Appends the VLANs of an adapter (Zorel_VLAN). When one cannot be read, those before it stay.
    HRESULT EnumerateVLANsOfAdapter(const std::wstring& adapterId, CVLANs& vlans);
    /// The same for the VLANs of a team, by the team's path.
    HRESULT EnumerateVLANsOfTeam(const std::wstring& teamId, CVLANs& vlans);
    /// Reads one VLAN. @return 0x80041001 when the provider leaves one of its properties open.
    HRESULT GetVLANInfo(const std::wstring& vlanId, CVLAN& vlan);
    /// Reads "StatusInfo" of a VLAN.
    HRESULT GetVlanStatus(const std::wstring& vlanId, CVLAN::VlanStatus& status);
    /// The VLAN's full object path for its object identifier (GUID text).
    HRESULT GetVLANID(const std::wstring& objectId, std::wstring& vlanId);
    /// Whether VLANs may be put on an adapter or a team, by its path.
    /// @return 0 when they may; CVLAN::ParentIsTeamMember (0x1000) for a team's member; 0x80004005 for an
    ///         empty identifier or a team's that cannot be read; the provider's code (mostly 0x80041002) when
    ///         there is no VLAN service (Zorel_802dot1QVLANService); 0x80041001 when the membership cannot be
    ///         looked up.
    HRESULT ParentSupportingVLAN(const std::wstring& componentId);
    /// @}

    /// @name Checks of VLANs before they are added or changed
    /// They read the parent's VLANs (Zorel_VLAN). Each returns a mask of CVLAN::Problem, 0 for none, and
    /// never fails: a parent whose VLANs cannot be read counts as one without.
    /// @{

    /// Checks one tagged VLAN: its ID (1 to 4094), its ID and name against the parent's VLANs (but not
    /// against itself, told by CVLAN::m_wsName), and, unless SetVlanIsModify says that none is added, their
    /// number.
    ULONGLONG CreateVLANAdapterCheck(const std::wstring& adapterId, const CVLAN& vlan);
    /// The same for a team, by its path.
    ULONGLONG CreateVLANTeamCheck(const std::wstring& teamId, const CVLAN& vlan);
    /// Checks the untagged VLAN (ID 0), which may only be added beside tagged ones.
    ULONGLONG CreateUnTaggedVLANAdapterCheck(const std::wstring& adapterId, const CVLAN& vlan);
    /// The same for a team, by its path.
    ULONGLONG CreateUnTaggedVLANTeamCheck(const std::wstring& teamId, const CVLAN& vlan);
    /// Checks several tagged VLANs in the order of their IDs. Only the first and the last one's ID is checked
    /// for its range, and they are not compared with each other.
    ULONGLONG CreateMultipleVLANAdapterCheck(const std::wstring& adapterId, const CVLANs& vlans);
    /// The same for a team, by its path.
    ULONGLONG CreateMultipleVLANTeamCheck(const std::wstring& teamId, const CVLANs& vlans);
    /// Checks the untagged VLAN for either kind of parent.
    ULONGLONG CheckForUniqueIDForUnTaggedVLAN(const std::wstring& parentId, bool isTeam, const CVLAN& vlan);
    /// Checks several tagged VLANs for either kind of parent.
    ULONGLONG CheckForUniqueIDForMultipleVLANs(const std::wstring& parentId, bool isTeam,
                                               const CVLANs& vlans);
    /// CVLAN::IDTaken when the parent has a VLAN of this ID.
    ULONGLONG CheckForUntaggedVLANOnAdapter(const std::wstring& adapterId, int vlanNumber);
    /// The same for a team, by its path.
    ULONGLONG CheckForUntaggedVLANOnTeam(const std::wstring& teamId, int vlanNumber);
    /// How many tagged VLANs the parent has.
    int CheckForTaggedVLANOnAdapter(const std::wstring& adapterId);
    /// The same for a team, by its path.
    int CheckForTaggedVLANOnTeam(const std::wstring& teamId);
    /// Removes every element that equals the value.
    static void RemoveIntVectorElement(std::vector<int>& values, int value);
    /// @}

    /// @name Changes of VLANs
    /// An empty identifier is 0x80041001. A VLAN that is there is changed and removed by its instance of
    /// Zorel_VLAN.
    /// @{

    /// Makes a VLAN on an adapter (Zorel_802dot1QVLANService.CreateVLAN).
    /// @param[in,out] vlan its number (below 4096; 0 for the untagged VLAN) and its VLAN name, which must not
    ///                be empty; filled from the new VLAN. After a failure it is what it was.
    HRESULT AddVLANToAdapter(const std::wstring& adapterId, CVLAN& vlan);
    /// The same on a team, by the team's path.
    HRESULT AddVLANToTeam(const std::wstring& teamId, CVLAN& vlan);
    /// Writes the record's VLAN name and VLAN number, both, into the VLAN.
    HRESULT ModifyVLANProperty(const std::wstring& vlanId, const CVLAN& vlan);
    /// Removes a VLAN, with its settings.
    HRESULT RemoveVLAN(const std::wstring& vlanId);
    /// Says that the checks which follow are about a change of a VLAN, not an addition; false at first.
    void SetVlanIsModify(bool isModify);
    /// What SetVlanIsModify was told last.
    bool GetVlanIsModify() const;
    /// @}

    /// @name Diagnostics
    /// A test runs inside the provider. Starting it returns at once; whoever wants to follow it reads its
    /// result again and again until the state says that it has ended.
    /// @{

    /// Lists the tests that an adapter offers (the instances of Zorel_DiagTest associated with it), in the
    /// provider's order. A test without an object path is left out.
    /// @param[out] tests what it held before is deleted.
    /// @return 0x80004005 for an empty identifier. When a test cannot be read, those before it stay.
    HRESULT EnumerateDiagnostics(const std::wstring& adapterId, CDiagTests& tests);
    /// Starts a test on an adapter (Zorel_DiagTest.RunTest).
    /// @param diagId `CDiagTest::m_wsUniqueID`
    /// @return 0 also when the provider refuses to start it: only the test's state tells.
    HRESULT RunDiagnostics(const std::wstring& diagId, const std::wstring& adapterId);
    /// Asks the provider to stop a test (Zorel_DiagTest.DiscontinueTest).
    /// @return 0 also when the provider does not stop it, as above; 0x80041001, and nothing is asked, when
    /// the
    ///         test has no name or there is no result of its name.
    HRESULT StopDiagnostics(const std::wstring& diagId, const std::wstring& adapterId);
    /// Reads the result of a test (Zorel_DiagResult), with the results of its package.
    /// @param[in,out] result members that the provider has no value for keep theirs.
    /// @return 0, with nothing read, for a test without a "TestId"; 1 (WBEM_S_FALSE), with only that read,
    /// for
    ///         a test without a result.
    HRESULT GetDiagnosticsResult(const std::wstring& diagId, CDiagResult& result);
    /// Reads the results that belong to a package, those of packages within it included.
    /// @param[in,out] result a package, with its path and package name; its package results are replaced.
    /// @return 0x80004005 for a record without a path. When a result cannot be read, those before it stay.
    HRESULT GetDiagnosticsPackageResults(const std::wstring& diagId, CDiagResult& result);
    /// @}

    /// @name Boot agent and flash images
    /// An image travels as it is: the library never looks into it. The provider's verdict on an image is its
    /// return code, and never a failure of the operation.
    /// @{

    /// Reads the boot agent of an adapter (Zorel_BootAgent). Members that the provider has no value for keep
    /// theirs.
    /// @return 0x80004005 for an identifier that is empty or no adapter's path.
    HRESULT GetAdapterBootAgentInfo(const std::wstring& adapterId, CBootAgent& bootAgent);
    /// Reads the whole flash memory (Zorel_BootAgent.ReadFlash).
    /// @param bootAgentId `CBootAgent::m_wsBootAgentID`
    /// @param[out] size   its length in bytes.
    /// @param[out] data   a buffer that the caller releases with `operator delete`; null unless 0 is
    /// returned.
    /// @return 0x80004005 when the provider has no bytes to give, or an array whose length makes no sense.
    HRESULT ReadBootAgentFlash(const std::wstring& bootAgentId, LONG& size, unsigned char** data);
    /// Writes an image into the flash memory (Zorel_BootAgent.ProgramFlashEx) and returns when it is done.
    /// Check it first: see VerifyImageType.
    /// @param size, data       the image.
    /// @param imageTypes       the images to write, by the captions of these settings.
    /// @param[out] returnCode  what the provider says; 0 for success.
    HRESULT WriteBootAgentFlash(const std::wstring& bootAgentId, const LONG& size, unsigned char* data,
                                CSettings& imageTypes, int& returnCode);
    /// Lists the images in an image file (Zorel_BootAgent.ReadImageFile).
    /// @param size, data      the contents of the file.
    /// @param[in,out] images  receives one CSettingString for each image, behind those it already holds: the
    ///                        caption is the type, the value the version, further group and expose level.
    /// @param[out] returnCode what the provider says; with bit 0 set there is no list.
    HRESULT ReadBootAgentImageFile(const std::wstring& bootAgentId, const LONG& size, unsigned char* data,
                                   CSettings& images, int& returnCode);
    /// Checks an image file against image types (Zorel_BootAgent.VerifyImageType).
    /// @param imageTypes      the types, by the captions of these settings.
    /// @param[out] returnCode the provider's verdict; 0 when the file is right.
    HRESULT VerifyImageType(const std::wstring& bootAgentId, const LONG& size, unsigned char* data,
                            CSettings& imageTypes, int& returnCode);
    /// @}

    /// @name iSCSI boot
    /// @{

    /// Lists the adapters whose boot agent can boot from iSCSI (Zorel_BootAgent_iSCSI_Adapters).
    /// @param[out] adapters what it held before is deleted. When an adapter cannot be read, those before it
    ///             stay.
    HRESULT EnumerateISCSIAdapters(CISCSIAdapters& adapters);
    /// Changes the part that a boot agent plays in booting from iSCSI
    /// (Zorel_BootAgent.SetiSCSI_Status).
    /// @param bootAgentId     `CBootAgent::m_wsBootAgentID` or `CISCSIAdapter::m_wsPath`
    /// @param[out] returnCode what the provider says; left untouched when it says nothing.
    HRESULT SetiSCSIStatus(std::wstring bootAgentId, CISCSIAdapter::iSCSIStatus status,
                           unsigned int& returnCode);
    /// Tells whether iSCSI boot is enabled on an adapter (IsiSCSIEnabled of Zorel_PhysicalEthernetAdapter)
    /// and whether the operating system can do it (IsiSCSISupported).
    HRESULT GetiSCSI_Info(const std::wstring& adapterId, CiSCSI& info);
    /// @}

  private:
    friend struct QuilletTestAccess;
    friend class ProviderSession;
    friend class ProviderMethod;

    // The calling thread's interfaces; the caller releases them. Null when there is no connection.
    IWbemServices* GetWbemService();
    IWbemContext* GetContext();
    IWbemClassObject* GetNetService();

    // Steps of the session.
    HRESULT MarshalWbemService(IWbemServices* service);
    HRESULT MarshalWbemContext(IWbemContext* context);
    HRESULT MarshalNetService(IWbemClassObject* netService);
    HRESULT RevokeWbemService();
    HRESULT RevokeWbemContext();
    HRESULT RevokeNetService();
    HRESULT CreateContext();
    HRESULT CreateNetServices();
    HRESULT SetInitialSecurityAttribute();
    _bstr_t GetNamespace();
    void AddNameSpace(const std::wstring& relativePath, std::wstring& fullPath);
    HRESULT MarshalInterface(IUnknown* pointer, REFIID iid, DWORD& cookie, const wchar_t* operation);
    bool IsRegistered(DWORD cookie, const wchar_t* missing) const;
    HRESULT RevokeInterface(DWORD& cookie, const wchar_t* missing);
    template <class Interface>
    ATL::CComPtr<Interface> FetchInterface(DWORD cookie, REFIID iid, const wchar_t* missing);

    // Typed property access. A property without a value sets isNull and leaves the value untouched; isRead
    // tells whether a value was read at all.
    static HRESULT GetPropertyAsBool(IWbemClassObject* instance, const wchar_t* name, bool& value,
                                     bool& isNull, bool* isRead = nullptr);
    static HRESULT GetPropertyAsInt(IWbemClassObject* instance, const wchar_t* name, int& value, bool& isNull,
                                    bool* isRead = nullptr);
    static HRESULT GetPropertyAsLong(IWbemClassObject* instance, const wchar_t* name, LONG& value,
                                     bool& isNull, bool* isRead = nullptr);
    static HRESULT GetPropertyAsUINT64(IWbemClassObject* instance, const wchar_t* name, ULONGLONG& value,
                                       bool& isNull, bool* isRead = nullptr);
    static HRESULT GetPropertyAsString(IWbemClassObject* instance, const wchar_t* name, _bstr_t& value,
                                       bool& isNull, bool* isRead = nullptr);
    // As a text that is a secret: overwritten wherever it was but in the value.
    static HRESULT GetPropertyAsSecret(IWbemClassObject* instance, const wchar_t* name, std::wstring& value,
                                       bool& isNull, bool* isRead = nullptr);
    static HRESULT GetPropertyArray(IWbemClassObject* instance, const wchar_t* name,
                                    std::vector<LONG>& values, int* count);
    static HRESULT GetPropertyArray(IWbemClassObject* instance, const wchar_t* name,
                                    std::vector<ATL::CComBSTR>& values, int* count);
    friend class PropertyReader;

    // Setters write the property and commit the whole instance.
    HRESULT SetPropertyAsLong(IWbemClassObject* instance, const wchar_t* name, const LONG& value);
    HRESULT SetPropertyAsInt(IWbemClassObject* instance, const wchar_t* name, const int& value);
    HRESULT SetPropertyAsBool(IWbemClassObject* instance, const wchar_t* name, const bool& value);
    HRESULT SetPropertyAsString(IWbemClassObject* instance, const wchar_t* name, const _bstr_t& value);
    HRESULT SetPropertyAsMultiString(IWbemClassObject* instance, const wchar_t* name,
                                     const std::vector<std::wstring>& values);

    HRESULT WriteProperty(IWbemClassObject* instance, const wchar_t* name, VARIANT& value,
                          const wchar_t* disconnected);

    // Switches a context to partial retrieval (mode) and back (-1).
    static HRESULT ChangeContext(IWbemContext* context, LONG mode);

    // Provider numbers to the enumerations of the records.
    static CAdapterDynamicInfo::DuplexMode GetDuplex(const bool& fullDuplex);
    static CAdapterDynamicInfo::LinkSpeed GetLinkSpeed(const LONG& speed);
    static CAdapterDynamicInfo::LinkSecStatus GetLinkSecStatus(const LONG& status);
    static CDataCenter::DCBStatus GetDCBStatus(const LONG& status);
    static CTeam::TeamMode GetTeamMode(const LONG& mode);

    // Settings.
    static HRESULT GetSetting(IWbemClassObject* instance, CSetting* setting);
    static HRESULT GetIntSetting(IWbemClassObject* instance, CSettingInt* setting);
    static HRESULT GetStringSetting(IWbemClassObject* instance, CSettingString* setting);
    static HRESULT GetEnumSetting(IWbemClassObject* instance, CSettingEnum* setting);
    static HRESULT GetSliderSetting(IWbemClassObject* instance, CSettingSlider* setting);
    static HRESULT GetMultiSetting(IWbemClassObject* instance, CSettingMultiSelection* setting);
    static HRESULT GetMultiStringSetting(IWbemClassObject* instance, CSettingMultiString* setting);
    static HRESULT AppendSetting(IWbemClassObject* instance, CSettings& settings);
    struct SettingOwner;
    HRESULT GetSettingsOfOwner(const SettingOwner& owner, const std::wstring& id, CSettings& settings,
                               DWORD selector);
    struct OwnedSetting;
    HRESULT FindSettings(const std::vector<std::wstring>& adapterIds, SettingName name,
                         std::vector<OwnedSetting>& found, bool& onAll);
    HRESULT GetSettingOnTeamOrAdapter(const std::vector<std::wstring>& adapterIds, CSettings& settings,
                                      bool& onAll, SettingName name);

    // Checks of settings. CheckForValueMismatch is true when there is none.
    static bool CheckForValueMismatch(const CSettings& settings, bool exact);
    bool IsScalableNetworkingPackInstalled(const CAdapters& adapters);
    HRESULT FindTeamOfAdapter(const std::wstring& adapterId, bool& isTeamed, std::wstring& teamId);
    HRESULT GetJumboFrameSettings(const std::vector<std::wstring>& adapterIds, CSettings& settings,
                                  bool& onAll);
    bool IsTeamCapableOfAdvancedSetting(const std::vector<std::wstring>& adapterIds, const SettingName& name,
                                        LONG& capable, LONG& enabled);
    bool IsOldTeamCapableOfSetting(const CTeamedAdapters& members, const SettingName& name);
    struct MemberSetting;
    HRESULT ReadSettingOfMembers(const std::vector<std::wstring>& adapterIds, SettingName name,
                                 std::vector<MemberSetting>& members);

    // Performance profiles.
    HRESULT RefreshProfileSetting(const std::wstring& adapterId, CSettingEnum& setting);
    static HRESULT AppendProfiles(const CSettingEnum& setting, CPerformanceProfiles& profiles);
    static bool IsPerformanceProfileSupported(const CPerformanceProfiles* profiles);
    static bool IsCurrentPerformanceProfileCustom(const CPerformanceProfiles* profiles);

    // VLANs.
    struct VLANParent;
    HRESULT EnumerateVLANsOfParent(const VLANParent& parent, const std::wstring& id, CVLANs& vlans);
    HRESULT EnumerateVLANsOfComponent(const _bstr_t& parentId, CVLANs& vlans);
    static HRESULT AppendVLAN(IWbemClassObject* instance, CVLANs& vlans);
    static HRESULT GetVLANInfo(const ATL::CComPtr<IWbemClassObject>& instance, CVLAN& vlan);
    HRESULT GetVLANService(const std::wstring& componentId, ATL::CComPtr<IWbemClassObject>& service);
    HRESULT AddVLANToComponent(const std::wstring& componentId, CVLAN& vlan);
    CVLANs ExistingVLANs(const std::wstring& parentId, bool isTeam);
    ULONGLONG CheckForUniqueID(const std::wstring& parentId, bool isTeam, const CVLAN& vlan);
    ULONGLONG CheckForUntaggedVLAN(const std::wstring& parentId, bool isTeam, int vlanNumber);
    int CheckForTaggedVLAN(const std::wstring& parentId, bool isTeam);

    // Display texts from the qualifiers of a property.
    HRESULT GetDataFromValues(const ProviderName& className, const ProviderName& property, LONG code,
                              std::wstring& text);
    HRESULT GetDataFromValueMap(const ProviderName& className, const ProviderName& property, LONG code,
                                std::wstring& text);

    // The ports of one adapter of a board.
    static HRESULT AppendPorts(const ProviderSession& session, IWbemClassObject* adapter,
                               CAdapterPorts& ports);

    // Teams.
    static void ReadTeam(PropertyReader& read, CTeam& team);
    HRESULT GetTeamsEthernetAdapterPath(const std::wstring& teamId, _bstr_t& path);
    bool CheckIfAdapterIsTeamed(const std::wstring& adapterId, std::wstring& teamId,
                                const CAdapterPorts& ports);
    static HRESULT AppendMembers(const ProviderSession& session, const std::wstring& teamId,
                                 CTeamedAdapters& members);
    HRESULT ReadMembership(IWbemClassObject* membership, CTeamedAdapter& member);
    HRESULT ValidateTeamProperty(const ProviderName& method, const ProviderName& parameter,
                                 const _variant_t& value, const std::wstring& objectPath, DWORD& validation);
    static void GetNewAdaptersAddedToTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                          std::vector<std::wstring>& added);
    static void GetCurrentAdaptersStillInNewTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                                 std::vector<std::wstring>& staying);
    static HRESULT RemoveMembers(const ProviderSession& session, const std::wstring& teamId,
                                 const std::vector<std::wstring>& removed);
    static HRESULT AddMembers(const ProviderSession& session, const std::wstring& teamId,
                              const std::vector<std::wstring>& added);
    HRESULT FillTeamAttr(LONG capability, CTeamWizTeamModes* modes);

    DWORD m_dwService = 0;    ///< interface-table cookie of the IWbemServices; 0: none
    DWORD m_dwNetService = 0; ///< cookie of the Zorel_NetService instance; 0: none
    DWORD m_dwContext = 0;    ///< cookie of the IWbemContext; 0: none
    std::wstring m_strMachineName;
    ATL::CComPtr<IGlobalInterfaceTable> m_pGIT; ///< created when it is first needed
    LONG m_lClientSetId = 0;                    ///< the open client set; 0 outside one
    ATL::CComPtr<IUnknown> m_pReserved1;        ///< nothing fills the two references; a copy shares them
    ATL::CComPtr<IUnknown> m_pReserved2;
    bool m_bVlanIsModify = false; ///< the VLAN checks are about a change, not an addition
};
