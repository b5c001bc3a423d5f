// The process's environment through the system's own calls.
#include "EnvironmentScope.h"

#include <windows.h>

#include <utility>

namespace quillet::tests {

namespace {

std::optional<std::wstring> Read(const std::wstring& name) {
    const DWORD size = GetEnvironmentVariableW(name.c_str(), nullptr, 0);
    if (size == 0) {
        return std::nullopt;
    }
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(name.c_str(), value.data(), size));
    return value;
}

} // namespace

EnvironmentScope::EnvironmentScope(std::wstring name, const std::optional<std::wstring>& value)
    : m_name(std::move(name)), m_before(Read(m_name)) {
    SetEnvironmentVariableW(m_name.c_str(), value ? value->c_str() : nullptr);
}

EnvironmentScope::~EnvironmentScope() {
    SetEnvironmentVariableW(m_name.c_str(), m_before ? m_before->c_str() : nullptr);
}

} // namespace quillet::tests
