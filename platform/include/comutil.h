// _bstr_t and _variant_t: a counted text and a VARIANT that own what they hold and raise _com_error when
// memory is short or a conversion is not possible.
#pragma once

#include <ole2.h>

#include <atomic>
#include <new>

class _com_error;
class _bstr_t;
class _variant_t;

#pragma GCC visibility push(default)

/// Raises _com_error(hr).
[[noreturn]] void WINAPI _com_issue_error(HRESULT hr);

namespace _com_util {
inline void CheckError(HRESULT hr) {
    if (FAILED(hr)) {
        _com_issue_error(hr);
    }
}
/// Narrow text is UTF-8 on this host. Null gives null; a failed allocation raises E_OUTOFMEMORY.
BSTR WINAPI ConvertStringToBSTR(const char* text);
/// The result is freed with delete[].
char* WINAPI ConvertBSTRToString(BSTR text);
} // namespace _com_util

/// A text shared by all copies of one _bstr_t.
class _bstr_t {
  public:
    _bstr_t() noexcept = default;
    _bstr_t(const _bstr_t& other) noexcept : m_shared(other.m_shared) { AddReference(); }
    _bstr_t(const char* text) : m_shared(Shared::Own(_com_util::ConvertStringToBSTR(text))) {}
    _bstr_t(const wchar_t* text) : m_shared(Shared::Own(Allocate(text))) {}
    _bstr_t(const _variant_t& variant);
    /// Takes the BSTR over, or with `copyText` copies all of it, zeros included.
    _bstr_t(BSTR text, bool copyText) : m_shared(Shared::Own(copyText ? Duplicate(text) : text)) {}
    ~_bstr_t() noexcept { Drop(); }

    _bstr_t& operator=(const _bstr_t& other) noexcept {
        if (this != &other) {
            Drop();
            m_shared = other.m_shared;
            AddReference();
        }
        return *this;
    }
    _bstr_t& operator=(const char* text);
    _bstr_t& operator=(const wchar_t* text);
    _bstr_t& operator=(const _variant_t& variant);

    _bstr_t& operator+=(const _bstr_t& tail);
    _bstr_t operator+(const _bstr_t& tail) const {
        _bstr_t sum(*this);
        sum += tail;
        return sum;
    }
    friend _bstr_t operator+(const char* head, const _bstr_t& tail) { return _bstr_t(head) + tail; }
    friend _bstr_t operator+(const wchar_t* head, const _bstr_t& tail) { return _bstr_t(head) + tail; }

    operator const wchar_t*() const noexcept { return Text(); }
    operator wchar_t*() const noexcept { return Text(); }
    operator const char*() const { return Narrow(); }
    operator char*() const { return Narrow(); }

    bool operator!() const noexcept { return Text() == nullptr; }
    bool operator==(const _bstr_t& other) const noexcept { return Compare(other) == 0; }
    bool operator!=(const _bstr_t& other) const noexcept { return Compare(other) != 0; }
    bool operator<(const _bstr_t& other) const noexcept { return Compare(other) < 0; }
    bool operator>(const _bstr_t& other) const noexcept { return Compare(other) > 0; }
    bool operator<=(const _bstr_t& other) const noexcept { return Compare(other) <= 0; }
    bool operator>=(const _bstr_t& other) const noexcept { return Compare(other) >= 0; }

    /// A new BSTR for the caller, or without `copyText` the shared one itself.
    BSTR copy(bool copyText = true) const { return copyText ? Duplicate(Text()) : Text(); }
    /// Characters, embedded zeros included.
    unsigned int length() const noexcept { return ::SysStringLen(Text()); }

    void Assign(BSTR text);
    /// The shared BSTR itself; a change of it is seen by every copy.
    BSTR& GetBSTR();
    /// Gives the text up and yields the place for an out-parameter.
    BSTR* GetAddress();
    /// Takes a BSTR over.
    void Attach(BSTR text);
    /// Gives the BSTR to the caller; raises E_POINTER when there is none or a copy shares it.
    BSTR Detach();

  private:
    struct Shared {
        BSTR text;
        char* narrow = nullptr;
        std::atomic<ULONG> references{1};

        explicit Shared(BSTR owned) noexcept : text(owned) {}
        Shared(const Shared&) = delete;
        Shared& operator=(const Shared&) = delete;
        ~Shared() {
            ::SysFreeString(text);
            delete[] narrow;
        }
        /// Never loses the text: it is freed when the holder can not be made.
        static Shared* Own(BSTR text) {
            Shared* made = new (std::nothrow) Shared(text);
            if (!made) {
                ::SysFreeString(text);
                _com_issue_error(E_OUTOFMEMORY);
            }
            return made;
        }
    };

    static BSTR Allocate(const wchar_t* text) {
        const BSTR made = ::SysAllocString(text);
        if (!made && text) {
            _com_issue_error(E_OUTOFMEMORY);
        }
        return made;
    }
    static BSTR Duplicate(BSTR text) {
        if (!text) {
            return nullptr;
        }
        const BSTR made =
            ::SysAllocStringByteLen(reinterpret_cast<const char*>(text), ::SysStringByteLen(text));
        if (!made) {
            _com_issue_error(E_OUTOFMEMORY);
        }
        return made;
    }
    BSTR Text() const noexcept { return m_shared ? m_shared->text : nullptr; }
    char* Narrow() const;
    int Compare(const _bstr_t& other) const noexcept;
    void AddReference() noexcept {
        if (m_shared) {
            m_shared->references.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void Drop() noexcept {
        if (m_shared && m_shared->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete m_shared;
        }
        m_shared = nullptr;
    }

    Shared* m_shared = nullptr;
};

inline _bstr_t& _bstr_t::operator=(const char* text) {
    if (!text || Narrow() != text) {
        *this = _bstr_t(text);
    }
    return *this;
}

inline _bstr_t& _bstr_t::operator=(const wchar_t* text) {
    if (!text || Text() != text) {
        *this = _bstr_t(text);
    }
    return *this;
}

inline _bstr_t& _bstr_t::operator+=(const _bstr_t& tail) {
    const unsigned int headLength = length();
    const unsigned int tailLength = tail.length();
    if (headLength > ~0u - tailLength) {
        _com_issue_error(E_OUTOFMEMORY);
    }
    const BSTR sum = ::SysAllocStringLen(nullptr, headLength + tailLength);
    if (!sum) {
        _com_issue_error(E_OUTOFMEMORY);
    }
    if (headLength) {
        __builtin_memcpy(sum, Text(), headLength * sizeof(wchar_t));
    }
    if (tailLength) {
        __builtin_memcpy(sum + headLength, tail.Text(), tailLength * sizeof(wchar_t));
    }
    Attach(sum);
    return *this;
}

inline void _bstr_t::Assign(BSTR text) {
    if (!text || Text() != text) {
        *this = _bstr_t(text, true);
    }
}

inline BSTR& _bstr_t::GetBSTR() {
    if (!m_shared) {
        m_shared = Shared::Own(nullptr);
    }
    return m_shared->text;
}

inline BSTR* _bstr_t::GetAddress() {
    Attach(nullptr);
    return &m_shared->text;
}

inline void _bstr_t::Attach(BSTR text) {
    Shared* made = Shared::Own(text);
    Drop();
    m_shared = made;
}

inline BSTR _bstr_t::Detach() {
    if (!m_shared || m_shared->references.load(std::memory_order_acquire) != 1) {
        _com_issue_error(E_POINTER);
    }
    const BSTR text = m_shared->text;
    m_shared->text = nullptr;
    Drop();
    return text;
}

inline char* _bstr_t::Narrow() const {
    if (!m_shared) {
        return nullptr;
    }
    if (!m_shared->narrow) {
        m_shared->narrow = _com_util::ConvertBSTRToString(m_shared->text);
    }
    return m_shared->narrow;
}

// A null text is less than any other, the empty one included.
inline int _bstr_t::Compare(const _bstr_t& other) const noexcept {
    if (m_shared == other.m_shared) {
        return 0;
    }
    if (!m_shared) {
        return -1;
    }
    if (!other.m_shared) {
        return 1;
    }
    const BSTR left = Text();
    const BSTR right = other.Text();
    if (!left) {
        return right ? -1 : 0;
    }
    if (!right) {
        return 1;
    }
    const unsigned int leftLength = length();
    const unsigned int rightLength = other.length();
    for (unsigned int i = 0; i < leftLength && i < rightLength; ++i) {
        if (left[i] != right[i]) {
            return left[i] < right[i] ? -1 : 1;
        }
    }
    return leftLength == rightLength ? 0 : leftLength < rightLength ? -1 : 1;
}

/// A VARIANT that clears itself. As LONG is the host's int, an int is stored as VT_I4 (on Windows, where they
/// are two types, as VT_INT): say LONG and ULONG where the type matters.
class _variant_t : public tagVARIANT {
  public:
    // VariantInit sets all that a reader of VT_EMPTY may look at.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    _variant_t() noexcept { ::VariantInit(this); }
    _variant_t(const VARIANT& source) : _variant_t() { _com_util::CheckError(::VariantCopy(this, &source)); }
    _variant_t(const VARIANT* source) : _variant_t() {
        if (!source) {
            _com_issue_error(E_POINTER);
        }
        _com_util::CheckError(::VariantCopy(this, source));
    }
    _variant_t(const _variant_t& source) : _variant_t() {
        _com_util::CheckError(::VariantCopy(this, &source));
    }
    /// Without `copyValue` takes the value over and leaves the source empty.
    _variant_t(VARIANT& source, bool copyValue) : _variant_t() {
        if (copyValue) {
            _com_util::CheckError(::VariantCopy(this, &source));
        } else {
            static_cast<VARIANT&>(*this) = source;
            V_VT(&source) = VT_EMPTY;
        }
    }
    _variant_t(short value, VARTYPE type = VT_I2) : _variant_t() {
        if (type == VT_BOOL) {
            V_BOOL(this) = value ? VARIANT_TRUE : VARIANT_FALSE;
        } else {
            Expect(type == VT_I2);
            V_I2(this) = value;
        }
        V_VT(this) = type;
    }
    _variant_t(LONG value, VARTYPE type = VT_I4) : _variant_t() {
        if (type == VT_BOOL) {
            V_BOOL(this) = value ? VARIANT_TRUE : VARIANT_FALSE;
        } else {
            Expect(type == VT_I4 || type == VT_ERROR || type == VT_INT);
            V_I4(this) = value;
        }
        V_VT(this) = type;
    }
    _variant_t(float value) noexcept : _variant_t() { Set(VT_R4, V_R4(this), value); }
    _variant_t(double value, VARTYPE type = VT_R8) : _variant_t() {
        Expect(type == VT_R8 || type == VT_DATE);
        Set(type, V_R8(this), value);
    }
    _variant_t(const _bstr_t& text) : _variant_t() {
        V_BSTR(this) = text.copy();
        V_VT(this) = VT_BSTR;
    }
    _variant_t(const wchar_t* text) : _variant_t() { *this = text; }
    _variant_t(const char* text) : _variant_t() {
        V_BSTR(this) = _com_util::ConvertStringToBSTR(text);
        V_VT(this) = VT_BSTR;
    }
    _variant_t(IDispatch* object, bool addReference = true) noexcept : _variant_t() {
        Set(VT_DISPATCH, V_DISPATCH(this), object);
        if (object && addReference) {
            object->AddRef();
        }
    }
    _variant_t(bool value) noexcept : _variant_t() {
        Set(VT_BOOL, V_BOOL(this), value ? VARIANT_TRUE : VARIANT_FALSE);
    }
    _variant_t(IUnknown* object, bool addReference = true) noexcept : _variant_t() {
        Set(VT_UNKNOWN, V_UNKNOWN(this), object);
        if (object && addReference) {
            object->AddRef();
        }
    }
    _variant_t(BYTE value) noexcept : _variant_t() { Set(VT_UI1, V_UI1(this), value); }
    _variant_t(char value) noexcept : _variant_t() { Set(VT_I1, V_I1(this), value); }
    _variant_t(unsigned short value) noexcept : _variant_t() { Set(VT_UI2, V_UI2(this), value); }
    _variant_t(ULONG value) noexcept : _variant_t() { Set(VT_UI4, V_UI4(this), value); }
    _variant_t(LONGLONG value) noexcept : _variant_t() { Set(VT_I8, V_I8(this), value); }
    _variant_t(ULONGLONG value) noexcept : _variant_t() { Set(VT_UI8, V_UI8(this), value); }
    ~_variant_t() noexcept { ::VariantClear(this); }

    operator short() const { return Converted(VT_I2, &VARIANT::iVal); }
    operator LONG() const { return Converted(VT_I4, &VARIANT::lVal); }
    operator float() const { return Converted(VT_R4, &VARIANT::fltVal); }
    operator double() const { return Converted(VT_R8, &VARIANT::dblVal); }
    operator _bstr_t() const { return _bstr_t(*this); }
    operator bool() const { return Converted(VT_BOOL, &VARIANT::boolVal) != VARIANT_FALSE; }
    operator BYTE() const { return Converted(VT_UI1, &VARIANT::bVal); }
    operator char() const { return Converted(VT_I1, &VARIANT::cVal); }
    operator unsigned short() const { return Converted(VT_UI2, &VARIANT::uiVal); }
    operator ULONG() const { return Converted(VT_UI4, &VARIANT::ulVal); }
    operator LONGLONG() const { return Converted(VT_I8, &VARIANT::llVal); }
    operator ULONGLONG() const { return Converted(VT_UI8, &VARIANT::ullVal); }
    /// The interface with a reference for the caller.
    operator IDispatch*() const {
        _variant_t converted;
        converted.ChangeType(VT_DISPATCH, this);
        if (V_DISPATCH(&converted)) {
            V_DISPATCH(&converted)->AddRef();
        }
        return V_DISPATCH(&converted);
    }
    operator IUnknown*() const {
        _variant_t converted;
        converted.ChangeType(VT_UNKNOWN, this);
        if (V_UNKNOWN(&converted)) {
            V_UNKNOWN(&converted)->AddRef();
        }
        return V_UNKNOWN(&converted);
    }

    _variant_t& operator=(const VARIANT& source) {
        _com_util::CheckError(::VariantCopy(this, &source));
        return *this;
    }
    _variant_t& operator=(const VARIANT* source) {
        if (!source) {
            _com_issue_error(E_POINTER);
        }
        _com_util::CheckError(::VariantCopy(this, source));
        return *this;
    }
    _variant_t& operator=(const _variant_t& source) {
        _com_util::CheckError(::VariantCopy(this, &source));
        return *this;
    }
    _variant_t& operator=(short value) { return Take(_variant_t(value)); }
    _variant_t& operator=(LONG value) { return Take(_variant_t(value)); }
    _variant_t& operator=(float value) { return Take(_variant_t(value)); }
    _variant_t& operator=(double value) { return Take(_variant_t(value)); }
    _variant_t& operator=(const _bstr_t& value) { return Take(_variant_t(value)); }
    _variant_t& operator=(const char* value) { return Take(_variant_t(value)); }
    _variant_t& operator=(IDispatch* value) { return Take(_variant_t(value)); }
    _variant_t& operator=(bool value) { return Take(_variant_t(value)); }
    _variant_t& operator=(IUnknown* value) { return Take(_variant_t(value)); }
    _variant_t& operator=(BYTE value) { return Take(_variant_t(value)); }
    _variant_t& operator=(char value) { return Take(_variant_t(value)); }
    _variant_t& operator=(unsigned short value) { return Take(_variant_t(value)); }
    _variant_t& operator=(ULONG value) { return Take(_variant_t(value)); }
    _variant_t& operator=(LONGLONG value) { return Take(_variant_t(value)); }
    _variant_t& operator=(ULONGLONG value) { return Take(_variant_t(value)); }
    _variant_t& operator=(const wchar_t* text) {
        const BSTR made = ::SysAllocString(text);
        if (!made && text) {
            _com_issue_error(E_OUTOFMEMORY);
        }
        // Allocated first, so that a variant may be given its own text.
        ::VariantClear(this);
        Set(VT_BSTR, V_BSTR(this), made);
        return *this;
    }

    bool operator==(const VARIANT& other) const { return Equals(&other); }
    bool operator==(const VARIANT* other) const { return Equals(other); }
    bool operator!=(const VARIANT& other) const { return !Equals(&other); }
    bool operator!=(const VARIANT* other) const { return !Equals(other); }

    void Clear() { _com_util::CheckError(::VariantClear(this)); }
    /// Takes the value over and leaves the source empty.
    void Attach(VARIANT& source) {
        Clear();
        static_cast<VARIANT&>(*this) = source;
        V_VT(&source) = VT_EMPTY;
    }
    /// Gives the value to the caller, who clears it.
    VARIANT Detach() {
        const VARIANT value = *this;
        V_VT(this) = VT_EMPTY;
        return value;
    }
    VARIANT& GetVARIANT() noexcept { return *this; }
    /// Clears the value and yields the place for an out-parameter.
    VARIANT* GetAddress() {
        Clear();
        return this;
    }
    /// Converts this value, or `source` into this one.
    void ChangeType(VARTYPE type, const _variant_t* source = nullptr) {
        const VARIANT* from = source ? source : this;
        if (from != this || type != V_VT(this)) {
            _com_util::CheckError(::VariantChangeType(this, from, 0, type));
        }
    }
    void SetString(const char* text) { *this = text; }

  private:
    static void Expect(bool accepted) {
        if (!accepted) {
            _com_issue_error(E_INVALIDARG);
        }
    }
    template <class Member, class Value>
    void Set(VARTYPE type, Member& member, Value value) noexcept {
        member = value;
        V_VT(this) = type;
    }
    _variant_t& Take(_variant_t&& value) {
        Attach(value);
        return *this;
    }
    /// The value as a number type, read through that type's member.
    template <class Number>
    Number Converted(VARTYPE type, Number VARIANT::*member) const {
        if (V_VT(this) == type) {
            return this->*member;
        }
        _variant_t converted;
        converted.ChangeType(type, this);
        return converted.*member;
    }
    bool Equals(const VARIANT* other) const;
};

inline _bstr_t::_bstr_t(const _variant_t& variant) {
    *this = variant;
}

inline _bstr_t& _bstr_t::operator=(const _variant_t& variant) {
    if (V_VT(&variant) == VT_BSTR) {
        return *this = static_cast<const wchar_t*>(V_BSTR(&variant));
    }
    _variant_t converted;
    converted.ChangeType(VT_BSTR, &variant);
    return *this = static_cast<const wchar_t*>(V_BSTR(&converted));
}

inline bool _variant_t::Equals(const VARIANT* other) const {
    if (!other) {
        return false;
    }
    if (this == other) {
        return true;
    }
    if (V_VT(this) != V_VT(other)) {
        return false;
    }
    switch (V_VT(this)) {
    case VT_EMPTY:
    case VT_NULL:
        return true;
    case VT_I1:
    case VT_UI1:
        return V_UI1(this) == V_UI1(other);
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return V_UI2(this) == V_UI2(other);
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
        return V_UI4(this) == V_UI4(other);
    case VT_I8:
    case VT_UI8:
    case VT_CY:
        return V_UI8(this) == V_UI8(other);
    case VT_R4:
        return !(V_R4(this) < V_R4(other)) && !(V_R4(other) < V_R4(this));
    case VT_R8:
    case VT_DATE:
        return !(V_R8(this) < V_R8(other)) && !(V_R8(other) < V_R8(this));
    case VT_BSTR: {
        const UINT length = ::SysStringByteLen(V_BSTR(this));
        return length == ::SysStringByteLen(V_BSTR(other)) &&
               (length == 0 || __builtin_memcmp(V_BSTR(this), V_BSTR(other), length) == 0);
    }
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return V_UNKNOWN(this) == V_UNKNOWN(other);
    default:
        _com_issue_error(E_INVALIDARG);
    }
}

using bstr_t = _bstr_t;
using variant_t = _variant_t;

#pragma GCC visibility pop

#include <comdef.h>
