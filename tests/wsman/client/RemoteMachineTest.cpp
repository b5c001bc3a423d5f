// Over the wire and directly: both say the same.
#include "RemoteMachineTest.h"

namespace quillet::tests {

namespace {

TEST_F(RemoteMachineTest, EveryType_ComesAsItIs) {
    Connect();
    Object here;
    Object there;
    ASSERT_EQ(CodeOf(m_direct->GetObject({}, kAll, here).status), "0x00000000");
    ASSERT_EQ(CodeOf(m_remote->GetObject({}, kAll, there).status), "0x00000000") << wsman::LastFailure();
    const auto& properties = here.definition->properties;
    ASSERT_EQ(there.definition->properties.size(), properties.size());
    for (std::size_t i = 0; i < properties.size(); ++i) {
        EXPECT_EQ(there.definition->properties[i].name, properties[i].name);
        EXPECT_EQ(there.definition->properties[i].type, properties[i].type);
        if ((properties[i].type & 0xFF) != CIM_REFERENCE) {
            EXPECT_TRUE(there.instance->values[i] == here.instance->values[i])
                << NarrowName(properties[i].name);
        }
    }
    EXPECT_EQ(there.instance->Text(L"Ref"),
              LR"(\\SERVER12\ROOT\MarloLUM2:Zorel_NetService.Name="ZorelNetService")");
}

TEST_F(RemoteMachineTest, EveryType_IsWrittenAsItIs) {
    Connect();
    Object there;
    ASSERT_EQ(CodeOf(m_remote->GetObject({}, kAll, there).status), "0x00000000");
    wmi::Instance changed = *there.instance;
    std::vector<wmi::NamedValue> puts;
    const auto put = [&](const wchar_t* name, Value value) {
        ASSERT_TRUE(changed.Set(name, value));
        const wmi::Property* property = changed.definition->FindProperty(name);
        puts.push_back({property->name, VT_EMPTY, property->type, *changed.Find(name)});
    };
    put(L"S64", Value::Signed(-5));
    put(L"S", Value::Text(L"<new> \u00E4"));
    put(L"D", Value::Text(L"00000009101112.000000:000"));
    put(L"Bytes", Value(Value::Bytes{7, 8}));
    put(L"U8", Value());
    put(L"EmptyArray",
        Value(Value::Array{Value::Unsigned(3).AsScalar() ? std::optional(*Value::Unsigned(3).AsScalar())
                                                         : std::nullopt}));
    put(L"Wide", Value());
    ASSERT_EQ(CodeOf(m_remote->PutInstance({}, {changed, puts}, wmi::WriteMode::CreateOrUpdate).status),
              "0x00000000")
        << wsman::LastFailure();
    EXPECT_THAT(Journal().back(), HasSubstr("(S64=-5, S=\"<new> "))
        << "what was put, in its order, and no more";
    Object here;
    ASSERT_EQ(CodeOf(m_direct->GetObject({}, kAll, here).status), "0x00000000");
    for (const wmi::NamedValue& each : puts) {
        EXPECT_TRUE(*here.instance->Find(each.name) == each.value) << NarrowName(each.name);
    }
    EXPECT_TRUE(*here.instance->Find(L"Texts") == *there.instance->Find(L"Texts")) << "the rest stays";
}

TEST_F(RemoteMachineTest, AnImage_ComesToTheByte) {
    Value::Bytes image(std::size_t{256} << 10);
    for (std::size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<std::uint8_t>(i * 37 >> 3);
    }
    wsman::ServiceOptions service;
    service.maxEnvelope = std::size_t{64} << 20;
    Serve({}, service);
    m_remote = ConnectTo(OptionsFor(m_port));
    wmi::Instance all = *m_machine->Store().FindInstance(*wmi::ObjectPath::Parse(kAll));
    ASSERT_TRUE(all.Set(L"Bytes", Value(image)));
    ASSERT_TRUE(SUCCEEDED(m_machine->Store().PutInstance(all)));
    Object found;
    ASSERT_EQ(CodeOf(m_remote->GetObject({}, kAll, found).status), "0x00000000") << wsman::LastFailure();
    EXPECT_TRUE(*found.instance->Find(L"Bytes") == Value(image));
}

TEST_F(RemoteMachineTest, AnObject_HasOnePathWhoeverTellsIt) {
    Connect();
    const std::wstring path = L"\\\\SERVER12\\ROOT\\MarloLUM2:" + kAll;
    Object object;
    ASSERT_EQ(CodeOf(m_remote->GetObject({}, kAll, object).status), "0x00000000");
    const auto pathOf = [this](const Object& of) {
        return wmi::FullPathOf(*m_remote, wmi::RelativePath(*of.instance));
    };
    EXPECT_EQ(pathOf(object), path);
    std::unique_ptr<wmi::ObjectStream> found;
    ULONG returned = 0;
    ASSERT_EQ(CodeOf(m_remote->Instances({}, L"T_All", wmi::Depth::Deep, found).status), "0x00000000");
    found->Next(wmi::kInfiniteTimeout, {&object, 1}, returned);
    EXPECT_EQ(pathOf(object), path);
    ASSERT_EQ(CodeOf(m_remote->Query({}, L"SELECT Name, U8 FROM T_All", found).status), "0x00000000");
    found->Next(wmi::kInfiniteTimeout, {&object, 1}, returned);
    EXPECT_EQ(pathOf(object), path);
    EXPECT_EQ(object.definition->properties.size(), 2u);

    std::array<wchar_t, 256> own{};
    DWORD length = 256;
    ASSERT_TRUE(GetComputerNameW(own.data(), &length));
    for (const std::wstring& server :
         {std::wstring(L"127.0.0.1"), std::wstring(L"."), std::wstring(own.data())}) {
        EXPECT_EQ(
            CodeOf(
                m_remote->GetObject({}, std::wstring(L"\\\\") + server + L"\\root\\marlolum2:" + kAll, object)
                    .status),
            "0x00000000");
        EXPECT_EQ(pathOf(object), path);
    }
    EXPECT_EQ(CodeOf(m_remote->GetObject({}, L"\\\\another\\ROOT\\MarloLUM2:" + kAll, object).status),
              "0x80041002");
    EXPECT_EQ(CodeOf(m_remote->GetObject({}, L"\\\\.\\ROOT\\cimv2:" + kAll, object).status), "0x8004100E");
    EXPECT_EQ(CodeOf(m_remote->GetObject({}, L"T_All.Name=", object).status), "0x8004103A");
    EXPECT_EQ(CodeOf(m_remote->GetObject({}, L"T_All.Name=\"none\"", object).status), "0x80041002");
}

TEST_F(RemoteMachineTest, Queries_NameTheMachineAsItKnowsItself) {
    m_machine = Machine::BuiltIn();
    Connect();
    std::unique_ptr<wmi::ObjectStream> here;
    ASSERT_EQ(CodeOf(m_remote->Instances({}, L"Zorel_TeamedMemberAdapter", wmi::Depth::Deep, here).status),
              "0x00000000");
    Object member;
    ULONG returned = 0;
    ASSERT_EQ(CodeOf(here->Next(wmi::kInfiniteTimeout, {&member, 1}, returned)), "0x00000000");
    const std::wstring team = member.instance->Text(L"GroupComponent");
    ASSERT_EQ(team.rfind(L"\\\\" + m_remote->ServerName() + L'\\', 0), 0u);
    std::unique_ptr<wmi::ObjectStream> found;
    for (const std::wstring& query :
         {L"SELECT * FROM Zorel_TeamedMemberAdapter WHERE GroupComponent = '" + team + L"'",
          L"ASSOCIATORS OF {" + team + L"} WHERE ResultClass = Zorel_PhysicalEthernetAdapter"}) {
        ASSERT_EQ(CodeOf(m_remote->Query({}, query, found).status), "0x00000000") << wsman::LastFailure();
        EXPECT_EQ(Names(*found).size(), 2u);
    }
    EXPECT_EQ(CodeOf(m_remote->Query({}, L"SELECT FROM WHERE", found).status), "0x80041017");
}

TEST_F(RemoteMachineTest, Classes_AreToldWithWhatTheyInherit) {
    Connect();
    Object here;
    Object there;
    for (const wchar_t* name : {L"T_All", L"Zorel_NetService", L"Zorel_BootAgent"}) {
        ASSERT_EQ(CodeOf(m_direct->GetObject({}, name, here).status), "0x00000000");
        ASSERT_EQ(CodeOf(m_remote->GetObject({}, name, there).status), "0x00000000") << wsman::LastFailure();
        EXPECT_EQ(there.definition->ancestors, here.definition->ancestors);
        ASSERT_EQ(there.definition->methods.size(), here.definition->methods.size());
        for (std::size_t i = 0; i < here.definition->methods.size(); ++i) {
            EXPECT_EQ(there.definition->methods[i].name, here.definition->methods[i].name);
            EXPECT_EQ(there.definition->methods[i].in.size(), here.definition->methods[i].in.size());
            EXPECT_EQ(there.definition->methods[i].out.size(), here.definition->methods[i].out.size());
        }
    }
    EXPECT_EQ(CodeOf(m_remote->GetObject({}, L"T_None", there).status), "0x80041002");
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(m_remote->Classes({}, L"T_Base", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_THAT(Names(*found), ElementsAre(L"T_All", L"T_Plain"));
    ASSERT_EQ(CodeOf(m_remote->Classes({}, L"T_All", wmi::Depth::Shallow, found).status), "0x00000000");
    EXPECT_THAT(Names(*found), IsEmpty());
}

TEST_F(RemoteMachineTest, Instances_AreThoseOfSubclassesToo) {
    Connect();
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(m_remote->Instances({}, L"T_Base", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Names(*found).size(), 4u);
    ASSERT_EQ(CodeOf(m_remote->Instances({}, L"T_Base", wmi::Depth::Shallow, found).status), "0x00000000");
    EXPECT_EQ(Names(*found).size(), 0u);
    ASSERT_EQ(CodeOf(m_remote->Instances({}, L"T_Plain", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_THAT(Names(*found), ElementsAre(L"p1", L"p2", L"p3"));
    EXPECT_EQ(CodeOf(found->Reset()), "0x00000000");
    EXPECT_EQ(CodeOf(found->Skip(wmi::kInfiniteTimeout, 2)), "0x00000000");
    EXPECT_THAT(Names(*found), ElementsAre(L"p3"));
    EXPECT_EQ(CodeOf(m_remote->Instances({}, L"T_None", wmi::Depth::Deep, found).status), "0x80041010");
}

} // namespace

} // namespace quillet::tests
