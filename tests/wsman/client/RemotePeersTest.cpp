// Peers that are broken, hostile, or of another make.
#include "ScriptedPeer.h"

#include <quillet-wmi/ObjectPath.h>

#include <wbemidl.h>

#include <gmock/gmock.h>

namespace quillet::tests {

namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::Not;
using wmi::Object;

/// A class "T" with a key "K", as a schema that is known here.
wmi::ClassPtr ClassT() {
    auto definition = std::make_shared<wmi::ClassDefinition>();
    definition->name = L"T";
    const auto add = [&](const wchar_t* name, CIMTYPE type) -> wmi::Property& {
        wmi::Property property;
        property.name = name;
        property.type = type;
        property.origin = L"T";
        definition->properties.push_back(std::move(property));
        return definition->properties.back();
    };
    wmi::Qualifier key;
    key.name = L"key";
    key.value = wmi::Value::Bool(true);
    add(L"K", CIM_STRING).qualifiers.Set(key);
    add(L"Number", CIM_UINT32);
    add(L"Flag", CIM_BOOLEAN);
    add(L"Since", CIM_DATETIME);
    add(L"Ports", CIM_UINT16 | CIM_FLAG_ARRAY);
    add(L"Owner", CIM_REFERENCE);
    wmi::Method method;
    method.name = L"Do";
    definition->methods.push_back(method);
    return definition;
}

wsman::RemoteOptions KnowingT(int port) {
    wsman::RemoteOptions options = OptionsFor(port);
    options.schema = [](std::wstring_view name) { return name == L"T" ? ClassT() : nullptr; };
    options.isSchemaTrusted = true;
    return options;
}

std::string Item(const std::string& key) {
    return "<p:T><p:K>" + key + "</p:K></p:T>";
}

/// The names of all objects that a stream has, and how it ended.
std::string Drain(wmi::ObjectStream& stream) {
    std::string names;
    for (;;) {
        Object object;
        ULONG returned = 0;
        const HRESULT result = stream.Next(wmi::kInfiniteTimeout, {&object, 1}, returned);
        if (returned == 0) {
            return names + CodeOf(result);
        }
        const std::wstring key = object.instance->Text(L"K");
        names += std::string(key.begin(), key.end()) + ' ';
    }
}

HRESULT Get(wmi::Connection& connection, Object& found) {
    return connection.GetObject({}, L"T.K=\"a\"", found).status;
}
HRESULT Get(wmi::Connection& connection) {
    Object found;
    return Get(connection, found);
}
HRESULT Do(wmi::Connection& connection) {
    wmi::InstancePtr out;
    return connection.ExecMethod({}, L"T.K=\"a\"", L"Do", nullptr, out).status;
}

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

TEST(RemotePeersTest, Pages_GoByTheNewestContextWhateverTheirShape) {
    int pages = 0;
    ScriptedPeer peer(AfterIdentify([&pages](const PeerRequest& request) {
        if (!request.Has("n:Pull")) {
            // No page yet, and a context that changes.
            return SoapAnswer(request, "<n:EnumerateResponse><n:EnumerationContext>c0</n:EnumerationContext>"
                                       "</n:EnumerateResponse>");
        }
        EXPECT_EQ(request.TextOf("EnumerationContext"), "c" + std::to_string(pages));
        switch (++pages) {
        case 1: // a page without objects is no end
            return SoapAnswer(request, "<n:PullResponse><n:EnumerationContext>c1</n:EnumerationContext>"
                                       "</n:PullResponse>");
        case 2: // in the other namespace, with references in another order
            return SoapAnswer(
                request,
                "<n:PullResponse><w:Items><w:Item><a:EndpointReference><a:Address>http://elsewhere/"
                "</a:Address><a:ReferenceParameters><w:ResourceURI>http://schemas.dmtf.org/wbem/wscim/1/"
                "cim-schema/2/T</w:ResourceURI><w:SelectorSet><w:Selector Name='k'>a</w:Selector>"
                "<w:Selector Name='__cimnamespace'>root/MarloLUM2</w:Selector></w:SelectorSet>"
                "</a:ReferenceParameters></a:EndpointReference><p:T/></w:Item></w:Items>"
                "<n:EnumerationContext>c2</n:EnumerationContext></n:PullResponse>");
        default: // the end, with a context all the same
            return SoapAnswer(request,
                              "<n:PullResponse><n:EnumerationContext>c3</n:EnumerationContext><n:Items>" +
                                  Item("b") + "</n:Items><n:EndOfSequence/></n:PullResponse>");
        }
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Drain(*found), "a b 0x00000001");
    found.reset();
    EXPECT_EQ(peer.Requests().size(), 4u) << "what is at its end is not released";
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

TEST(RemotePeersTest, PagesThatAreTooLarge_AreAskedForSmaller) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        const int most = std::stoi(request.TextOf("MaxElements"));
        if (most > 4) {
            return FaultAnswer(request, "w:EncodingLimit");
        }
        return SoapAnswer(request, "<n:EnumerateResponse><w:Items>" + Item("a") +
                                       "</w:Items><w:EndOfSequence/></n:EnumerateResponse>");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    std::unique_ptr<wmi::ObjectStream> found;
    ASSERT_EQ(CodeOf(connection->Instances({}, L"T", wmi::Depth::Deep, found).status), "0x00000000");
    EXPECT_EQ(Drain(*found), "a 0x00000001");
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

TEST(RemotePeersTest, AnotherMake_IsReadAsItWrites) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest&) {
        // Other prefixes, no header, CDATA, blanks, capitals, a path as text, an array in pieces.
        return HttpAnswerOf(
            200, "text/xml; charset=\"utf-8\"",
            R"(<?xml version="1.0" encoding="utf-8"?><e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"
  xmlns:i="http://www.w3.org/2001/XMLSchema-instance"> <e:Body> <T xmlns="urn:whatever" i:type="T_Type">
   <Flag> TRUE </Flag> <Ports>+1</Ports><Number> 12 </Number><!-- now --><Ports> 2 </Ports>
   <Since>20240403144550.468750+120</Since><k><![CDATA[<a>]]> &amp; b</k><Owner i:nil="1"/><Surplus>1</Surplus>
 </T> </e:Body> </e:Envelope>)");
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    Object found;
    ASSERT_EQ(CodeOf(Get(*connection, found)), "0x00000000") << wsman::LastFailure();
    EXPECT_EQ(found.instance->Text(L"K"), L"<a> & b");
    EXPECT_EQ(found.instance->Number(L"Number"), 12);
    EXPECT_EQ(*found.instance->Find(L"Flag"), wmi::Value::Bool(true));
    EXPECT_EQ(found.instance->Text(L"Since"), L"20240403144550.468750+120");
    EXPECT_EQ(found.instance->Find(L"Ports")->Size(), 2u);
    EXPECT_TRUE(found.instance->Find(L"Owner")->IsNull());
}

TEST(RemotePeersTest, APeerThatTakesOnlyTheOtherForm_IsAskedInIt) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        if (request.Has("/wbem/wsman/1/wmi/")) {
            return FaultAnswer(request, "a:DestinationUnreachable",
                               R"(<f:WSManFault xmlns:f="x" Code="2150859065"/>)");
        }
        EXPECT_TRUE(request.Has("http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/T<"));
        EXPECT_TRUE(request.Has(R"(Name="__cimnamespace">ROOT/MarloLUM2<)"));
        return SoapAnswer(request, Item("a"));
    }));
    const auto connection = ConnectTo(KnowingT(peer.Port()));
    EXPECT_EQ(CodeOf(Get(*connection)), "0x00000000");
    EXPECT_EQ(CodeOf(Get(*connection)), "0x00000000");
    EXPECT_EQ(peer.Requests().size(), 3u) << "the form is found out once";
}

TEST(RemotePeersTest, APeerThatTellsNoClasses_IsReadByTheKnownOnesOrAsTexts) {
    ScriptedPeer peer(AfterIdentify([](const PeerRequest& request) {
        if (request.Has("cim-xml")) {
            return FaultAnswer(request, "a:ActionNotSupported");
        }
        return SoapAnswer(request,
                          request.Has("wmi/ROOT/MarloLUM2/T<")
                              ? Item("a")
                              : "<p:Other><p:Name>x</p:Name><p:List>1</p:List><p:List>2</p:List></p:Other>");
    }));
    wsman::RemoteOptions options = KnowingT(peer.Port());
    options.isSchemaTrusted = false;
    const auto connection = ConnectTo(options);
    Object found;
    EXPECT_EQ(CodeOf(Get(*connection, found)), "0x00000000");
    EXPECT_EQ(found.definition->properties.size(), 6u);
    EXPECT_EQ(CodeOf(connection->GetObject({}, L"Other.Name=\"x\"", found).status), "0x00000000");
    EXPECT_EQ(found.instance->Text(L"Name"), L"x");
    EXPECT_EQ(found.instance->Find(L"List")->Size(), 2u);
    std::size_t classes = 0;
    for (const PeerRequest& request : peer.Requests()) {
        classes += request.Has("cim-xml") ? 1U : 0U;
    }
    EXPECT_EQ(classes, 1u) << "whoever cannot tell one is not asked again";
}

TEST(RemotePeersTest, Faults_GiveTheCodeThatWmiWouldGive) {
    const struct {
        const char* subcode;
        const char* detail;
        long long code;
    } cases[] = {
        {"a:DestinationUnreachable", "", 0x80041002},
        {"w:AccessDenied", R"(<f:WSManFault xmlns:f="x" Code="5"/>)", 0x80070005},
        {"w:InternalError", "<p:MSFT_WmiError><p:error_Code>2147749889</p:error_Code></p:MSFT_WmiError>",
         0x80041001},
        {"w:InternalError", "<p:OMI_Error><p:MessageID>HRESULT 0x80041033</p:MessageID></p:OMI_Error>",
         0x80041033},
        {"w:InternalError",
         R"(<f:WSManFault xmlns:f="x" Code="2150858752"><f:Message><f:ProviderFault><f:WSManFault Code="2147749890"/>)"
         "</f:ProviderFault></f:Message></f:WSManFault>",
         0x80041002},
        {"w:TimedOut", R"(<f:WSManFault xmlns:f="x" Code="2150858793"/>)", 0x80041069},
        {"nonsense", "", 0x80041001},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.subcode) + each.detail);
        ScriptedPeer peer(AfterIdentify(
            [&](const PeerRequest& request) { return FaultAnswer(request, each.subcode, each.detail); }));
        const auto connection = ConnectTo(KnowingT(peer.Port()));
        EXPECT_EQ(CodeOf(Get(*connection)), CodeOf(each.code));
        EXPECT_THAT(wsman::LastFailure(), HasSubstr("127.0.0.1: No."));
    }
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
