// The provider's object paths as text: what a path names, told without asking anyone.
#pragma once

#include "texts/Text.h"

#include <quillet/client/Id.h>

#include <string>
#include <string_view>

namespace quilletctl {

/// The class and the first key's value in an object path (UTF-8); both empty when the text is none.
struct ObjectName {
    std::string className;
    std::string key; ///< of the classes with one key: the object identifier
};

/// The path of an object as text.
template <class Kind>
std::string PathOf(const quillet::Id<Kind>& id) {
    return ToUtf8(id.Path());
}

ObjectName NameInPath(std::string_view path);
/// The object identifier in the path of an object.
template <class Kind>
std::string ObjectIdIn(const quillet::Id<Kind>& id) {
    return NameInPath(PathOf(id)).key;
}
/// Whether the text has the form of an object path, so that it can be no name.
bool IsObjectPath(std::string_view text);
/// Whether two paths are of one object, in whatever form each is.
bool NameTheSameObject(std::string_view left, std::string_view right);
template <class Kind>
bool NameTheSameObject(const quillet::Id<Kind>& left, const quillet::Id<Kind>& right) {
    return NameTheSameObject(PathOf(left), PathOf(right));
}
/// The relative path of an object with one key.
std::string PathOf(std::string_view className, std::string_view keyName, std::string_view key);

} // namespace quilletctl
