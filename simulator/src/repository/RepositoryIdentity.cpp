// What makes two paths name one object: canonical paths.
#include "repository/RepositoryState.h"

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::simulator {

namespace {

/// A reference among the keys names an object that may itself have references among its keys. Nobody goes
/// deeper than this; a hostile path may try.
constexpr unsigned kMaximumReferenceDepth = 4;

/// A value as one of the type; nothing when it can be none.
std::optional<Scalar> OfType(const Scalar& scalar, CIMTYPE type) {
    if (!Fits(scalar, type)) {
        return std::nullopt;
    }
    return std::holds_alternative<std::wstring>(scalar) ? scalar
                                                        : *Normalised(Value(scalar), type).AsScalar();
}

/// The value of a key in a path as a value of the key's type; nothing when it can be none.
std::optional<Scalar> KeyValue(const Scalar& written, CIMTYPE type) {
    const auto* text = std::get_if<std::wstring>(&written);
    if (IsIntegerType(type) && text != nullptr) {
        // 64-bit numbers travel as text, and some clients quote what they got.
        const std::optional<TextNumber> number = ParseDecimal(*text);
        if (!number) {
            return std::nullopt;
        }
        return number->negative ? OfType(static_cast<std::int64_t>(0 - number->magnitude), type)
                                : OfType(number->magnitude, type);
    }
    if (type == CIM_CHAR16 && text != nullptr && text->size() == 1) {
        return Scalar(std::uint64_t{static_cast<std::uint16_t>(text->front())});
    }
    return OfType(written, type);
}

/// How the canonical paths of a class begin, with room for the keys that most have.
std::wstring Beginning(const ClassEntry& entry) {
    constexpr std::size_t kOfKeys = 48;
    std::wstring canonical;
    canonical.reserve(1 + entry.family.size() + kOfKeys);
    canonical += L'=';
    canonical += entry.family;
    return canonical;
}

/// A path as far as it can be brought to one form without knowing its class.
std::wstring OpaqueIdentity(ObjectPath path) {
    std::sort(path.keys.begin(), path.keys.end(), [](const ObjectPath::Key& left, const auto& right) {
        return CompareNames(left.name, right.name) < 0;
    });
    path.server.clear();
    return L'?' + Folded(path.Text());
}

} // namespace

void Repository::State::AppendKey(std::wstring& canonical, CIMTYPE type, const Scalar& value,
                                  std::set<std::wstring>* unknown, unsigned depth) const {
    // Lengths in front of texts keep one key's text from posing as the next key.
    const auto append = [&canonical](const std::wstring& text) {
        AppendNumber(canonical, std::uint64_t{text.size()});
        canonical += L':';
        canonical += text;
    };
    canonical += L';';
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        append(type == CIM_REFERENCE ? Identity(*text, unknown, depth + 1) : Folded(*text));
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        canonical += *flag ? L'1' : L'0';
    } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
        AppendNumber(canonical, *number);
    } else if (const auto* magnitude = std::get_if<std::uint64_t>(&value)) {
        AppendNumber(canonical, *magnitude);
    }
}

std::optional<std::wstring> Repository::State::CanonicalPath(const ObjectPath& path, const ClassEntry& entry,
                                                             std::set<std::wstring>* unknown,
                                                             unsigned depth) const {
    if (entry.singleton) {
        return path.singleton ? std::optional(L'@' + entry.family) : std::nullopt;
    }
    if (path.keys.empty() || path.keys.size() != entry.keys.size()) {
        return std::nullopt;
    }
    std::wstring canonical = Beginning(entry);
    for (const std::size_t index : entry.keys) {
        const Property& property = entry.definition->properties[index];
        const auto key =
            std::find_if(path.keys.begin(), path.keys.end(), [&](const ObjectPath::Key& candidate) {
                return candidate.name.empty() || SameName(candidate.name, property.name);
            });
        const std::optional<Scalar> value =
            key != path.keys.end() ? KeyValue(key->value, property.type) : std::nullopt;
        if (!value) {
            return std::nullopt;
        }
        AppendKey(canonical, property.type, *value, unknown, depth);
    }
    return canonical;
}

std::optional<std::wstring> Repository::State::CanonicalPath(const Instance& instance,
                                                             const ClassEntry& entry,
                                                             std::wstring& reason) const {
    if (entry.singleton) {
        return L'@' + entry.family;
    }
    if (entry.keys.empty()) {
        reason = L"class " + Quoted(entry.definition->name) + L" has no key and is no singleton";
        return std::nullopt;
    }
    std::wstring canonical = Beginning(entry);
    for (const std::size_t index : entry.keys) {
        const Property& property = entry.definition->properties[index];
        const Scalar* value = instance.values[index].AsScalar();
        if (value == nullptr) {
            reason = L"key " + Quoted(property.name) + L" has no value";
            return std::nullopt;
        }
        AppendKey(canonical, property.type, *value, nullptr, 0);
    }
    return canonical;
}

std::wstring Repository::State::Identity(std::wstring_view text, std::set<std::wstring>* unknown,
                                         unsigned depth) const {
    std::optional<ObjectPath> path = ObjectPath::Parse(text);
    if (!path || depth > kMaximumReferenceDepth) {
        return L'?' + Folded(text);
    }
    if (!path->namespacePath.empty() && !SameName(path->namespacePath, namespaceName)) {
        return OpaqueIdentity(std::move(*path));
    }
    path->namespacePath.clear();
    const ClassEntry* entry = FindEntry(path->className);
    if (entry == nullptr) {
        if (unknown != nullptr) {
            unknown->insert(Folded(path->className));
        }
        return OpaqueIdentity(std::move(*path));
    }
    if (!path->IsClass()) {
        if (std::optional<std::wstring> canonical = CanonicalPath(*path, *entry, unknown, depth)) {
            return std::move(*canonical);
        }
    }
    return OpaqueIdentity(std::move(*path));
}

ObjectIdentity Repository::State::IdentityFunction() const {
    return [this](std::wstring_view path) { return Identity(path); };
}

} // namespace quillet::simulator
