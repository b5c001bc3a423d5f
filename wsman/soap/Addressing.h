// Resources and the references to them: object paths as the wire has them.
#pragma once

#include "soap/XmlReader.h"
#include "soap/XmlWriter.h"

#include <quillet-wmi/Model.h>
#include <quillet-wmi/ObjectPath.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::wsman {

/// A message is XML, but not what it has to be.
class MessageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The wide form of a name (UTF-8). Throws MessageError where it is none.
std::wstring Wide(std::string_view text);

struct Endpoint;

/// The value of one key.
struct Selector {
    std::string name;
    std::wstring value;
    std::shared_ptr<const Endpoint> reference{}; ///< in place of the value, for a key that is a reference
};

/// What a resource URI and its selectors name.
struct Endpoint {
    std::string resource; ///< the URI
    std::vector<Selector> selectors{};

    /// The selector of a name, without regard to case; null where there is none.
    const Selector* Find(std::string_view name) const;
};

/// What is needed to make a path of an endpoint and an endpoint of a path.
struct Namespace {
    std::wstring server; ///< of the paths that are made
    std::wstring name;   ///< "ROOT\MarloLUM2"
    /// The class of a name; null where it is not known. Which keys are numbers is its to say.
    std::function<wmi::ClassPtr(std::wstring_view)> classOf{};
};

/// The namespace and the class of an endpoint: from the URI, or from the URI and "__cimnamespace".
struct Resource {
    std::wstring namespaceName; ///< with backslashes; empty where the endpoint does not say
    std::wstring className;     ///< "*" for any
};
/// Throws MessageError for a URI of another kind.
Resource ResourceOf(const Endpoint& endpoint);

/// The URI of a class: "…/wmi/ROOT/MarloLUM2/Zorel_VLAN".
std::string ClassUri(std::wstring_view namespaceName, std::wstring_view className);
/// A namespace with slashes, as URIs and selectors have it.
std::string WithSlashes(std::wstring_view namespaceName);

/// The endpoint that a path names. Throws MessageError for what is no path.
Endpoint EndpointOf(std::wstring_view path, const Namespace& space);
Endpoint EndpointOf(const wmi::ObjectPath& path, const Namespace& space);
/// The endpoint of an instance: its keys that are not null.
Endpoint EndpointOf(const wmi::Instance& instance, const Namespace& space);
/// The path of an endpoint, with server and namespace. Throws MessageError.
wmi::ObjectPath PathOf(const Endpoint& endpoint, const Namespace& space);

/// The endpoint in an element that holds "ReferenceParameters", an "EndpointReference" or, as the header of a
/// message, a resource URI and a selector set. Throws MessageError.
Endpoint ReadEndpoint(Element holder);
/// Writes "a:Address" and "a:ReferenceParameters".
void WriteEndpoint(XmlWriter& xml, const Endpoint& endpoint);
/// Writes "w:SelectorSet", where there are selectors.
void WriteSelectors(XmlWriter& xml, const Endpoint& endpoint);

} // namespace quillet::wsman
