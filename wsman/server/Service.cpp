// From a message to its answer.
#include "server/Service.h"

#include "soap/ClassXml.h"
#include "soap/Names.h"
#include "soap/Values.h"

#include <quillet-wmi/Text.h>
#include <quillet-wmi/Wql.h>

#include <wbemidl.h>

#include <algorithm>

namespace quillet::wsman {

namespace {

constexpr std::string_view kGet = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Get";
constexpr std::string_view kPut = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Put";
constexpr std::string_view kCreate = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Create";
constexpr std::string_view kDelete = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Delete";
constexpr std::string_view kEnumerate = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Enumerate";
constexpr std::string_view kPull = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Pull";
constexpr std::string_view kRelease = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Release";

constexpr std::string_view kFaultAction = "http://schemas.xmlsoap.org/ws/2004/08/addressing/fault";
constexpr std::string_view kWsmanFaultAction = "http://schemas.dmtf.org/wbem/wsman/1/wsman/fault";

/// The option by which a client names the properties that it changed.
constexpr const wchar_t* kModified = L"__MIInstanceModifiedPropertiesList";

constexpr std::size_t kLongestQuery = 8192;

/// Ends a request with a fault.
struct Failed {
    Fault fault;
};

[[noreturn]] void Fail(HRESULT code, const std::string& reason = {}) {
    throw Failed{FaultFor(code, reason)};
}

[[noreturn]] void Fail(const char* subcode, const std::string& reason, const char* detail = "") {
    throw Failed{{HRESULT(WBEM_E_INVALID_PARAMETER), subcode, false, detail, reason}};
}

LCID LanguageOf(const std::string& locale) {
    struct Language {
        const char* name;
        LCID id;
    };
    constexpr Language kLanguages[] = {{"en", 0x409}, {"de", 0x407}, {"fr", 0x40C}};
    for (const Language& each : kLanguages) {
        if (std::string_view(locale).substr(0, 2) == each.name) {
            return each.id;
        }
    }
    return 0;
}

std::wstring Wide(const std::string& text) {
    std::optional<std::wstring> wide = wmi::FromUtf8(text);
    if (!wide) {
        throw MessageError("a text is no UTF-8");
    }
    return std::move(*wide);
}

} // namespace

/// One request, from its head to its answer.
class Service::Request {
  public:
    Request(Service& service, const Element& envelope, const RequestHead& head, const std::string& user)
        : m_service(service), m_connection(*service.m_connection), m_head(head), m_body(BodyOf(envelope)),
          m_user(user) {
        m_context.hasContext = !head.options.empty();
        m_context.values = head.options;
        m_context.locale = LanguageOf(head.locale);
        m_space.server = m_connection.ServerName();
        m_space.name = m_connection.NamespaceName();
        m_space.classOf = service.m_schema;
    }

    /// The body of the answer. Throws Failed, MessageError.
    std::string Answer() {
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
            TakeEnumeration(m_body.Child("Release"));
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

  private:
    static void Succeed(const wmi::Outcome& outcome) {
        if (FAILED(outcome.status)) {
            Fail(outcome.status);
        }
    }

    wmi::ObjectPath Path() const {
        wmi::ObjectPath path = PathOf(m_head.endpoint, m_space);
        if (!wmi::SameName(path.namespacePath, m_space.name)) {
            Fail(HRESULT(WBEM_E_INVALID_NAMESPACE));
        }
        return path;
    }

    /// The path of an instance: a class without keys is asked for its only one.
    wmi::ObjectPath InstancePath() const {
        wmi::ObjectPath path = Path();
        path.singleton = path.keys.empty();
        return path;
    }

    std::string GetClass() {
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

    std::string Get() {
        wmi::Object found;
        Succeed(m_connection.GetObject(m_context, InstancePath().Text(), found));
        if (found.instance == nullptr) {
            Fail(HRESULT(WBEM_E_NOT_FOUND));
        }
        XmlWriter xml;
        WriteInstance(xml, found);
        return xml.Take();
    }

    void WriteInstance(XmlWriter& xml, const wmi::Object& object) const {
        const std::string name = "p:" + wmi::ToUtf8(object.definition->name);
        xml.Open(name).Declare("p", ClassUri(m_space.name, object.definition->name));
        xml.Attribute("xsi:type", name + "_Type");
        WriteProperties(xml, "p", *object.instance, m_space, DateTimeForm::Xml);
        xml.Close();
    }

    /// The element of an instance in the body, read into its class.
    wmi::Instance ReadInstance(const wmi::ClassPtr& definition, std::vector<wmi::NamedValue>& puts) const {
        const Element element = m_body.First();
        if (!element) {
            Fail("w:SchemaValidationError", "There is no instance in the body.");
        }
        wmi::Instance instance = ReadProperties(definition, element, m_space, Unknown::Refused);
        const wmi::NamedValue* modified = wmi::FindNamed(m_context.values, kModified);
        for (std::size_t i = 0; i < definition->properties.size(); ++i) {
            const wmi::Property& property = definition->properties[i];
            if (modified == nullptr ? !instance.values[i].IsNull() : Names(*modified, property.name)) {
                puts.push_back({property.name, VT_EMPTY, property.type, instance.values[i]});
            }
        }
        return instance;
    }

    static bool Names(const wmi::NamedValue& list, const std::wstring& name) {
        const wmi::Value::Array elements = list.value.Elements();
        return std::any_of(elements.begin(), elements.end(), [&](const std::optional<wmi::Scalar>& each) {
            const auto* text = each ? std::get_if<std::wstring>(&*each) : nullptr;
            return text != nullptr && wmi::SameName(*text, name);
        });
    }

    wmi::ClassPtr ClassOfRequest() const {
        wmi::ClassPtr definition = m_service.m_schema(ResourceOf(m_head.endpoint).className);
        if (definition == nullptr) {
            Fail(HRESULT(WBEM_E_INVALID_CLASS));
        }
        return definition;
    }

    std::string Put() {
        std::vector<wmi::NamedValue> puts;
        const wmi::Instance instance = ReadInstance(ClassOfRequest(), puts);
        Succeed(m_connection.PutInstance(m_context, {instance, puts}, wmi::WriteMode::UpdateOnly));
        return {};
    }

    std::string Create() {
        std::vector<wmi::NamedValue> puts;
        const wmi::Instance instance = ReadInstance(ClassOfRequest(), puts);
        Succeed(m_connection.PutInstance(m_context, {instance, puts}, wmi::WriteMode::CreateOnly));
        XmlWriter xml;
        xml.Open("x:ResourceCreated");
        WriteEndpoint(xml, EndpointOf(wmi::RelativePath(instance), m_space));
        xml.Close();
        return xml.Take();
    }

    std::string Invoke() {
        const std::string prefix = m_head.endpoint.resource + '/';
        if (m_head.endpoint.resource.empty() || !m_head.action.starts_with(prefix)) {
            Fail("a:ActionNotSupported", "There is no such action.", "ActionMismatch");
        }
        const std::wstring name = Wide(m_head.action.substr(prefix.size()));
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
            WriteProperties(xml, "p", *out, m_space, DateTimeForm::Xml);
        }
        xml.Close();
        return xml.Take();
    }

    void ReadParameters(const wmi::Method& method, wmi::Instance& in,
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

    std::string Enumerate() {
        const Element asked = m_body.Child("Enumerate");
        const Element filter = asked.Child("Filter");
        Enumeration begun;
        begun.connection = m_service.m_connection;
        begun.resource = m_head.endpoint.resource;
        begun.form = FormOf(asked.Child("EnumerationMode").Word());
        if (filter) {
            Query(filter, begun);
        } else {
            const std::wstring name = ResourceOf(m_head.endpoint).className;
            Path(); // is of this namespace
            Succeed(m_connection.Instances(m_context, name, wmi::Depth::Deep, begun.objects));
        }
        if (begun.objects == nullptr) {
            Fail(HRESULT(WBEM_E_FAILED));
        }
        XmlWriter xml;
        xml.Open("n:EnumerateResponse");
        std::string items;
        bool isEnd = false;
        if (asked.Child("OptimizeEnumeration")) {
            items = Items(begun, asked.Child("MaxElements"), isEnd);
        }
        WriteContext(xml, std::move(begun), isEnd);
        if (asked.Child("OptimizeEnumeration")) {
            xml.Open("w:Items").Raw(items).Close();
        }
        if (isEnd) {
            xml.Open("w:EndOfSequence").Close();
        }
        return xml.Close().Take();
    }

    static ItemForm FormOf(const std::string& mode) {
        if (mode.empty() || mode == "EnumerateObject") {
            return ItemForm::Object;
        }
        if (mode != "EnumerateEPR" && mode != "EnumerateObjectAndEPR") {
            Fail("w:UnsupportedFeature", "There is no such mode.", "EnumerationMode");
        }
        return mode == "EnumerateEPR" ? ItemForm::Reference : ItemForm::ObjectAndReference;
    }

    void Query(const Element& filter, Enumeration& begun) {
        if (filter.Attribute("Dialect").value_or(std::string(kWqlDialect)) != kWqlDialect) {
            Fail("n:FilterDialectRequestedUnavailable", "Queries are taken in WQL only.");
        }
        const std::wstring text = filter.Text();
        if (text.size() > kLongestQuery) {
            Fail(HRESULT(WBEM_E_INVALID_QUERY), "The query is too long.");
        }
        const auto parsed = wmi::ParseWql(text);
        begun.isProjection = parsed && !parsed->properties.empty();
        Succeed(m_connection.Query(m_context, text, begun.objects));
    }

    std::string Pull() {
        const Element asked = m_body.Child("Pull");
        std::unique_ptr<Enumeration> enumeration = TakeEnumeration(asked);
        bool isEnd = false;
        const std::string items = Items(*enumeration, asked.Child("MaxElements"), isEnd);
        XmlWriter xml;
        xml.Open("n:PullResponse");
        WriteContext(xml, std::move(*enumeration), isEnd);
        xml.Open("n:Items").Raw(items).Close();
        if (isEnd) {
            xml.Open("n:EndOfSequence").Close();
        }
        return xml.Close().Take();
    }

    std::unique_ptr<Enumeration> TakeEnumeration(const Element& asked) {
        std::unique_ptr<Enumeration> enumeration = m_service.m_enumerations.Take(
            m_user, asked.Child("EnumerationContext").Word(), m_head.endpoint.resource);
        if (enumeration == nullptr) {
            throw Failed{{HRESULT(WBEM_E_UNEXPECTED), "n:InvalidEnumerationContext", false, "",
                          "There is no such enumeration."}};
        }
        return enumeration;
    }

    /// An enumeration that is not at its end goes on under a new identifier.
    void WriteContext(XmlWriter& xml, Enumeration enumeration, bool isEnd) {
        if (isEnd) {
            return;
        }
        const std::string id = m_service.m_enumerations.Keep(m_user, std::move(enumeration));
        if (id.empty()) {
            Fail(HRESULT(WBEM_E_QUOTA_VIOLATION), "There are too many enumerations.");
        }
        xml.Leaf("n:EnumerationContext", id);
    }

    /// As many objects as are asked for and fit.
    std::string Items(Enumeration& enumeration, const Element& wanted, bool& isEnd) {
        const auto number = wmi::ParseDecimal(Wide(wanted ? wanted.Word() : "1"));
        if (!number || number->negative || number->magnitude == 0) {
            Fail("w:InvalidParameter", "The number of objects is none.", "MaxElements");
        }
        const std::size_t most = static_cast<std::size_t>(
            std::min<std::uint64_t>(number->magnitude, m_service.m_options.maxItems));
        constexpr std::size_t kFrame = 2048; // of the envelope around the items
        const std::size_t room = std::min(m_head.maxEnvelope, m_service.m_options.maxEnvelope) - kFrame;
        std::string items;
        for (std::size_t count = 0; count < most; ++count) {
            if (enumeration.waiting.definition == nullptr && !Next(enumeration)) {
                isEnd = true;
                break;
            }
            std::string item = Item(enumeration);
            if (items.size() + item.size() > room) {
                if (items.empty()) {
                    Fail("w:EncodingLimit", "An object is larger than the answer may be.",
                         "MaxEnvelopeSizeExceeded");
                }
                break;
            }
            items += item;
            enumeration.waiting = {};
        }
        return items;
    }

    static bool Next(Enumeration& enumeration) {
        ULONG returned = 0;
        const HRESULT result =
            enumeration.objects->Next(LONG(WBEM_INFINITE), {&enumeration.waiting, 1}, returned);
        if (FAILED(result)) {
            Fail(result);
        }
        return returned == 1 && enumeration.waiting.definition != nullptr;
    }

    std::string Item(const Enumeration& enumeration) const {
        const wmi::Object& object = enumeration.waiting;
        XmlWriter xml;
        if (object.instance == nullptr) {
            WriteClass(xml, *object.definition, m_context.locale);
            return xml.Take();
        }
        if (enumeration.form == ItemForm::ObjectAndReference) {
            xml.Open("w:Item");
        }
        if (enumeration.form != ItemForm::Reference) {
            if (enumeration.isProjection) {
                xml.Open("w:XmlFragment");
                WriteProperties(xml, "", *object.instance, m_space, DateTimeForm::Xml);
                xml.Close();
            } else {
                WriteInstance(xml, object);
            }
        }
        if (enumeration.form != ItemForm::Object) {
            xml.Open("a:EndpointReference");
            WriteEndpoint(xml, EndpointOf(wmi::RelativePath(*object.instance), m_space));
            xml.Close();
        }
        if (enumeration.form == ItemForm::ObjectAndReference) {
            xml.Close();
        }
        return xml.Take();
    }

    Service& m_service;
    wmi::Connection& m_connection;
    const RequestHead& m_head;
    const Element m_body;
    const std::string& m_user;
    wmi::CallContext m_context;
    Namespace m_space;
};

namespace {

/// The answer that asks for nothing: who is there.
std::string IdentifyBody() {
    XmlWriter xml;
    xml.Open("wsmid:IdentifyResponse").Declare("wsmid", kIdentity);
    xml.Leaf("wsmid:ProtocolVersion", kWsman).Leaf("wsmid:ProductVendor", "Marlo Works");
    xml.Leaf("wsmid:ProductVersion", "OS: 0.0.0 SP: 0.0 Stack: 3.0").Close();
    return xml.Take();
}

Reply ReplyWith(const Fault& fault, const std::string& relatesTo, const std::string& machine,
                const std::string& notUnderstood = {}) {
    XmlWriter body;
    WriteFault(body, fault, machine);
    const bool isWsman = fault.subcode.starts_with("w:");
    return {500, WriteResponse(isWsman ? kWsmanFaultAction : kFaultAction, relatesTo, body.Written(),
                               notUnderstood)};
}

/// Whether the head has what every request must have. Throws Failed.
void CheckHead(const RequestHead& head) {
    if (!head.notUnderstood.empty()) {
        throw Failed{{HRESULT(WBEM_E_INVALID_PARAMETER), "", false, "",
                      "The header " + head.notUnderstood + " must be understood, and is not."}};
    }
    if (head.messageId.empty() || head.action.empty() || !head.hasReplyTo) {
        Fail("a:MessageInformationHeaderRequired", "Action, MessageID and ReplyTo are needed.");
    }
    if (!head.isReplyAnonymous) {
        Fail("w:UnsupportedFeature", "An answer goes back the way its request came.", "AddressingMode");
    }
    if (head.isLocaleForced) {
        Fail("w:UnsupportedFeature", "No language is a must.", "Locale");
    }
    if (head.maxEnvelope < kLeastEnvelope) {
        Fail("w:EncodingLimit", "Answers of this size have no room for an object.", "MinimumEnvelopeLimit");
    }
    if (head.endpoint.resource.empty()) {
        Fail("a:DestinationUnreachable", "A resource URI is needed.", "InvalidResourceURI");
    }
}

} // namespace

Service::Service(std::shared_ptr<wmi::Connection> connection, Schema schema, ServiceOptions options)
    : m_connection(std::move(connection)), m_schema(std::move(schema)), m_options(options),
      m_enumerations(options.maxEnumerations, options.idleEnumeration) {}

Reply Service::Answer(std::string request, const std::string& user) {
    const std::string machine = wmi::ToUtf8(m_connection->ServerName());
    RequestHead head;
    try {
        const XmlDocument document(std::move(request));
        const Element envelope = document.Root();
        head = ReadRequestHead(envelope);
        if (head.action.empty() && BodyOf(envelope).First().Name() == "Identify") {
            return {200, WriteResponse({}, {}, IdentifyBody())};
        }
        CheckHead(head);
        const std::string body = Request(*this, envelope, head, user).Answer();
        Reply reply{200, WriteResponse(head.action + "Response", head.messageId, body)};
        if (reply.body.size() > std::min(head.maxEnvelope, m_options.maxEnvelope)) {
            Fail("w:EncodingLimit", "The answer is larger than it may be.", "MaxEnvelopeSizeExceeded");
        }
        return reply;
    } catch (const Failed& failed) {
        return ReplyWith(failed.fault, head.messageId, machine, head.notUnderstood);
    } catch (const MessageError& error) {
        return ReplyWith({HRESULT(WBEM_E_INVALID_PARAMETER), "w:SchemaValidationError", false, "",
                          std::string("The message cannot be read: ") + error.what() + '.'},
                         head.messageId, machine);
    } catch (const XmlError& error) {
        return {400, std::string("The message cannot be read: ") + error.what() + ".\n"};
    }
}

} // namespace quillet::wsman
