// A machine behind a server and a client of WS-Management.
//
// Whoever tests sees the calls as one machine with its clients would: what stays with a client's objects is
// watched and disturbed by the machine as if there were nothing between, and what the wire does not carry is
// taken from the client's end:
// - the flags of a call, the thread, an empty context, how an object path was written, the VARIANT types of
//   what a client put, and that it put an empty array;
// - the first Next: the server fetches an object before the client asks for it. Pages are of one object;
// - GetObject of a class: each is fetched once, and also where only its instances are asked for. The machine
//   is asked as often as the client asks, and nobody sees the fetching;
// - ConnectServer: the server is connected long before.
#include "DirectWay.h"

#include <quillet-wsman/Remote.h>

#include <server/HttpServer.h>

#include <quillet-wmi/ObjectPath.h>

#include <wbemidl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <regex>

namespace quillet::tests {

namespace {

using simulator::JournalEntry;
using simulator::Machine;
using wmi::CallContext;
using wmi::Operation;
using wmi::Outcome;

/// The journal as it is told: the machine's, and what clients did meanwhile.
class Witness {
  public:
    explicit Witness(std::shared_ptr<Machine> machine) : m_machine(std::move(machine)) {}

    /// Lets a client make a call, and writes down what it got.
    template <class Make>
    Outcome Watch(Operation operation, std::wstring_view target, const CallContext& context, Make make) {
        Seen seen;
        seen.entry.operation = operation;
        seen.entry.target = target;
        seen.entry.context = context.values;
        seen.entry.hasContext = context.hasContext;
        seen.entry.flags = context.flags;
        seen.entry.thread = GetCurrentThreadId();
        seen.begin = m_machine->Calls().Size();
        const Outcome outcome = make(seen.entry);
        seen.entry.result = outcome.Returned(context);
        seen.end = m_machine->Calls().Size();
        const std::lock_guard lock(m_mutex);
        m_seen.push_back(std::move(seen));
        return outcome;
    }

    std::vector<JournalEntry> Calls() {
        const std::vector<JournalEntry> told = m_machine->Calls().All();
        std::vector<JournalEntry> all;
        std::size_t next = 0;
        const std::lock_guard lock(m_mutex);
        for (const Seen& seen : m_seen) {
            all.insert(all.end(), told.begin() + At(next, told), told.begin() + At(seen.begin, told));
            Merge(seen, told, all);
            next = seen.end;
        }
        all.insert(all.end(), told.begin() + At(next, told), told.end());
        return all;
    }

    void Forget() {
        const std::lock_guard lock(m_mutex);
        m_seen.clear();
        m_machine->Calls().Clear();
    }

  private:
    struct Seen {
        JournalEntry entry; ///< as the client knows it
        std::size_t begin;  ///< of what the machine told meanwhile
        std::size_t end;
    };

    static std::ptrdiff_t At(std::size_t place, const std::vector<JournalEntry>& told) {
        return static_cast<std::ptrdiff_t>(std::min(place, told.size()));
    }
    /// A path without the machine and the namespace, also in the paths that are its keys.
    static std::wstring Unaddressed(const std::wstring& path) {
        static const std::wregex kAddress(LR"(\\+[A-Za-z0-9.]+\\+ROOT\\+MarloLUM2:)", std::regex::icase);
        return std::regex_replace(path, kAddress, L"");
    }
    /// The path in one form, whatever its quotes and the order of its keys.
    static std::wstring InOneForm(const std::wstring& text) {
        const std::wstring unaddressed = Unaddressed(text);
        auto path = wmi::ObjectPath::Parse(unaddressed);
        if (!path) {
            return unaddressed;
        }
        std::sort(path->keys.begin(), path->keys.end(),
                  [](const auto& left, const auto& right) { return left.name < right.name; });
        return path->Relative();
    }
    static bool AreAlike(const std::wstring& left, const std::wstring& right) {
        return left == right || wmi::SameName(InOneForm(left), InOneForm(right));
    }

    /// What the client put and the machine was told, with the types that the client put.
    static void TakeArguments(const std::vector<wmi::NamedValue>& puts, std::vector<wmi::NamedValue>& told) {
        for (std::size_t i = 0; i < puts.size(); ++i) {
            const auto found = std::find_if(told.begin(), told.end(), [&](const auto& each) {
                return wmi::SameName(each.name, puts[i].name);
            });
            if (found != told.end()) {
                found->vt = puts[i].vt;
            } else if (puts[i].value.IsArray() && puts[i].value.Size() == 0) {
                told.insert(told.begin() + static_cast<std::ptrdiff_t>(std::min(i, told.size())), puts[i]);
            }
        }
    }

    static void Merge(const Seen& seen, const std::vector<JournalEntry>& told,
                      std::vector<JournalEntry>& all) {
        bool isTold = false;
        for (auto each = told.begin() + At(seen.begin, told); each != told.begin() + At(seen.end, told);
             ++each) {
            JournalEntry entry = *each;
            if (entry.operation == seen.entry.operation && AreAlike(entry.target, seen.entry.target)) {
                entry.target = seen.entry.target;
                entry.flags = seen.entry.flags;
                entry.thread = seen.entry.thread;
                entry.hasContext = seen.entry.hasContext;
                entry.result = seen.entry.result;
                TakeArguments(seen.entry.arguments, entry.arguments);
                isTold = true;
            }
            all.push_back(std::move(entry));
        }
        if (!isTold) {
            all.push_back(seen.entry);
        }
    }

    const std::shared_ptr<Machine> m_machine;
    std::mutex m_mutex;
    std::vector<Seen> m_seen;
};

bool IsOfClass(std::wstring_view text) {
    const auto path = wmi::ObjectPath::Parse(text);
    return path && path->IsClass();
}

class WatchedConnection final : public wmi::Connection {
  public:
    /// @param local the machine's own connection, which watches what stays with the client
    WatchedConnection(std::shared_ptr<Witness> witness, std::shared_ptr<wmi::Connection> remote,
                      std::shared_ptr<wmi::Connection> local)
        : m_witness(std::move(witness)), m_remote(std::move(remote)), m_local(std::move(local)) {}

    const std::wstring& ServerName() const noexcept override { return m_remote->ServerName(); }
    const std::wstring& NamespaceName() const noexcept override { return m_remote->NamespaceName(); }
    wmi::CallObserver* Observer() noexcept override { return m_local->Observer(); }
    std::wstring WholePath(std::wstring_view reference) const override {
        return m_remote->WholePath(reference);
    }

    Outcome OpenNamespace(const CallContext& context, std::wstring_view path,
                          std::shared_ptr<wmi::Connection>& opened) override {
        return m_local->OpenNamespace(context, path, opened);
    }
    Outcome GetObject(const CallContext& context, std::wstring_view path, wmi::Object& found) override {
        if (IsOfClass(path)) {
            wmi::Object told;
            const Outcome outcome = m_local->GetObject(context, path, told);
            return FAILED(outcome.status) || told.definition == nullptr
                       ? outcome
                       : m_remote->GetObject(context, path, found);
        }
        return m_witness->Watch(Operation::GetObject, path, context,
                                [&](JournalEntry&) { return m_remote->GetObject(context, path, found); });
    }
    Outcome Instances(const CallContext& context, std::wstring_view className, wmi::Depth depth,
                      std::unique_ptr<wmi::ObjectStream>& found) override {
        return m_witness->Watch(Operation::CreateInstanceEnum, className, context, [&](JournalEntry&) {
            return m_remote->Instances(context, className, depth, found);
        });
    }
    Outcome Classes(const CallContext& context, std::wstring_view superclass, wmi::Depth depth,
                    std::unique_ptr<wmi::ObjectStream>& found) override {
        return m_witness->Watch(Operation::CreateClassEnum, superclass, context, [&](JournalEntry&) {
            return m_remote->Classes(context, superclass, depth, found);
        });
    }
    Outcome Query(const CallContext& context, std::wstring_view wql,
                  std::unique_ptr<wmi::ObjectStream>& found) override {
        return m_witness->Watch(Operation::ExecQuery, wql, context,
                                [&](JournalEntry&) { return m_remote->Query(context, wql, found); });
    }
    Outcome ExecMethod(const CallContext& context, std::wstring_view path, std::wstring_view method,
                       const wmi::Filled* in, wmi::InstancePtr& out) override {
        return m_witness->Watch(Operation::ExecMethod, path, context, [&](JournalEntry& entry) {
            entry.method = method;
            entry.arguments = in != nullptr ? in->puts : std::vector<wmi::NamedValue>();
            return m_remote->ExecMethod(context, path, method, in, out);
        });
    }
    Outcome PutInstance(const CallContext& context, const wmi::Filled& instance,
                        wmi::WriteMode mode) override {
        const auto address = wmi::AddressOf(instance.values);
        const std::wstring target =
            address ? wmi::FullPathOf(*this, *address) : instance.values.definition->name;
        return m_witness->Watch(Operation::PutInstance, target, context, [&](JournalEntry& entry) {
            entry.arguments = instance.puts;
            return m_remote->PutInstance(context, instance, mode);
        });
    }
    Outcome DeleteInstance(const CallContext& context, std::wstring_view path) override {
        return m_witness->Watch(Operation::DeleteInstance, path, context,
                                [&](JournalEntry&) { return m_remote->DeleteInstance(context, path); });
    }

  private:
    const std::shared_ptr<Witness> m_witness;
    const std::shared_ptr<wmi::Connection> m_remote;
    const std::shared_ptr<wmi::Connection> m_local;
};

class WatchedHost final : public wmi::Host {
  public:
    WatchedHost(std::shared_ptr<Witness> witness, std::shared_ptr<wmi::Host> remote,
                std::shared_ptr<wmi::Host> local)
        : m_witness(std::move(witness)), m_remote(std::move(remote)), m_local(std::move(local)) {}

    Outcome Connect(const CallContext& context, const wmi::ConnectArguments& arguments,
                    std::shared_ptr<wmi::Connection>& connection) override {
        std::shared_ptr<wmi::Connection> local;
        const Outcome admitted = m_local->Connect(context, arguments, local);
        if (FAILED(admitted.status) || local == nullptr) {
            return admitted;
        }
        std::shared_ptr<wmi::Connection> remote;
        wmi::ConnectArguments there = arguments;
        const std::wstring place = L"\\\\.\\" + local->NamespaceName();
        there.resource = place;
        const Outcome outcome = m_remote->Connect(context, there, remote);
        if (remote != nullptr) {
            connection = std::make_shared<WatchedConnection>(m_witness, std::move(remote), std::move(local));
        }
        return outcome;
    }
    wmi::CallObserver* Observer() noexcept override { return m_local->Observer(); }

  private:
    const std::shared_ptr<Witness> m_witness;
    const std::shared_ptr<wmi::Host> m_remote;
    const std::shared_ptr<wmi::Host> m_local;
};

/// A machine as the server sees it: to fetch a class is no call.
class ServedConnection final : public wmi::Connection {
  public:
    ServedConnection(std::shared_ptr<wmi::Connection> machine, wsman::Service::Schema schema)
        : m_machine(std::move(machine)), m_schema(std::move(schema)) {}

    const std::wstring& ServerName() const noexcept override { return m_machine->ServerName(); }
    const std::wstring& NamespaceName() const noexcept override { return m_machine->NamespaceName(); }
    Outcome GetObject(const CallContext& context, std::wstring_view path, wmi::Object& found) override {
        if (!IsOfClass(path)) {
            return m_machine->GetObject(context, path, found);
        }
        found.definition = m_schema(wmi::ObjectPath::Parse(path)->className);
        return found.definition != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_NOT_FOUND);
    }
    Outcome Instances(const CallContext& context, std::wstring_view className, wmi::Depth depth,
                      std::unique_ptr<wmi::ObjectStream>& found) override {
        return m_machine->Instances(context, className, depth, found);
    }
    Outcome Classes(const CallContext& context, std::wstring_view superclass, wmi::Depth depth,
                    std::unique_ptr<wmi::ObjectStream>& found) override {
        return m_machine->Classes(context, superclass, depth, found);
    }
    Outcome Query(const CallContext& context, std::wstring_view wql,
                  std::unique_ptr<wmi::ObjectStream>& found) override {
        return m_machine->Query(context, wql, found);
    }
    Outcome ExecMethod(const CallContext& context, std::wstring_view path, std::wstring_view method,
                       const wmi::Filled* in, wmi::InstancePtr& out) override {
        return m_machine->ExecMethod(context, path, method, in, out);
    }
    Outcome PutInstance(const CallContext& context, const wmi::Filled& instance,
                        wmi::WriteMode mode) override {
        return m_machine->PutInstance(context, instance, mode);
    }
    Outcome DeleteInstance(const CallContext& context, std::wstring_view path) override {
        return m_machine->DeleteInstance(context, path);
    }

  private:
    const std::shared_ptr<wmi::Connection> m_machine;
    const wsman::Service::Schema m_schema;
};

class RemoteWay final : public Way {
  public:
    explicit RemoteWay(std::shared_ptr<Machine> machine)
        : m_machine(std::move(machine)), m_witness(std::make_shared<Witness>(m_machine)), m_server({}) {
        std::shared_ptr<wmi::Connection> connection;
        wmi::ConnectArguments arguments;
        const std::wstring name = m_machine->Store().NamespaceName();
        arguments.resource = name;
        simulator::HostOf(m_machine)->Connect({}, arguments, connection);
        m_machine->Calls().Clear();
        const wsman::Service::Schema schema = [this](std::wstring_view className) {
            return m_machine->Store().FindClass(className);
        };
        m_server.Serve("/wsman",
                       std::make_shared<wsman::Service>(
                           std::make_shared<ServedConnection>(std::move(connection), schema), schema));
        m_port = m_server.Start();
    }
    ~RemoteWay() override { m_server.Stop(); }

    std::shared_ptr<wmi::Host> Host() override {
        wsman::RemoteOptions options;
        options.host = "127.0.0.1";
        options.port = m_port;
        options.isPlain = true;
        options.authentication = wsman::Authentication::Basic;
        options.user = "tester";
        options.pageSize = 1;
        options.schema = [machine = m_machine](std::wstring_view name) {
            return machine->Store().FindClass(name);
        };
        options.isSchemaTrusted = true; // hundreds of machines would tell the same classes
        options.serverName = m_machine->Store().ServerName();
        return std::make_shared<WatchedHost>(m_witness, wsman::MakeRemoteHost(options),
                                             simulator::HostOf(m_machine));
    }
    std::vector<JournalEntry> Calls() override { return m_witness->Calls(); }
    void ForgetCalls() override { m_witness->Forget(); }

  private:
    const std::shared_ptr<Machine> m_machine;
    const std::shared_ptr<Witness> m_witness;
    wsman::HttpServer m_server;
    int m_port = 0;
};

} // namespace

std::unique_ptr<Way> WayTo(std::shared_ptr<Machine> machine) {
    const char* way = std::getenv("QUILLET_TEST_WAY");
    if (way != nullptr && std::strcmp(way, "wsman") == 0) {
        return std::make_unique<RemoteWay>(std::move(machine));
    }
    return std::make_unique<DirectWay>(std::move(machine));
}

} // namespace quillet::tests
