// From tokens to the small forms of MOF.
#include "language/MofParser.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <set>

namespace quillet::wmi {

namespace {

using TokenKind = MofToken::Kind;

} // namespace

void MofParser::Fail(std::size_t offset, const std::wstring& message) const {
    throw m_source->Error(offset, message);
}

void MofParser::Expected(const std::wstring& what) const {
    const std::wstring end = m_token.kind == TokenKind::End ? L", but the text ends here" : L"";
    Fail(m_token.offset, what + L" was expected" + end);
}

MofToken MofParser::Take() {
    MofToken token = std::move(m_token);
    Advance();
    return token;
}

bool MofParser::Accept(char symbol) {
    if (!m_token.Is(symbol)) {
        return false;
    }
    Advance();
    return true;
}

bool MofParser::Accept(std::wstring_view keyword) {
    if (!m_token.Is(keyword)) {
        return false;
    }
    Advance();
    return true;
}

void MofParser::Require(char symbol) {
    if (!Accept(symbol)) {
        Expected(std::wstring(L"'") + static_cast<wchar_t>(symbol) + L"'");
    }
}

std::wstring MofParser::Name(const wchar_t* what) {
    if (m_token.kind != TokenKind::Identifier) {
        Expected(what);
    }
    std::wstring name = std::move(m_token.text);
    Advance();
    return name;
}

MofInitialiser MofParser::Initialiser(bool withAliases) {
    MofInitialiser initialiser;
    ReadInitialiser(withAliases, initialiser);
    return initialiser;
}

void MofParser::ReadInitialiser(bool withAliases, MofInitialiser& initialiser) {
    initialiser.offset = m_token.offset;
    initialiser.items.clear();
    initialiser.isArray = Accept('{');
    if (!initialiser.isArray) {
        initialiser.items.push_back(Item(withAliases));
        return;
    }
    if (Accept('}')) {
        return;
    }
    do {
        initialiser.items.push_back(Item(withAliases));
    } while (Accept(','));
    Require('}');
}

MofToken MofParser::Item(bool withAliases) {
    const bool word = m_token.Is(L"TRUE") || m_token.Is(L"FALSE") || m_token.Is(L"NULL");
    const bool literal = m_token.kind == TokenKind::Integer || m_token.kind == TokenKind::Real ||
                         m_token.kind == TokenKind::String || m_token.kind == TokenKind::Character;
    if (!word && !literal && !(withAliases && m_token.kind == TokenKind::Alias)) {
        Expected(withAliases ? L"a value or an alias" : L"a value");
    }
    return Take();
}

std::vector<MofQualifierUse> MofParser::QualifierList() {
    std::vector<MofQualifierUse> uses;
    if (!Accept('[')) {
        return uses;
    }
    std::set<std::wstring, NameLess> names;
    do {
        MofQualifierUse use;
        use.offset = m_token.offset;
        use.name = Name(L"a qualifier");
        if (!names.insert(use.name).second) {
            Fail(use.offset, L"qualifier " + Quoted(use.name) + L" stands twice");
        }
        if (m_token.Is('{')) {
            use.value = Initialiser(false);
        } else if (Accept('(')) {
            use.value = Initialiser(false);
            Require(')');
        }
        if (Accept(':')) {
            do {
                UseFlavor(use);
            } while (m_token.kind == TokenKind::Identifier);
        }
        uses.push_back(std::move(use));
    } while (Accept(','));
    Require(']');
    return uses;
}

void MofParser::UseFlavor(MofQualifierUse& use) {
    if (m_token.Is(L"Translatable") || m_token.Is(L"Amended")) {
        use.amended = true;
        Advance();
    } else {
        Flavor(use.set, use.cleared);
    }
}

void MofParser::Flavor(LONG& set, LONG& cleared) {
    struct Known {
        const wchar_t* name;
        LONG set;
        LONG cleared;
    };
    static constexpr LONG kToSubclass = WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS;
    static constexpr LONG kToInstance = WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE;
    static constexpr LONG kFixed = WBEM_FLAVOR_NOT_OVERRIDABLE;
    static constexpr Known kKnown[] = {
        {L"EnableOverride", 0, kFixed},
        {L"DisableOverride", kFixed, 0},
        {L"ToSubclass", kToSubclass, 0},
        {L"Restricted", 0, kToSubclass},
        {L"NotToSubclass", 0, kToSubclass},
        {L"ToInstance", kToInstance, 0},
        {L"NotToInstance", 0, kToInstance},
        {L"Translatable", 0, 0},
        {L"Amended", 0, 0},
    };
    for (const Known& known : kKnown) {
        if (Accept(known.name)) {
            set |= known.set;
            cleared |= known.cleared;
            return;
        }
    }
    if (m_token.kind == TokenKind::Identifier) {
        Fail(m_token.offset, L"unknown flavor " + Quoted(m_token.text));
    }
    Expected(L"a flavor");
}

unsigned MofParser::Scopes() {
    struct Known {
        const wchar_t* name;
        unsigned scope;
    };
    static constexpr Known kKnown[] = {
        {L"class", ScopeClass},         {L"association", ScopeAssociation}, {L"indication", ScopeIndication},
        {L"property", ScopeProperty},   {L"reference", ScopeReference},     {L"method", ScopeMethod},
        {L"parameter", ScopeParameter}, {L"schema", ScopeSchema},           {L"any", ScopeAny},
    };
    unsigned scopes = 0;
    Require('(');
    do {
        const auto* known = std::find_if(std::begin(kKnown), std::end(kKnown),
                                         [this](const Known& each) { return m_token.Is(each.name); });
        if (known == std::end(kKnown)) {
            Expected(L"a scope (class, property, method …)");
        }
        scopes |= known->scope;
        Advance();
    } while (Accept(','));
    Require(')');
    return scopes;
}

std::optional<CIMTYPE> MofParser::TypeOf(std::wstring_view name) {
    for (const int type :
         {CIM_SINT8, CIM_UINT8, CIM_SINT16, CIM_UINT16, CIM_SINT32, CIM_UINT32, CIM_SINT64, CIM_UINT64,
          CIM_REAL32, CIM_REAL64, CIM_BOOLEAN, CIM_STRING, CIM_DATETIME, CIM_CHAR16}) {
        if (SameName(CimTypeName(type), name)) {
            return type;
        }
    }
    return std::nullopt;
}

CIMTYPE MofParser::DataType() {
    const std::size_t offset = m_token.offset;
    const std::wstring name = Name(L"a type");
    const std::optional<CIMTYPE> type = TypeOf(name);
    if (!type) {
        Fail(offset, L"unknown type " + Quoted(name));
    }
    return *type;
}

CIMTYPE MofParser::ArraySuffix(std::size_t& limit) {
    if (!Accept('[')) {
        return 0;
    }
    if (m_token.kind == TokenKind::Integer) {
        constexpr std::uint64_t kMost = 1u << 20;
        if (m_token.negative || m_token.magnitude == 0 || m_token.magnitude > kMost) {
            Fail(m_token.offset, L"an array has a size from 1 to 1048576");
        }
        limit = static_cast<std::size_t>(m_token.magnitude);
        Advance();
    }
    Require(']');
    return CIM_FLAG_ARRAY;
}

} // namespace quillet::wmi
