// Writing XML. Whatever a text holds, it stays a text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::wsman {

/// Writes one element after the other. Names are the caller's own and right; texts are anybody's (UTF-8):
/// what XML cannot hold becomes a question mark, as on Windows.
class XmlWriter {
  public:
    /// Begins an element: "p:Name".
    XmlWriter& Open(std::string_view name);
    /// Of the element that was just begun.
    XmlWriter& Attribute(std::string_view name, std::string_view value);
    /// Declares a prefix on the element that was just begun.
    XmlWriter& Declare(std::string_view prefix, std::string_view space);
    XmlWriter& Text(std::string_view text);
    /// Puts XML that is right already.
    XmlWriter& Raw(std::string_view xml);
    /// Ends the element that was begun last.
    XmlWriter& Close();
    /// An element with a text.
    XmlWriter& Leaf(std::string_view name, std::string_view text);

    /// Makes room for so many bytes in all.
    void Reserve(std::size_t size) { m_xml.reserve(size); }
    const std::string& Written() const noexcept { return m_xml; }
    /// Takes back all but the first so many bytes: elements that were begun and ended behind them.
    void CutTo(std::size_t size) { m_xml.resize(size); }
    std::string Take() { return std::move(m_xml); }

  private:
    void EndTag();

    std::string m_xml;
    /// Where the name of an element stands in what is written.
    struct Name {
        std::size_t begin;
        std::size_t size;
    };
    std::vector<Name> m_open; ///< elements that have begun and not ended
    bool m_inTag = false;
};

} // namespace quillet::wsman
