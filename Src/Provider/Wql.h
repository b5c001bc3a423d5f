// The query texts, put together from their pieces. The provider parses them, but tests and traces compare
// them letter by letter, so blanks and quotes are decided here and nowhere else.
#pragma once

#include <string>

namespace Wql {

/// SELECT * FROM Class WHERE Property = "value"
std::wstring SelectWhere(const wchar_t* className, const wchar_t* property, const std::wstring& value);
/// SELECT * FROM Class WHERE Property = 'path': the instances of an association that refer to an object. The
/// path stands as it is, with its backslashes; only the quote that surrounds it is escaped in it.
std::wstring SelectReferring(const wchar_t* className, const wchar_t* property, const std::wstring& path);
/// SELECT * FROM Class WHERE Package = "package" AND NOT Name = "package": what belongs to a package but the
/// package itself, which bears its own name in both.
std::wstring MembersOfPackage(const wchar_t* className, const wchar_t* packageProperty,
                              const wchar_t* nameProperty, const std::wstring& package);
/// The settings of an owner, all or those of one caption. The blanks around the second equals sign differ
/// from those around the first; the provider takes both, and the text is kept as it has always been sent.
std::wstring Settings(const wchar_t* className, const std::wstring& parentId, const std::wstring& caption);
/// ASSOCIATORS OF {path} WHERE ResultClass = Class
std::wstring Associators(const std::wstring& path, const wchar_t* resultClass);
/// REFERENCES OF {path} WHERE ResultClass = Class
std::wstring References(const std::wstring& path, const wchar_t* resultClass);

} // namespace Wql
