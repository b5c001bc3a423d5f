// Values in elements.
#include "soap/Values.h"

#include "soap/ByteRuns.h"
#include "soap/DateTimes.h"
#include "soap/Names.h"
#include "soap/Scalars.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <charconv>
#include <vector>

namespace quillet::wsman {

namespace {

bool IsNullArray(const Element& element) {
    return element.Attribute("IsNullArray") == "true";
}

/// A number in the sign and the width of its type: a provider may hand out -2 where others have 4294967294.
wmi::Scalar InOwnSign(const wmi::Scalar& scalar, CIMTYPE type) {
    std::uint64_t bits = 0;
    if (const auto* whole = std::get_if<std::int64_t>(&scalar)) {
        bits = static_cast<std::uint64_t>(*whole);
    } else if (const auto* natural = std::get_if<std::uint64_t>(&scalar)) {
        bits = *natural;
    } else {
        return scalar;
    }
    switch (type) {
    case CIM_UINT8:
        return std::uint64_t{static_cast<std::uint8_t>(bits)};
    case CIM_UINT16:
        return std::uint64_t{static_cast<std::uint16_t>(bits)};
    case CIM_UINT32:
        return std::uint64_t{static_cast<std::uint32_t>(bits)};
    case CIM_UINT64:
        return bits;
    default:
        return scalar;
    }
}

/// An object inside the element of its property, which says its class.
void WriteObject(XmlWriter& xml, const wmi::Instance& object, const Namespace& space, DateTimeForm form) {
    const std::string name = wmi::ToUtf8(object.definition->name);
    xml.Declare("q", ClassUri(space.name, object.definition->name));
    xml.Attribute("xsi:type", "q:" + name + "_Type");
    WriteProperties(xml, "q", object, space, form);
}

void WriteScalar(XmlWriter& xml, CIMTYPE type, const wmi::Scalar& scalar, const Namespace& space,
                 DateTimeForm form) {
    const auto* text = std::get_if<std::wstring>(&scalar);
    if (const auto* embedded = std::get_if<wmi::Embedded>(&scalar)) {
        WriteObject(xml, *embedded->object, space, form);
    } else if (text != nullptr && type == CIM_REFERENCE && wmi::ObjectPath::Parse(*text)) {
        WriteEndpoint(xml, EndpointOf(*text, space));
    } else if (text != nullptr && type == CIM_DATETIME) {
        const XmlDateTime written = form == DateTimeForm::Xml
                                        ? ToXmlDateTime(*text)
                                        : XmlDateTime{"CIM_DateTime", wmi::ToUtf8(*text)};
        xml.Leaf("cim:" + std::string(written.element), written.text);
    } else {
        xml.Text(ScalarText(InOwnSign(scalar, type)));
    }
}

[[noreturn]] void Reject(const wmi::Property& property) {
    throw MessageError("the value of " + wmi::ToUtf8(property.name) + " is not of its type");
}

/// A whole number, with the sign that a peer may put before a positive one.
template <class Number>
std::optional<Number> WholeNumber(std::string_view word) {
    Number number = 0;
    word.remove_prefix(word.starts_with('+') ? 1 : 0);
    const auto read = std::from_chars(word.data(), word.data() + word.size(), number);
    return read.ec == std::errc() && read.ptr == word.data() + word.size() ? std::optional(number)
                                                                           : std::nullopt;
}

std::optional<wmi::Scalar> Number(const std::string& word, CIMTYPE type) {
    if (const auto whole = WholeNumber<std::int64_t>(word)) {
        return wmi::Scalar(*whole);
    }
    const auto natural = WholeNumber<std::uint64_t>(word);
    return natural && type == CIM_UINT64 ? std::optional(wmi::Scalar(*natural)) : std::nullopt;
}

std::optional<wmi::Scalar> Real(const std::string& word) {
    const auto wide = wmi::FromUtf8(word);
    const auto number = wide ? wmi::ParseReal(*wide) : std::nullopt;
    return number ? std::optional(wmi::Scalar(*number)) : std::nullopt;
}

std::optional<wmi::Scalar> Truth(const std::string& word) {
    const std::optional<std::wstring> wide = wmi::FromUtf8(word);
    const bool isTrue = word == "1" || (wide && wmi::SameName(*wide, L"true"));
    const bool isFalse = word == "0" || (wide && wmi::SameName(*wide, L"false"));
    return isTrue || isFalse ? std::optional(wmi::Scalar(isTrue)) : std::nullopt;
}

/// A character by its code or, where it stands alone, itself.
std::optional<wmi::Scalar> Character(const Element& element) {
    const std::wstring text = element.Text();
    const bool isDigit = text.size() == 1 && text.front() >= L'0' && text.front() <= L'9';
    if (text.size() == 1 && !isDigit) {
        return wmi::Scalar(static_cast<std::uint64_t>(text.front()));
    }
    const auto code = WholeNumber<std::uint64_t>(element.Word());
    return code ? std::optional(wmi::Scalar(*code)) : std::nullopt;
}

std::optional<wmi::Scalar> DateTime(const Element& element) {
    const Element inside = element.First();
    const auto cim = FromXmlDateTime(inside ? inside.Word() : element.Word());
    return cim ? std::optional(wmi::Scalar(*cim)) : std::nullopt;
}

/// An object: its class is told by the element, or is the one that the schema has. The elements may be
/// nested no deeper than a document may be.
std::optional<wmi::Scalar> ReadObject(const Element& element, const wmi::Property& property,
                                      const Namespace& space) {
    constexpr std::string_view kSuffix = "_Type";
    std::string name = element.Attribute("type").value_or("");
    name.erase(0, name.find(':') + 1);
    if (name.ends_with(kSuffix)) {
        name.resize(name.size() - kSuffix.size());
    }
    const std::wstring className = name.empty() ? property.referenceClass : Wide(name);
    const wmi::ClassPtr definition =
        space.classOf && wmi::IsIdentifier(className) ? space.classOf(className) : nullptr;
    if (definition == nullptr) {
        throw MessageError(wmi::ToUtf8(property.name) + " is an object of a class that is not known");
    }
    return wmi::Scalar(wmi::Embedded{
        std::make_shared<const wmi::Instance>(ReadProperties(definition, element, space, Unknown::Ignored))});
}

std::optional<wmi::Scalar> ReadScalar(const Element& element, const wmi::Property& property,
                                      const Namespace& space) {
    const CIMTYPE type = wmi::ElementType(property.type);
    switch (type) {
    case CIM_OBJECT:
        return ReadObject(element, property, space);
    case CIM_STRING:
        return wmi::Scalar(element.Text());
    case CIM_BOOLEAN:
        return Truth(element.Word());
    case CIM_REAL32:
    case CIM_REAL64:
        return Real(element.Word());
    case CIM_CHAR16:
        return Character(element);
    case CIM_DATETIME:
        return DateTime(element);
    case CIM_REFERENCE:
        // What a class declares as a reference may have come as the text of a path.
        return wmi::Scalar(element.HasChildren() ? PathOf(ReadEndpoint(element), space).Text()
                                                 : element.Text());
    default:
        return wmi::IsIntegerType(type) ? Number(element.Word(), type) : std::nullopt;
    }
}

/// An array of bytes without nulls; nothing where an element is none.
std::optional<wmi::Value> ReadBytes(std::span<const Element> elements) {
    wmi::Value::Bytes bytes;
    bytes.reserve(elements.size());
    for (const Element& element : elements) {
        if (const std::optional<std::string> run = element.Attribute(kRunAttribute)) {
            if (!DecodeRun(*run, bytes)) {
                return std::nullopt;
            }
            continue;
        }
        const auto number = element.IsNil() ? std::nullopt : WholeNumber<std::uint8_t>(element.Word());
        if (!number) {
            return std::nullopt;
        }
        bytes.push_back(*number);
    }
    return wmi::Value(std::move(bytes));
}

wmi::Value ReadArray(std::span<const Element> elements, const wmi::Property& property,
                     const Namespace& space) {
    const CIMTYPE type = wmi::ElementType(property.type);
    if (type == CIM_UINT8) {
        if (std::optional<wmi::Value> bytes = ReadBytes(elements)) {
            return std::move(*bytes);
        }
    }
    wmi::Value::Array array;
    array.reserve(elements.size());
    for (const Element& element : elements) {
        std::optional<wmi::Scalar> scalar;
        if (!element.IsNil() && !(scalar = ReadScalar(element, property, space))) {
            Reject(property);
        }
        array.push_back(std::move(scalar));
    }
    return wmi::Value(std::move(array));
}

/// Whether an element has the name of a property to the letter; says no for what is not ASCII.
bool IsOf(std::string_view element, const wmi::Property& property) {
    std::uint32_t differences = element.size() == property.name.size() ? 0 : 1;
    for (std::size_t i = 0; differences == 0 && i < element.size(); ++i) {
        const auto character = static_cast<unsigned char>(element[i]);
        differences = (character & 0x80U) | (static_cast<std::uint32_t>(property.name[i]) ^ character);
    }
    return differences == 0;
}

/// The child elements of a holder, by property.
class Given {
  public:
    Given(const wmi::ClassDefinition& definition, const Element& holder, Unknown unknown) {
        m_elements.reserve(definition.properties.size());
        m_runs.reserve(definition.properties.size());
        std::string_view last;
        std::optional<std::size_t> index;
        for (Element element = holder.First(); element; element = element.Next()) {
            // The elements of an array follow each other; there may be millions. Those of other properties
            // mostly come in the order of the class.
            const std::string_view name = element.Name();
            if (name != last || !index) {
                const std::size_t next = index ? *index + 1 : 0;
                index = next < definition.properties.size() && IsOf(name, definition.properties[next])
                            ? std::optional(next)
                            : definition.PropertyIndex(Wide(name));
                last = name;
                if (index) {
                    m_runs.push_back({*index, m_elements.size(), 0});
                }
            }
            if (index) {
                m_elements.push_back(element);
                ++m_runs.back().count;
            } else if (unknown == Unknown::Refused) {
                throw MessageError("there is no property of the name " + std::string(name));
            }
        }
        const auto isBefore = [](const Run& left, const Run& right) {
            return left.property < right.property;
        };
        if (!std::is_sorted(m_runs.begin(), m_runs.end(), isBefore)) {
            std::stable_sort(m_runs.begin(), m_runs.end(), isBefore);
        }
    }

    /// Those of a property, until the next call. Properties are asked for in their order.
    std::span<const Element> Of(std::size_t property) {
        std::span<const Element> found;
        for (; m_next < m_runs.size() && m_runs[m_next].property == property; ++m_next) {
            const auto more =
                std::span<const Element>(m_elements).subspan(m_runs[m_next].begin, m_runs[m_next].count);
            if (found.empty()) {
                found = more;
                continue;
            }
            std::vector<Element> joined(found.begin(), found.end()); // they do not follow each other
            joined.insert(joined.end(), more.begin(), more.end());
            m_joined = std::move(joined);
            found = m_joined;
        }
        return found;
    }

  private:
    /// Elements of a property that follow each other.
    struct Run {
        std::size_t property;
        std::size_t begin;
        std::size_t count;
    };
    std::vector<Element> m_elements;
    std::vector<Run> m_runs; ///< in the order of the properties
    std::size_t m_next = 0;  ///< the run that was not asked for yet
    std::vector<Element> m_joined;
};

} // namespace

void WriteValue(XmlWriter& xml, std::string_view prefix, const wmi::Property& property,
                const wmi::Value& value, const Namespace& space, DateTimeForm form, NullArrays arrays) {
    const std::string name = (prefix.empty() ? "" : std::string(prefix) + ':') + wmi::ToUtf8(property.name);
    const CIMTYPE type = wmi::ElementType(property.type);
    const auto write = [&](const std::optional<wmi::Scalar>& scalar) {
        xml.Open(name);
        if (scalar) {
            WriteScalar(xml, type, *scalar, space, form);
        } else {
            xml.Attribute("xsi:nil", "true");
        }
        xml.Close();
    };
    if (const wmi::Scalar* scalar = value.AsScalar()) {
        write(*scalar);
    } else if (const wmi::Value::Bytes* bytes = value.AsBytes()) {
        for (const std::uint8_t byte : *bytes) {
            xml.Leaf(name, std::to_string(byte));
        }
    } else if (const wmi::Value::Array* array = value.AsArray()) {
        for (const std::optional<wmi::Scalar>& element : *array) {
            write(element);
        }
    } else if (arrays == NullArrays::Marked && wmi::IsArray(property.type)) {
        // Whoever does not know the mark sees what is nil.
        xml.Open(name).Declare("m", kMicrosoft).Attribute("m:IsNullArray", "true");
        xml.Attribute("xsi:nil", "true").Close();
    } else {
        write(std::nullopt);
    }
}

bool MarksNullArrays(const Element& holder) {
    for (Element element = holder.First(); element; element = element.Next()) {
        if (IsNullArray(element)) {
            return true;
        }
    }
    return false;
}

wmi::Value ReadValue(std::span<const Element> elements, const wmi::Property& property,
                     const Namespace& space) {
    const bool isNull = elements.empty() || (elements.size() == 1 && elements.front().HasAttributes() &&
                                             (elements.front().IsNil() || IsNullArray(elements.front())));
    if (isNull) {
        return {};
    }
    const bool isText = wmi::ElementType(property.type) == CIM_STRING; // which fits as it is
    wmi::Value value;
    if (wmi::IsArray(property.type)) {
        value = ReadArray(elements, property, space);
        if (isText) {
            return value;
        }
    } else if (isText && elements.size() == 1) {
        return wmi::Value(wmi::Scalar(elements.front().Text()));
    } else if (elements.size() == 1) {
        std::optional<wmi::Scalar> scalar = ReadScalar(elements.front(), property, space);
        if (!scalar) {
            Reject(property);
        }
        value = wmi::Value(std::move(*scalar));
    } else {
        throw MessageError(wmi::ToUtf8(property.name) + " is there several times");
    }
    if (!wmi::Fits(value, property.type)) {
        Reject(property);
    }
    return wmi::Normalised(std::move(value), property.type);
}

void WriteProperties(XmlWriter& xml, std::string_view prefix, const wmi::Instance& instance,
                     const Namespace& space, DateTimeForm form, NullArrays arrays) {
    const auto& properties = instance.definition->properties;
    for (std::size_t i = 0; i < properties.size(); ++i) {
        WriteValue(xml, prefix, properties[i], instance.values[i], space, form, arrays);
    }
}

wmi::Instance ReadProperties(const wmi::ClassPtr& definition, Element holder, const Namespace& space,
                             Unknown unknown, NullArrays arrays) {
    const auto& properties = definition->properties;
    Given given(*definition, holder, unknown);
    wmi::Instance instance;
    instance.definition = definition;
    instance.values.resize(properties.size());
    for (std::size_t i = 0; i < properties.size(); ++i) {
        const std::span<const Element> elements = given.Of(i);
        if (!elements.empty()) {
            instance.values[i] = ReadValue(elements, properties[i], space);
        } else if (arrays == NullArrays::Marked && wmi::IsArray(properties[i].type)) {
            instance.values[i] = wmi::Value(wmi::Value::Array());
        }
    }
    return instance;
}

} // namespace quillet::wsman
