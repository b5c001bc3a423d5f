// Reads the properties of one instance, in order, into the members of a record. After the first failure it
// does nothing more, so that a list of reads is a list of lines.
#pragma once

#include "Provider/ProviderNames.h"

#include <quillet/Quillet.h>

#include <type_traits>

class PropertyReader {
  public:
    /// What a property without a value means to the operation.
    enum class OnNull {
        Keep, ///< nothing: the member stays as it is
        Note, ///< the same, with a trace line
        Fail  ///< a failed read, with a trace line
    };
    /// What an array with an element that cannot be read means to the operation.
    enum class Gaps {
        Skip, ///< the element is left out
        Fail  ///< a failed read: in arrays that belong together a gap would shift all that follow
    };

    /// @param instance what to read from; null is a failed read.
    /// @param variable what trace lines call the instance.
    /// @param prefix   what trace lines start with.
    PropertyReader(IWbemClassObject* instance, const wchar_t* variable, const wchar_t* prefix = L"")
        : m_instance(instance), m_variable(variable), m_prefix(prefix) {}

    /// The next reads take a missing value this way; at first they keep what is there.
    PropertyReader& When(OnNull onNull) {
        m_onNull = onNull;
        return *this;
    }
    /// Starts with the result of the steps before: after a failed one nothing is read.
    PropertyReader& After(HRESULT result) {
        m_result = result;
        return *this;
    }

    /// Each reads one property; `failure` replaces the usual trace text of a failed read.
    PropertyReader& String(const ProviderName& property, std::wstring& value,
                           const wchar_t* failure = nullptr);
    /// As String, for a text that is only looked at: it stays where the provider put it.
    PropertyReader& Text(const ProviderName& property, ATL::CComBSTR& value);
    /// As String, for a text that is a secret: no copy of it is left behind.
    PropertyReader& Secret(const ProviderName& property, std::wstring& value,
                           const wchar_t* failure = nullptr);
    PropertyReader& Bool(const ProviderName& property, bool& value, const wchar_t* failure = nullptr);
    PropertyReader& Int(const ProviderName& property, int& value, const wchar_t* failure = nullptr);
    /// Into a record, whose numbers are LONGs; where that is no int.
    template <typename Number>
    requires(!std::is_same_v<Number, int> &&
             std::is_same_v<Number, LONG>) PropertyReader& Int(const ProviderName& property, Number& value,
                                                               const wchar_t* failure = nullptr) {
        int number = static_cast<int>(value);
        Int(property, number, failure);
        value = m_found ? number : value;
        return *this;
    }
    PropertyReader& Long(const ProviderName& property, LONG& value, const wchar_t* failure = nullptr);
    PropertyReader& UInt64(const ProviderName& property, ULONGLONG& value, const wchar_t* failure = nullptr);
    /// A number that stands for something else: only one that was read is turned into it, as `convert` says.
    template <typename Value, typename Convert>
    PropertyReader& Code(const ProviderName& property, Value& value, Convert convert) {
        LONG number = 0;
        if (Long(property, number).Found()) {
            value = convert(number);
        }
        return *this;
    }
    /// The same for an enumeration that carries the provider's number unchanged.
    template <typename Enumeration>
    PropertyReader& Code(const ProviderName& property, Enumeration& value) {
        return Code(property, value, [](LONG number) { return static_cast<Enumeration>(number); });
    }
    /// The same by the accessor of ints, which traces name as well.
    template <typename Enumeration>
    PropertyReader& IntCode(const ProviderName& property, Enumeration& value) {
        int number = 0;
        if (Int(property, number).Found()) {
            value = static_cast<Enumeration>(number);
        }
        return *this;
    }
    /// Appends the elements of an array: numbers, or texts.
    PropertyReader& Array(const ProviderName& property, std::vector<LONG>& values, Gaps gaps = Gaps::Skip,
                          const wchar_t* failure = nullptr);
    PropertyReader& Array(const ProviderName& property, std::vector<ATL::CComBSTR>& values,
                          Gaps gaps = Gaps::Skip, const wchar_t* failure = nullptr);
    /// Replaces a list of texts by those of an array. Without one it stays.
    PropertyReader& Texts(const ProviderName& property, std::vector<std::wstring>& texts);
    /// The value as it comes; trace text "Get -> <symbol>", or another step before the symbol.
    PropertyReader& Plain(const ProviderName& property, VARIANT& value, const wchar_t* step = L"Get -> ");
    /// "ReturnValue", the last thing that many operations read. One that is not 0 is for whoever reads the
    /// trace; it does not fail the operation.
    PropertyReader& Verdict(const wchar_t* operation);

    /// 0 or more while all reads went well, else the code of the one that failed
    /// (0x80041001 for a missing value that counts as a failure).
    HRESULT Result() const { return m_result; }
    bool Failed() const { return FAILED(m_result); }
    /// Whether the last read brought a value. A success may have brought none, and yet no null: then what was
    /// to be filled is as it was.
    bool Found() const { return m_found; }
    /// Whether the last read found the property without a value.
    bool IsNull() const { return m_isNull; }

  private:
    template <typename Value, typename Getter>
    PropertyReader& Read(Getter getter, const wchar_t* accessor, const ProviderName& property, Value& value,
                         const wchar_t* failure);
    template <typename Element>
    using ArrayGetter = HRESULT (*)(IWbemClassObject*, const wchar_t*, std::vector<Element>&, int*);
    template <typename Element>
    PropertyReader& ReadArray(ArrayGetter<Element> getter, const ProviderName& property,
                              std::vector<Element>& values, Gaps gaps, const wchar_t* failure);
    void Trace(const wchar_t* accessor, const ProviderName& property, const wchar_t* failure,
               const wchar_t* ending) const;

    IWbemClassObject* m_instance;
    const wchar_t* m_variable;
    const wchar_t* m_prefix;
    OnNull m_onNull = OnNull::Keep;
    HRESULT m_result = S_OK;
    bool m_found = false;
    bool m_isNull = false;
};
