// The query texts, put together from their pieces. The provider parses them, but tests and traces compare
// them letter by letter, so blanks and quotes are decided here and nowhere else.
#pragma once

#include <string>

namespace Wql {

/// SELECT * FROM Class WHERE Property = "value"
std::wstring SelectWhere(const wchar_t* className, const wchar_t* property, const std::wstring& value);
/// ASSOCIATORS OF {path} WHERE ResultClass = Class
std::wstring Associators(const std::wstring& path, const wchar_t* resultClass);
/// REFERENCES OF {path} WHERE ResultClass = Class
std::wstring References(const std::wstring& path, const wchar_t* resultClass);

} // namespace Wql
