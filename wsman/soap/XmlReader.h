// Reading XML that a peer sent. Nothing in it is trusted, and nothing in it names anything outside it.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::wsman {

/// What was sent is no XML, or none that is taken.
class XmlError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// An element. It lives as long as its document. Elements are found by their local names: prefixes are free,
/// and peers differ in the namespaces that they write for the same thing.
class Element {
  public:
    Element() = default;
    explicit Element(pugi::xml_node node) : m_node(node) {}

    /// Whether there is one at all. All questions may be asked of one that is not there.
    explicit operator bool() const noexcept { return !m_node.empty(); }

    /// The name without its prefix.
    std::string_view Name() const;
    /// The namespace of the name; empty for none, and for a prefix that nobody declared.
    std::string_view Space() const { return SpaceOf(m_node.name()); }
    bool Is(std::string_view space, std::string_view name) const {
        return Name() == name && Space() == space;
    }

    /// The text of the element itself, whatever pieces it is in. Throws XmlError for one that is no text.
    std::wstring Text() const;
    /// The same without the blanks around it, for what is a number or an address.
    std::string Word() const;
    /// An attribute by its local name; nothing where there is none.
    std::optional<std::string> Attribute(std::string_view name) const;
    bool HasAttributes() const { return static_cast<bool>(m_node.first_attribute()); }
    /// Whether "xsi:nil" says that there is no value.
    bool IsNil() const;

    /// The first child of a name.
    Element Child(std::string_view name) const;
    /// All child elements.
    std::vector<Element> Children() const;
    bool HasChildren() const { return static_cast<bool>(First()); }
    Element First() const;
    Element Next() const;

  private:
    /// The text as it is in the document, or in `joined` where it is in several pieces.
    std::string_view Pieces(std::string& joined) const;
    /// The namespace that the prefix of a name means here.
    std::string_view SpaceOf(std::string_view qualified) const;

    pugi::xml_node m_node;
};

/// A document, read as a whole.
class XmlDocument {
  public:
    /// Throws XmlError: for what is no XML; document types and processing instructions, which no peer has a
    /// use for; nesting and numbers of elements beyond what any answer has.
    /// @param bytes UTF-8, or UTF-16 with a byte order mark or without
    explicit XmlDocument(std::string bytes);
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    Element Root() const { return Element(m_document.document_element()); }

  private:
    std::string m_bytes; ///< which the document is made of
    pugi::xml_document m_document;
};

} // namespace quillet::wsman
