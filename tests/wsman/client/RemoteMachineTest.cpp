// A simulated machine behind a server of our own, asked over the wire and directly: both say the same.
#include "ScriptedPeer.h"

#include "LeakCheck.h"
#include "TemporaryDirectory.h"

#include <server/HttpServer.h>

#include <quillet-simulator/Machine.h>
#include <quillet-wmi/ObjectPath.h>

#include <quillet/client/Session.h>

#include <wbemidl.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <set>

namespace quillet::tests {

namespace {

using simulator::Machine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using wmi::CallContext;
using wmi::Object;
using wmi::Value;

constexpr const char* kLab = R"(
    class T_Base { [key] string Name; };
    class T_All : T_Base {
        uint8 U8; sint8 S8; uint16 U16; sint16 S16; uint32 U32; sint32 S32; uint64 U64; sint64 S64;
        real32 R32; real64 R64; boolean B; string S; datetime D; char16 C; Zorel_NetService ref Ref;
        uint8 Bytes[]; uint64 Wide[]; string Texts[]; boolean Flags[]; datetime Times[];
        string Null; uint32 NullArray[]; uint32 EmptyArray[];
    };
    class T_Plain : T_Base { string Name; };
    instance of QuilletSimulator_Machine { Name = "lab"; ServerName = "SERVER12"; };
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of T_All {
        Name = "a<b>&\"c\"\\d  ";
        U8 = 255; S8 = -128; U16 = 65535; S16 = -32768; U32 = 4294967295; S32 = -2147483648;
        U64 = 18446744073709551615; S64 = -9223372036854775808; R32 = 1.5; R64 = -1.0e100; B = TRUE;
        S = "Zürich \x4E2D\n\t]]> "; D = "20240403144550.468750+120"; C = 65;
        Ref = "Zorel_NetService.Name=\"ZorelNetService\"";
        Bytes = {0, 1, 255}; Wide = {0, 18446744073709551615}; Texts = {"", " ", "x"}; Flags = {TRUE, FALSE};
        Times = {"00000001020304.000000:000", "20240403144550.468750+000"};
        EmptyArray = {};
    };
    instance of T_Plain { Name = "p1"; };
    instance of T_Plain { Name = "p2"; };
    instance of T_Plain { Name = "p3"; };
)";

std::string NarrowName(const std::wstring& name) {
    return {name.begin(), name.end()};
}

class RemoteMachineTest : public testing::Test {
  protected:
    RemoteMachineTest() : m_machine(Machine::FromText(kLab, "lab.mof")) {
        m_direct = DirectConnection();
        m_machine->Calls().Clear();
    }
    ~RemoteMachineTest() override {
        m_remote.reset();
        if (m_server) {
            m_server->Stop();
        }
    }

    std::shared_ptr<wmi::Connection> DirectConnection() {
        std::shared_ptr<wmi::Connection> connection;
        wmi::ConnectArguments arguments;
        arguments.resource = L"ROOT\\MarloLUM2";
        EXPECT_EQ(simulator::HostOf(m_machine)->Connect({}, arguments, connection).status, S_OK);
        return connection;
    }

    void Serve(wsman::HttpOptions options = {}, wsman::ServiceOptions service = {}) {
        options.users.Add("admin", "secret");
        m_server.emplace(std::move(options));
        m_server->Serve("/wsman",
                        std::make_shared<wsman::Service>(
                            DirectConnection(),
                            [this](std::wstring_view name) { return m_machine->Store().FindClass(name); },
                            service));
        m_port = m_server->Start();
    }
    void Connect(wsman::HttpOptions options = {}) {
        Serve(std::move(options));
        m_remote = ConnectTo(OptionsFor(m_port));
        m_machine->Calls().Clear();
    }

    std::vector<std::string> Journal() {
        std::vector<std::string> lines;
        for (const auto& call : m_machine->Calls().Take()) {
            const std::wstring line = call.Line();
            lines.emplace_back(line.begin(), line.end());
        }
        return lines;
    }

    static std::vector<std::wstring> Names(wmi::ObjectStream& stream) {
        std::vector<std::wstring> names;
        Object object;
        ULONG returned = 0;
        while (SUCCEEDED(stream.Next(wmi::kInfiniteTimeout, {&object, 1}, returned)) && returned == 1) {
            names.push_back(object.instance ? object.instance->Text(L"Name") : object.definition->name);
        }
        return names;
    }

    std::shared_ptr<Machine> m_machine;
    std::shared_ptr<wmi::Connection> m_direct;
    std::optional<wsman::HttpServer> m_server;
    std::shared_ptr<wmi::Connection> m_remote;
    int m_port = 0;
};

/// The path of the instance with all types.
const std::wstring kAll = LR"(T_All.Name="a<b>&\"c\"\\d  ")";

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

TEST_F(RemoteMachineTest, ContextAndLanguage_ReachTheProvider) {
    Connect();
    CallContext context;
    context.hasContext = true;
    context.values = {{L"ClientSetId", VT_I4, CIM_SINT32, Value::Signed(7)},
                      {L"Flag", VT_BOOL, CIM_BOOLEAN, Value::Bool(true)},
                      {L"Text", VT_BSTR, CIM_STRING, Value::Text(L"<a> ")}};
    Object found;
    ASSERT_EQ(CodeOf(m_remote->GetObject(context, kAll, found).status), "0x00000000");
    auto calls = m_machine->Calls().Take();
    std::erase_if(calls, [](const auto& call) { return !call.hasContext; }); // of classes
    ASSERT_EQ(calls.size(), 1u);
    const auto& got = calls[0].context;
    ASSERT_EQ(got.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(got[i].name, context.values[i].name);
        EXPECT_EQ(got[i].vt, context.values[i].vt);
        EXPECT_TRUE(got[i].value == context.values[i].value);
    }
}

TEST_F(RemoteMachineTest, Tls_IsTakenFromWhoCanBeTrusted) {
    const TemporaryDirectory directory;
    const std::string key = (directory.Path() / "key.pem").string();
    const std::string certificate = (directory.Path() / "cert.pem").string();
    const std::string make =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=x "
        "-addext subjectAltName=DNS:localhost -keyout " +
        key + " -out " + certificate + " 2>/dev/null";
    ASSERT_EQ(std::system(make.c_str()), 0);
    wsman::HttpOptions http;
    http.tls = wsman::TlsFiles{certificate, key};
    Serve(http);
    wsman::RemoteOptions options = OptionsFor(m_port);
    options.isPlain = false;
    options.host = "localhost";
    ConnectTo(options, HRESULT(WBEM_E_TRANSPORT_FAILURE));
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("localhost: its certificate is not trusted"));
    options.authorities = certificate;
    EXPECT_NE(ConnectTo(options), nullptr);
    options.host = "127.0.0.1";
    ConnectTo(options, HRESULT(WBEM_E_TRANSPORT_FAILURE)); // not the name in the certificate
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("its certificate is not trusted"));
    options.isUnverified = true;
    EXPECT_NE(ConnectTo(options), nullptr);
    options.isUnverified = false;
    options.authorities = "/nowhere/ca.pem";
    ConnectTo(options, HRESULT(WBEM_E_TRANSPORT_FAILURE));
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("/nowhere/ca.pem"));
    options.isPlain = true;
    ConnectTo(options, HRESULT(WBEM_E_TRANSPORT_FAILURE));
}

TEST_F(RemoteMachineTest, WithoutTlsOrRights_NobodyComesIn) {
    Serve();
    wsman::RemoteOptions options = OptionsFor(m_port);
    options.isPlain = false;
    options.connectTimeout = std::chrono::milliseconds(200);
    ConnectTo(options,
              static_cast<HRESULT>(0x800706BA)); // the server waits for the rest of what it cannot read
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("no connection came about in time: SSL"));
    options = OptionsFor(m_port);
    options.password = wsman::Password("wrong");
    ConnectTo(options, E_ACCESSDENIED);
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("does not take this user and password"));
    EXPECT_EQ(wsman::LastFailure().find("wrong"), std::string::npos);
    options.authentication = wsman::Authentication::Negotiate; // and no ticket
    ConnectTo(options, E_ACCESSDENIED);
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("ticket"));
}

TEST_F(RemoteMachineTest, ManyThreads_ShareOneMachineAndItsConnections) {
    wsman::HttpOptions http;
    std::mutex mutex;
    std::set<std::string> peers;
    http.log = [&](const wsman::LogLine& line) {
        const std::lock_guard lock(mutex);
        peers.insert(line.peer);
    };
    Connect(http);
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&] {
            for (int count = 0; count < 25; ++count) {
                Object found;
                right += SUCCEEDED(m_remote->GetObject({}, kAll, found).status) &&
                                 found.instance->Number(L"U8") == 255
                             ? 1
                             : 0;
                std::unique_ptr<wmi::ObjectStream> all;
                right += SUCCEEDED(m_remote->Instances({}, L"T_Plain", wmi::Depth::Deep, all).status) &&
                                 Names(*all).size() == 3
                             ? 1
                             : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 8 * 25 * 2);
    m_server->Stop(); // the last lines of the log are written
    EXPECT_LE(peers.size(), 10u) << "connections are used again";
}

TEST_F(RemoteMachineTest, ASession_IsOneWithTheMachineThatItNames) {
    m_machine = Machine::BuiltIn();
    Serve();
    const ComUsage com;
    const wsman::Remote remote(OptionsFor(m_port));
    ASSERT_EQ(CodeOf(remote.Result()), "0x00000000");
    Session session({.machine = L"127.0.0.1"});
    const auto adapters = session.Adapters();
    EXPECT_EQ(adapters.size(), 10u);
    EXPECT_THROW(Session({.machine = L"127.0.0.1/x"}), Error);
}

} // namespace

} // namespace quillet::tests
