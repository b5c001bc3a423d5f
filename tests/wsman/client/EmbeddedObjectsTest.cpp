// Objects that are values of properties and parameters, over the wire and through COM.
#include "ScriptedPeer.h"

#include "../../wmi/com/TableConnection.h"

#include <server/HttpServer.h>

#include <quillet-wmi/Registration.h>

#include <atlbase.h>
#include <comdef.h>

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using wmi::Embedded;
using wmi::Scalar;
using wmi::Value;

wmi::Property PropertyOf(const wchar_t* name, CIMTYPE type, const wchar_t* className = L"") {
    wmi::Property property;
    property.name = name;
    property.type = type;
    property.referenceClass = className;
    return property;
}

/// A holder of objects, one of any class and several of one, behind a server.
class EmbeddedObjectsTest : public testing::TestWithParam<bool> {
  protected:
    EmbeddedObjectsTest() {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        auto inner = std::make_shared<wmi::ClassDefinition>();
        inner->name = L"T_Inner";
        inner->properties = {PropertyOf(L"Number", CIM_UINT32), PropertyOf(L"Since", CIM_DATETIME),
                             PropertyOf(L"Texts", CIM_STRING | CIM_FLAG_ARRAY),
                             PropertyOf(L"Deeper", CIM_OBJECT)};
        m_inner = inner;
        auto holder = std::make_shared<wmi::ClassDefinition>();
        holder->name = L"T_Holder";
        const auto marked = [](const wchar_t* qualifier, wmi::Property property) {
            wmi::Qualifier isSo;
            isSo.name = qualifier;
            isSo.value = Value::Bool(true);
            property.qualifiers.Set(isSo);
            return property;
        };
        holder->properties = {marked(L"key", PropertyOf(L"Name", CIM_STRING)), PropertyOf(L"One", CIM_OBJECT),
                              PropertyOf(L"None", CIM_OBJECT, L"T_Inner"),
                              PropertyOf(L"Several", CIM_OBJECT | CIM_FLAG_ARRAY, L"T_Inner")};
        wmi::Method echo;
        echo.name = L"Echo";
        echo.in = {marked(L"in", PropertyOf(L"Given", CIM_OBJECT, L"T_Inner"))};
        echo.out = {marked(L"out", PropertyOf(L"Back", CIM_OBJECT, L"T_Inner"))};
        holder->methods = {echo};
        m_table.classes = {m_inner, holder};
        wmi::Instance instance{wmi::ClassPtr(holder)};
        instance.Set(L"Name", Value::Text(L"h"));
        instance.Set(L"One", Object(1, Object(2)));
        instance.Set(L"Several", Value(Value::Array{*Object(3).AsScalar(), *Object(4).AsScalar()}));
        m_table.instances = {std::make_shared<const wmi::Instance>(instance)};
        m_connection = std::make_shared<TableConnection>(m_table);
        m_connection->answers[L"Echo"] = [](const wmi::Filled* in, wmi::Instance& out) {
            out.Set(L"Back", *in->values.Find(L"Given"));
            out.Set(L"ReturnValue", Value::Unsigned(0));
        };
        if (GetParam()) {
            wsman::HttpOptions options;
            options.users.Add("admin", "secret");
            m_server.emplace(std::move(options));
            m_server->Serve("/wsman",
                            std::make_shared<wsman::Service>(m_connection, [this](std::wstring_view name) {
                                return m_table.FindClass(name);
                            }));
            m_registration.emplace(wsman::MakeRemoteHost(OptionsFor(m_server->Start())));
        } else {
            m_registration.emplace(std::make_shared<TableHost>(m_connection));
        }
        Connect();
    }
    ~EmbeddedObjectsTest() override {
        m_services.Release();
        m_registration.reset();
        if (m_server) {
            m_server->Stop();
        }
        EXPECT_EQ(wmi::LiveObjectCount(), 0);
        CoUninitialize();
    }

    void Connect() {
        ATL::CComPtr<IWbemLocator> locator;
        ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                   reinterpret_cast<void**>(&locator)),
                  S_OK);
        const ATL::CComBSTR path(L"ROOT\\MarloLUM2");
        ASSERT_EQ(
            locator->ConnectServer(path.m_str, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &m_services),
            S_OK);
        ASSERT_EQ(CoSetProxyBlanket(m_services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                    RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
                  S_OK);
    }
    ATL::CComPtr<IWbemClassObject> Holder() {
        ATL::CComPtr<IWbemClassObject> object;
        const ATL::CComBSTR path(L"T_Holder.Name=\"h\"");
        EXPECT_EQ(m_services->GetObject(path.m_str, 0, nullptr, &object, nullptr), S_OK)
            << wsman::LastFailure();
        return object;
    }
    /// The object in a VARIANT.
    static ATL::CComPtr<IWbemClassObject> In(const _variant_t& value) {
        EXPECT_EQ(V_VT(&value), VT_UNKNOWN);
        ATL::CComPtr<IWbemClassObject> object;
        if (V_VT(&value) == VT_UNKNOWN) {
            EXPECT_EQ(V_UNKNOWN(&value)->QueryInterface(&object), S_OK);
        }
        return object;
    }
    static LONG NumberOf(IWbemClassObject* object) {
        _variant_t number;
        EXPECT_EQ(object->Get(L"Number", 0, &number, nullptr, nullptr), S_OK);
        EXPECT_EQ(V_VT(&number), VT_I4);
        return V_I4(&number);
    }

    Value Object(std::uint32_t number, Value deeper = {}) const {
        auto object = std::make_shared<wmi::Instance>(wmi::ClassPtr(m_inner));
        object->Set(L"Number", Value::Unsigned(number));
        object->Set(L"Since", Value::Text(L"20240403144550.468750+120"));
        object->Set(L"Texts",
                    Value(Value::Array{Scalar(std::wstring(L"a<b>")), Scalar(std::wstring(L"\u6771"))}));
        object->Set(L"Deeper", std::move(deeper));
        return Value(Scalar(Embedded{object}));
    }

    Table m_table;
    std::shared_ptr<wmi::ClassDefinition> m_inner;
    std::shared_ptr<TableConnection> m_connection;
    std::optional<wsman::HttpServer> m_server;
    std::optional<wmi::ClassRegistration> m_registration;
    ATL::CComPtr<IWbemServices> m_services;
};

TEST_P(EmbeddedObjectsTest, Get_HandsOutObjects) {
    const ATL::CComPtr<IWbemClassObject> holder = Holder();
    ASSERT_NE(holder, nullptr);
    _variant_t one;
    CIMTYPE type = 0;
    ASSERT_EQ(holder->Get(L"One", 0, &one, &type, nullptr), S_OK);
    EXPECT_EQ(type, CIM_OBJECT);
    const ATL::CComPtr<IWbemClassObject> object = In(one);
    EXPECT_EQ(NumberOf(object), 1);
    _variant_t name;
    ASSERT_EQ(object->Get(L"__CLASS", 0, &name, nullptr, nullptr), S_OK);
    EXPECT_STREQ(V_BSTR(&name), L"T_Inner");
    _variant_t since;
    ASSERT_EQ(object->Get(L"Since", 0, &since, nullptr, nullptr), S_OK);
    EXPECT_STREQ(V_BSTR(&since), L"20240403144550.468750+120");
    _variant_t deeper;
    ASSERT_EQ(object->Get(L"Deeper", 0, &deeper, nullptr, nullptr), S_OK);
    EXPECT_EQ(NumberOf(In(deeper)), 2);
    _variant_t none;
    ASSERT_EQ(holder->Get(L"None", 0, &none, nullptr, nullptr), S_OK);
    EXPECT_EQ(V_VT(&none), VT_NULL);
    _variant_t several;
    ASSERT_EQ(holder->Get(L"Several", 0, &several, &type, nullptr), S_OK);
    EXPECT_EQ(type, CIM_OBJECT | CIM_FLAG_ARRAY);
    ASSERT_EQ(V_VT(&several), VT_ARRAY | VT_UNKNOWN);
    for (LONG i = 0; i < 2; ++i) {
        ATL::CComPtr<IUnknown> unknown;
        ASSERT_EQ(SafeArrayGetElement(V_ARRAY(&several), &i, &unknown), S_OK);
        EXPECT_EQ(NumberOf(In(_variant_t(unknown))), 3 + i);
    }
}

TEST_P(EmbeddedObjectsTest, WhatIsPut_ArrivesWithClassAndValues) {
    const ATL::CComPtr<IWbemClassObject> holder = Holder();
    ASSERT_NE(holder, nullptr);
    _variant_t one;
    ASSERT_EQ(holder->Get(L"One", 0, &one, nullptr, nullptr), S_OK);
    _variant_t number(LONG{77});
    ASSERT_EQ(In(one)->Put(L"Number", 0, &number, 0), S_OK);
    ASSERT_EQ(holder->Put(L"None", 0, &one, 0), S_OK);
    ASSERT_EQ(m_services->PutInstance(holder, WBEM_FLAG_UPDATE_ONLY, nullptr, nullptr), S_OK)
        << wsman::LastFailure();
    const wmi::InstancePtr stored = m_table.FindInstance(L"T_Holder.Name=\"h\"");
    EXPECT_TRUE(*stored->Find(L"None") == Object(77, Object(2)));
    EXPECT_TRUE(*stored->Find(L"One") == Object(1, Object(2))) << "an object that was handed out is a copy";
}

TEST_P(EmbeddedObjectsTest, Method_TakesAndGivesThem) {
    ATL::CComPtr<IWbemClassObject> definition;
    ATL::CComPtr<IWbemClassObject> signature;
    ATL::CComPtr<IWbemClassObject> parameters;
    const ATL::CComBSTR name(L"T_Holder");
    ASSERT_EQ(m_services->GetObject(name.m_str, 0, nullptr, &definition, nullptr), S_OK);
    ASSERT_EQ(definition->GetMethod(L"Echo", 0, &signature, nullptr), S_OK);
    ASSERT_EQ(signature->SpawnInstance(0, &parameters), S_OK);
    _variant_t one;
    ASSERT_EQ(Holder()->Get(L"One", 0, &one, nullptr, nullptr), S_OK);
    ASSERT_EQ(parameters->Put(L"Given", 0, &one, 0), S_OK);
    ATL::CComPtr<IWbemClassObject> out;
    const ATL::CComBSTR path(L"T_Holder.Name=\"h\"");
    const ATL::CComBSTR method(L"Echo");
    ASSERT_EQ(m_services->ExecMethod(path.m_str, method.m_str, 0, nullptr, parameters, &out, nullptr), S_OK)
        << wsman::LastFailure();
    _variant_t back;
    ASSERT_EQ(out->Get(L"Back", 0, &back, nullptr, nullptr), S_OK);
    EXPECT_EQ(NumberOf(In(back)), 1);
}

TEST_P(EmbeddedObjectsTest, WhatIsNoObject_IsNotTaken) {
    const ATL::CComPtr<IWbemClassObject> holder = Holder();
    ASSERT_NE(holder, nullptr);
    _variant_t text(L"text");
    EXPECT_EQ(holder->Put(L"One", 0, &text, 0), static_cast<HRESULT>(WBEM_E_TYPE_MISMATCH));
    _variant_t other(static_cast<IUnknown*>(m_services.p));
    EXPECT_EQ(holder->Put(L"One", 0, &other, 0), static_cast<HRESULT>(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(holder->Put(L"Several", 0, &text, 0), static_cast<HRESULT>(WBEM_E_TYPE_MISMATCH));
    ATL::CComBSTR mof;
    ASSERT_EQ(holder->GetObjectText(0, &mof), S_OK);
    EXPECT_NE(std::wstring(mof.m_str).find(L"instance of T_Inner { Number = 1;"), std::wstring::npos)
        << mof.m_str;
}

INSTANTIATE_TEST_SUITE_P(Ways, EmbeddedObjectsTest, testing::Bool(),
                         [](const auto& way) { return way.param ? "OverTheWire" : "Directly"; });

} // namespace

} // namespace quillet::tests
