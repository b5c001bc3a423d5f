// WMI object paths: \\server\namespace:Class.Key="value",Other=5 and their shorter forms.
#pragma once

#include <quillet-wmi/Model.h>

namespace quillet::wmi {

/// A parsed object path. A path without keys names a class; "Class=@" names a singleton.
struct ObjectPath {
    /// A key with its value.
    struct Key {
        std::wstring name; ///< empty in the form Class="value"
        Scalar value;      ///< bool, integer or text (references are text)
        /// Compares to the letter.
        friend bool operator==(const Key&, const Key&) = default;
    };

    std::wstring server;        ///< without backslashes; empty for a relative path
    std::wstring namespacePath; ///< "ROOT\MarloLUM2"; empty for a relative path
    std::wstring className;     ///< as it was written
    std::vector<Key> keys;      ///< in the order written
    bool singleton = false;     ///< whether it names the only instance of a class

    /// Whether it names a class.
    bool IsClass() const noexcept { return keys.empty() && !singleton; }

    /// More keys than this are no path.
    static constexpr std::size_t kMaximumKeys = 256;

    /// Parses a path; nothing (and, if asked, the reason with its position) when it is none.
    /// Key values may stand in either quote character; a backslash escapes inside quotes.
    static std::optional<ObjectPath> Parse(std::wstring_view text, std::wstring* error = nullptr);

    /// Class.Key="value",… with keys as they are ordered here.
    std::wstring Relative() const;
    /// Relative() behind a server and a namespace.
    std::wstring Full(std::wstring_view serverName, std::wstring_view namespaceName) const;
    /// The path with as much before the class as it has itself.
    std::wstring Text() const;

    /// Compares to the letter.
    friend bool operator==(const ObjectPath&, const ObjectPath&) = default;
};

/// A path that has no server and no namespace yet, behind these two.
std::wstring FullPath(std::wstring_view serverName, std::wstring_view namespaceName,
                      std::wstring_view relative);
/// Class.Key="value",… of an instance, without a server and a namespace; its keys in the order of its class.
std::wstring RelativePath(const Instance& instance);
/// RelativePath of an instance that can be found by it; nothing for one whose keys are not all there, and for
/// the parameters of a method.
std::optional<std::wstring> AddressOf(const Instance& instance);

} // namespace quillet::wmi
