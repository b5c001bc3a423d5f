// A simulated machine behind a server of our own, which is asked over the wire and directly.
#pragma once
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

using simulator::Machine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using wmi::CallContext;
using wmi::Object;
using wmi::Value;

inline constexpr const char* kLab = R"(
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

inline std::string NarrowName(const std::wstring& name) {
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
inline const std::wstring kAll = LR"(T_All.Name="a<b>&\"c\"\\d  ")";

} // namespace quillet::tests
