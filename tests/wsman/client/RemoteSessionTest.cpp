// Who comes in, what goes with a call, and many at once.
#include "RemoteMachineTest.h"

namespace quillet::tests {

namespace {

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

TEST_F(RemoteMachineTest, AnotherPassword_HasToBeRightToo) {
    Serve();
    const std::shared_ptr<wmi::Host> host = wsman::MakeRemoteHost(OptionsFor(m_port));
    const auto connect = [&](const wchar_t* password) {
        wmi::ConnectArguments arguments;
        arguments.resource = L"\\\\localhost\\ROOT\\MarloLUM2";
        arguments.user = L"admin";
        arguments.password = password;
        std::shared_ptr<wmi::Connection> connection;
        return host->Connect({}, arguments, connection).status;
    };
    EXPECT_EQ(connect(L"secret"), S_OK) << wsman::LastFailure();
    EXPECT_EQ(connect(L"guessed"), E_ACCESSDENIED);
    EXPECT_EQ(connect(L"secret"), S_OK);
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
