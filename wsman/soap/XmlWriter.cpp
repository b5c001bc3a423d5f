// Writing XML.
#include "soap/XmlWriter.h"

#include <algorithm>
#include <array>

namespace quillet::wsman {

namespace {

/// Whether the three bytes at a place are U+FFFE or U+FFFF, which XML does not know.
bool IsNoCharacter(std::string_view text, std::size_t place) {
    return text.substr(place, 3) == "\xEF\xBF\xBE" || text.substr(place, 3) == "\xEF\xBF\xBF";
}

/// Whether a character may have to be written as something else.
constexpr auto kSpecial = [] {
    std::array<bool, 256> special{};
    for (std::size_t character = 0; character < 0x20; ++character) {
        special[character] = true;
    }
    for (const unsigned character : {0x26U, 0x3CU, 0x3EU, 0x22U}) { // & < > "
        special[character] = true;
    }
    special[0xEF] = true; // of what is no character
    return special;
}();
constexpr bool IsSpecial(char character) noexcept {
    return kSpecial[static_cast<unsigned char>(character)];
}

/// @param inAttribute where white space would be read as blanks
void AppendEscaped(std::string& xml, std::string_view text, bool inAttribute) {
    const std::size_t plain =
        static_cast<std::size_t>(std::find_if(text.begin(), text.end(), IsSpecial) - text.begin());
    xml += text.substr(0, plain); // nearly always all of it
    for (std::size_t i = plain; i < text.size(); ++i) {
        const char character = text[i];
        switch (character) {
        case '&':
            xml += "&amp;";
            break;
        case '<':
            xml += "&lt;";
            break;
        case '>':
            xml += "&gt;";
            break;
        case '"':
            xml += inAttribute ? "&quot;" : "\"";
            break;
        case '\r':
            xml += "&#13;"; // bare, it would be read as a line feed
            break;
        case '\t':
            xml += inAttribute ? "&#9;" : "\t";
            break;
        case '\n':
            xml += inAttribute ? "&#10;" : "\n";
            break;
        default:
            if (static_cast<unsigned char>(character) < 0x20) {
                xml += '?';
            } else if (IsNoCharacter(text, i)) {
                xml += '?';
                i += 2;
            } else {
                xml += character;
            }
        }
    }
}

} // namespace

void XmlWriter::EndTag() {
    if (m_inTag) {
        m_xml += '>';
        m_inTag = false;
    }
}

XmlWriter& XmlWriter::Open(std::string_view name) {
    EndTag();
    m_xml += '<';
    m_open.push_back({m_xml.size(), name.size()});
    m_xml += name;
    m_inTag = true;
    return *this;
}

XmlWriter& XmlWriter::Attribute(std::string_view name, std::string_view value) {
    m_xml += ' ';
    m_xml += name;
    m_xml += "=\"";
    AppendEscaped(m_xml, value, true);
    m_xml += '"';
    return *this;
}

XmlWriter& XmlWriter::Declare(std::string_view prefix, std::string_view space) {
    return Attribute("xmlns:" + std::string(prefix), space);
}

XmlWriter& XmlWriter::Text(std::string_view text) {
    EndTag();
    AppendEscaped(m_xml, text, false);
    return *this;
}

XmlWriter& XmlWriter::Raw(std::string_view xml) {
    EndTag();
    m_xml += xml;
    return *this;
}

XmlWriter& XmlWriter::Close() {
    if (m_inTag) {
        m_xml += "/>";
        m_inTag = false;
    } else {
        m_xml += "</";
        m_xml.append(m_xml, m_open.back().begin, m_open.back().size);
        m_xml += '>';
    }
    m_open.pop_back();
    return *this;
}

XmlWriter& XmlWriter::Leaf(std::string_view name, std::string_view text) {
    return Open(name).Text(text).Close();
}

} // namespace quillet::wsman
