// Calls of WMI as messages of WS-Management.
#include "client/RemoteConnection.h"

#include "client/Failures.h"
#include "client/Parameters.h"
#include "client/RemoteStream.h"
#include "soap/Names.h"

#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>
#include <array>
#include <set>

namespace quillet::wsman {

namespace {

const std::wstring kAnyServer = L".";

std::wstring_view FirstLabel(std::wstring_view name) {
    return name.substr(0, name.find(L'.'));
}

/// A class as far as one of its instances shows it, where nobody tells more: every value is a text.
wmi::ClassPtr Inferred(const Element& element) {
    auto definition = std::make_shared<wmi::ClassDefinition>();
    definition->name = Wide(element.Name());
    std::set<std::string_view> arrays;
    std::string_view last;
    for (const Element& each : element.Children()) {
        if (each.Name() == last) {
            arrays.insert(last);
            continue;
        }
        last = each.Name();
        wmi::Property property;
        property.name = Wide(last);
        property.type = each.HasChildren() && each.Child("ReferenceParameters") ? CIM_REFERENCE : CIM_STRING;
        property.origin = definition->name;
        definition->properties.push_back(std::move(property));
    }
    for (wmi::Property& property : definition->properties) {
        if (arrays.count(wmi::ToUtf8(property.name)) > 0) {
            property.type |= CIM_FLAG_ARRAY;
        }
    }
    return definition;
}

/// The keys that an instance lacks, from the reference to it; most have them all.
void TakeKeys(wmi::Instance& instance, const Endpoint& reference, const Namespace& space) {
    const auto isLacking = [&](const Selector& key) {
        const wmi::Value* value = instance.Find(Wide(key.name));
        return value != nullptr && value->IsNull();
    };
    if (std::none_of(reference.selectors.begin(), reference.selectors.end(), isLacking)) {
        return;
    }
    for (const wmi::ObjectPath::Key& key : PathOf(reference, space).keys) {
        const auto index = instance.definition->PropertyIndex(key.name);
        if (index && instance.values[*index].IsNull()) {
            const CIMTYPE type = instance.definition->properties[*index].type;
            wmi::Value value(key.value);
            if (wmi::Fits(value, type)) {
                instance.values[*index] = wmi::Normalised(std::move(value), type);
            }
        }
    }
}

bool PutsAKey(const wmi::Filled& instance) {
    return std::any_of(instance.puts.begin(), instance.puts.end(), [&](const wmi::NamedValue& put) {
        const wmi::Property* property = instance.values.definition->FindProperty(put.name);
        return property != nullptr && property->IsKey();
    });
}

/// Whether a place in a query is where the server of a path stands: behind a quote or a brace and its
/// backslashes, which may be escaped.
bool BeginsPath(std::wstring_view text, std::size_t place) {
    std::size_t slashes = 0;
    while (place > slashes && text[place - slashes - 1] == L'\\') {
        ++slashes;
    }
    constexpr std::wstring_view kBefore = L"'\"{";
    return slashes >= 2 && place > slashes &&
           kBefore.find(text[place - slashes - 1]) != std::wstring_view::npos;
}

} // namespace

std::wstring ThisComputer() {
    std::array<wchar_t, 256> name{};
    DWORD length = static_cast<DWORD>(name.size());
    return GetComputerNameW(name.data(), &length) != FALSE ? std::wstring(name.data(), length)
                                                           : std::wstring();
}

wmi::Outcome Guarded(const std::function<void()>& request) {
    RememberFailure({});
    try {
        request();
        return S_OK;
    } catch (const RemoteError& error) {
        RememberFailure(error.what());
        return error.Code();
    } catch (const std::bad_alloc&) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
}

wmi::Outcome RemoteConnection::Ask(const std::function<void()>& request) const {
    return Guarded([&] {
        try {
            request();
        } catch (const MessageError& error) {
            m_peer->Unreadable(error.what());
        } catch (const XmlError& error) {
            m_peer->Unreadable(error.what());
        }
    });
}

RemoteConnection::RemoteConnection(std::shared_ptr<Peer> peer, std::wstring serverName,
                                   std::wstring namespaceName)
    : m_peer(std::move(peer)), m_serverName(std::move(serverName)),
      m_namespaceName(std::move(namespaceName)) {}

Namespace RemoteConnection::SpaceOf(const wmi::CallContext& context) const {
    return {m_serverName, m_namespaceName, [this, locale = context.locale](std::wstring_view name) {
                wmi::CallContext plain;
                plain.locale = locale;
                return m_peer->ClassOf(m_namespaceName, name, plain);
            }};
}

wmi::ClassPtr RemoteConnection::ClassOf(const wmi::CallContext& context, std::wstring_view name) const {
    return m_peer->ClassOf(m_namespaceName, name, context);
}

bool RemoteConnection::IsThisMachine(std::wstring_view server) const {
    const std::wstring host = Wide(m_peer->Host());
    return server.empty() || server == L"." || wmi::SameName(server, m_serverName) ||
           wmi::SameName(FirstLabel(server), FirstLabel(host)) || wmi::SameName(server, ThisComputer());
}

wmi::ObjectPath RemoteConnection::PathHere(std::wstring_view path) const {
    auto parsed = wmi::ObjectPath::Parse(path);
    if (!parsed) {
        throw RemoteError(HRESULT(WBEM_E_INVALID_OBJECT_PATH), "this is no object path");
    }
    if (!parsed->namespacePath.empty() && !wmi::SameName(parsed->namespacePath, m_namespaceName)) {
        throw RemoteError(HRESULT(WBEM_E_INVALID_NAMESPACE), "the object path is one of another namespace");
    }
    if (!IsThisMachine(parsed->server)) {
        throw RemoteError(HRESULT(WBEM_E_NOT_FOUND), "the object path is one of another machine");
    }
    return std::move(*parsed);
}

Endpoint RemoteConnection::Target(const wmi::CallContext& context, std::wstring_view path) const {
    return EndpointOf(PathHere(path), SpaceOf(context));
}

wmi::Object RemoteConnection::ObjectOf(const wmi::CallContext& context, const Element& element,
                                       const Endpoint& reference) const {
    wmi::ClassPtr definition = ClassOf(context, Wide(element.Name()));
    if (definition == nullptr) {
        definition = Inferred(element);
    }
    const Namespace space = SpaceOf(context);
    auto instance = std::make_shared<wmi::Instance>(m_peer->Read(definition, element, space));
    TakeKeys(*instance, reference, space);
    return {definition, std::move(instance)};
}

wmi::Object RemoteConnection::ProjectionOf(const wmi::CallContext& context, const Element& element,
                                           const wmi::WqlQuery& query) const {
    wmi::ClassPtr whole = ClassOf(context, query.className);
    if (whole == nullptr) {
        whole = Inferred(element);
    }
    const wmi::ClassPtr definition = wmi::Project(*whole, query.properties);
    return {definition, std::make_shared<wmi::Instance>(m_peer->Read(definition, element, SpaceOf(context)))};
}

wmi::Outcome RemoteConnection::OpenNamespace(const wmi::CallContext&, std::wstring_view path,
                                             std::shared_ptr<wmi::Connection>& opened) {
    if (!wmi::NamesNamespace(path, m_namespaceName)) {
        return HRESULT(WBEM_E_INVALID_NAMESPACE);
    }
    opened = std::make_shared<RemoteConnection>(m_peer, m_serverName, m_namespaceName);
    return S_OK;
}

wmi::Outcome RemoteConnection::GetObject(const wmi::CallContext& context, std::wstring_view path,
                                         wmi::Object& found) {
    if (path.empty()) {
        return HRESULT(WBEM_E_NOT_SUPPORTED); // an empty class to fill: the schema is not the client's
    }
    return Ask([&] {
        const wmi::ObjectPath parsed = PathHere(path);
        if (parsed.IsClass()) {
            found.definition = ClassOf(context, parsed.className);
            if (found.definition == nullptr) {
                throw RemoteError(HRESULT(WBEM_E_NOT_FOUND), m_peer->Host() + ": there is no class " +
                                                                 wmi::ToUtf8(parsed.className) + " (" +
                                                                 m_peer->Url() + ")");
            }
            return;
        }
        Message message;
        message.action = std::string(kGet);
        message.endpoint = EndpointOf(parsed, SpaceOf(context));
        message.context = &context;
        message.repeatable = Repeatable::Yes;
        if (const wmi::ClassPtr definition = ClassOf(context, parsed.className)) {
            message.byteArrays = ByteArraysOf(definition->properties);
        }
        const auto answer = m_peer->Ask(message);
        const Element element = answer->Body().First();
        if (!element) {
            return; // said to be there, and not handed out
        }
        found = ObjectOf(context, element, message.endpoint);
    });
}

wmi::Outcome RemoteConnection::Instances(const wmi::CallContext& context, std::wstring_view className,
                                         wmi::Depth depth, std::unique_ptr<wmi::ObjectStream>& found) {
    if (!wmi::IsIdentifier(className)) {
        return HRESULT(WBEM_E_INVALID_CLASS);
    }
    return Ask([&] {
        Asked asked;
        asked.endpoint.resource = ClassUri(m_namespaceName, className);
        asked.only = depth == wmi::Depth::Shallow ? std::wstring(className) : std::wstring();
        found = std::make_unique<RemoteStream>(*this, context, std::move(asked));
    });
}

wmi::Outcome RemoteConnection::Classes(const wmi::CallContext& context, std::wstring_view superclass,
                                       wmi::Depth depth, std::unique_ptr<wmi::ObjectStream>& found) {
    return Ask([&] {
        Asked asked;
        asked.endpoint = ClassEndpoint(m_namespaceName, superclass);
        asked.superclass = superclass;
        asked.isOfClasses = true;
        asked.isShallow = depth == wmi::Depth::Shallow;
        found = std::make_unique<RemoteStream>(*this, context, std::move(asked));
    });
}

wmi::Outcome RemoteConnection::Query(const wmi::CallContext& context, std::wstring_view wql,
                                     std::unique_ptr<wmi::ObjectStream>& found) {
    return Ask([&] {
        Asked asked;
        asked.endpoint.resource = ClassUri(m_namespaceName, L"*");
        asked.query = Readdressed(wql);
        asked.parsed = wmi::ParseWql(wql);
        found = std::make_unique<RemoteStream>(*this, context, std::move(asked));
    });
}

std::wstring RemoteConnection::Readdressed(std::wstring_view wql) const {
    std::wstring text(wql);
    const std::wstring own = m_peer->OwnName();
    // A machine that does not tell its name may know itself by any.
    const std::wstring& name = own.empty() ? kAnyServer : own;
    const std::wstring others[] = {own.empty() ? m_serverName : std::wstring(), ThisComputer()};
    for (const std::wstring& other : others) {
        for (std::size_t i = 0; !other.empty() && i + other.size() < text.size(); ++i) {
            if (text[i + other.size()] == L'\\' && BeginsPath(text, i) &&
                wmi::SameName(std::wstring_view(text).substr(i, other.size()), other)) {
                text.replace(i, other.size(), name);
            }
        }
    }
    return text;
}

wmi::Outcome RemoteConnection::ExecMethod(const wmi::CallContext& context, std::wstring_view path,
                                          std::wstring_view method, const wmi::Filled* in,
                                          wmi::InstancePtr& out) {
    if (!wmi::IsIdentifier(method)) {
        return HRESULT(WBEM_E_INVALID_METHOD);
    }
    return Ask([&] {
        const Namespace space = SpaceOf(context);
        Message message;
        message.endpoint = Target(context, path);
        message.isMethod = true;
        message.action = wmi::ToUtf8(method);
        message.context = &context;
        const std::wstring own = m_peer->OwnName();
        const PathTexts sent(m_namespaceName, own.empty() ? kAnyServer : own, [&](std::wstring_view server) {
            return !wmi::SameName(server, own) && IsThisMachine(server);
        });
        message.bodyOf = [&](const std::string& resource) {
            return InputBody(message.action, resource, in, space, sent);
        };
        const wmi::ClassPtr definition = ClassOf(context, ResourceOf(message.endpoint).className);
        const wmi::Method* known = definition != nullptr ? definition->FindMethod(method) : nullptr;
        if (known != nullptr) {
            message.byteArrays = ByteArraysOf(known->out);
        }
        const std::unique_ptr<Call> call = m_peer->Begin(message);
        wmi::ClassPtr signature =
            known != nullptr ? wmi::OutSignature(*known) : nullptr; // while it is on its way
        call->Wait(LONG(WBEM_INFINITE));
        const std::unique_ptr<Answer> answer = call->Take();
        const Element output = answer->Body().First();
        if (known == nullptr && output) {
            signature = Inferred(output);
        }
        // A machine that hands out no object has no parameter to tell, not even one that is null.
        if (signature != nullptr && output.HasChildren()) {
            auto told = std::make_shared<wmi::Instance>(m_peer->Read(signature, output, space));
            PathTexts(m_namespaceName, m_serverName, [&](auto) { return own.empty(); }).Change(*told);
            out = std::move(told);
        }
    });
}

void RemoteConnection::Write(const wmi::CallContext& context, const wmi::Filled& instance,
                             std::string_view action) const {
    const Namespace space = SpaceOf(context);
    const wmi::ClassDefinition& definition = *instance.values.definition;
    Message message;
    message.action = std::string(action);
    message.endpoint.resource = ClassUri(m_namespaceName, definition.name);
    if (action == kPut) {
        message.endpoint = EndpointOf(instance.values, space);
    }
    message.context = &context;
    wmi::Value::Array modified;
    for (const wmi::NamedValue& put : instance.puts) {
        modified.emplace_back(put.name);
    }
    if (!modified.empty()) {
        message.options.push_back({kModifiedProperties, VT_BSTR | VT_ARRAY, CIM_STRING | CIM_FLAG_ARRAY,
                                   wmi::Value(std::move(modified))});
    }
    message.bodyOf = [&](const std::string& resource) {
        const std::string name = "p:" + wmi::ToUtf8(definition.name);
        XmlWriter xml;
        xml.Open(name).Declare("p", resource).Attribute("xsi:type", name + "_Type");
        WriteProperties(xml, "p", instance.values, space, DateTimeForm::Cim, NullArrays::Marked);
        return xml.Close().Take();
    };
    m_peer->Ask(message);
}

wmi::Outcome RemoteConnection::PutInstance(const wmi::CallContext& context, const wmi::Filled& instance,
                                           wmi::WriteMode mode) {
    const bool hasAddress = wmi::AddressOf(instance.values).has_value();
    if (mode == wmi::WriteMode::UpdateOnly && !hasAddress) {
        return HRESULT(WBEM_E_INVALID_OBJECT);
    }
    return Ask([&] {
        if (mode != wmi::WriteMode::CreateOrUpdate || !hasAddress) {
            Write(context, instance, mode == wmi::WriteMode::UpdateOnly ? kPut : kCreate);
            return;
        }
        // Whoever puts a key makes an object; one that was fetched has its keys. A guess that is wrong has
        // changed nothing.
        const bool isNew = PutsAKey(instance);
        try {
            Write(context, instance, isNew ? kCreate : kPut);
        } catch (const FaultError& error) {
            if (error.Code() != HRESULT(isNew ? WBEM_E_ALREADY_EXISTS : WBEM_E_NOT_FOUND)) {
                throw;
            }
            Write(context, instance, isNew ? kPut : kCreate);
        }
    });
}

wmi::Outcome RemoteConnection::DeleteInstance(const wmi::CallContext& context, std::wstring_view path) {
    return Ask([&] {
        Message message;
        message.action = std::string(kDelete);
        message.endpoint = Target(context, path);
        message.context = &context;
        m_peer->Ask(message);
    });
}

} // namespace quillet::wsman
