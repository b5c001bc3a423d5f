// Paths and endpoints.
#include "soap/Addressing.h"

#include "soap/Names.h"
#include "soap/Scalars.h"

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::wsman {

namespace {

constexpr std::size_t kDeepestReference = 4;
constexpr std::size_t kMostSelectors = 64;

bool SameText(std::string_view left, std::string_view right) {
    return wmi::SameName(Wide(left), Wide(right));
}

std::wstring WithBackslashes(std::string_view text) {
    std::wstring name = Wide(text);
    std::replace(name.begin(), name.end(), L'/', L'\\');
    return name;
}

std::optional<std::string_view> Behind(std::string_view text, std::string_view beginning) {
    // Scheme and host of the URIs that are known have no capitals; what a peer writes may.
    if (text.size() < beginning.size() || !SameText(text.substr(0, beginning.size()), beginning)) {
        return std::nullopt;
    }
    return text.substr(beginning.size());
}

Endpoint ReadEndpoint(Element holder, std::size_t depth) {
    if (depth > kDeepestReference) {
        throw MessageError("references are nested too deeply");
    }
    if (const Element wrapped = holder.Child("EndpointReference")) {
        holder = wrapped;
    }
    if (const Element parameters = holder.Child("ReferenceParameters")) {
        holder = parameters;
    }
    Endpoint endpoint{holder.Child("ResourceURI").Word()};
    if (endpoint.resource.empty()) {
        throw MessageError("there is no resource URI");
    }
    for (const Element& selector : holder.Child("SelectorSet").Children()) {
        if (selector.Name() != "Selector") {
            continue;
        }
        const std::string name = selector.Attribute("Name").value_or("");
        if (name.empty() || endpoint.Find(name) != nullptr || endpoint.selectors.size() == kMostSelectors) {
            throw MessageError("the selectors are not as they must be");
        }
        Selector& read = endpoint.selectors.emplace_back(Selector{name, {}});
        if (selector.HasChildren()) {
            read.reference = std::make_shared<const Endpoint>(ReadEndpoint(selector, depth + 1));
        } else {
            read.value = selector.Text();
        }
    }
    return endpoint;
}

wmi::Scalar KeyValue(const std::wstring& text, const wmi::Property* property) {
    if (property != nullptr && property->type == CIM_BOOLEAN) {
        return wmi::SameName(text, L"true");
    }
    const auto number =
        property != nullptr && wmi::IsIntegerType(property->type) ? wmi::ParseDecimal(text) : std::nullopt;
    if (!number) {
        return text;
    }
    return number->negative ? wmi::Scalar(-static_cast<std::int64_t>(number->magnitude))
                            : wmi::Scalar(number->magnitude);
}

/// The property of a key, which may go without its name where it is the only one.
const wmi::Property* KeyProperty(const wmi::ClassPtr& definition, std::wstring_view name) {
    if (definition == nullptr || !name.empty()) {
        return definition == nullptr ? nullptr : definition->FindProperty(name);
    }
    const auto& all = definition->properties;
    const auto found = std::find_if(all.begin(), all.end(), [](const auto& each) { return each.IsKey(); });
    return found == all.end() ? nullptr : &*found;
}

wmi::ClassPtr ClassOf(const Namespace& space, std::wstring_view name) {
    return space.classOf ? space.classOf(name) : nullptr;
}

/// Whether only the class can say what a key is: which one it is, or whether a text is the path of another
/// instance, in which there is always such a sign. A class that need not be known need not be asked for.
bool NeedsClass(const wmi::ObjectPath::Key& key) {
    const auto* text = std::get_if<std::wstring>(&key.value);
    return key.name.empty() || (text != nullptr && text->find(L'=') != std::wstring::npos);
}

Selector SelectorOf(std::wstring_view name, const wmi::Scalar& value, bool isReference,
                    const Namespace& space) {
    const auto* text = std::get_if<std::wstring>(&value);
    Selector selector{wmi::ToUtf8(name), text != nullptr ? *text : Wide(ScalarText(value))};
    if (isReference) {
        selector.reference = std::make_shared<const Endpoint>(EndpointOf(selector.value, space));
    }
    return selector;
}

} // namespace

std::wstring Wide(std::string_view text) {
    std::optional<std::wstring> wide = wmi::FromUtf8(text);
    if (!wide) {
        throw MessageError("a name is no UTF-8");
    }
    return std::move(*wide);
}

const Selector* Endpoint::Find(std::string_view name) const {
    for (const Selector& selector : selectors) {
        if (SameText(selector.name, name)) {
            return &selector;
        }
    }
    return nullptr;
}

Resource ResourceOf(const Endpoint& endpoint) {
    Resource resource;
    if (const Selector* selector = endpoint.Find(kNamespaceSelector)) {
        resource.namespaceName = WithBackslashes(wmi::ToUtf8(selector->value));
    }
    if (const auto behind = Behind(endpoint.resource, kWmiClasses)) {
        const std::size_t slash = behind->find_last_of('/');
        if (slash == std::string_view::npos || slash == 0) {
            throw MessageError("the resource URI has no namespace");
        }
        resource.namespaceName = WithBackslashes(behind->substr(0, slash));
        resource.className = Wide(behind->substr(slash + 1));
    } else if (const auto dmtf = Behind(endpoint.resource, kDmtfClasses)) {
        resource.className = Wide(*dmtf);
    } else {
        // A maker's own URI for a class: the class stands last.
        const std::size_t slash = endpoint.resource.find_last_of('/');
        if (slash == std::string::npos) {
            throw MessageError("the resource URI names no class");
        }
        resource.className = Wide(std::string_view(endpoint.resource).substr(slash + 1));
    }
    if (resource.className != L"*" && !wmi::IsIdentifier(resource.className)) {
        throw MessageError("the resource URI names no class");
    }
    return resource;
}

std::string WithSlashes(std::wstring_view namespaceName) {
    std::string name = wmi::ToUtf8(namespaceName);
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

std::string ClassUri(std::wstring_view namespaceName, std::wstring_view className) {
    return std::string(kWmiClasses) + WithSlashes(namespaceName) + '/' + wmi::ToUtf8(className);
}

Endpoint EndpointOf(std::wstring_view path, const Namespace& space) {
    const auto parsed = wmi::ObjectPath::Parse(path);
    if (!parsed) {
        throw MessageError("a reference is no object path");
    }
    return EndpointOf(*parsed, space);
}

Endpoint EndpointOf(const wmi::ObjectPath& path, const Namespace& space) {
    Endpoint endpoint{ClassUri(path.namespacePath.empty() ? space.name : path.namespacePath, path.className)};
    const wmi::ClassPtr definition = std::any_of(path.keys.begin(), path.keys.end(), NeedsClass)
                                         ? ClassOf(space, path.className)
                                         : nullptr;
    for (const wmi::ObjectPath::Key& key : path.keys) {
        const wmi::Property* property = KeyProperty(definition, key.name);
        endpoint.selectors.push_back(SelectorOf(property != nullptr ? property->name : key.name, key.value,
                                                property != nullptr && property->type == CIM_REFERENCE,
                                                space));
    }
    return endpoint;
}

Endpoint EndpointOf(const wmi::Instance& instance, const Namespace& space) {
    const auto& properties = instance.definition->properties;
    Endpoint endpoint{ClassUri(space.name, instance.definition->name)};
    for (std::size_t i = 0; i < properties.size(); ++i) {
        const wmi::Scalar* value = instance.values[i].AsScalar();
        if (value != nullptr && properties[i].IsKey()) {
            endpoint.selectors.push_back(
                SelectorOf(properties[i].name, *value, properties[i].type == CIM_REFERENCE, space));
        }
    }
    return endpoint;
}

wmi::ObjectPath PathOf(const Endpoint& endpoint, const Namespace& space) {
    const Resource resource = ResourceOf(endpoint);
    wmi::ObjectPath path;
    path.server = space.server;
    path.namespacePath = resource.namespaceName.empty() ? space.name : resource.namespaceName;
    // A peer may write the namespace in other letters than clients compare it by.
    if (wmi::SameName(path.namespacePath, space.name)) {
        path.namespacePath = space.name;
    }
    path.className = resource.className;
    const wmi::ClassPtr definition = ClassOf(space, resource.className);
    for (const Selector& selector : endpoint.selectors) {
        if (SameText(selector.name, kNamespaceSelector)) {
            continue;
        }
        const std::wstring name = Wide(selector.name);
        const wmi::Property* property = KeyProperty(definition, name);
        path.keys.push_back({property != nullptr ? property->name : name,
                             selector.reference != nullptr
                                 ? wmi::Scalar(PathOf(*selector.reference, space).Text())
                                 : KeyValue(selector.value, property)});
    }
    // As the class has them, so that the same object has the same path whoever tells it.
    if (definition != nullptr) {
        std::stable_sort(path.keys.begin(), path.keys.end(), [&](const auto& left, const auto& right) {
            constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);
            return definition->PropertyIndex(left.name).value_or(kUnknown) <
                   definition->PropertyIndex(right.name).value_or(kUnknown);
        });
        path.className = definition->name;
    }
    return path;
}

Endpoint ReadEndpoint(Element holder) {
    return ReadEndpoint(holder, 0);
}

void WriteSelectors(XmlWriter& xml, const Endpoint& endpoint) {
    if (endpoint.selectors.empty()) {
        return;
    }
    xml.Open("w:SelectorSet");
    for (const Selector& selector : endpoint.selectors) {
        xml.Open("w:Selector").Attribute("Name", selector.name);
        if (selector.reference != nullptr) {
            xml.Open("a:EndpointReference");
            WriteEndpoint(xml, *selector.reference);
            xml.Close();
        } else {
            xml.Text(wmi::ToUtf8(selector.value));
        }
        xml.Close();
    }
    xml.Close();
}

void WriteEndpoint(XmlWriter& xml, const Endpoint& endpoint) {
    xml.Leaf("a:Address", kAnonymous).Open("a:ReferenceParameters").Leaf("w:ResourceURI", endpoint.resource);
    WriteSelectors(xml, endpoint);
    xml.Close();
}

} // namespace quillet::wsman
