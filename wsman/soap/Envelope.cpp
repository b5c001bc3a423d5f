// Heads and frames of messages.
#include "soap/Envelope.h"

#include "soap/DateTimes.h"
#include "soap/Names.h"
#include "soap/Scalars.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <random>

namespace quillet::wsman {

namespace {

constexpr std::size_t kLongestId = 2048;
constexpr std::size_t kHeadSize = 2048; // of most messages
constexpr std::size_t kMostOptions = 256;
constexpr std::string_view kForProvider = "wmi:";
constexpr std::string_view kArrayForProvider = "wmiarray:";

/// How the scalar of an option travels.
struct OptionType {
    const char* name;
    VARTYPE vt;
    CIMTYPE type;
};
constexpr OptionType kOptionTypes[] = {{"string", VT_BSTR, CIM_STRING},
                                       {"boolean", VT_BOOL, CIM_BOOLEAN},
                                       {"int", VT_I4, CIM_SINT32},
                                       {"unsignedInt", VT_I4, CIM_UINT32}};

const OptionType& OptionTypeCalled(std::string_view name) {
    const std::string_view local = name.substr(name.find(':') + 1);
    const auto* found = std::find_if(std::begin(kOptionTypes), std::end(kOptionTypes),
                                     [local](const OptionType& each) { return each.name == local; });
    return found == std::end(kOptionTypes) ? kOptionTypes[0] : *found;
}

/// The type of an option that holds a value.
const OptionType& TypeFor(const wmi::Scalar& scalar) {
    return kOptionTypes[std::holds_alternative<bool>(scalar)            ? 1
                        : std::holds_alternative<std::int64_t>(scalar)  ? 2
                        : std::holds_alternative<std::uint64_t>(scalar) ? 3
                                                                        : 0];
}

void WriteOption(XmlWriter& xml, std::string_view prefix, std::string_view name, const wmi::Scalar& scalar) {
    xml.Open("w:Option").Attribute("Name", std::string(prefix) + std::string(name));
    xml.Attribute("Type", std::string("xs:") + TypeFor(scalar).name).Text(ScalarText(scalar)).Close();
}

void WriteOptions(XmlWriter& xml, const RequestHead& head) {
    if (head.options.empty() && head.transportOptions.empty()) {
        return;
    }
    xml.Open("w:OptionSet").Declare("xs", kSchema).Attribute("s:mustUnderstand", "true");
    for (const std::string& name : head.transportOptions) {
        WriteOption(xml, {}, name, true);
    }
    for (const wmi::NamedValue& option : head.options) {
        const std::string name = wmi::ToUtf8(option.name);
        if (const wmi::Scalar* scalar = option.value.AsScalar()) {
            WriteOption(xml, kForProvider, name, *scalar);
        }
        for (const std::optional<wmi::Scalar>& element : option.value.Elements()) {
            if (element) {
                WriteOption(xml, kArrayForProvider, name, *element);
            }
        }
    }
    xml.Close();
}

wmi::Scalar ReadOption(const Element& option, const OptionType& type) {
    const std::string word = option.Word();
    if (type.vt == VT_BOOL) {
        return word == "1" || word == "true" || word == "TRUE" || word == "True";
    }
    if (type.vt == VT_I4) {
        std::int64_t number = 0;
        const auto read = std::from_chars(word.data(), word.data() + word.size(), number);
        if (read.ec != std::errc() || read.ptr != word.data() + word.size()) {
            throw MessageError("an option is no number");
        }
        return number;
    }
    return option.Text();
}

void ReadOptions(const Element& set, RequestHead& head) {
    std::size_t count = 0;
    for (const Element& option : set.Children()) {
        if (++count > kMostOptions) {
            throw MessageError("there are too many options");
        }
        const std::string name = option.Attribute("Name").value_or("");
        const OptionType& type = OptionTypeCalled(option.Attribute("Type").value_or(""));
        const bool isArray = name.starts_with(kArrayForProvider);
        if (!isArray && !name.starts_with(kForProvider)) {
            head.transportOptions.push_back(name);
            continue;
        }
        const auto provider = wmi::FromUtf8(name.substr((isArray ? kArrayForProvider : kForProvider).size()));
        if (!provider || provider->empty()) {
            throw MessageError("an option has no name");
        }
        wmi::NamedValue value{*provider, type.vt, type.type, {}};
        if (!isArray) {
            value.value = wmi::Value(ReadOption(option, type));
            head.options.push_back(std::move(value));
            continue;
        }
        auto found = std::find_if(head.options.begin(), head.options.end(),
                                  [&](const auto& each) { return wmi::SameName(each.name, *provider); });
        wmi::Value::Array elements =
            found == head.options.end() ? wmi::Value::Array() : found->value.Elements();
        elements.emplace_back(ReadOption(option, type));
        value.vt |= VT_ARRAY;
        value.type |= CIM_FLAG_ARRAY;
        value.value = wmi::Value(std::move(elements));
        if (found == head.options.end()) {
            head.options.push_back(std::move(value));
        } else {
            *found = std::move(value);
        }
    }
}

/// An envelope that has begun, the same for all messages.
XmlWriter Begun() {
    static const XmlWriter kBegun = [] {
        XmlWriter xml;
        xml.Open("s:Envelope").Declare("s", kSoap).Declare("a", kAddressing).Declare("w", kWsman);
        xml.Declare("n", kEnumeration).Declare("x", kTransfer).Declare("cim", kCommon);
        return std::move(xml.Declare("xsi", kSchemaInstance));
    }();
    return kBegun;
}

std::size_t ReadSize(const std::string& word) {
    std::size_t size = 0;
    const auto read = std::from_chars(word.data(), word.data() + word.size(), size);
    if (read.ec != std::errc() || read.ptr != word.data() + word.size()) {
        throw MessageError("the size of the envelope is no number");
    }
    return size;
}

/// Takes a block of the head; false for one that is not known.
bool ReadBlock(const Element& block, RequestHead& head) {
    const std::string_view name = block.Name();
    const std::string_view space = block.Space();
    if (space == kAddressing) {
        if (name == "Action") {
            head.action = block.Word();
        } else if (name == "MessageID") {
            head.messageId = block.Word();
        } else if (name == "To") {
            head.to = block.Word();
        } else if (name == "ReplyTo") {
            head.hasReplyTo = true;
            head.isReplyAnonymous = block.Child("Address").Word() == kAnonymous;
        } else {
            return name == "From" || name == "RelatesTo";
        }
        return true;
    }
    if (space == kMicrosoft) {
        return name == "DataLocale" || name == "SessionId" || name == "ActivityId";
    }
    if (space != kWsman) {
        return false;
    }
    if (name == "MaxEnvelopeSize") {
        head.maxEnvelope = ReadSize(block.Word());
    } else if (name == "OperationTimeout") {
        const auto timeout = ReadDuration(block.Word());
        if (!timeout) {
            throw MessageError("the timeout is no duration");
        }
        head.timeout = *timeout;
    } else if (name == "Locale") {
        head.locale = block.Attribute("lang").value_or("");
    } else if (name == "OptionSet") {
        ReadOptions(block, head);
    } else {
        return name == "ResourceURI" || name == "SelectorSet";
    }
    return true;
}

} // namespace

std::string WriteRequest(const RequestHead& head, std::string_view body) {
    XmlWriter xml = Begun();
    xml.Reserve(kHeadSize + body.size());
    xml.Declare("m", kMicrosoft).Open("s:Header").Leaf("a:To", head.to);
    const auto mustUnderstand = [&xml](std::string_view name, std::string_view text) {
        xml.Open(name).Attribute("s:mustUnderstand", "true").Text(text).Close();
    };
    mustUnderstand("w:ResourceURI", head.endpoint.resource);
    xml.Open("a:ReplyTo");
    mustUnderstand("a:Address", kAnonymous);
    xml.Close();
    mustUnderstand("a:Action", head.action);
    xml.Leaf("a:MessageID", head.messageId);
    mustUnderstand("w:MaxEnvelopeSize", std::to_string(head.maxEnvelope));
    xml.Leaf("w:OperationTimeout", DurationText(head.timeout));
    if (!head.locale.empty()) {
        for (const char* name : {"w:Locale", "m:DataLocale"}) {
            xml.Open(name).Attribute("xml:lang", head.locale).Attribute("s:mustUnderstand", "false").Close();
        }
    }
    WriteOptions(xml, head);
    WriteSelectors(xml, head.endpoint);
    xml.Close().Open("s:Body").Raw(body).Close().Close();
    return xml.Take();
}

RequestHead ReadRequestHead(const Element& envelope) {
    if (!envelope.Is(kSoap, "Envelope")) {
        throw MessageError("it is no SOAP envelope of version 1.2");
    }
    RequestHead head;
    const Element header = envelope.Child("Header");
    bool hasResource = false;
    for (const Element& block : header.Children()) {
        const std::string must = block.Attribute("mustUnderstand").value_or("");
        if (!ReadBlock(block, head) && (must == "true" || must == "1")) {
            head.notUnderstood = block.Name();
        }
        head.isLocaleForced = head.isLocaleForced ||
                              (must == "true" && (block.Name() == "Locale" || block.Name() == "DataLocale"));
        hasResource = hasResource || block.Is(kWsman, "ResourceURI");
    }
    if (hasResource) {
        head.endpoint = ReadEndpoint(header);
    }
    if (head.messageId.size() > kLongestId) {
        throw MessageError("the identifier of the message is too long");
    }
    return head;
}

std::string WriteResponse(std::string_view action, std::string_view relatesTo, std::string_view body,
                          std::string_view notUnderstood) {
    XmlWriter xml = Begun();
    xml.Reserve(kHeadSize + body.size());
    xml.Open("s:Header");
    if (!action.empty()) {
        xml.Leaf("a:Action", action).Leaf("a:MessageID", NewMessageId()).Leaf("a:To", kAnonymous);
    }
    if (!relatesTo.empty()) {
        xml.Leaf("a:RelatesTo", relatesTo);
    }
    if (!notUnderstood.empty()) {
        xml.Open("s:NotUnderstood").Attribute("qname", notUnderstood).Close();
    }
    xml.Close().Open("s:Body").Raw(body).Close().Close();
    return xml.Take();
}

Element BodyOf(const Element& envelope) {
    Element body;
    for (const Element& each : envelope.Children()) {
        if (each.Is(kSoap, "Body")) {
            if (body) {
                throw MessageError("there are several bodies");
            }
            body = each;
        }
    }
    if (!body) {
        throw MessageError("there is no body");
    }
    return body;
}

std::string NewMessageId() {
    thread_local std::random_device random; // the kernel's: nobody can tell the next one
    std::array<std::uint32_t, 4> words{};
    std::generate(words.begin(), words.end(), [] { return random(); });
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "uuid:%08X-%04X-4%03X-%04X-%04X%08X", words[0], words[1] >> 16,
                  words[1] & 0xFFFU, (words[2] >> 16 & 0x3FFFU) | 0x8000U, words[2] & 0xFFFFU, words[3]);
    return text.data();
}

std::string DurationText(std::chrono::milliseconds time) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "PT%lld.%03lldS", static_cast<long long>(time.count() / 1000),
                  static_cast<long long>(time.count() % 1000));
    return text.data();
}

std::optional<std::chrono::milliseconds> ReadDuration(std::string_view text) {
    const std::optional<std::wstring> cim =
        text.starts_with('P') && text.size() != 25 ? FromXmlDateTime(text) : std::nullopt;
    if (!cim) {
        return std::nullopt;
    }
    const auto piece = [&](std::size_t place, std::size_t length) {
        const auto number = wmi::ParseDecimal(std::wstring_view(*cim).substr(place, length));
        return static_cast<long long>(number ? number->magnitude : 0);
    };
    const long long seconds = ((piece(0, 8) * 24 + piece(8, 2)) * 60 + piece(10, 2)) * 60 + piece(12, 2);
    return std::chrono::milliseconds(seconds * 1000 + piece(15, 3));
}

} // namespace quillet::wsman
