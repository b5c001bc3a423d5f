// Types of values and of qualifiers.
#include "language/MofBuilder.h"

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::wmi {

namespace {

using Kind = MofToken::Kind;

Scalar IntegerOf(const MofToken& token) {
    return token.negative ? Scalar(static_cast<std::int64_t>(0 - token.magnitude)) : Scalar(token.magnitude);
}

CIMTYPE InferredType(const MofInitialiser& initialiser) {
    CIMTYPE type = CIM_STRING;
    const auto typed = std::find_if(initialiser.items.begin(), initialiser.items.end(),
                                    [](const MofToken& token) { return !token.Is(L"NULL"); });
    if (typed != initialiser.items.end()) {
        switch (typed->kind) {
        case Kind::Integer: {
            const auto fits = [&](CIMTYPE wanted) {
                return std::all_of(typed, initialiser.items.end(), [&](const MofToken& token) {
                    return token.kind != Kind::Integer || Fits(Value(IntegerOf(token)), wanted);
                });
            };
            type = fits(CIM_SINT32) ? CIM_SINT32 : fits(CIM_SINT64) ? CIM_SINT64 : CIM_UINT64;
            break;
        }
        case Kind::Real:
            type = CIM_REAL64;
            break;
        case Kind::Character:
            type = CIM_CHAR16;
            break;
        case Kind::Identifier:
            type = CIM_BOOLEAN;
            break;
        default:
            break;
        }
    }
    return initialiser.isArray ? type | CIM_FLAG_ARRAY : type;
}

} // namespace

std::optional<Scalar> MofBuilder::ScalarOf(MofToken& token, CIMTYPE type) const {
    if (token.Is(L"NULL")) {
        return std::nullopt;
    }
    const auto expected = [&] {
        return L"a value of type " + std::wstring(CimTypeName(type)) + L" was expected";
    };
    Scalar scalar;
    if (token.kind == Kind::Integer || (token.kind == Kind::Character && type == CIM_CHAR16)) {
        scalar = IntegerOf(token);
        if (type == CIM_REAL32 || type == CIM_REAL64) {
            const auto magnitude = static_cast<double>(token.magnitude);
            scalar = token.negative ? -magnitude : magnitude;
        }
    } else if (token.kind == Kind::Real) {
        scalar = token.real;
    } else if (token.kind == Kind::String) {
        scalar = std::move(token.text);
    } else if (token.kind == Kind::Identifier) {
        scalar = token.Is(L"TRUE");
    } else {
        Fail(token.offset, expected());
    }
    if (Fits(scalar, type)) {
        return scalar;
    }
    const bool number = token.kind == Kind::Integer || token.kind == Kind::Real;
    const bool numeric = IsIntegerType(type) || type == CIM_CHAR16 || type == CIM_REAL32;
    if ((number && numeric) || token.kind == Kind::Character) {
        Fail(token.offset, L"value " + FromUtf8(token.written).value_or(std::wstring()) + L" does not fit " +
                               CimTypeName(type));
    }
    if (token.kind == Kind::String && type == CIM_DATETIME) {
        Fail(token.offset,
             L"a datetime has the form \"yyyymmddHHMMSS.mmmmmm+utc\" or \"ddddddddHHMMSS.mmmmmm:000\"");
    }
    Fail(token.offset, expected());
}

Value MofBuilder::ValueOf(MofInitialiser& initialiser, CIMTYPE type, std::size_t limit) const {
    const bool isNull = !initialiser.isArray && initialiser.items.front().Is(L"NULL");
    if (isNull) {
        return Value();
    }
    const CIMTYPE element = ElementType(type);
    if (initialiser.isArray != IsArray(type)) {
        Fail(initialiser.offset, initialiser.isArray ? L"one value was expected, this is an array"
                                                     : L"an array in braces was expected");
    }
    if (!initialiser.isArray) {
        return Normalised(Value(*std::move(ScalarOf(initialiser.items.front(), element))), type);
    }
    if (limit != 0 && initialiser.items.size() > limit) {
        Fail(initialiser.items[limit].offset,
             L"the array holds at most " + std::to_wstring(limit) + L" elements");
    }
    Value::Array array;
    array.reserve(initialiser.items.size());
    for (MofToken& item : initialiser.items) {
        array.push_back(ScalarOf(item, element));
    }
    return Normalised(Value(std::move(array)), type);
}

QualifierDeclaration MofBuilder::DeclarationOf(const MofQualifierUse& use, std::wstring_view name) const {
    if (std::optional<QualifierDeclaration> declared = m_target.FindQualifierDeclaration(name)) {
        return std::move(*declared);
    }
    if (std::optional<QualifierDeclaration> standard = StandardQualifier(name)) {
        return std::move(*standard);
    }
    QualifierDeclaration inferred;
    inferred.name = name;
    inferred.type = use.value ? InferredType(*use.value) : static_cast<CIMTYPE>(CIM_BOOLEAN);
    return inferred;
}

Value MofBuilder::QualifierValue(MofQualifierUse& use, const QualifierDeclaration& declaration) const {
    if (use.value) {
        return ValueOf(*use.value, declaration.type);
    }
    return declaration.type == CIM_BOOLEAN ? Value::Bool(true) : Value();
}

Qualifiers MofBuilder::QualifiersOf(std::vector<MofQualifierUse>& uses, unsigned scope,
                                    const wchar_t* element) const {
    Qualifiers qualifiers;
    for (MofQualifierUse& use : uses) {
        if (!SplitLocale(use.name)) {
            const QualifierDeclaration declaration = DeclarationOf(use, use.name);
            if ((declaration.scope & scope) == 0) {
                Fail(use.offset, L"qualifier " + Quoted(use.name) + L" is not allowed on a " + element);
            }
            Qualifier qualifier;
            qualifier.name = declaration.name;
            qualifier.type = declaration.type;
            qualifier.value = QualifierValue(use, declaration);
            qualifier.flavor = (declaration.flavor | use.set) & ~use.cleared;
            qualifier.amended = use.amended;
            qualifiers.Set(std::move(qualifier));
        }
    }
    for (MofQualifierUse& use : uses) {
        if (const std::optional<LocalisedName> name = SplitLocale(use.name)) {
            Localise(qualifiers, use, *name);
        }
    }
    for (Qualifier qualifier : std::vector<Qualifier>(qualifiers.All())) {
        if (qualifier.amended) {
            qualifier.flavor |= static_cast<LONG>(WBEM_FLAVOR_AMENDED);
            qualifiers.Set(std::move(qualifier));
        }
    }
    return qualifiers;
}

void MofBuilder::Localise(Qualifiers& qualifiers, MofQualifierUse& use, const LocalisedName& name) const {
    const Qualifier* base = qualifiers.Find(name.base);
    if (base == nullptr) {
        Fail(use.offset, L"qualifier " + Quoted(use.name) + L" translates " + Quoted(name.base) +
                             L", which does not stand here");
    }
    if (name.languages.empty()) {
        Fail(use.offset, L"locale " + Quoted(name.locale) + L" is not known");
    }
    Qualifier localised = *base;
    QualifierDeclaration declaration;
    declaration.type = base->type;
    const Value value = QualifierValue(use, declaration);
    for (const LCID language : name.languages) {
        localised.localized[language] = value;
    }
    localised.amended = true;
    qualifiers.Set(std::move(localised));
}

} // namespace quillet::wmi
