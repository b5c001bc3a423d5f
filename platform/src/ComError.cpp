// _com_error and the narrow text of _bstr_t.
#include "Text.h"

#include <windows.h>
#include <comdef.h>

#include <cstring>

namespace {

// The codes that dispatch interfaces make of 16-bit numbers.
constexpr HRESULT kFirstWCode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, 0x200);
constexpr HRESULT kLastWCode = MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF + 1, 0) - 1;

template <class Value, class Getter>
Value FromInfo(IErrorInfo* info, Getter getter) {
    Value value{};
    if (info) {
        (info->*getter)(&value);
    }
    return value;
}

} // namespace

_com_error::_com_error(HRESULT hr, IErrorInfo* info, bool addReference) noexcept
    : m_hresult(hr), m_info(info) {
    if (m_info && addReference) {
        m_info->AddRef();
    }
}

_com_error::_com_error(const _com_error& other) noexcept : m_hresult(other.m_hresult), m_info(other.m_info) {
    if (m_info) {
        m_info->AddRef();
    }
}

_com_error::~_com_error() noexcept {
    if (m_info) {
        m_info->Release();
    }
    LocalFree(m_message);
}

_com_error& _com_error::operator=(const _com_error& other) noexcept {
    if (this != &other) {
        if (other.m_info) {
            other.m_info->AddRef();
        }
        if (m_info) {
            m_info->Release();
        }
        LocalFree(m_message);
        m_hresult = other.m_hresult;
        m_info = other.m_info;
        m_message = nullptr;
    }
    return *this;
}

IErrorInfo* _com_error::ErrorInfo() const noexcept {
    if (m_info) {
        m_info->AddRef();
    }
    return m_info;
}

_bstr_t _com_error::Description() const {
    return _bstr_t(FromInfo<BSTR>(m_info, &IErrorInfo::GetDescription), false);
}

_bstr_t _com_error::Source() const {
    return _bstr_t(FromInfo<BSTR>(m_info, &IErrorInfo::GetSource), false);
}

_bstr_t _com_error::HelpFile() const {
    return _bstr_t(FromInfo<BSTR>(m_info, &IErrorInfo::GetHelpFile), false);
}

DWORD _com_error::HelpContext() const noexcept {
    return FromInfo<DWORD>(m_info, &IErrorInfo::GetHelpContext);
}

const TCHAR* _com_error::ErrorMessage() const noexcept {
    if (m_message) {
        return m_message;
    }
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, static_cast<DWORD>(m_hresult), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                   reinterpret_cast<LPWSTR>(&m_message), 0, nullptr);
    if (m_message) {
        std::size_t length = std::wcslen(m_message);
        while (length && (m_message[length - 1] == L'\n' || m_message[length - 1] == L'\r')) {
            m_message[--length] = L'\0';
        }
        return m_message;
    }
    constexpr std::size_t kSize = 32;
    m_message = static_cast<TCHAR*>(LocalAlloc(LMEM_FIXED, kSize * sizeof(TCHAR)));
    if (m_message) {
        if (const WORD code = WCode()) {
            swprintf_s(m_message, kSize, L"IDispatch error #%d", static_cast<int>(code));
        } else {
            swprintf_s(m_message, kSize, L"Unknown error 0x%0lX", m_hresult);
        }
    }
    return m_message;
}

HRESULT _com_error::WCodeToHRESULT(WORD code) noexcept {
    return code >= 0xfe00 ? kLastWCode : kFirstWCode + code;
}

WORD _com_error::HRESULTToWCode(HRESULT hr) noexcept {
    return hr >= kFirstWCode && hr <= kLastWCode ? static_cast<WORD>(hr - kFirstWCode) : WORD{0};
}

void WINAPI _com_raise_error(HRESULT hr, IErrorInfo* info) {
    throw _com_error(hr, info);
}

void WINAPI _com_issue_error(HRESULT hr) {
    _com_raise_error(hr, nullptr);
}

namespace _com_util {

BSTR WINAPI ConvertStringToBSTR(const char* text) {
    if (!text) {
        return nullptr;
    }
    const std::wstring wide = quillet::platform::WideFromUtf8(text);
    const BSTR made = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (!made) {
        _com_issue_error(E_OUTOFMEMORY);
    }
    return made;
}

char* WINAPI ConvertBSTRToString(BSTR text) {
    if (!text) {
        return nullptr;
    }
    const std::string narrow = quillet::platform::Utf8FromWide({text, SysStringLen(text)});
    char* const copy = new char[narrow.size() + 1];
    std::memcpy(copy, narrow.c_str(), narrow.size() + 1);
    return copy;
}

} // namespace _com_util
