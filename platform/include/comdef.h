// _com_error, the exception of the compiler's COM classes, and the functions that raise it.
#pragma once

#include <ole2.h>
#include <comutil.h>

#pragma GCC visibility push(default)

/// A failed COM call: its code and, where the callee left one, its error object.
class _com_error {
  public:
    _com_error(HRESULT hr, IErrorInfo* info = nullptr, bool addReference = false) noexcept;
    _com_error(const _com_error& other) noexcept;
    virtual ~_com_error() noexcept;
    _com_error& operator=(const _com_error& other) noexcept;

    HRESULT Error() const noexcept { return m_hresult; }
    WORD WCode() const noexcept { return HRESULTToWCode(m_hresult); }
    /// The error object with a reference for the caller, or null.
    IErrorInfo* ErrorInfo() const noexcept;
    _bstr_t Description() const;
    _bstr_t Source() const;
    _bstr_t HelpFile() const;
    DWORD HelpContext() const noexcept;
    /// The system's text for the code without its line end, or "Unknown error 0x…".
    const TCHAR* ErrorMessage() const noexcept;

    static HRESULT WCodeToHRESULT(WORD code) noexcept;
    static WORD HRESULTToWCode(HRESULT hr) noexcept;

  private:
    HRESULT m_hresult;
    IErrorInfo* m_info;
    mutable TCHAR* m_message = nullptr;
};

[[noreturn]] void WINAPI _com_raise_error(HRESULT hr, IErrorInfo* info = nullptr);

#pragma GCC visibility pop
