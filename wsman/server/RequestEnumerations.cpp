// What a request asks the machine: many objects, a page at a time.
#include "server/Request.h"

#include "soap/ClassXml.h"
#include "soap/Names.h"
#include "soap/Values.h"

#include <quillet-wmi/Text.h>
#include <quillet-wmi/Wql.h>

#include <wbemidl.h>

#include <algorithm>

namespace quillet::wsman {

namespace {

constexpr std::size_t kLongestQuery = 8192;

ItemForm FormOf(const std::string& mode) {
    if (mode.empty() || mode == "EnumerateObject") {
        return ItemForm::Object;
    }
    if (mode != "EnumerateEPR" && mode != "EnumerateObjectAndEPR") {
        Fail("w:UnsupportedFeature", "There is no such mode.", "EnumerationMode");
    }
    return mode == "EnumerateEPR" ? ItemForm::Reference : ItemForm::ObjectAndReference;
}

/// Fetches the object that waits for its place in an answer; false at the end, and for a failure.
bool Next(Enumeration& enumeration) {
    ULONG returned = 0;
    const HRESULT result =
        enumeration.objects->Next(LONG(WBEM_INFINITE), {&enumeration.waiting, 1}, returned);
    enumeration.failure = FAILED(result) ? result : S_OK;
    enumeration.isWaiting = SUCCEEDED(result) && returned == 1;
    return enumeration.isWaiting;
}

} // namespace

std::string Request::Enumerate() {
    const Element asked = m_body.Child("Enumerate");
    const Element filter = asked.Child("Filter");
    Enumeration begun;
    begun.connection = m_service.m_connection;
    begun.resource = m_head.endpoint.resource;
    begun.form = FormOf(asked.Child("EnumerationMode").Word());
    if (m_head.endpoint.resource == kClassesAsXml) {
        begun.objects = Classes();
    } else if (filter) {
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
        items = Items(begun, MostItems(asked.Child("MaxElements")), isEnd);
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

std::unique_ptr<wmi::ObjectStream> Request::Classes() {
    CheckNamespace();
    const Selector* name = m_head.endpoint.Find("ClassName");
    const auto& asked = m_head.transportOptions;
    std::unique_ptr<wmi::ObjectStream> below;
    if (name == nullptr || std::find(asked.begin(), asked.end(), kIncludeSubClasses) != asked.end()) {
        Succeed(m_connection.Classes(m_context, name != nullptr ? std::wstring_view(name->value) : L"",
                                     wmi::Depth::Deep, below));
    }
    std::vector<wmi::Object> classes;
    if (name != nullptr) {
        wmi::Object& itself = classes.emplace_back();
        Succeed(m_connection.GetObject(m_context, name->value, itself));
    }
    for (ULONG returned = 1; below != nullptr && returned == 1;) {
        wmi::Object next;
        Succeed(below->Next(LONG(WBEM_INFINITE), {&next, 1}, returned));
        if (returned == 1) {
            classes.push_back(std::move(next));
        }
    }
    return wmi::MakeStream(std::move(classes));
}

void Request::Query(const Element& filter, Enumeration& begun) {
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

std::string Request::Pull() {
    const Element asked = m_body.Child("Pull");
    const std::size_t most = MostItems(asked.Child("MaxElements"));
    std::unique_ptr<Enumeration> enumeration = TakeEnumeration(asked);
    bool isEnd = false;
    std::string items;
    try {
        items = Items(*enumeration, most, isEnd);
    } catch (const Failed&) {
        if (enumeration->waiting.definition != nullptr) { // a client with more room may have it
            m_service.m_enumerations.PutBack(m_user, asked.Child("EnumerationContext").Word(),
                                             std::move(enumeration));
        }
        throw;
    }
    XmlWriter xml;
    xml.Open("n:PullResponse");
    WriteContext(xml, std::move(*enumeration), isEnd);
    xml.Open("n:Items").Raw(items).Close();
    if (isEnd) {
        xml.Open("n:EndOfSequence").Close();
    }
    return xml.Close().Take();
}

std::unique_ptr<Enumeration> Request::TakeEnumeration(const Element& asked) {
    std::unique_ptr<Enumeration> enumeration = m_service.m_enumerations.Take(
        m_user, asked.Child("EnumerationContext").Word(), m_head.endpoint.resource);
    if (enumeration == nullptr) {
        throw Failed{{HRESULT(WBEM_E_UNEXPECTED), "n:InvalidEnumerationContext", false, "",
                      "There is no such enumeration."}};
    }
    return enumeration;
}

void Request::WriteContext(XmlWriter& xml, Enumeration enumeration, bool isEnd) {
    if (isEnd) {
        return;
    }
    const std::string id = m_service.m_enumerations.Keep(m_user, std::move(enumeration));
    if (id.empty()) {
        Fail(HRESULT(WBEM_E_QUOTA_VIOLATION), "There are too many enumerations.");
    }
    xml.Leaf("n:EnumerationContext", id);
}

std::size_t Request::MostItems(const Element& wanted) const {
    const auto number = wmi::ParseDecimal(Wide(wanted ? wanted.Word() : "1"));
    if (!number || number->negative || number->magnitude == 0) {
        Fail("w:InvalidParameter", "The number of objects is none.", "MaxElements");
    }
    return static_cast<std::size_t>(std::min<std::uint64_t>(number->magnitude, m_service.m_options.maxItems));
}

std::string Request::Items(Enumeration& enumeration, std::size_t most, bool& isEnd) {
    constexpr std::size_t kFrame = 2048; // of the envelope around the items
    const std::size_t room = std::min(m_head.maxEnvelope, m_service.m_options.maxEnvelope) - kFrame;
    XmlWriter items;
    if (FAILED(enumeration.failure)) {
        Fail(enumeration.failure);
    }
    for (std::size_t count = 0; count < most; ++count) {
        if (!enumeration.isWaiting && !Next(enumeration)) {
            // A failure is the next answer: the enumeration was begun, and what came before is not lost.
            isEnd = SUCCEEDED(enumeration.failure);
            break;
        }
        const std::size_t before = items.Written().size();
        WriteItem(items, enumeration);
        if (items.Written().size() > room) {
            items.CutTo(before);
            if (before == 0) {
                Fail("w:EncodingLimit", "An object is larger than the answer may be.",
                     "MaxEnvelopeSizeExceeded");
            }
            break;
        }
        enumeration.waiting = {};
        enumeration.isWaiting = false;
    }
    return items.Take();
}

void Request::WriteItem(XmlWriter& xml, const Enumeration& enumeration) const {
    const wmi::Object& object = enumeration.waiting;
    if (object.definition == nullptr) { // said to be there, and not handed out
        xml.Open("w:Item").Close();
        return;
    }
    if (object.instance == nullptr) {
        WriteClass(xml, *object.definition, m_context.locale);
        return;
    }
    if (enumeration.form == ItemForm::ObjectAndReference) {
        xml.Open("w:Item");
    }
    if (enumeration.form != ItemForm::Reference) {
        if (enumeration.isProjection) {
            xml.Open("w:XmlFragment");
            WriteProperties(xml, "", *object.instance, m_space, DateTimeForm::Xml, m_arrays);
            xml.Close();
        } else {
            WriteInstance(xml, object);
        }
    }
    if (enumeration.form != ItemForm::Object) {
        xml.Open("a:EndpointReference");
        WriteEndpoint(xml, EndpointOf(*object.instance, m_space));
        xml.Close();
    }
    if (enumeration.form == ItemForm::ObjectAndReference) {
        xml.Close();
    }
}

void Request::Release() {
    TakeEnumeration(m_body.Child("Release"));
}

} // namespace quillet::wsman
