// What a request asks the machine: instances, methods, classes.
#include "server/Request.h"

#include "soap/ClassXml.h"
#include "soap/Languages.h"
#include "soap/Names.h"
#include "soap/Values.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>

namespace quillet::wsman {

void Fail(HRESULT code, const std::string& reason) {
    throw Failed{FaultFor(code, reason)};
}

void Fail(const char* subcode, const std::string& reason, const char* detail) {
    throw Failed{{HRESULT(WBEM_E_INVALID_PARAMETER), subcode, false, detail, reason}};
}

Request::Request(Service& service, const Element& envelope, const RequestHead& head, const std::string& user)
    : m_service(service), m_connection(*service.m_connection), m_head(head), m_body(BodyOf(envelope)),
      m_user(user), m_arrays(NullArrays::LikeScalars) {
    const auto& asked = head.transportOptions;
    if (std::find(asked.begin(), asked.end(), kPreciseArrays) != asked.end()) {
        m_arrays = NullArrays::Marked;
    }
    m_context.values = head.options;
    // What a client says of its own message is not for the provider.
    if (const wmi::NamedValue* modified = wmi::FindNamed(head.options, kModifiedProperties)) {
        m_modified = modified->value.Elements();
        std::erase_if(m_context.values,
                      [](const auto& each) { return wmi::SameName(each.name, kModifiedProperties); });
    }
    m_context.hasContext = !m_context.values.empty();
    m_context.locale = LanguageOf(head.locale);
    m_space.server = m_connection.ServerName();
    m_space.name = m_connection.NamespaceName();
    m_space.classOf = service.m_schema;
}

std::string Request::Answer() {
    if (m_head.action == kGet) {
        return m_head.endpoint.resource == kClassesAsXml ? GetClass() : Get();
    }
    if (m_head.action == kEnumerate) {
        return Enumerate();
    }
    if (m_head.action == kPull) {
        return Pull();
    }
    if (m_head.action == kRelease) {
        Release();
        return {};
    }
    if (m_head.action == kPut) {
        return Put();
    }
    if (m_head.action == kCreate) {
        return Create();
    }
    if (m_head.action == kDelete) {
        Succeed(m_connection.DeleteInstance(m_context, Path().Text()));
        return {};
    }
    return Invoke();
}

void Request::Succeed(const wmi::Outcome& outcome) {
    if (FAILED(outcome.status)) {
        Fail(outcome.status);
    }
}

wmi::ObjectPath Request::Path() const {
    wmi::ObjectPath path = PathOf(m_head.endpoint, m_space);
    if (!wmi::SameName(path.namespacePath, m_space.name)) {
        Fail(HRESULT(WBEM_E_INVALID_NAMESPACE));
    }
    return path;
}

wmi::ObjectPath Request::InstancePath() const {
    wmi::ObjectPath path = Path();
    path.singleton = path.keys.empty();
    return path;
}

void Request::CheckNamespace() const {
    const std::wstring name = ResourceOf(m_head.endpoint).namespaceName;
    if (!name.empty() && !wmi::SameName(name, m_space.name)) {
        Fail(HRESULT(WBEM_E_INVALID_NAMESPACE));
    }
}

std::string Request::GetClass() {
    CheckNamespace();
    const Selector* name = m_head.endpoint.Find("ClassName");
    if (name == nullptr) {
        Fail("w:InvalidSelectors", "The name of a class is needed.", "InsufficientSelectors");
    }
    wmi::Object found;
    Succeed(m_connection.GetObject(m_context, name->value, found));
    if (found.definition == nullptr) {
        Fail(HRESULT(WBEM_E_NOT_FOUND));
    }
    XmlWriter xml;
    WriteClass(xml, *found.definition, m_context.locale);
    return xml.Take();
}

std::string Request::Name() const {
    XmlWriter xml;
    xml.Open("p:Win32_OperatingSystem").Declare("p", kOperatingSystem);
    return xml.Leaf("p:CSName", wmi::ToUtf8(m_space.server)).Close().Take();
}

std::string Request::Get() {
    if (wmi::SameName(Wide(m_head.endpoint.resource), Wide(kOperatingSystem))) {
        return Name();
    }
    wmi::Object found;
    Succeed(m_connection.GetObject(m_context, InstancePath().Text(), found));
    XmlWriter xml;
    if (found.instance != nullptr) { // a connection may say that there is an object and hand out none
        WriteInstance(xml, found);
    }
    return xml.Take();
}

void Request::WriteInstance(XmlWriter& xml, const wmi::Object& object) const {
    const std::string name = "p:" + wmi::ToUtf8(object.definition->name);
    xml.Open(name).Declare("p", ClassUri(m_space.name, object.definition->name));
    xml.Attribute("xsi:type", name + "_Type");
    WriteProperties(xml, "p", *object.instance, m_space, DateTimeForm::Xml, m_arrays);
    xml.Close();
}

wmi::Instance Request::ReadInstance(const wmi::ClassPtr& definition,
                                    std::vector<wmi::NamedValue>& puts) const {
    const Element element = m_body.First();
    if (!element) {
        Fail("w:SchemaValidationError", "There is no instance in the body.");
    }
    wmi::Instance instance = ReadProperties(definition, element, m_space, Unknown::Refused, m_arrays);
    const auto put = [&](std::size_t index) {
        const wmi::Property& property = definition->properties[index];
        puts.push_back({property.name, VT_EMPTY, property.type, instance.values[index]});
    };
    for (const std::optional<wmi::Scalar>& each : m_modified) {
        const auto* name = each ? std::get_if<std::wstring>(&*each) : nullptr;
        if (const auto index = name != nullptr ? definition->PropertyIndex(*name) : std::nullopt) {
            put(*index);
        }
    }
    for (std::size_t i = 0; m_modified.empty() && i < definition->properties.size(); ++i) {
        if (!instance.values[i].IsNull()) {
            put(i);
        }
    }
    return instance;
}

wmi::ClassPtr Request::ClassOfRequest() const {
    wmi::ClassPtr definition = m_service.m_schema(ResourceOf(m_head.endpoint).className);
    if (definition == nullptr) {
        Fail(HRESULT(WBEM_E_INVALID_CLASS));
    }
    return definition;
}

std::string Request::Put() {
    std::vector<wmi::NamedValue> puts;
    const wmi::Instance instance = ReadInstance(ClassOfRequest(), puts);
    Succeed(m_connection.PutInstance(m_context, {instance, puts}, wmi::WriteMode::UpdateOnly));
    return {};
}

std::string Request::Create() {
    std::vector<wmi::NamedValue> puts;
    const wmi::Instance instance = ReadInstance(ClassOfRequest(), puts);
    Succeed(m_connection.PutInstance(m_context, {instance, puts}, wmi::WriteMode::CreateOnly));
    XmlWriter xml;
    xml.Open("x:ResourceCreated");
    WriteEndpoint(xml, EndpointOf(instance, m_space));
    xml.Close();
    return xml.Take();
}

std::string Request::Invoke() {
    const std::string prefix = m_head.endpoint.resource + '/';
    if (m_head.endpoint.resource.empty() || !m_head.action.starts_with(prefix)) {
        Fail("a:ActionNotSupported", "There is no such action.", "ActionMismatch");
    }
    const std::wstring name = Wide(m_head.action.substr(prefix.size()));
    if (!wmi::IsIdentifier(name)) { // which the answer repeats as the name of an element
        Fail("a:ActionNotSupported", "There is no such action.", "ActionMismatch");
    }
    const wmi::ClassPtr definition = ClassOfRequest();
    const wmi::Method* method = definition->FindMethod(name);
    wmi::Instance in;
    std::vector<wmi::NamedValue> puts;
    if (method != nullptr) {
        ReadParameters(*method, in, puts);
    }
    const wmi::Filled filled{in, puts};
    wmi::InstancePtr out;
    Succeed(m_connection.ExecMethod(m_context, Path().Text(), method != nullptr ? method->name : name,
                                    in.definition != nullptr ? &filled : nullptr, out));
    XmlWriter xml;
    xml.Open("p:" + wmi::ToUtf8(name) + "_OUTPUT").Declare("p", m_head.endpoint.resource);
    if (out != nullptr) {
        WriteProperties(xml, "p", *out, m_space, DateTimeForm::Xml, m_arrays);
    }
    xml.Close();
    return xml.Take();
}

void Request::ReadParameters(const wmi::Method& method, wmi::Instance& in,
                             std::vector<wmi::NamedValue>& puts) const {
    const wmi::ClassPtr signature = wmi::InSignature(method);
    const Element given = m_body.First();
    if (signature == nullptr || !given) {
        return;
    }
    in = wmi::Instance(signature);
    const wmi::Instance read = ReadProperties(signature, given, m_space, Unknown::Refused);
    for (const Element& each : given.Children()) {
        const auto index = signature->PropertyIndex(Wide(std::string(each.Name())));
        const wmi::Property& parameter = signature->properties[*index];
        if (wmi::FindNamed(puts, parameter.name) == nullptr) {
            in.values[*index] = read.values[*index];
            puts.push_back({parameter.name, VT_EMPTY, parameter.type, read.values[*index]});
        }
    }
}

} // namespace quillet::wsman
