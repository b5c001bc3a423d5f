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
#include <quillet/DiagTest.h>
#include <quillet/Export.h>
#include <quillet/ISCSIAdapter.h>
#include <quillet/PerformanceProfile.h>
#include <quillet/Setting.h>
#include <quillet/Team.h>
#include <quillet/VLAN.h>

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
    HRESULT RevokeInterface(DWORD& cookie, const wchar_t* failure);

    // Typed property access. A property without a value sets isNull and leaves the value untouched.
    static HRESULT GetPropertyAsBool(IWbemClassObject* instance, const wchar_t* name, bool& value,
                                     bool& isNull);
    static HRESULT GetPropertyAsInt(IWbemClassObject* instance, const wchar_t* name, int& value,
                                    bool& isNull);
    static HRESULT GetPropertyAsLong(IWbemClassObject* instance, const wchar_t* name, LONG& value,
                                     bool& isNull);
    static HRESULT GetPropertyAsUINT64(IWbemClassObject* instance, const wchar_t* name, ULONGLONG& value,
                                       bool& isNull);
    static HRESULT GetPropertyAsString(IWbemClassObject* instance, const wchar_t* name, _bstr_t& value,
                                       bool& isNull);
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
