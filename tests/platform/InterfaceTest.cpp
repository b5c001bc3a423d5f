// The interfaces' identifiers and the order of their methods, which are a contract with every provider.
#include <windows.h>
#include <objbase.h>
#include <wbemidl.h>

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

std::wstring Shown(REFGUID guid) {
    wchar_t text[39];
    EXPECT_EQ(StringFromGUID2(guid, text, 39), 39);
    return text;
}

template <class Interface>
void ExpectIid(REFIID named, const wchar_t* expected) {
    EXPECT_EQ(Shown(named), expected);
    EXPECT_EQ(Shown(__uuidof(Interface)), expected);
}

TEST(InterfacesTest, HaveTheirIdentifiers) {
    ExpectIid<IUnknown>(IID_IUnknown, L"{00000000-0000-0000-C000-000000000046}");
    ExpectIid<IClassFactory>(IID_IClassFactory, L"{00000001-0000-0000-C000-000000000046}");
    ExpectIid<IMarshal>(IID_IMarshal, L"{00000003-0000-0000-C000-000000000046}");
    ExpectIid<IClientSecurity>(IID_IClientSecurity, L"{0000013D-0000-0000-C000-000000000046}");
    ExpectIid<IGlobalInterfaceTable>(IID_IGlobalInterfaceTable, L"{00000146-0000-0000-C000-000000000046}");
    ExpectIid<IDispatch>(IID_IDispatch, L"{00020400-0000-0000-C000-000000000046}");
    ExpectIid<IErrorInfo>(IID_IErrorInfo, L"{1CF2B120-547D-101B-8E65-08002B2BD119}");
    ExpectIid<IWbemQualifierSet>(IID_IWbemQualifierSet, L"{DC12A680-737F-11CF-884D-00AA004B2E24}");
    ExpectIid<IWbemClassObject>(IID_IWbemClassObject, L"{DC12A681-737F-11CF-884D-00AA004B2E24}");
    ExpectIid<IWbemLocator>(IID_IWbemLocator, L"{DC12A687-737F-11CF-884D-00AA004B2E24}");
    ExpectIid<IWbemServices>(IID_IWbemServices, L"{9556DC99-828C-11CF-A37E-00AA003240C7}");
    ExpectIid<IEnumWbemClassObject>(IID_IEnumWbemClassObject, L"{027947E1-D731-11CE-A357-000000000001}");
    ExpectIid<IWbemContext>(IID_IWbemContext, L"{44ACA674-E8FC-11D0-A07C-00C04FB68820}");
    ExpectIid<IWbemCallResult>(IID_IWbemCallResult, L"{44ACA675-E8FC-11D0-A07C-00C04FB68820}");
    ExpectIid<IWbemObjectSink>(IID_IWbemObjectSink, L"{7C857801-7381-11CF-884D-00AA004B2E24}");
    EXPECT_EQ(Shown(CLSID_WbemLocator), L"{4590F811-1D3A-11D0-891F-00AA004B2E24}");
    EXPECT_EQ(Shown(CLSID_WbemContext), L"{674B6698-EE92-11D0-AD71-00C04FD8FDFF}");
    EXPECT_EQ(Shown(CLSID_StdGlobalInterfaceTable), L"{00000323-0000-0000-C000-000000000046}");
}

/// The place of a method in its interface's table. The compilers of both hosts keep it, plus one, in the
/// first word of a pointer to a virtual method.
template <class Method>
std::size_t Slot(Method method) {
    std::ptrdiff_t words[2];
    static_assert(sizeof words == sizeof method);
    std::memcpy(words, &method, sizeof method);
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

TEST(InterfacesTest, ComsOwnKeepTheOrderOfTheirMethods) {
    EXPECT_EQ(Slot(&IUnknown::AddRef), 1u);
    EXPECT_EQ(Slot(&IUnknown::Release), 2u);
    EXPECT_EQ(Slot(&IClassFactory::CreateInstance), 3u);
    EXPECT_EQ(Slot(&IClassFactory::LockServer), 4u);
    EXPECT_EQ(Slot(&IGlobalInterfaceTable::RegisterInterfaceInGlobal), 3u);
    EXPECT_EQ(Slot(&IGlobalInterfaceTable::RevokeInterfaceFromGlobal), 4u);
    EXPECT_EQ(Slot(&IGlobalInterfaceTable::GetInterfaceFromGlobal), 5u);
    EXPECT_EQ(Slot(&IClientSecurity::QueryBlanket), 3u);
    EXPECT_EQ(Slot(&IClientSecurity::SetBlanket), 4u);
    EXPECT_EQ(Slot(&IClientSecurity::CopyProxy), 5u);
    EXPECT_EQ(Slot(&IMarshal::GetUnmarshalClass), 3u);
    EXPECT_EQ(Slot(&IMarshal::DisconnectObject), 8u);
    EXPECT_EQ(Slot(&IDispatch::GetTypeInfoCount), 3u);
    EXPECT_EQ(Slot(&IDispatch::Invoke), 6u);
    EXPECT_EQ(Slot(&IErrorInfo::GetGUID), 3u);
    EXPECT_EQ(Slot(&IErrorInfo::GetSource), 4u);
    EXPECT_EQ(Slot(&IErrorInfo::GetDescription), 5u);
    EXPECT_EQ(Slot(&IErrorInfo::GetHelpContext), 7u);
}

TEST(InterfacesTest, ServicesKeepTheOrderOfTheirMethods) {
    EXPECT_EQ(Slot(&IWbemLocator::ConnectServer), 3u);
    EXPECT_EQ(Slot(&IWbemServices::OpenNamespace), 3u);
    EXPECT_EQ(Slot(&IWbemServices::CancelAsyncCall), 4u);
    EXPECT_EQ(Slot(&IWbemServices::QueryObjectSink), 5u);
    EXPECT_EQ(Slot(&IWbemServices::GetObject), 6u);
    EXPECT_EQ(Slot(&IWbemServices::GetObjectAsync), 7u);
    EXPECT_EQ(Slot(&IWbemServices::PutClass), 8u);
    EXPECT_EQ(Slot(&IWbemServices::PutClassAsync), 9u);
    EXPECT_EQ(Slot(&IWbemServices::DeleteClass), 10u);
    EXPECT_EQ(Slot(&IWbemServices::DeleteClassAsync), 11u);
    EXPECT_EQ(Slot(&IWbemServices::CreateClassEnum), 12u);
    EXPECT_EQ(Slot(&IWbemServices::CreateClassEnumAsync), 13u);
    EXPECT_EQ(Slot(&IWbemServices::PutInstance), 14u);
    EXPECT_EQ(Slot(&IWbemServices::PutInstanceAsync), 15u);
    EXPECT_EQ(Slot(&IWbemServices::DeleteInstance), 16u);
    EXPECT_EQ(Slot(&IWbemServices::DeleteInstanceAsync), 17u);
    EXPECT_EQ(Slot(&IWbemServices::CreateInstanceEnum), 18u);
    EXPECT_EQ(Slot(&IWbemServices::CreateInstanceEnumAsync), 19u);
    EXPECT_EQ(Slot(&IWbemServices::ExecQuery), 20u);
    EXPECT_EQ(Slot(&IWbemServices::ExecQueryAsync), 21u);
    EXPECT_EQ(Slot(&IWbemServices::ExecNotificationQuery), 22u);
    EXPECT_EQ(Slot(&IWbemServices::ExecNotificationQueryAsync), 23u);
    EXPECT_EQ(Slot(&IWbemServices::ExecMethod), 24u);
    EXPECT_EQ(Slot(&IWbemServices::ExecMethodAsync), 25u);
}

TEST(InterfacesTest, ObjectsKeepTheOrderOfTheirMethods) {
    EXPECT_EQ(Slot(&IWbemClassObject::GetQualifierSet), 3u);
    EXPECT_EQ(Slot(&IWbemClassObject::Get), 4u);
    EXPECT_EQ(Slot(&IWbemClassObject::Put), 5u);
    EXPECT_EQ(Slot(&IWbemClassObject::Delete), 6u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetNames), 7u);
    EXPECT_EQ(Slot(&IWbemClassObject::BeginEnumeration), 8u);
    EXPECT_EQ(Slot(&IWbemClassObject::Next), 9u);
    EXPECT_EQ(Slot(&IWbemClassObject::EndEnumeration), 10u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetPropertyQualifierSet), 11u);
    EXPECT_EQ(Slot(&IWbemClassObject::Clone), 12u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetObjectText), 13u);
    EXPECT_EQ(Slot(&IWbemClassObject::SpawnDerivedClass), 14u);
    EXPECT_EQ(Slot(&IWbemClassObject::SpawnInstance), 15u);
    EXPECT_EQ(Slot(&IWbemClassObject::CompareTo), 16u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetPropertyOrigin), 17u);
    EXPECT_EQ(Slot(&IWbemClassObject::InheritsFrom), 18u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetMethod), 19u);
    EXPECT_EQ(Slot(&IWbemClassObject::PutMethod), 20u);
    EXPECT_EQ(Slot(&IWbemClassObject::DeleteMethod), 21u);
    EXPECT_EQ(Slot(&IWbemClassObject::BeginMethodEnumeration), 22u);
    EXPECT_EQ(Slot(&IWbemClassObject::NextMethod), 23u);
    EXPECT_EQ(Slot(&IWbemClassObject::EndMethodEnumeration), 24u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetMethodQualifierSet), 25u);
    EXPECT_EQ(Slot(&IWbemClassObject::GetMethodOrigin), 26u);
}

TEST(InterfacesTest, TheRestOfWmiKeepsTheOrderOfItsMethods) {
    EXPECT_EQ(Slot(&IWbemQualifierSet::Get), 3u);
    EXPECT_EQ(Slot(&IWbemQualifierSet::Put), 4u);
    EXPECT_EQ(Slot(&IWbemQualifierSet::Delete), 5u);
    EXPECT_EQ(Slot(&IWbemQualifierSet::GetNames), 6u);
    EXPECT_EQ(Slot(&IWbemQualifierSet::BeginEnumeration), 7u);
    EXPECT_EQ(Slot(&IWbemQualifierSet::Next), 8u);
    EXPECT_EQ(Slot(&IWbemQualifierSet::EndEnumeration), 9u);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Reset), 3u);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Next), 4u);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::NextAsync), 5u);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Clone), 6u);
    EXPECT_EQ(Slot(&IEnumWbemClassObject::Skip), 7u);
    EXPECT_EQ(Slot(&IWbemContext::Clone), 3u);
    EXPECT_EQ(Slot(&IWbemContext::GetNames), 4u);
    EXPECT_EQ(Slot(&IWbemContext::BeginEnumeration), 5u);
    EXPECT_EQ(Slot(&IWbemContext::Next), 6u);
    EXPECT_EQ(Slot(&IWbemContext::EndEnumeration), 7u);
    EXPECT_EQ(Slot(&IWbemContext::SetValue), 8u);
    EXPECT_EQ(Slot(&IWbemContext::GetValue), 9u);
    EXPECT_EQ(Slot(&IWbemContext::DeleteValue), 10u);
    EXPECT_EQ(Slot(&IWbemContext::DeleteAll), 11u);
    EXPECT_EQ(Slot(&IWbemCallResult::GetResultObject), 3u);
    EXPECT_EQ(Slot(&IWbemCallResult::GetResultString), 4u);
    EXPECT_EQ(Slot(&IWbemCallResult::GetResultServices), 5u);
    EXPECT_EQ(Slot(&IWbemCallResult::GetCallStatus), 6u);
    EXPECT_EQ(Slot(&IWbemObjectSink::Indicate), 3u);
    EXPECT_EQ(Slot(&IWbemObjectSink::SetStatus), 4u);
}

TEST(InterfacesTest, CodesAndFlagsHaveTheirNumbers) {
    const std::pair<HRESULT, unsigned> codes[] = {
        {WBEM_S_FALSE, 1},
        {WBEM_S_TIMEDOUT, 0x40004},
        {WBEM_E_FAILED, 0x80041001},
        {WBEM_E_NOT_FOUND, 0x80041002},
        {WBEM_E_ACCESS_DENIED, 0x80041003},
        {WBEM_E_TYPE_MISMATCH, 0x80041005},
        {WBEM_E_OUT_OF_MEMORY, 0x80041006},
        {WBEM_E_INVALID_CONTEXT, 0x80041007},
        {WBEM_E_INVALID_PARAMETER, 0x80041008},
        {WBEM_E_NOT_SUPPORTED, 0x8004100c},
        {WBEM_E_INVALID_NAMESPACE, 0x8004100e},
        {WBEM_E_INVALID_OBJECT, 0x8004100f},
        {WBEM_E_INVALID_CLASS, 0x80041010},
        {WBEM_E_INVALID_QUERY, 0x80041017},
        {WBEM_E_ALREADY_EXISTS, 0x80041019},
        {WBEM_E_INVALID_METHOD, 0x8004102e},
        {WBEM_E_INVALID_OBJECT_PATH, 0x8004103a},
        {CO_E_NOTINITIALIZED, 0x800401f0},
        {RPC_E_CHANGED_MODE, 0x80010106},
        {E_OUTOFMEMORY, 0x8007000e},
        {HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), 0x80070002},
    };
    for (const auto& [code, number] : codes) {
        EXPECT_EQ(static_cast<ULONG>(code), number);
    }
    EXPECT_EQ(static_cast<ULONG>(WBEM_INFINITE), 0xffffffffu);
    EXPECT_EQ(static_cast<int>(WBEM_FLAG_USE_AMENDED_QUALIFIERS), 0x20000);
    EXPECT_EQ(static_cast<int>(WBEM_FLAG_FORWARD_ONLY), 0x20);
    EXPECT_EQ(static_cast<int>(WBEM_FLAG_RETURN_IMMEDIATELY), 0x10);
    EXPECT_EQ(static_cast<int>(CIM_FLAG_ARRAY), 0x2000);
    EXPECT_EQ(static_cast<int>(CIM_SINT32), 3);
    EXPECT_EQ(static_cast<int>(CIM_STRING), 8);
    EXPECT_EQ(static_cast<int>(CIM_BOOLEAN), 11);
    EXPECT_EQ(static_cast<int>(CIM_UINT8), 17);
    EXPECT_EQ(static_cast<int>(CIM_UINT16), 18);
    EXPECT_EQ(static_cast<int>(CIM_UINT32), 19);
    EXPECT_EQ(static_cast<int>(CIM_UINT64), 21);
    EXPECT_EQ(static_cast<int>(CIM_DATETIME), 101);
    EXPECT_EQ(static_cast<int>(CIM_REFERENCE), 102);
}

} // namespace
