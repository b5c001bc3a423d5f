// The two owner classes of ATL that this tree uses, for compilers that ship without that library: a counted
// interface reference and an owned BSTR, under ATL's names and with ATL's meaning.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <comdef.h>

#include <cassert>
#include <climits>
#include <cstring>
#include <cwchar>
#include <utility>

namespace ATL {

/// Owns one reference to a COM interface and gives it back when it goes.
template <class T>
class CComPtr {
  public:
    CComPtr() noexcept = default;
    /// Takes a reference of its own.
    CComPtr(T* other) noexcept : p(other) { Retain(); }
    CComPtr(const CComPtr& other) noexcept : p(other.p) { Retain(); }
    CComPtr(CComPtr&& other) noexcept : p(other.Detach()) {}
    ~CComPtr() { Release(); }

    /// The new reference is taken before the old one is given back, so that assigning an object's last
    /// reference to itself is safe.
    CComPtr& operator=(T* other) noexcept {
        CComPtr(other).Swap(*this);
        return *this;
    }
    // Through a copy, so that assigning a pointer to itself is safe as well.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
    CComPtr& operator=(const CComPtr& other) noexcept {
        CComPtr(other).Swap(*this);
        return *this;
    }
    CComPtr& operator=(CComPtr&& other) noexcept {
        CComPtr(std::move(other)).Swap(*this);
        return *this;
    }

    operator T*() const noexcept { return p; }
    T& operator*() const noexcept { return *p; }
    T* operator->() const noexcept { return p; }
    bool operator!() const noexcept { return p == nullptr; }
    bool operator==(T* other) const noexcept { return p == other; }
    bool operator==(const CComPtr& other) const noexcept { return p == other.p; }

    /// For out-arguments. The reference must be empty, since the callee overwrites it unseen.
    T** operator&() noexcept {
        assert(p == nullptr);
        return &p;
    }

    /// Gives the reference back and becomes empty. The member is cleared first: the object's last Release may
    /// come back to whoever holds this.
    void Release() noexcept {
        if (T* held = std::exchange(p, nullptr)) {
            held->Release();
        }
    }
    /// Takes over a reference that the caller owns.
    void Attach(T* owned) noexcept {
        Release();
        p = owned;
    }
    /// Hands the reference to the caller.
    [[nodiscard]] T* Detach() noexcept { return std::exchange(p, nullptr); }
    /// Stores a further reference; E_POINTER without a place to store it.
    HRESULT CopyTo(T** target) const noexcept {
        if (target == nullptr) {
            return E_POINTER;
        }
        *target = p;
        Retain();
        return S_OK;
    }
    /// Asks the object for another of its interfaces. The identifier is explicit because not every compiler
    /// can attach one to a type. E_POINTER when this is empty or there is no place for the answer.
    template <class Q>
    HRESULT QueryInterface(REFIID iid, Q** target) const noexcept {
        if (p == nullptr || target == nullptr) {
            return E_POINTER;
        }
        return p->QueryInterface(iid, reinterpret_cast<void**>(target));
    }
    void Swap(CComPtr& other) noexcept { std::swap(p, other.p); }

    T* p = nullptr;

  private:
    void Retain() const noexcept {
        if (p != nullptr) {
            p->AddRef();
        }
    }
};

/// Owns one BSTR. Null and the empty text are different values, as in OLE, and both have length 0.
/// A failed allocation raises _com_error(E_OUTOFMEMORY), which is what every other string of the library
/// does, so that clients have one exception to expect; the object is then as it was before.
class CComBSTR {
  public:
    CComBSTR() noexcept = default;
    /// Copies a text; null stays null.
    CComBSTR(LPCOLESTR text) : m_str(text == nullptr ? nullptr : Checked(::SysAllocString(text))) {}
    /// Copies `length` characters, zeros included; without a text they are left for the caller to fill.
    CComBSTR(int length, LPCOLESTR text = nullptr) : m_str(Allocate(text, length)) {}
    CComBSTR(const CComBSTR& other) : m_str(other.Copy()) {}
    CComBSTR(CComBSTR&& other) noexcept : m_str(other.Detach()) {}
    ~CComBSTR() { ::SysFreeString(m_str); }

    CComBSTR& operator=(LPCOLESTR text) {
        CComBSTR(text).Swap(*this);
        return *this;
    }
    CComBSTR& operator=(const CComBSTR& other) {
        CComBSTR(other).Swap(*this);
        return *this;
    }
    CComBSTR& operator=(CComBSTR&& other) noexcept {
        CComBSTR(std::move(other)).Swap(*this);
        return *this;
    }

    operator BSTR() const noexcept { return m_str; }
    bool operator!() const noexcept { return m_str == nullptr; }
    /// For out-arguments. The string must be null, since the callee overwrites it unseen.
    BSTR* operator&() noexcept {
        assert(m_str == nullptr);
        return &m_str;
    }

    /// Characters, without the terminator.
    unsigned int Length() const noexcept { return ::SysStringLen(m_str); }
    /// Bytes, without the terminator.
    unsigned int ByteLength() const noexcept { return ::SysStringByteLen(m_str); }

    /// A new BSTR for the caller to free; null for null. Embedded zeros are kept.
    [[nodiscard]] BSTR Copy() const {
        return m_str == nullptr
                   ? nullptr
                   : Checked(::SysAllocStringByteLen(reinterpret_cast<LPCSTR>(m_str), ByteLength()));
    }
    HRESULT CopyTo(BSTR* target) const {
        if (target == nullptr) {
            return E_POINTER;
        }
        *target = Copy();
        return S_OK;
    }
    /// Takes over a BSTR that the caller owns.
    void Attach(BSTR owned) noexcept {
        if (owned != m_str) {
            ::SysFreeString(std::exchange(m_str, owned));
        }
    }
    /// Hands the BSTR to the caller.
    [[nodiscard]] BSTR Detach() noexcept { return std::exchange(m_str, nullptr); }
    /// Frees the text and becomes null.
    void Empty() noexcept { ::SysFreeString(std::exchange(m_str, nullptr)); }

    /// Adds a text at the end; S_OK, also for null. The text may be this object's own.
    HRESULT Append(LPCOLESTR text) {
        return text == nullptr ? S_OK : AppendCharacters(text, std::wcslen(text));
    }
    HRESULT Append(LPCOLESTR text, int length) {
        if (length < 0) {
            return E_INVALIDARG;
        }
        return text == nullptr ? S_OK : AppendCharacters(text, static_cast<std::size_t>(length));
    }
    HRESULT Append(const CComBSTR& text) { return AppendCharacters(text.m_str, text.Length()); }
    CComBSTR& operator+=(LPCOLESTR text) {
        Append(text);
        return *this;
    }
    CComBSTR& operator+=(const CComBSTR& text) {
        Append(text);
        return *this;
    }

    /// Equal characters; null equals the empty text, as OLE compares.
    bool operator==(const CComBSTR& other) const noexcept {
        return Length() == other.Length() &&
               (Length() == 0 || std::wmemcmp(m_str, other.m_str, Length()) == 0);
    }
    bool operator==(LPCOLESTR other) const noexcept {
        const std::size_t length = other == nullptr ? 0 : std::wcslen(other);
        return Length() == length && (length == 0 || std::wmemcmp(m_str, other, length) == 0);
    }

    void Swap(CComBSTR& other) noexcept { std::swap(m_str, other.m_str); }

    BSTR m_str = nullptr;

  private:
    static BSTR Checked(BSTR allocated) {
        if (allocated == nullptr) {
            throw _com_error(E_OUTOFMEMORY);
        }
        return allocated;
    }
    static BSTR Allocate(LPCOLESTR text, int length) {
        if (length < 0) {
            throw _com_error(E_INVALIDARG);
        }
        return length == 0 && text == nullptr ? nullptr
                                              : Checked(::SysAllocStringLen(text, static_cast<UINT>(length)));
    }
    HRESULT AppendCharacters(LPCOLESTR text, std::size_t length) {
        if (length == 0) {
            return S_OK;
        }
        const std::size_t before = Length();
        if (length > static_cast<std::size_t>(INT_MAX) - before) {
            throw _com_error(E_OUTOFMEMORY);
        }
        BSTR joined = Checked(::SysAllocStringLen(nullptr, static_cast<UINT>(before + length)));
        if (before != 0) {
            std::wmemcpy(joined, m_str, before);
        }
        std::wmemcpy(joined + before, text, length);
        Attach(joined);
        return S_OK;
    }
};

} // namespace ATL
