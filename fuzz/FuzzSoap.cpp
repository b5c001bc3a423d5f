// Messages of WS-Management: what can be read can be written, and is then read as the same.
#include "FuzzSupport.h"

#include <soap/ByteRuns.h>
#include <soap/ClassXml.h>
#include <soap/Envelope.h>
#include <soap/Values.h>

using namespace quillet;
using namespace quillet::simulator::fuzz;

namespace {

/// A class with a property of every type, some of them arrays.
wmi::ClassPtr EveryType() {
    static const wmi::ClassPtr kClass = [] {
        auto made = std::make_shared<wmi::ClassDefinition>();
        made->name = L"D";
        int number = 0;
        for (const CIMTYPE type :
             {CIM_STRING, CIM_BOOLEAN, CIM_UINT8, CIM_SINT8, CIM_UINT16, CIM_SINT32, CIM_UINT64, CIM_SINT64,
              CIM_REAL32, CIM_REAL64, CIM_CHAR16, CIM_DATETIME, CIM_REFERENCE, CIM_OBJECT}) {
            for (const CIMTYPE shape : {CIMTYPE(0), CIMTYPE(CIM_FLAG_ARRAY)}) {
                wmi::Property property;
                property.name = L"P" + std::to_wstring(number++);
                property.type = type | shape;
                made->properties.push_back(std::move(property));
            }
        }
        return made;
    }();
    return kClass;
}

wsman::Namespace Space() {
    wsman::Namespace space;
    space.server = L"H";
    space.name = L"ROOT\\Test";
    space.classOf = [](std::wstring_view) { return EveryType(); };
    return space;
}

void CheckInstance(const wsman::Element& holder, wsman::DateTimeForm form) {
    const wmi::Instance read = wsman::ReadProperties(EveryType(), holder, Space(), wsman::Unknown::Ignored);
    wsman::XmlWriter xml;
    xml.Open("r");
    wsman::WriteProperties(xml, "p", read, Space(), form);
    xml.Close();
    const wsman::XmlDocument again(xml.Take());
    const wmi::Instance second =
        wsman::ReadProperties(EveryType(), again.Root(), Space(), wsman::Unknown::Refused);
    for (std::size_t i = 0; i < read.values.size(); ++i) {
        // An empty array is no element at all, and so is none.
        const bool isEmpty = read.values[i].IsArray() && read.values[i].Size() == 0;
        Require(isEmpty || read.values[i].IsNull() || !second.values[i].IsNull(), "a value is lost");
    }
}

void CheckClass(const wsman::Element& element) {
    wsman::XmlWriter first;
    wsman::WriteClass(first, wsman::ReadClass(element), 0);
    const wsman::XmlDocument again(first.Written());
    wsman::XmlWriter second;
    wsman::WriteClass(second, wsman::ReadClass(again.Root()), 0);
    Require(first.Written() == second.Written(), "a class comes back as another");
}

void CheckRequest(const wsman::Element& envelope) {
    const wsman::RequestHead head = wsman::ReadRequestHead(envelope);
    if (head.endpoint.resource.empty()) {
        return;
    }
    const wsman::XmlDocument again(wsman::WriteRequest(head, "<b/>"));
    const wsman::RequestHead second = wsman::ReadRequestHead(again.Root());
    Require(second.options.size() == head.options.size(), "an option is lost");
    Require(second.endpoint.selectors.size() == head.endpoint.selectors.size(), "a selector is lost");
    const std::wstring path = wsman::PathOf(head.endpoint, Space()).Text();
    Require(wsman::PathOf(second.endpoint, Space()).Text() == path, "a path comes back as another");
}

/// A message that comes in pieces is kept as one that comes whole.
void CheckPieces(std::string_view text) {
    std::string whole;
    wsman::ByteRuns atOnce({"P4", "P5"});
    atOnce.Append(text, whole);
    atOnce.Finish(whole);
    std::string pieces;
    wsman::ByteRuns inPieces({"P4", "P5"});
    for (std::size_t place = 0; place < text.size(); place += 7) {
        inPieces.Append(text.substr(place, 7), pieces);
    }
    inPieces.Finish(pieces);
    Require(whole == pieces, "a message is kept differently in pieces");
}

/// What a reader does not take, it says.
template <class Check>
void Guarded(Check check) {
    try {
        check();
    } catch (const wsman::MessageError&) {
    } catch (const wsman::XmlError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckPieces({reinterpret_cast<const char*>(data), size});
    Guarded([&] {
        const wsman::XmlDocument document(std::string(data, data + size));
        const wsman::Element root = document.Root();
        Guarded([&] { CheckRequest(root); });
        Guarded([&] { CheckInstance(wsman::BodyOf(root), wsman::DateTimeForm::Xml); });
        Guarded([&] { CheckInstance(root, wsman::DateTimeForm::Cim); });
        Guarded([&] { CheckClass(root); });
        const wsman::Fault fault = wsman::ReadFault(root);
        Require(fault.reason.size() <= 500, "a reason is too long");
    });
    return 0;
}
