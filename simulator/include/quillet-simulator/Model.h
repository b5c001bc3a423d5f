// What a CIM repository holds: typed values, qualifiers, class definitions and instances.
// Plain data without COM; every name is compared without regard to case, as CIM wants it.
#pragma once

#include <windows.h>
#include <wbemidl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quillet::simulator {

/// Three-way comparison of two CIM names without regard to case.
int CompareNames(std::wstring_view left, std::wstring_view right) noexcept;
inline bool SameName(std::wstring_view left, std::wstring_view right) noexcept {
    return CompareNames(left, right) == 0;
}

/// Orders names without regard to case; for std::map and std::set.
struct NameLess {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept {
        return CompareNames(left, right) < 0;
    }
};

/// One CIM scalar. Integers are held in the width of their signedness, strings, references and
/// datetimes as text, char16 as an unsigned number. The CIM type itself belongs to the property.
using Scalar = std::variant<bool, std::int64_t, std::uint64_t, double, std::wstring>;

/// A CIM value: null, one scalar, or an array whose elements may be null.
class Value {
  public:
    using Array = std::vector<std::optional<Scalar>>;

    Value() = default;
    explicit Value(Scalar scalar) : m_payload(std::move(scalar)) {}
    explicit Value(Array array) : m_payload(std::move(array)) {}
    static Value Text(std::wstring text) { return Value(Scalar(std::move(text))); }
    static Value Bool(bool flag) { return Value(Scalar(flag)); }
    static Value Signed(std::int64_t number) { return Value(Scalar(number)); }
    static Value Unsigned(std::uint64_t number) { return Value(Scalar(number)); }

    bool IsNull() const noexcept { return std::holds_alternative<std::monostate>(m_payload); }
    bool IsArray() const noexcept { return std::holds_alternative<Array>(m_payload); }
    const Scalar* AsScalar() const noexcept { return std::get_if<Scalar>(&m_payload); }
    const Array* AsArray() const noexcept { return std::get_if<Array>(&m_payload); }

    friend bool operator==(const Value&, const Value&) = default;

  private:
    std::variant<std::monostate, Scalar, Array> m_payload;
};

/// A qualifier as it stands on a class, property, method or parameter.
struct Qualifier {
    std::wstring name;
    CIMTYPE type = CIM_BOOLEAN; ///< with CIM_FLAG_ARRAY for arrays
    Value value;
    LONG flavor = 0;      ///< WBEM_FLAVOR_… bits
    bool amended = false; ///< only visible to callers that ask for amended qualifiers
    /// Texts of an amended qualifier in other languages, by Windows language identifier (0x407, …).
    std::map<LCID, Value> localized;
};

/// Qualifiers in the order of their declaration.
class Qualifiers {
  public:
    const Qualifier* Find(std::wstring_view name) const noexcept;
    /// True when the boolean qualifier is present and not false.
    bool Has(std::wstring_view name) const noexcept;
    void Set(Qualifier qualifier);
    bool Remove(std::wstring_view name);
    const std::vector<Qualifier>& All() const noexcept { return m_all; }

  private:
    std::vector<Qualifier> m_all;
};

/// A property of a class, or a parameter of a method.
struct Property {
    std::wstring name;
    CIMTYPE type = CIM_STRING;   ///< with CIM_FLAG_ARRAY for arrays
    std::wstring referenceClass; ///< the class a CIM_REFERENCE points to
    Value defaultValue;
    Qualifiers qualifiers;
    std::wstring origin; ///< the class that declared it first
    bool IsKey() const noexcept { return qualifiers.Has(L"key"); }
};

/// A method of a class. A parameter that is both In and Out stands in both lists.
struct Method {
    std::wstring name;
    CIMTYPE returnType = CIM_UINT32;
    bool returnsVoid = false;
    std::vector<Property> in;
    std::vector<Property> out; ///< without "ReturnValue", which the engine adds last
    Qualifiers qualifiers;
    std::wstring origin;
};

/// A class with everything it inherits; immutable once the repository has taken it.
struct ClassDefinition {
    std::wstring name;
    std::wstring superclass;             ///< empty for a root class
    std::vector<std::wstring> ancestors; ///< nearest first
    std::vector<Property> properties;    ///< inherited ones first, in declaration order
    std::vector<Method> methods;
    Qualifiers qualifiers;

    const Property* FindProperty(std::wstring_view name) const noexcept;
    std::optional<std::size_t> PropertyIndex(std::wstring_view name) const noexcept;
    const Method* FindMethod(std::wstring_view name) const noexcept;
    bool IsA(std::wstring_view className) const noexcept;
    bool IsAssociation() const noexcept { return qualifiers.Has(L"association"); }
};

using ClassPtr = std::shared_ptr<const ClassDefinition>;

/// An instance: its class and one value per property of the class, in the same order.
struct Instance {
    ClassPtr definition;
    std::vector<Value> values;

    Instance() = default;
    /// A new instance with the defaults of its class.
    explicit Instance(ClassPtr cls);
    const Value* Find(std::wstring_view property) const noexcept;
    /// Sets a property; false when the class has no such property.
    bool Set(std::wstring_view property, Value value);
    /// The text of a string property; empty when it is null, absent or not text.
    std::wstring Text(std::wstring_view property) const;
    /// The number of an integer or boolean property, or the fallback.
    std::int64_t Number(std::wstring_view property, std::int64_t fallback = 0) const;
};

using InstancePtr = std::shared_ptr<const Instance>;

/// Whether a value may stand in a property of this CIM type (shape and range); null always may.
bool Fits(const Value& value, CIMTYPE type) noexcept;

} // namespace quillet::simulator
