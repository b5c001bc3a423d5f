// A machine with a class of every CIM type, and a client that is connected to it.
#pragma once

#include <quillet-simulator/Machine.h>

#include <atlbase.h>
#include <comdef.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using namespace quillet::simulator;

/// A result code as people know it, "0x80041001".
std::string Code(HRESULT result);
/// UTF-8.
std::string Narrow(std::wstring_view text);
/// The elements of an array of strings, which is destroyed.
std::vector<std::wstring> TakeNames(SAFEARRAY* names);
/// The lines of a journal.
std::vector<std::string> Lines(const std::vector<JournalEntry>& entries);

/// Fills a VARIANT of a type with a number.
_variant_t NumberVariant(VARTYPE vt, long long number);
/// VT_I4.
inline _variant_t I4(LONG number) {
    return NumberVariant(VT_I4, number);
}
/// VT_ARRAY of VT_BSTR, from 0.
_variant_t TextArray(const std::vector<std::wstring>& texts);
/// VT_ARRAY of VT_UI1, from 0.
_variant_t ByteArray(const std::vector<unsigned char>& bytes);

class ComTest : public testing::Test {
  protected:
    /// The classes and instances of every test, after the provider's own schema.
    static const char* const MOF;
    static constexpr const wchar_t* kAll = L"Test_All.Name=\"one\"";

    ComTest();
    ~ComTest() override;

    static MachineOptions Options(bool strict = false);
    /// Another machine from now on, of the classes above and these instances; the client is not connected.
    void Use(const std::string& instances, MachineOptions options = Options());
    /// Connects as a client does, blanket included.
    /// @param locale as in ConnectServer; null for none
    void Connect(const wchar_t* locale = nullptr);

    /// Takes the machine from behind the class identifiers; who is connected stays so.
    void Unregister() { m_registration.reset(); }

    ATL::CComPtr<IWbemLocator> Locator();
    ATL::CComPtr<IWbemContext> Context();
    HRESULT SetBlanket(IUnknown* proxy, DWORD authentication = RPC_C_AUTHN_LEVEL_CALL,
                       DWORD impersonation = RPC_C_IMP_LEVEL_IMPERSONATE);
    ATL::CComPtr<IWbemClassObject> Object(const wchar_t* path, LONG flags = 0);
    /// In-parameters of a method, spawned from its signature.
    ATL::CComPtr<IWbemClassObject> InParameters(const wchar_t* className, const wchar_t* method);
    /// Executes a method. What it answers takes the place of what `out` held.
    std::string ExecMethod(const wchar_t* path, const wchar_t* method, IWbemClassObject* in,
                           ATL::CComPtr<IWbemClassObject>& out, IWbemContext* context = nullptr);
    HRESULT GetStatus(const wchar_t* path, LONG flags = 0);
    HRESULT Query(const wchar_t* text, std::vector<std::wstring>* names = nullptr);

    static _variant_t Get(IWbemClassObject* object, const wchar_t* name);
    static HRESULT GetCode(IWbemClassObject* object, const wchar_t* name, VARIANT* value = nullptr);
    static HRESULT Put(IWbemClassObject* object, const wchar_t* name, _variant_t value, CIMTYPE type = 0);
    /// Opens a client set through the provider's method and returns its handle.
    LONG Begin();

    std::shared_ptr<Machine> machine;
    ATL::CComPtr<IWbemServices> services;

  private:
    std::optional<Registration> m_registration;
};
