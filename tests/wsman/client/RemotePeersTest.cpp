// Peers that are broken or hostile.
#include "PeerWithT.h"

#include <wbemidl.h>

#include <gmock/gmock.h>

namespace quillet::tests {

namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::Not;
using wmi::Object;

/// What one answer to Get ends with.
struct BadAnswer {
    const char* name;
    std::function<std::string(const PeerRequest&)> answer;
    long long code;
    const char* said;
};

TEST(RemotePeersTest, AnswersThatAreNone_AreToldWithHostUrlAndCause) {
    const std::string soap = "application/soap+xml;charset=UTF-8";
    const BadAnswer cases[] = {
        {"a page", [](auto&) { return HttpAnswerOf(200, "text/html", "<html/>"); }, 0x80041015,
         "no WS-Management"},
        {"no such page", [](auto&) { return HttpAnswerOf(404, "text/html", ""); }, 0x80041015,
         "HTTP status 404"},
        {"a way elsewhere",
         [](auto&) {
             return std::string(
                 "HTTP/1.1 302 X\r\nLocation: http://127.0.0.1:1/\r\nContent-Length: 0\r\n\r\n");
         },
         0x80041015, "HTTP status 302"},
        {"wrong password",
         [](auto&) {
             return std::string(
                 "HTTP/1.1 401 X\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n");
         },
         0x80070005, "user and password"},
        {"forbidden", [](auto&) { return HttpAnswerOf(403, "", ""); }, 0x80070005, "refuses"},
        {"too large a request", [](auto&) { return HttpAnswerOf(413, "", ""); }, 0x80041015, "larger"},
        {"no reason", [](auto&) { return HttpAnswerOf(500, "", ""); }, 0x80041015, "unprotected"},
        {"no XML", [&](auto&) { return HttpAnswerOf(200, soap, "<s:Envelope"); }, 0x80041015,
         "cannot be read"},
        {"no envelope", [&](auto&) { return HttpAnswerOf(200, soap, "<a/>"); }, 0x80041015, "cannot be read"},
        {"entities",
         [&](auto&) {
             return HttpAnswerOf(200, soap,
                                 "<!DOCTYPE a [<!ENTITY b \"bb\"><!ENTITY c \"&b;&b;\">]><a>&c;</a>");
         },
         0x80041015, "cannot be read"},
        {"depth",
         [&](auto&) {
             std::string deep;
             for (int i = 0; i < 100'000; ++i) {
                 deep += "<a>";
             }
             return HttpAnswerOf(200, soap, deep);
         },
         0x80041015, "cannot be read"},
        {"the answer to something else",
         [&](auto&) {
             PeerRequest other;
             other.body = "<a:MessageID>uuid:2</a:MessageID>";
             return SoapAnswer(other, Item("a"));
         },
         0x80041015, "another request"},
        {"a value of no type",
         [&](auto& r) { return SoapAnswer(r, "<p:T><p:K>a</p:K><p:Number>many</p:Number></p:T>"); },
         0x80041015, "cannot be read"},
        {"less than was promised",
         [&](auto&) {
             return "HTTP/1.1 200 X\r\nConnection: close\r\nContent-Type: " + soap +
                    "\r\nContent-Length: 1000\r\n\r\n<a>";
         },
         0x80041015, "broke"},
        {"nothing", [](auto&) { return std::string(); }, 0x80041015, "broke"},
        {"no HTTP", [](auto&) { return std::string("220 mail.example ESMTP\r\n"); }, 0x80041015, "failed"},
    };
    for (const BadAnswer& each : cases) {
        SCOPED_TRACE(each.name);
        ScriptedPeer peer(AfterIdentify(each.answer));
        const auto connection = ConnectTo(KnowingT(peer.Port()));
        ASSERT_NE(connection, nullptr);
        EXPECT_EQ(CodeOf(Get(*connection)), CodeOf(each.code));
        EXPECT_THAT(wsman::LastFailure(), HasSubstr("127.0.0.1: "));
        EXPECT_THAT(wsman::LastFailure(),
                    HasSubstr("http://127.0.0.1:" + std::to_string(peer.Port()) + "/wsman"));
        EXPECT_THAT(wsman::LastFailure(), HasSubstr(each.said));
        EXPECT_THAT(wsman::LastFailure(), Not(HasSubstr("secret")));
    }
}

TEST(RemotePeersTest, MoreThanWasAskedFor_IsNotTaken) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest&) {
        return HttpAnswerOf(200, "application/soap+xml", std::string(std::size_t{6} << 20, ' '));
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    EXPECT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x80041015");
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("larger than it may be"));
}

TEST(RemotePeersTest, Silence_EndsAtTheLimit) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest&) { return ScriptedPeer::kSilence; }));
    wsman::RemoteOptions options = KnowingT(peer.Port());
    options.timeout = milliseconds(150);
    const auto connection = ConnectTo(options);
    EXPECT_EQ(CodeOf(Get(*connection)), "0x80041069");
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("no answer came in time"));
}

TEST(RemotePeersTest, NobodyThere_IsToldAtOnce) {
    int port = 0;
    {
        const ScriptedPeer gone([](const PeerRequest&) { return std::string(); });
        port = gone.Port();
    }
    ConnectTo(OptionsFor(port), static_cast<HRESULT>(0x800706BA));
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("nobody answers at this port"));
    wsman::RemoteOptions options = OptionsFor(port);
    options.authentication = wsman::Authentication::Ntlm;
    options.host = "no-such-machine.invalid";
    ConnectTo(options, static_cast<HRESULT>(0x800706BA));
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("there is no machine of this name"));
}

TEST(RemotePeersTest, Cancelled_EndsWhatWaitsAndWhatComes) {
    ASSERT_EQ(CodeOf(S_OK), "0x00000000");
    ScriptedPeer peer(AfterIdentify([](const PeerRequest&) { return ScriptedPeer::kSilence; }));
    wsman::RemoteOptions options = KnowingT(peer.Port());
    options.timeout = std::chrono::hours(1);
    std::thread thread;
    {
        wsman::Remote remote(options);
        ASSERT_EQ(CodeOf(remote.Result()), "0x00000000");
        // The locator of this process now leads to the peer; the connection below goes the same way.
        IWbemLocator* locator = nullptr;
        ASSERT_EQ(CodeOf(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                          reinterpret_cast<void**>(&locator))),
                  "0x00000000");
        thread = std::thread([&] {
            while (peer.Requests().empty()) {
                std::this_thread::sleep_for(milliseconds(1));
            }
            remote.Cancel();
        });
        IWbemServices* services = nullptr;
        BSTR resource = SysAllocString(L"\\\\127.0.0.1\\ROOT\\MarloLUM2");
        ASSERT_EQ(CodeOf(locator->ConnectServer(resource, nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                                &services)),
                  "0x00000000");
        ASSERT_EQ(CodeOf(CoSetProxyBlanket(services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                           RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                           EOAC_NONE)),
                  "0x00000000");
        BSTR path = SysAllocString(L"T.K=\"a\"");
        IWbemClassObject* object = nullptr;
        for (int count = 0; count < 2; ++count) {
            EXPECT_EQ(CodeOf(services->GetObject(path, 0, nullptr, &object, nullptr)), "0x80041032");
            EXPECT_THAT(wsman::LastFailure(), HasSubstr("cancelled"));
        }
        SysFreeString(path);
        SysFreeString(resource);
        services->Release();
        locator->Release();
        thread.join();
    }
    EXPECT_EQ(peer.Requests().size(), 1u);
}

TEST(RemotePeersTest, Interrupted_EndsWhatThisThreadWaitsForAndNothingElse) {
    std::atomic<bool> isSilent{true};
    ScriptedPeer peer(AfterIdentify([&](const PeerRequest& request) {
        return isSilent ? ScriptedPeer::kSilence : SoapAnswer(request, Item("a"));
    }));
    wsman::RemoteOptions options = KnowingT(peer.Port());
    options.timeout = std::chrono::hours(1);
    int asked = 0;
    const std::thread::id waiting = std::this_thread::get_id();
    options.isInterrupted = [&] {
        EXPECT_EQ(std::this_thread::get_id(), waiting);
        // The first request is answered at once, and the others only when there is nobody to say yes.
        return isSilent && !peer.Requests().empty() && ++asked >= 3;
    };
    const auto connection = ConnectTo(options);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(CodeOf(Get(*connection)), "0x80041032");
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("cancelled"));
    isSilent = false;
    EXPECT_EQ(CodeOf(Get(*connection)), "0x00000000");
}

TEST(RemotePeersTest, AMethodWhoseAnswerIsLost_IsNeverSentTwice) {
    std::atomic<bool> dies{false};
    ScriptedPeer peer(AfterIdentify([&](const PeerRequest& request) {
        return dies ? std::string()
                    : SoapAnswer(request, "<p:Do_OUTPUT><p:ReturnValue>0</p:ReturnValue></p:Do_OUTPUT>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    EXPECT_EQ(CodeOf(Do(*connection)), "0x00000000");
    dies = true; // on a connection that was good before, where libcurl by itself would try again
    EXPECT_EQ(CodeOf(Do(*connection)), "0x80041015");
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("whether it was done is not known"));
    EXPECT_EQ(peer.Requests().size(), 2u);
    EXPECT_EQ(CodeOf(Do(*connection)), "0x80041015") << "and on a new one";
    EXPECT_EQ(peer.Requests().size(), 3u);
}

TEST(RemotePeersTest, AGetWhoseAnswerIsLost_IsSentOnceMore) {
    std::atomic<int> deaths{1};
    ScriptedPeer peer(AfterIdentify([&](const PeerRequest& request) {
        return deaths-- > 0 ? std::string() : SoapAnswer(request, Item("a"));
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    EXPECT_EQ(CodeOf(Get(*connection)), "0x00000000");
    EXPECT_EQ(peer.Requests().size(), 2u);
    deaths = 100;
    EXPECT_EQ(CodeOf(Get(*connection)), "0x80041015");
    EXPECT_LE(peer.Requests().size(), 5u) << "there is an end of it";
}

TEST(RemotePeersTest, APeerThatDiesBetweenPages_LosesNothingThatCame) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        if (!request.Has("n:Pull")) {
            return SoapAnswer(
                request, "<n:EnumerateResponse><n:EnumerationContext>c1</n:EnumerationContext><w:Items>" +
                             Item("a") + Item("b") + "</w:Items></n:EnumerateResponse>");
        }
        return std::string();
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Drain(*found), "a b 0x80041015");
    EXPECT_EQ(Drain(*found), "0x80041015")
        << "the end is not told for a failure, however often it is asked for";
    EXPECT_EQ(peer.Requests().size(), 2u) << "a Pull is not sent again: its objects would be lost";
}

TEST(RemotePeersTest, PagesWithoutObjects_ComeToAnEnd) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        return request.Has("n:Pull")
                   ? SoapAnswer(request, "<n:PullResponse><n:EnumerationContext>c</n:EnumerationContext>"
                                         "<n:Items/></n:PullResponse>")
                   : SoapAnswer(request, "<n:EnumerateResponse><n:EnumerationContext>c</n:EnumerationContext>"
                                         "</n:EnumerateResponse>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Drain(*found), "0x80041015");
    EXPECT_THAT(wsman::LastFailure(), HasSubstr("does not come to an end"));
}

TEST(RemotePeersTest, GivenUp_AnEnumerationIsReleased) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        return SoapAnswer(
            request, request.Has("n:Release")
                         ? ""
                         : "<n:EnumerateResponse><n:EnumerationContext>c9</n:EnumerationContext><w:Items>" +
                               Item("a") + "</w:Items></n:EnumerateResponse>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    found.reset();
    ASSERT_EQ(peer.Requests().size(), 2u);
    EXPECT_EQ(peer.Requests()[1].TextOf("EnumerationContext"), "c9");
    EXPECT_TRUE(peer.Requests()[1].Has("enumeration/Release"));
}

TEST(RemotePeersTest, PagesBehindTheSecond_AreAskedForAheadAndReleasedByTheirNewestContext) {
    std::atomic<int> pages{0};
    ScriptedPeer peer(AfterIdentify([&pages](const PeerRequest& request) {
        if (request.Has("n:Release")) {
            return SoapAnswer(request, "");
        }
        const int page = pages++;
        const std::string kind = page == 0 ? "Enumerate" : "Pull";
        return SoapAnswer(request, "<n:" + kind + "Response><n:EnumerationContext>c" + std::to_string(page) +
                                       "</n:EnumerationContext><n:Items>" + Item("a" + std::to_string(page)) +
                                       "</n:Items></n:" + kind + "Response>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    wmi::Object object;
    ULONG returned = 0;
    const auto next = [&] { return CodeOf(found->Next(LONG(WBEM_INFINITE), {&object, 1}, returned)); };
    EXPECT_EQ(next(), "0x00000000");
    EXPECT_EQ(peer.Requests().size(), 1u) << "the first page may be all that is wanted";
    EXPECT_EQ(next(), "0x00000000");
    EXPECT_EQ(object.instance->Text(L"K"), L"a1");
    found.reset();
    const auto requests = peer.Requests();
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_EQ(requests[2].TextOf("EnumerationContext"), "c1");
    EXPECT_EQ(requests[3].TextOf("EnumerationContext"), "c2");
    EXPECT_TRUE(requests[3].Has("enumeration/Release"));
}

TEST(RemotePeersTest, ANextThatMayNotWait_IsLate) {
    std::atomic<bool> mayAnswer{false};
    ScriptedPeer peer(AfterIdentify([&](const PeerRequest& request) {
        while (request.Has("n:Pull") && !mayAnswer) {
            std::this_thread::sleep_for(milliseconds(1));
        }
        return SoapAnswer(
            request,
            request.Has("n:Pull")
                ? "<n:PullResponse><n:Items>" + Item("b") + "</n:Items><n:EndOfSequence/></n:PullResponse>"
                : "<n:EnumerateResponse><n:EnumerationContext>c</n:EnumerationContext><w:Items>" + Item("a") +
                      "</w:Items></n:EnumerateResponse>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    std::array<Object, 2> objects;
    ULONG returned = 0;
    EXPECT_EQ(CodeOf(found->Next(20, objects, returned)), CodeOf(WBEM_S_TIMEDOUT));
    EXPECT_EQ(returned, 1u) << "the one that was there";
    mayAnswer = true;
    EXPECT_EQ(Drain(*found), "b 0x00000001") << "and nothing is lost";
}

TEST(RemotePeersTest, OptionsThatAreNotSafe_AreRefused) {
    wsman::RemoteOptions options;
    options.host = "server12";
    options.isPlain = true;
    options.authentication = wsman::Authentication::Basic;
    options.user = "admin";
    EXPECT_THROW(wsman::MakeRemoteHost(options), std::invalid_argument) << "a password without TLS";
    options.isPlain = false;
    EXPECT_NO_THROW(wsman::MakeRemoteHost(options));
    options.user.clear();
    EXPECT_THROW(wsman::MakeRemoteHost(options), std::invalid_argument) << "nobody";
    options.user = "admin";
    options.host = "server12/x@elsewhere";
    EXPECT_THROW(wsman::MakeRemoteHost(options), std::invalid_argument) << "more than a name";
}

} // namespace

} // namespace quillet::tests
