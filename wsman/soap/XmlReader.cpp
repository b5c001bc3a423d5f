// Reading XML that a peer sent.
#include "soap/XmlReader.h"

#include "soap/Names.h"

#include <quillet-wmi/Text.h>

#include <charconv>
#include <cstdint>
#include <cstring>

namespace quillet::wsman {

namespace {

constexpr std::size_t kDeepest = 64;
constexpr std::size_t kMostNodes = 2'000'000;
constexpr std::size_t kMostAttributes = 64;

std::string_view LocalPart(std::string_view qualified) {
    const std::size_t colon = qualified.find(':');
    return colon == std::string_view::npos ? qualified : qualified.substr(colon + 1);
}

/// Text that came as UTF-16 as UTF-8; what came as UTF-8 without its byte order mark. Throws XmlError.
std::string AsUtf8(std::string bytes) {
    const auto startsWith = [&bytes](std::string_view mark) {
        return std::string_view(bytes).starts_with(mark);
    };
    if (startsWith("\xEF\xBB\xBF")) {
        return bytes.substr(3);
    }
    const bool isBig = startsWith("\xFE\xFF") || startsWith(std::string_view("\0<", 2));
    const bool isLittle = startsWith("\xFF\xFE") || startsWith(std::string_view("<\0", 2));
    if (!isBig && !isLittle) {
        return bytes;
    }
    std::wstring text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        const auto unit = static_cast<char16_t>(isBig ? first << 8 | second : second << 8 | first);
        if (unit != 0xFEFF) {
            text += static_cast<wchar_t>(unit);
        }
    }
    wmi::JoinSurrogates(text);
    return wmi::ToUtf8(text);
}

/// Whether there are only characters from the blank to the last one of ASCII: nothing to look at more
/// closely.
bool IsPlain(std::string_view text) noexcept {
    unsigned others = 0;
    for (const char character : text) { // without a branch: many at a time
        others |= static_cast<unsigned char>(character) - 0x20U > 0x5FU ? 1U : 0U;
    }
    return others == 0;
}

bool IsCharacter(std::uint32_t code) noexcept {
    return code == 0x9 || code == 0xA || code == 0xD || (code >= 0x20 && code < 0xD800) ||
           (code >= 0xE000 && code < 0xFFFE) || (code >= 0x10000 && code < 0x110000);
}

/// The parser takes every number for a character, and one of 0 for the end of a text.
void CheckReferences(std::string_view text) {
    for (std::size_t place = text.find("&#"); place != std::string_view::npos;
         place = text.find("&#", place)) {
        place += 2;
        const bool isHex = place < text.size() && (text[place] == 'x' || text[place] == 'X');
        place += isHex ? 1 : 0;
        std::uint32_t code = 0;
        const char* end = text.data() + text.size();
        const auto read = std::from_chars(text.data() + place, end, code, isHex ? 16 : 10);
        if (read.ec != std::errc() || read.ptr == end || *read.ptr != ';' || !IsCharacter(code)) {
            throw XmlError("a character reference is none");
        }
    }
}

/// Throws XmlError for bytes that stand for no character.
void CheckCharacters(std::string_view text) {
    constexpr std::size_t kPiece = 256;
    for (std::size_t place = 0; place < text.size();) {
        const std::string_view piece = text.substr(place, kPiece);
        if (IsPlain(piece)) {
            place += piece.size();
            continue;
        }
        const std::size_t end = place + piece.size();
        while (place < end) { // the last character may end behind it
            const std::optional<char32_t> character = wmi::DecodeUtf8(text, place);
            if (!character) {
                throw XmlError("the text is no UTF-8");
            }
            if (*character < 0x20 && *character != '\t' && *character != '\n' && *character != '\r') {
                throw XmlError("there is a control character");
            }
        }
    }
    // U+FFFE and U+FFFF
    if (text.find("\xEF\xBF\xBE") != std::string_view::npos ||
        text.find("\xEF\xBF\xBF") != std::string_view::npos) {
        throw XmlError("there is what is no character");
    }
}

void CheckAttributes(pugi::xml_node node) {
    const pugi::xml_attribute first = node.first_attribute();
    if (!first || !first.next_attribute()) { // as nearly all elements
        return;
    }
    std::size_t count = 0;
    for (const pugi::xml_attribute attribute : node.attributes()) {
        if (++count > kMostAttributes) {
            throw XmlError("an element has too many attributes");
        }
        if (node.attribute(attribute.name()) != attribute) {
            throw XmlError("an element has an attribute twice");
        }
    }
}

/// Goes through all nodes without a call for each level.
class TreeCheck final : public pugi::xml_tree_walker {
  public:
    bool for_each(pugi::xml_node& node) override {
        if (++m_nodes > kMostNodes) {
            throw XmlError("there are too many elements");
        }
        if (static_cast<std::size_t>(depth()) >= kDeepest) {
            throw XmlError("the elements are nested too deeply");
        }
        switch (node.type()) {
        case pugi::node_doctype:
        case pugi::node_pi:
            throw XmlError("document types and processing instructions are not taken");
        case pugi::node_element:
            m_roots += depth() == 0 ? 1U : 0U;
            CheckAttributes(node);
            break;
        case pugi::node_pcdata:
        case pugi::node_cdata:
            if (depth() == 0 &&
                std::string_view(node.value()).find_first_not_of(" \t\r\n") != std::string_view::npos) {
                throw XmlError("there is text outside the root element");
            }
            break;
        default:
            break;
        }
        return true;
    }
    std::size_t Roots() const noexcept { return m_roots; }

  private:
    std::size_t m_nodes = 0;
    std::size_t m_roots = 0;
};

} // namespace

XmlDocument::XmlDocument(std::string bytes) : m_bytes(AsUtf8(std::move(bytes))) {
    CheckCharacters(m_bytes);
    CheckReferences(m_bytes);
    // With the text of an element inside it there are half as many nodes.
    constexpr unsigned kOptions = pugi::parse_default | pugi::parse_ws_pcdata_single |
                                  pugi::parse_embed_pcdata | pugi::parse_doctype | pugi::parse_pi |
                                  pugi::parse_fragment;
    const pugi::xml_parse_result parsed =
        m_document.load_buffer_inplace(m_bytes.data(), m_bytes.size(), kOptions, pugi::encoding_utf8);
    if (!parsed) {
        throw XmlError(std::string("it is no XML: ") + parsed.description());
    }
    TreeCheck check;
    m_document.traverse(check);
    if (check.Roots() != 1) {
        throw XmlError("there is not one root element");
    }
}

std::string_view Element::Name() const {
    return LocalPart(m_node.name());
}

std::string_view Element::SpaceOf(std::string_view qualified) const {
    const std::size_t colon = qualified.find(':');
    const std::string declared =
        colon == std::string_view::npos ? "xmlns" : "xmlns:" + std::string(qualified.substr(0, colon));
    for (pugi::xml_node node = m_node; node; node = node.parent()) {
        if (const pugi::xml_attribute found = node.attribute(declared.c_str())) {
            return found.value();
        }
    }
    return {};
}

std::string_view Element::Pieces(std::string& joined) const {
    const std::string_view first = m_node.value(); // the parser keeps text that comes first in the element
    std::size_t more = 0;
    for (pugi::xml_node piece = m_node.first_child(); piece; piece = piece.next_sibling()) {
        const pugi::xml_node_type type = piece.type();
        if (type == pugi::node_pcdata || type == pugi::node_cdata) {
            joined = ++more == 1 ? std::string(first) : std::move(joined);
            joined += piece.value();
        }
    }
    return more > 0 ? std::string_view(joined) : first;
}

std::wstring Element::Text() const {
    std::string joined;
    std::optional<std::wstring> wide = wmi::FromUtf8(Pieces(joined));
    if (!wide) {
        throw XmlError("a text is no UTF-8");
    }
    return std::move(*wide);
}

std::string Element::Word() const {
    std::string joined;
    const std::string_view text = Pieces(joined);
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    return begin == std::string_view::npos
               ? std::string()
               : std::string(text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin));
}

std::optional<std::string> Element::Attribute(std::string_view name) const {
    for (pugi::xml_attribute each = m_node.first_attribute(); each; each = each.next_attribute()) {
        if (LocalPart(each.name()) == name) {
            return std::string(each.value());
        }
    }
    return std::nullopt;
}

bool Element::IsNil() const {
    const std::optional<std::string> nil = Attribute("nil");
    return nil && (*nil == "true" || *nil == "1");
}

Element Element::First() const {
    pugi::xml_node child = m_node.first_child();
    while (child && child.type() != pugi::node_element) {
        child = child.next_sibling();
    }
    return Element(child);
}

Element Element::Next() const {
    pugi::xml_node next = m_node.next_sibling();
    while (next && next.type() != pugi::node_element) {
        next = next.next_sibling();
    }
    return Element(next);
}

Element Element::Child(std::string_view name) const {
    Element child = First();
    while (child && child.Name() != name) {
        child = child.Next();
    }
    return child;
}

std::vector<Element> Element::Children() const {
    std::vector<Element> children;
    for (Element child = First(); child; child = child.Next()) {
        children.push_back(child);
    }
    return children;
}

} // namespace quillet::wsman
