// Taking an object path apart, and making one.
#include "names/ObjectPath.h"

#include "texts/Text.h"

namespace quilletctl {

ObjectName NameInPath(std::string_view path) {
    constexpr auto kNone = std::string_view::npos;
    // The server's name may have dots and the namespace colons, so the class is found from its first key.
    const auto equals = path.find('=');
    const auto dot = equals == kNone ? kNone : path.rfind('.', equals);
    if (dot == kNone || dot == 0 || equals + 1 >= path.size()) {
        return {};
    }
    const auto before = path.find_last_of(":\\/", dot);
    const auto start = before == kNone ? 0 : before + 1;
    const char quote = path[equals + 1];
    if (start == dot || (quote != '"' && quote != '\'')) {
        return {};
    }
    ObjectName name{std::string(path.substr(start, dot - start)), {}};
    for (auto position = equals + 2; position < path.size(); ++position) {
        if (path[position] == quote) {
            return name;
        }
        if (path[position] == '\\' && position + 1 < path.size()) {
            ++position;
        }
        name.key += path[position];
    }
    return {}; // the value never ends
}

bool IsObjectPath(std::string_view text) {
    return !NameInPath(text).className.empty();
}

bool NameTheSameObject(std::string_view left, std::string_view right) {
    const ObjectName first = NameInPath(left);
    const ObjectName second = NameInPath(right);
    return !first.className.empty() && SameIgnoringCase(first.className, second.className) &&
           SameIgnoringCase(first.key, second.key);
}

std::string PathOf(std::string_view className, std::string_view keyName, std::string_view key) {
    std::string path = std::string(className) + '.' + std::string(keyName) + "=\"";
    for (const char character : key) {
        if (character == '"' || character == '\\') {
            path += '\\';
        }
        path += character;
    }
    return path + '"';
}

} // namespace quilletctl
