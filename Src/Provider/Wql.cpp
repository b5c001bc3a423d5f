#include "Provider/Wql.h"

namespace {

/// A value between double quotes. A quote or backslash in it is escaped: a name that holds one must not end
/// the text early and turn the rest of the name into query.
std::wstring Quoted(const std::wstring& value) {
    std::wstring quoted = L"\"";
    for (const wchar_t character : value) {
        if (character == L'"' || character == L'\\') {
            quoted += L'\\';
        }
        quoted += character;
    }
    return quoted + L'"';
}

std::wstring OfObject(const wchar_t* relation, const std::wstring& path, const wchar_t* resultClass) {
    return std::wstring(relation) + L" {" + path + L"} WHERE ResultClass = " + resultClass;
}

} // namespace

namespace Wql {

std::wstring SelectWhere(const wchar_t* className, const wchar_t* property, const std::wstring& value) {
    return std::wstring(L"SELECT * FROM ") + className + L" WHERE " + property + L" = " + Quoted(value);
}

std::wstring SelectReferring(const wchar_t* className, const wchar_t* property, const std::wstring& path) {
    std::wstring text = std::wstring(L"SELECT * FROM ") + className + L" WHERE " + property + L" = '";
    for (const wchar_t character : path) {
        if (character == L'\'') {
            text += L'\\';
        }
        text += character;
    }
    return text + L'\'';
}

std::wstring MembersOfPackage(const wchar_t* className, const wchar_t* packageProperty,
                              const wchar_t* nameProperty, const std::wstring& package) {
    return SelectWhere(className, packageProperty, package) + L" AND NOT " + nameProperty + L" = " +
           Quoted(package);
}

std::wstring Settings(const wchar_t* className, const std::wstring& parentId, const std::wstring& caption) {
    const std::wstring all = SelectWhere(className, L"ParentId", parentId);
    return caption.empty() ? all : all + L" AND Caption= " + Quoted(caption);
}

std::wstring Associators(const std::wstring& path, const wchar_t* resultClass) {
    return OfObject(L"ASSOCIATORS OF", path, resultClass);
}

std::wstring References(const std::wstring& path, const wchar_t* resultClass) {
    return OfObject(L"REFERENCES OF", path, resultClass);
}

} // namespace Wql
