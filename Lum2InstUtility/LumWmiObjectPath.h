// CLumWmiAutoParsedObjectPath: the parts of a WMI object path.
#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

/// The parsed form of `\\server\namespace:Class.Key="value",Other='value'` and its shorter forms: without the
/// server, without the namespace, `Class` alone, `Class="value"` for a class of one key, and `Class=@` for a
/// singleton.
///
/// Key values stand in either quote character, or are numbers, TRUE or FALSE. Inside quotes a backslash takes
/// the special meaning from a quote character or a backslash behind it, and is an ordinary character before
/// any other, as hand-written paths have it. No blanks are allowed outside quotes. Names are compared without
/// regard to case.
class CLumWmiAutoParsedObjectPath {
  public:
    CLumWmiAutoParsedObjectPath() = default;
    // Texts that were handed out live here; a copy would not hold them.
    CLumWmiAutoParsedObjectPath(const CLumWmiAutoParsedObjectPath&) = delete;
    CLumWmiAutoParsedObjectPath& operator=(const CLumWmiAutoParsedObjectPath&) = delete;
    ~CLumWmiAutoParsedObjectPath() = default;

    /// Takes a path apart. Whatever this object held, and every text it has handed out, goes first.
    /// @return 0; WBEM_E_INVALID_PARAMETER for null, WBEM_E_INVALID_OBJECT_PATH for a text that is no object
    /// path.
    ///         After a failure the object is empty.
    int Parse(const wchar_t* path);

    bool IsParsed() const noexcept { return !m_className.empty(); }
    /// Without the backslashes; empty for a path that names none.
    const std::wstring& Server() const noexcept { return m_server; }
    /// "ROOT\MarloLUM2"; empty for a path that names none.
    const std::wstring& Namespace() const noexcept { return m_namespace; }
    const std::wstring& ClassName() const noexcept { return m_className; }
    bool IsSingleton() const noexcept { return m_singleton; }
    std::size_t KeyCount() const noexcept { return m_keys.size(); }

    /// Whether the path names an instance, or the class itself, of this class.
    bool IsOfClass(std::wstring_view className) const noexcept;

    /// The value of a key without its quotes and escapes, wherever the key stands; null if there is no such
    /// key. A single key that is not named in the path has any name.
    const std::wstring* FindKey(std::wstring_view name) const noexcept;

    /// A copy of a text that lives until the next Parse or this object's end, for interfaces that hand out
    /// plain pointers. Equal texts are kept once.
    wchar_t* Keep(const std::wstring& text);

  private:
    struct Key {
        std::wstring name; ///< empty in the form Class="value"
        std::wstring value;
    };
    class Parser;

    void Clear() noexcept;

    std::wstring m_server;
    std::wstring m_namespace;
    std::wstring m_className;
    std::vector<Key> m_keys;
    bool m_singleton = false;
    std::list<std::wstring> m_kept;
};
