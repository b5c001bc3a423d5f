// A namespace of a machine behind WS-Management.
#pragma once

#include "client/Peer.h"
#include "soap/Values.h"

#include <quillet-wmi/Wql.h>

namespace quillet::wsman {

/// The name of this computer; empty where it has none.
std::wstring ThisComputer();

/// Requests of the connection's clients as messages. Safe for many threads.
class RemoteConnection final : public wmi::Connection {
  public:
    /// @param serverName of the object paths
    RemoteConnection(std::shared_ptr<Peer> peer, std::wstring serverName, std::wstring namespaceName);

    const std::wstring& ServerName() const noexcept override { return m_serverName; }
    const std::wstring& NamespaceName() const noexcept override { return m_namespaceName; }

    wmi::Outcome OpenNamespace(const wmi::CallContext& context, std::wstring_view path,
                               std::shared_ptr<wmi::Connection>& opened) override;
    wmi::Outcome GetObject(const wmi::CallContext& context, std::wstring_view path,
                           wmi::Object& found) override;
    wmi::Outcome Instances(const wmi::CallContext& context, std::wstring_view className, wmi::Depth depth,
                           std::unique_ptr<wmi::ObjectStream>& found) override;
    wmi::Outcome Classes(const wmi::CallContext& context, std::wstring_view superclass, wmi::Depth depth,
                         std::unique_ptr<wmi::ObjectStream>& found) override;
    wmi::Outcome Query(const wmi::CallContext& context, std::wstring_view wql,
                       std::unique_ptr<wmi::ObjectStream>& found) override;
    wmi::Outcome ExecMethod(const wmi::CallContext& context, std::wstring_view path, std::wstring_view method,
                            const wmi::Filled* in, wmi::InstancePtr& out) override;
    wmi::Outcome PutInstance(const wmi::CallContext& context, const wmi::Filled& instance,
                             wmi::WriteMode mode) override;
    wmi::Outcome DeleteInstance(const wmi::CallContext& context, std::wstring_view path) override;

    Peer& Machine() const noexcept { return *m_peer; }
    /// Runs a request to the machine as Guarded does; what it answers may turn out not to be readable.
    wmi::Outcome Ask(const std::function<void()>& request) const;
    /// What paths and endpoints are made with. @param context whose language classes are told in
    Namespace SpaceOf(const wmi::CallContext& context) const;
    /// An object as an answer has it, and the reference to it where there is one: it has the keys that the
    /// object lacks. Throws MessageError, RemoteError.
    wmi::Object ObjectOf(const wmi::CallContext& context, const Element& element,
                         const Endpoint& reference) const;
    /// The same for one that consists of some properties of a class.
    wmi::Object ProjectionOf(const wmi::CallContext& context, const Element& element,
                             const wmi::WqlQuery& query) const;

  private:
    /// A path of an object here, or its endpoint. Throws RemoteError for one that is none, or of another
    /// place.
    wmi::ObjectPath PathHere(std::wstring_view path) const;
    Endpoint Target(const wmi::CallContext& context, std::wstring_view path) const;
    bool IsThisMachine(std::wstring_view server) const;
    wmi::ClassPtr ClassOf(const wmi::CallContext& context, std::wstring_view name) const;
    void Write(const wmi::CallContext& context, const wmi::Filled& instance, std::string_view action) const;
    /// A query whose paths have the name that the machine knows itself by.
    std::wstring Readdressed(std::wstring_view wql) const;

    const std::shared_ptr<Peer> m_peer;
    const std::wstring m_serverName;
    const std::wstring m_namespaceName;
};

/// Runs a request, and gives its failure the form that WMI has for it; see LastFailure.
wmi::Outcome Guarded(const std::function<void()>& request);

} // namespace quillet::wsman
