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

namespace quillet::wmi {

/// Three-way comparison of two CIM names without regard to case.
int CompareNames(std::wstring_view left, std::wstring_view right) noexcept;
inline bool SameName(std::wstring_view left, std::wstring_view right) noexcept {
    // No letter changes its length with its case.
    return left.size() == right.size() && CompareNames(left, right) == 0;
}

/// Orders names without regard to case; for std::map and std::set.
struct NameLess {
    /// Look-ups by any kind of text.
    using is_transparent = void;
    /// Whether the left name comes first.
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept {
        return CompareNames(left, right) < 0;
    }
};

struct Instance;

/// An instance that is the value of a property; never null.
struct Embedded {
    std::shared_ptr<const Instance> object; ///< the instance
    /// Whether class and values are the same.
    friend bool operator==(const Embedded& left, const Embedded& right);
};

/// One CIM scalar. Integers are held in the width of their signedness, strings, references and
/// datetimes as text, char16 as an unsigned number. The CIM type itself belongs to the property.
using Scalar = std::variant<bool, std::int64_t, std::uint64_t, double, std::wstring, Embedded>;

/// A CIM value: null, one scalar, or an array whose elements may be null.
///
/// An array of uint8 without nulls is held as its bytes, which all copies of the value share: flash images
/// have millions of elements and pass through many hands.
class Value {
  public:
    /// The elements; nothing stands for null.
    using Array = std::vector<std::optional<Scalar>>;
    /// The elements of an array of uint8.
    using Bytes = std::vector<std::uint8_t>;

    Value() = default;
    /// One scalar.
    explicit Value(Scalar scalar) : m_payload(std::move(scalar)) {}
    /// An array.
    explicit Value(Array array) : m_payload(std::move(array)) {}
    /// An array of uint8.
    explicit Value(Bytes bytes) : m_payload(std::make_shared<const Bytes>(std::move(bytes))) {}
    /// A text, reference or datetime.
    static Value Text(std::wstring text) { return Value(Scalar(std::move(text))); }
    /// A truth value.
    static Value Bool(bool flag) { return Value(Scalar(flag)); }
    /// A number of a signed type.
    static Value Signed(std::int64_t number) { return Value(Scalar(number)); }
    /// A number of an unsigned type.
    static Value Unsigned(std::uint64_t number) { return Value(Scalar(number)); }

    /// Whether there is no value.
    bool IsNull() const noexcept { return std::holds_alternative<std::monostate>(m_payload); }
    /// Whether it is an array, in either form.
    bool IsArray() const noexcept { return AsArray() != nullptr || AsBytes() != nullptr; }
    /// The scalar; null for what is none.
    const Scalar* AsScalar() const noexcept { return std::get_if<Scalar>(&m_payload); }
    /// Null for an array that is held as bytes; see Elements().
    const Array* AsArray() const noexcept { return std::get_if<Array>(&m_payload); }
    /// The bytes of an array that is held as such; null for anything else.
    const Bytes* AsBytes() const noexcept {
        const auto* bytes = std::get_if<SharedBytes>(&m_payload);
        return bytes != nullptr ? bytes->get() : nullptr;
    }
    /// The elements of an array in either form; none for what is no array.
    Array Elements() const;
    /// How many there are.
    std::size_t Size() const noexcept;

    /// The form in which an array is held makes no difference.
    friend bool operator==(const Value& left, const Value& right);

  private:
    using SharedBytes = std::shared_ptr<const Bytes>;
    std::variant<std::monostate, Scalar, Array, SharedBytes> m_payload;
};

/// A qualifier as it stands on a class, property, method or parameter.
struct Qualifier {
    std::wstring name;          ///< as it was declared
    CIMTYPE type = CIM_BOOLEAN; ///< with CIM_FLAG_ARRAY for arrays
    Value value;                ///< what it says, in the schema's own language
    LONG flavor = 0;            ///< WBEM_FLAVOR_… bits
    bool amended = false;       ///< only visible to callers that ask for amended qualifiers
    /// Texts of an amended qualifier in other languages, by Windows language identifier (0x407, …).
    std::map<LCID, Value> localized;
};

/// Qualifiers in the order of their declaration.
class Qualifiers {
  public:
    /// The qualifier of that name; null when there is none.
    const Qualifier* Find(std::wstring_view name) const noexcept;
    /// True when the boolean qualifier is present and not false.
    bool Has(std::wstring_view name) const noexcept;
    /// Adds a qualifier, or replaces that of its name.
    void Set(Qualifier qualifier);
    /// Takes a qualifier away; false when there is none of that name.
    bool Remove(std::wstring_view name);
    /// Those that a subclass takes over, marked as such.
    Qualifiers Inherited() const;
    /// All of them.
    const std::vector<Qualifier>& All() const noexcept { return m_all; }

  private:
    std::vector<Qualifier> m_all;
};

/// A property of a class, or a parameter of a method.
struct Property {
    std::wstring name;           ///< as it was declared
    CIMTYPE type = CIM_STRING;   ///< with CIM_FLAG_ARRAY for arrays
    std::wstring referenceClass; ///< the class that a CIM_REFERENCE points to, or a CIM_OBJECT is one of
    Value defaultValue;          ///< what a new instance has
    Qualifiers qualifiers;       ///< its own and those that it inherits
    std::wstring origin;         ///< the class that declared it first
    std::size_t arrayLimit = 0;  ///< the most elements that the array may have; 0 for any number
    bool inherited = false;      ///< taken over from the superclass as it is
    /// Whether it is part of the keys of its class.
    bool IsKey() const noexcept { return qualifiers.Has(L"key"); }
};

/// A method of a class. A parameter that is both In and Out stands in both lists.
struct Method {
    std::wstring name;               ///< as it was declared
    CIMTYPE returnType = CIM_UINT32; ///< the CIM type of "ReturnValue"
    bool returnsVoid = false;        ///< whether it has no "ReturnValue"
    std::vector<Property> in;        ///< the in-parameters, in their order
    std::vector<Property> out;       ///< without "ReturnValue", which the engine adds last
    Qualifiers qualifiers;           ///< of the method itself
    std::wstring origin;             ///< the class that declared it first
    bool inherited = false;          ///< taken over from the superclass as it is
};

/// A class with everything it inherits; immutable once the repository has taken it.
struct ClassDefinition {
    std::wstring name;                   ///< as it was declared
    std::wstring superclass;             ///< empty for a root class
    std::vector<std::wstring> ancestors; ///< nearest first
    std::vector<Property> properties;    ///< inherited ones first, in declaration order
    std::vector<Method> methods;         ///< those that it inherits first
    Qualifiers qualifiers;               ///< its own and those that it inherits
    /// A query left key properties out, so that its instances have no path.
    bool lacksKeys = false;

    /// The property of that name; null when there is none.
    const Property* FindProperty(std::wstring_view name) const noexcept;
    /// Its place among the properties.
    std::optional<std::size_t> PropertyIndex(std::wstring_view name) const noexcept;
    /// The method of that name; null when there is none.
    const Method* FindMethod(std::wstring_view name) const noexcept;
    /// Whether it is that class, or derived from it.
    bool IsA(std::wstring_view className) const noexcept;
    /// Whether its instances associate others.
    bool IsAssociation() const noexcept { return qualifiers.Has(L"association"); }
};

using ClassPtr = std::shared_ptr<const ClassDefinition>;

/// An instance: its class and one value per property of the class, in the same order.
struct Instance {
    ClassPtr definition;       ///< its class
    std::vector<Value> values; ///< one for each property of the class

    Instance() = default;
    /// A new instance with the defaults of its class.
    explicit Instance(ClassPtr cls);
    /// The value of a property; null when the class has none of that name.
    const Value* Find(std::wstring_view property) const noexcept;
    /// Sets a property; false when the class has no such property. A number that fits the property is
    /// brought into the signedness of its type.
    bool Set(std::wstring_view property, Value value);
    /// The text of a string property; empty when it is null, absent or not text.
    std::wstring Text(std::wstring_view property) const;
    /// The number of an integer or boolean property, or the fallback.
    std::int64_t Number(std::wstring_view property, std::int64_t fallback = 0) const;
};

using InstancePtr = std::shared_ptr<const Instance>;

/// The in-parameters of a method as a class named __PARAMETERS; null when it has none.
ClassPtr InSignature(const Method& method);
/// The same for the out-parameters, of which the return value is the last.
ClassPtr OutSignature(const Method& method);

/// A class that has only some of the properties of another, for SELECT with a list.
ClassPtr Project(const ClassDefinition& definition, const std::vector<std::wstring>& names);

/// Where a qualifier may stand; bits.
enum QualifierScope : unsigned {
    ScopeClass = 1,
    ScopeAssociation = 2,
    ScopeIndication = 4,
    ScopeProperty = 8,
    ScopeReference = 16,
    ScopeMethod = 32,
    ScopeParameter = 64,
    ScopeSchema = 128,
    ScopeAny = 255
};

/// What is known of a qualifier before it is used.
struct QualifierDeclaration {
    std::wstring name;                                         ///< its name
    CIMTYPE type = CIM_BOOLEAN;                                ///< its CIM type
    Value defaultValue;                                        ///< what it is where it stands without a value
    unsigned scope = ScopeAny;                                 ///< QualifierScope bits
    LONG flavor = WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS; ///< WBEM_FLAVOR_… bits
};

/// How a write treats an instance that is (not) there yet.
enum class WriteMode { CreateOrUpdate, CreateOnly, UpdateOnly };

/// Whether a value may stand in a property of this CIM type (shape and range); null always may.
/// Integers of either signedness fit where their number does.
bool Fits(const Value& value, CIMTYPE type) noexcept;
/// The same for one element, whose type has no array flag.
bool Fits(const Scalar& scalar, CIMTYPE type) noexcept;
/// A value that fits, in the form in which values of the type are held (see Scalar), so that equal values
/// compare equal.
Value Normalised(Value value, CIMTYPE type);

/// "uint32", "string" and so on, without regard to the array flag; null for what is no CIM type.
const wchar_t* CimTypeName(CIMTYPE type) noexcept;
/// The type without the flag of arrays.
constexpr CIMTYPE ElementType(CIMTYPE type) noexcept {
    return type & ~CIMTYPE(CIM_FLAG_ARRAY);
}
/// Whether it is the type of an array.
constexpr bool IsArray(CIMTYPE type) noexcept {
    return (type & CIM_FLAG_ARRAY) != 0;
}
/// "uint32", "string", "ref:T_Device": the text of the CIMTYPE qualifier, without array brackets.
std::wstring CimTypeText(CIMTYPE type, std::wstring_view referenceClass);
/// An integer of the signedness in which a CIM type is held.
Value Integer(CIMTYPE type, std::int64_t number);
/// Whether the type (without its array flag) is one of the eight integer types.
bool IsIntegerType(CIMTYPE type) noexcept;
/// Whether a text is a CIM datetime: yyyymmddHHMMSS.mmmmmm+utc or ddddddddHHMMSS.mmmmmm:000, where an
/// asterisk stands for a digit that is left open.
bool IsDateTime(std::wstring_view text) noexcept;
/// Whether a text may be the name of a class, property, method or qualifier.
bool IsIdentifier(std::wstring_view text) noexcept;
/// Whether a character may begin an identifier, or stand in it.
bool IsIdentifierStart(wchar_t character) noexcept;
bool IsIdentifierCharacter(wchar_t character) noexcept;

} // namespace quillet::wmi
