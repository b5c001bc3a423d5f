// Points in time and intervals: 25 characters in CIM, other forms in XML.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillet::wsman {

/// A datetime as XML has it.
struct XmlDateTime {
    std::string_view element; ///< the element of the CIM common namespace that holds it: "Datetime"
    std::string text;
};

/// A CIM datetime (yyyymmddHHMMSS.mmmmmm+utc or ddddddddHHMMSS.mmmmmm:000) as Windows writes it: an
/// xs:dateTime or an xs:duration; as it is where digits are left open, for which XML has no form.
XmlDateTime ToXmlDateTime(std::wstring_view cim);
/// The CIM datetime that a text means in any of the forms; nothing where it is none.
std::optional<std::wstring> FromXmlDateTime(std::string_view text);

} // namespace quillet::wsman
