// From MOF tokens to classes and instances in a target.
#include <quillet-wmi/Mof.h>
#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Text.h>

#include "language/MofLexer.h"
#include "language/MofQualifiers.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <set>

namespace quillet::wmi {

namespace {

using Kind = MofToken::Kind;
using Declaration = wmi::QualifierDeclaration;

constexpr CIMTYPE kArray = CIM_FLAG_ARRAY;
constexpr std::size_t kMaximumIncludeDepth = 16;

std::filesystem::path PathOf(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string TextOf(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::optional<std::string> ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    // A folder opens, too, and fails only now. What the buffer throws then is the stream's to catch, which an
    // iterator over the buffer would go around.
    std::string text;
    std::array<char, 1 << 14> part{};
    while (stream.read(part.data(), part.size()) || stream.gcount() != 0) {
        text.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    }
    return stream.bad() ? std::nullopt : std::optional(std::move(text));
}

std::shared_ptr<const MofSource> Source(const std::filesystem::path& file) {
    const std::optional<std::string> text = ReadFile(file);
    if (!text) {
        throw MofError(TextOf(file), 1, 1, "the file cannot be read");
    }
    return std::make_shared<const MofSource>(TextOf(file), *text);
}

/// A place in a text that outlives the reading of the text.
struct Place {
    std::shared_ptr<const MofSource> source;
    std::size_t offset = 0;
    [[noreturn]] void Fail(const std::wstring& message) const { throw source->Error(offset, message); }
};

/// An initialiser as written; its type comes from what it initialises.
struct Initialiser {
    std::size_t offset = 0;
    bool isArray = false;
    std::vector<MofToken> items; ///< one unless it is an array
};

/// A qualifier as written.
struct QualifierUse {
    std::size_t offset = 0;
    std::wstring name;
    std::optional<Initialiser> value;
    LONG set = 0;         ///< flavour bits stated
    LONG cleared = 0;     ///< flavour bits denied
    bool amended = false; ///< Translatable or Amended
};

/// What all files of one compilation share.
struct Unit {
    Unit(MofTarget& into, InstanceCheck each) : target(into), check(std::move(each)) {}

    struct Alias {
        ClassPtr definition;
        std::optional<std::wstring> path; ///< unknown until the instance's keys are
    };
    struct AliasUse {
        std::size_t property = 0;
        std::wstring alias;
        Place place;
    };
    /// An instance that refers to instances which come later in the text.
    struct Waiting {
        Instance instance;
        std::vector<AliasUse> uses;
        std::wstring alias;
        Place place;
    };
    struct ClassUse {
        std::wstring name;
        Place place;
    };

    MofTarget& target;
    InstanceCheck check;
    std::map<std::wstring, Alias, NameLess> aliases;
    std::vector<Waiting> waiting;
    std::vector<ClassUse> referencedClasses;
    std::set<InstancePtr> stored; ///< what this compilation stored
    std::vector<std::filesystem::path> openFiles;

    void Store(Instance instance, const Place& place);
    /// Replaces the aliases that are known by paths; true when none is left.
    bool Resolve(Waiting& entry);
    void Finish();
};

void Unit::Store(Instance instance, const Place& place) {
    const std::wstring path = RelativePath(instance);
    std::wstring reason;
    const ClassPtr definition = instance.definition;
    // A text may bring anew what an earlier one stored, but not say two things about one object.
    const InstancePtr present = target.FindInstance(path);
    if (present && stored.find(present) != stored.end()) {
        place.Fail(L"duplicate key: " + path + L" is there already");
    }
    if (check) {
        try {
            check(instance);
        } catch (const std::invalid_argument& refused) {
            place.Fail(FromUtf8(refused.what()).value_or(L"it cannot be used"));
        }
    }
    if (target.PutInstance(std::move(instance), WriteMode::CreateOrUpdate, &reason) != 0) {
        place.Fail(L"instance of " + Quoted(definition->name) + L": " + reason);
    }
    stored.insert(target.FindInstance(path));
}

bool Unit::Resolve(Waiting& entry) {
    const std::vector<Property>& properties = entry.instance.definition->properties;
    const auto replace = [&](const AliasUse& use) {
        const auto found = aliases.find(use.alias);
        if (found == aliases.end() || !found->second.path) {
            return false;
        }
        const Property& property = properties[use.property];
        if (!property.referenceClass.empty() && !found->second.definition->IsA(property.referenceClass)) {
            use.place.Fail(L"'$" + use.alias + L"' is a " + found->second.definition->name +
                           L", but property " + Quoted(property.name) + L" refers to a " +
                           property.referenceClass);
        }
        entry.instance.values[use.property] = Value::Text(*found->second.path);
        return true;
    };
    std::erase_if(entry.uses, replace);
    const bool keysKnown = std::none_of(entry.uses.begin(), entry.uses.end(), [&](const AliasUse& use) {
        return properties[use.property].IsKey();
    });
    // The keys alone make the path, so instances may refer to each other, and one to itself.
    if (keysKnown && !entry.alias.empty() && !aliases[entry.alias].path) {
        aliases[entry.alias].path = RelativePath(entry.instance);
        std::erase_if(entry.uses, replace);
    }
    return entry.uses.empty();
}

void Unit::Finish() {
    for (const ClassUse& use : referencedClasses) {
        if (!target.FindClass(use.name)) {
            use.place.Fail(L"unknown class " + Quoted(use.name));
        }
    }
    while (!waiting.empty()) {
        const std::size_t before = waiting.size();
        std::vector<Waiting> left;
        for (Waiting& entry : waiting) {
            if (Resolve(entry)) {
                Store(std::move(entry.instance), entry.place);
            } else {
                left.push_back(std::move(entry));
            }
        }
        waiting = std::move(left);
        if (waiting.size() == before) {
            const AliasUse& use = waiting.front().uses.front();
            use.place.Fail(aliases.find(use.alias) == aliases.end()
                               ? L"unknown alias '$" + use.alias + L"'"
                               : L"alias '$" + use.alias + L"' needs itself to be resolved");
        }
    }
}

/// Reads one file.
class FileCompiler {
  public:
    FileCompiler(Unit& unit, std::shared_ptr<const MofSource> source, std::filesystem::path folder)
        : m_unit(unit), m_source(std::move(source)), m_folder(std::move(folder)), m_lexer(*m_source) {}

    void Run() {
        Advance();
        while (m_token.kind != Kind::End) {
            Production();
        }
    }

  private:
    [[noreturn]] void Fail(std::size_t offset, const std::wstring& message) const {
        throw m_source->Error(offset, message);
    }
    [[noreturn]] void Expected(const std::wstring& what) const {
        const std::wstring end = m_token.kind == Kind::End ? L", but the text ends here" : L"";
        Fail(m_token.offset, what + L" was expected" + end);
    }
    Place Here(std::size_t offset) const { return {m_source, offset}; }

    void Advance() { m_token = m_lexer.Next(); }
    bool Accept(char symbol) {
        if (!m_token.Is(symbol)) {
            return false;
        }
        Advance();
        return true;
    }
    bool Accept(std::wstring_view keyword) {
        if (!m_token.Is(keyword)) {
            return false;
        }
        Advance();
        return true;
    }
    void Require(char symbol) {
        if (!Accept(symbol)) {
            Expected(std::wstring(L"'") + static_cast<wchar_t>(symbol) + L"'");
        }
    }
    std::wstring Name(const wchar_t* what) {
        if (m_token.kind != Kind::Identifier) {
            Expected(what);
        }
        std::wstring name = std::move(m_token.text);
        Advance();
        return name;
    }

    void Production() {
        if (m_token.kind == Kind::Pragma) {
            Pragma();
        } else if (m_token.Is(L"Qualifier")) {
            QualifierDeclaration();
        } else {
            const std::vector<QualifierUse> qualifiers = QualifierList();
            const std::size_t offset = m_token.offset;
            if (Accept(L"class")) {
                Class(qualifiers, offset);
            } else if (Accept(L"instance")) {
                InstanceOf(offset);
            } else {
                Expected(qualifiers.empty() ? L"'class', 'instance', 'Qualifier' or '#pragma'"
                                            : L"'class' or 'instance' after the qualifiers");
            }
        }
    }

    // #pragma name ( "text" ). The namespace is not looked at: a target is one namespace, whatever
    // the text was written for.
    void Pragma() {
        Advance();
        const std::wstring name = Name(L"the name of a pragma");
        if (!m_token.Is('(')) {
            return;
        }
        Advance();
        if (SameName(name, L"include")) {
            if (m_token.kind != Kind::String) {
                Expected(L"the name of a file in quotes");
            }
            const MofToken file = m_token;
            Advance();
            Require(')');
            Include(file);
            return;
        }
        while (!m_token.Is(')')) {
            if (m_token.kind == Kind::End) {
                Expected(L"')'");
            }
            Advance();
        }
        Advance();
    }

    void Include(const MofToken& name) {
        if (m_unit.openFiles.empty()) {
            Fail(name.offset, L"this text is not read from a file and has no place to include one from");
        }
        if (m_unit.openFiles.size() == kMaximumIncludeDepth) {
            Fail(name.offset, L"includes are nested too deeply");
        }
        std::string relative = ToUtf8(name.text);
        std::replace(relative.begin(), relative.end(), '\\', '/');
        std::error_code error;
        const std::filesystem::path file = m_folder / PathOf(relative);
        const std::filesystem::path known = std::filesystem::weakly_canonical(file, error);
        if (error || !std::filesystem::is_regular_file(file, error)) {
            Fail(name.offset, L"file " + Quoted(name.text) + L" is not there");
        }
        if (std::find(m_unit.openFiles.begin(), m_unit.openFiles.end(), known) != m_unit.openFiles.end()) {
            Fail(name.offset, L"file " + Quoted(name.text) + L" includes itself");
        }
        const std::optional<std::string> text = ReadFile(file);
        if (!text) {
            Fail(name.offset, L"file " + Quoted(name.text) + L" cannot be read");
        }
        m_unit.openFiles.push_back(known);
        FileCompiler(m_unit, std::make_shared<const MofSource>(TextOf(file), *text), file.parent_path())
            .Run();
        m_unit.openFiles.pop_back();
    }

    // Initialisers

    Initialiser Read(bool withAliases) {
        Initialiser initialiser;
        initialiser.offset = m_token.offset;
        if (!Accept('{')) {
            initialiser.items.push_back(Item(withAliases));
            return initialiser;
        }
        initialiser.isArray = true;
        if (Accept('}')) {
            return initialiser;
        }
        do {
            initialiser.items.push_back(Item(withAliases));
        } while (Accept(','));
        Require('}');
        return initialiser;
    }

    MofToken Item(bool withAliases) {
        const bool word = m_token.Is(L"TRUE") || m_token.Is(L"FALSE") || m_token.Is(L"NULL");
        const bool literal = m_token.kind == Kind::Integer || m_token.kind == Kind::Real ||
                             m_token.kind == Kind::String || m_token.kind == Kind::Character;
        if (!word && !literal && !(withAliases && m_token.kind == Kind::Alias)) {
            Expected(withAliases ? L"a value or an alias" : L"a value");
        }
        MofToken item = std::move(m_token);
        Advance();
        return item;
    }

    static Scalar IntegerOf(const MofToken& token) {
        return token.negative ? Scalar(static_cast<std::int64_t>(0 - token.magnitude))
                              : Scalar(token.magnitude);
    }

    /// One element of the CIM type; nothing for NULL.
    std::optional<Scalar> ScalarOf(const MofToken& token, CIMTYPE type) const {
        if (token.Is(L"NULL")) {
            return std::nullopt;
        }
        const std::wstring typeName = CimTypeName(type);
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
            scalar = token.text;
        } else if (token.kind == Kind::Identifier) {
            scalar = token.Is(L"TRUE");
        } else {
            Fail(token.offset, L"a value of type " + typeName + L" was expected");
        }
        if (Fits(Value(scalar), type)) {
            return scalar;
        }
        const bool number = token.kind == Kind::Integer || token.kind == Kind::Real;
        const bool numeric = IsIntegerType(type) || type == CIM_CHAR16 || type == CIM_REAL32;
        if ((number && numeric) || token.kind == Kind::Character) {
            Fail(token.offset, L"value " + token.text + L" does not fit " + typeName);
        }
        if (token.kind == Kind::String && type == CIM_DATETIME) {
            Fail(token.offset,
                 L"a datetime has the form \"yyyymmddHHMMSS.mmmmmm+utc\" or \"ddddddddHHMMSS.mmmmmm:000\"");
        }
        Fail(token.offset, L"a value of type " + typeName + L" was expected");
    }

    Value ValueOf(const Initialiser& initialiser, CIMTYPE type, std::size_t limit = 0) const {
        const bool isNull = !initialiser.isArray && initialiser.items.front().Is(L"NULL");
        if (isNull) {
            return Value();
        }
        const CIMTYPE element = type & ~kArray;
        if (initialiser.isArray != ((type & kArray) != 0)) {
            Fail(initialiser.offset, initialiser.isArray ? L"one value was expected, this is an array"
                                                         : L"an array in braces was expected");
        }
        if (!initialiser.isArray) {
            return Normalised(Value(*ScalarOf(initialiser.items.front(), element)), type);
        }
        if (limit != 0 && initialiser.items.size() > limit) {
            Fail(initialiser.items[limit].offset,
                 L"the array holds at most " + std::to_wstring(limit) + L" elements");
        }
        Value::Array array;
        for (const MofToken& item : initialiser.items) {
            array.push_back(ScalarOf(item, element));
        }
        return Normalised(Value(std::move(array)), type);
    }

    // Qualifiers

    std::vector<QualifierUse> QualifierList() {
        std::vector<QualifierUse> uses;
        if (!Accept('[')) {
            return uses;
        }
        std::set<std::wstring, NameLess> names;
        do {
            QualifierUse use;
            use.offset = m_token.offset;
            use.name = Name(L"a qualifier");
            if (!names.insert(use.name).second) {
                Fail(use.offset, L"qualifier " + Quoted(use.name) + L" stands twice");
            }
            if (m_token.Is('{')) {
                use.value = Read(false);
            } else if (Accept('(')) {
                use.value = Read(false);
                Require(')');
            }
            if (Accept(':')) {
                do {
                    UseFlavor(use);
                } while (m_token.kind == Kind::Identifier);
            }
            uses.push_back(std::move(use));
        } while (Accept(','));
        Require(']');
        return uses;
    }

    void UseFlavor(QualifierUse& use) {
        if (m_token.Is(L"Translatable") || m_token.Is(L"Amended")) {
            use.amended = true;
            Advance();
        } else {
            Flavor(use.set, use.cleared);
        }
    }

    void Flavor(LONG& set, LONG& cleared) {
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
        if (m_token.kind == Kind::Identifier) {
            Fail(m_token.offset, L"unknown flavor " + Quoted(m_token.text));
        }
        Expected(L"a flavor");
    }

    Declaration DeclarationOf(const QualifierUse& use, std::wstring_view name) const {
        if (std::optional<Declaration> declared = m_unit.target.FindQualifierDeclaration(name)) {
            return std::move(*declared);
        }
        if (std::optional<Declaration> standard = StandardQualifier(name)) {
            return std::move(*standard);
        }
        Declaration inferred;
        inferred.name = name;
        inferred.type = use.value ? InferredType(*use.value) : static_cast<CIMTYPE>(CIM_BOOLEAN);
        return inferred;
    }

    static CIMTYPE InferredType(const Initialiser& initialiser) {
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
        return initialiser.isArray ? type | kArray : type;
    }

    Value QualifierValue(const QualifierUse& use, const Declaration& declaration) const {
        if (use.value) {
            return ValueOf(*use.value, declaration.type);
        }
        return declaration.type == CIM_BOOLEAN ? Value::Bool(true) : Value();
    }

    Qualifiers Build(const std::vector<QualifierUse>& uses, unsigned scope, const wchar_t* element) const {
        Qualifiers qualifiers;
        for (const QualifierUse& use : uses) {
            if (!SplitLocale(use.name)) {
                const Declaration declaration = DeclarationOf(use, use.name);
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
        for (const QualifierUse& use : uses) {
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

    void Localise(Qualifiers& qualifiers, const QualifierUse& use, const LocalisedName& name) const {
        const Qualifier* base = qualifiers.Find(name.base);
        if (base == nullptr) {
            Fail(use.offset, L"qualifier " + Quoted(use.name) + L" translates " + Quoted(name.base) +
                                 L", which does not stand here");
        }
        if (name.languages.empty()) {
            Fail(use.offset, L"locale " + Quoted(name.locale) + L" is not known");
        }
        Qualifier localised = *base;
        Declaration declaration;
        declaration.type = base->type;
        const Value value = QualifierValue(use, declaration);
        for (const LCID language : name.languages) {
            localised.localized[language] = value;
        }
        localised.amended = true;
        qualifiers.Set(std::move(localised));
    }

    void QualifierDeclaration() {
        Advance();
        const std::size_t offset = m_token.offset;
        Declaration declaration;
        declaration.name = Name(L"the name of a qualifier");
        Require(':');
        declaration.type = DataType();
        std::size_t limit = 0;
        declaration.type |= ArraySuffix(limit);
        if (Accept('=')) {
            declaration.defaultValue = ValueOf(Read(false), declaration.type, limit);
        }
        while (Accept(',')) {
            if (Accept(L"Scope")) {
                declaration.scope = Scopes();
            } else if (Accept(L"Flavor")) {
                LONG set = 0;
                LONG cleared = 0;
                Require('(');
                do {
                    Flavor(set, cleared);
                } while (Accept(','));
                Require(')');
                declaration.flavor = (declaration.flavor | set) & ~cleared;
            } else {
                Expected(L"Scope or Flavor");
            }
        }
        Require(';');
        if (m_unit.target.DeclareQualifier(declaration) != 0) {
            Fail(offset,
                 L"qualifier " + Quoted(declaration.name) + L" is declared already with another type");
        }
    }

    unsigned Scopes() {
        struct Known {
            const wchar_t* name;
            unsigned scope;
        };
        static constexpr Known kKnown[] = {
            {L"class", ScopeClass},
            {L"association", ScopeAssociation},
            {L"indication", ScopeIndication},
            {L"property", ScopeProperty},
            {L"reference", ScopeReference},
            {L"method", ScopeMethod},
            {L"parameter", ScopeParameter},
            {L"schema", ScopeSchema},
            {L"any", ScopeAny},
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

    // Types

    static std::optional<CIMTYPE> TypeOf(std::wstring_view name) {
        for (const int type :
             {CIM_SINT8, CIM_UINT8, CIM_SINT16, CIM_UINT16, CIM_SINT32, CIM_UINT32, CIM_SINT64, CIM_UINT64,
              CIM_REAL32, CIM_REAL64, CIM_BOOLEAN, CIM_STRING, CIM_DATETIME, CIM_CHAR16}) {
            if (SameName(CimTypeName(type), name)) {
                return type;
            }
        }
        return std::nullopt;
    }

    CIMTYPE DataType() {
        const std::size_t offset = m_token.offset;
        const std::wstring name = Name(L"a type");
        const std::optional<CIMTYPE> type = TypeOf(name);
        if (!type) {
            Fail(offset, L"unknown type " + Quoted(name));
        }
        return *type;
    }

    /// A type or "Class REF"; void only where a method may follow.
    void TypeOrReference(Property& property, bool* isVoid) {
        const std::size_t offset = m_token.offset;
        const std::wstring name = Name(L"a type");
        if (const std::optional<CIMTYPE> type = TypeOf(name)) {
            property.type = *type;
        } else if (Accept(L"REF")) {
            property.type = CIM_REFERENCE;
            property.referenceClass = name;
            m_unit.referencedClasses.push_back({name, Here(offset)});
        } else if (isVoid != nullptr && SameName(name, L"void")) {
            *isVoid = true;
        } else {
            Fail(offset, L"unknown type " + Quoted(name) + L" (a reference is written Class REF Name)");
        }
    }

    CIMTYPE ArraySuffix(std::size_t& limit) {
        if (!Accept('[')) {
            return 0;
        }
        if (m_token.kind == Kind::Integer) {
            constexpr std::uint64_t kMost = 1u << 20;
            if (m_token.negative || m_token.magnitude == 0 || m_token.magnitude > kMost) {
                Fail(m_token.offset, L"an array has a size from 1 to 1048576");
            }
            limit = static_cast<std::size_t>(m_token.magnitude);
            Advance();
        }
        Require(']');
        return kArray;
    }

    // Classes

    void Class(const std::vector<QualifierUse>& uses, std::size_t offset) {
        ClassDefinition definition;
        definition.name = Name(L"a class name");
        if (m_token.Is(L"as")) {
            Fail(m_token.offset, L"only instances have aliases");
        }
        unsigned scope = ScopeClass;
        if (Accept(':')) {
            const std::size_t place = m_token.offset;
            definition.superclass = Name(L"the name of the superclass");
            const ClassPtr superclass = m_unit.target.FindClass(definition.superclass);
            if (!superclass) {
                Fail(place, L"unknown superclass " + Quoted(definition.superclass));
            }
            scope |= superclass->IsAssociation() ? unsigned{ScopeAssociation} : 0u;
        }
        for (const QualifierUse& use : uses) {
            if (SameName(use.name, L"Association")) {
                scope |= ScopeAssociation;
            } else if (SameName(use.name, L"Indication")) {
                scope |= ScopeIndication;
            }
        }
        definition.qualifiers = Build(uses, scope, L"class");
        Require('{');
        while (!Accept('}')) {
            Feature(definition);
        }
        Require(';');
        // A reference to the class itself is known from here on.
        std::wstring reason;
        const std::wstring name = definition.name;
        if (m_unit.target.AddClass(std::move(definition), &reason) != 0) {
            Fail(offset, L"class " + Quoted(name) + L": " + reason);
        }
    }

    void Feature(ClassDefinition& definition) {
        const std::vector<QualifierUse> uses = QualifierList();
        Property property;
        bool isVoid = false;
        const std::size_t offset = m_token.offset;
        TypeOrReference(property, &isVoid);
        property.name = Name(L"the name of a property or method");
        const bool isReference = property.type == CIM_REFERENCE;
        if (m_token.Is('(')) {
            if (isReference) {
                Fail(offset, L"a method does not return a reference");
            }
            MethodOf(definition, property, isVoid, uses);
            return;
        }
        if (isVoid) {
            Fail(offset, L"only a method can be void");
        }
        if (m_token.Is('[') && isReference) {
            Fail(m_token.offset, L"a property is not an array of references");
        }
        property.type |= ArraySuffix(property.arrayLimit);
        property.qualifiers =
            isReference ? Build(uses, ScopeReference, L"reference") : Build(uses, ScopeProperty, L"property");
        if (Accept('=')) {
            property.defaultValue = ValueOf(Read(false), property.type, property.arrayLimit);
        }
        Require(';');
        definition.properties.push_back(std::move(property));
    }

    void MethodOf(ClassDefinition& definition, const Property& signature, bool isVoid,
                  const std::vector<QualifierUse>& uses) {
        Method method;
        method.name = signature.name;
        method.returnType = signature.type;
        method.returnsVoid = isVoid;
        method.qualifiers = Build(uses, ScopeMethod, L"method");
        Require('(');
        if (!m_token.Is(')')) {
            do {
                Parameter(method);
            } while (Accept(','));
        }
        Require(')');
        Require(';');
        definition.methods.push_back(std::move(method));
    }

    void Parameter(Method& method) {
        const std::vector<QualifierUse> uses = QualifierList();
        Property parameter;
        TypeOrReference(parameter, nullptr);
        parameter.name = Name(L"the name of a parameter");
        parameter.type |= ArraySuffix(parameter.arrayLimit);
        parameter.qualifiers = Build(uses, ScopeParameter, L"parameter");
        const bool out = parameter.qualifiers.Has(L"Out");
        const bool in = parameter.qualifiers.Find(L"In") != nullptr ? parameter.qualifiers.Has(L"In") : !out;
        if (in) {
            method.in.push_back(parameter);
        }
        if (out) {
            method.out.push_back(std::move(parameter));
        }
    }

    // Instances

    void InstanceOf(std::size_t offset) {
        if (!Accept(L"of")) {
            Expected(L"'of'");
        }
        const std::size_t classOffset = m_token.offset;
        const std::wstring className = Name(L"a class name");
        const ClassPtr definition = m_unit.target.FindClass(className);
        if (!definition) {
            Fail(classOffset, L"unknown class " + Quoted(className));
        }
        Unit::Waiting entry{Instance(definition), {}, AliasOf(definition), Here(offset)};
        std::set<std::size_t> seen;
        Require('{');
        while (!Accept('}')) {
            PropertyValue(entry, seen);
        }
        Require(';');
        if (m_unit.Resolve(entry)) {
            m_unit.Store(std::move(entry.instance), entry.place);
        } else {
            m_unit.waiting.push_back(std::move(entry));
        }
    }

    std::wstring AliasOf(const ClassPtr& definition) {
        if (!Accept(L"as")) {
            return {};
        }
        if (m_token.kind != Kind::Alias) {
            Expected(L"an alias ($Name)");
        }
        std::wstring alias = m_token.text;
        if (!m_unit.aliases.try_emplace(alias, Unit::Alias{definition, std::nullopt}).second) {
            Fail(m_token.offset, L"alias '$" + alias + L"' stands for another instance already");
        }
        Advance();
        return alias;
    }

    void PropertyValue(Unit::Waiting& entry, std::set<std::size_t>& seen) {
        // An instance may repeat the qualifiers of its class; they say nothing new.
        Build(QualifierList(), ScopeAny, L"property");
        const ClassDefinition& definition = *entry.instance.definition;
        const std::size_t offset = m_token.offset;
        const std::wstring name = Name(L"a property or '}'");
        const std::optional<std::size_t> index = definition.PropertyIndex(name);
        if (!index) {
            Fail(offset, L"property " + Quoted(name) + L" is not in class " + Quoted(definition.name));
        }
        if (!seen.insert(*index).second) {
            Fail(offset, L"property " + Quoted(name) + L" is given twice");
        }
        Require('=');
        const Property& property = definition.properties[*index];
        const Initialiser initialiser = Read(property.type == CIM_REFERENCE);
        Require(';');
        if (property.type == CIM_REFERENCE && !initialiser.isArray &&
            initialiser.items.front().kind == Kind::Alias) {
            const MofToken& item = initialiser.items.front();
            entry.instance.values[*index] = Value();
            entry.uses.push_back({*index, item.text, Here(item.offset)});
            return;
        }
        Value value = ValueOf(initialiser, property.type, property.arrayLimit);
        const Scalar* reference = property.type == CIM_REFERENCE ? value.AsScalar() : nullptr;
        std::wstring error;
        if (reference != nullptr && !ObjectPath::Parse(std::get<std::wstring>(*reference), &error)) {
            Fail(initialiser.offset, L"this is no object path: " + error);
        }
        entry.instance.values[*index] = std::move(value);
    }

    Unit& m_unit;
    std::shared_ptr<const MofSource> m_source;
    std::filesystem::path m_folder;
    MofLexer m_lexer;
    MofToken m_token;
};

} // namespace

void CompileMof(MofTarget& target, std::string_view text, const std::string& fileName, InstanceCheck check) {
    Unit unit(target, std::move(check));
    FileCompiler(unit, std::make_shared<const MofSource>(fileName, text), {}).Run();
    unit.Finish();
}

void CompileMofFile(MofTarget& target, const std::filesystem::path& file, InstanceCheck check) {
    const std::shared_ptr<const MofSource> source = Source(file);
    Unit unit(target, std::move(check));
    std::error_code error;
    unit.openFiles.push_back(std::filesystem::weakly_canonical(file, error));
    FileCompiler(unit, source, file.parent_path()).Run();
    unit.Finish();
}

std::optional<std::string> LeadingComments(const std::filesystem::path& file) {
    const std::shared_ptr<const MofSource> source = Source(file);
    const MofToken first = MofLexer(*source).Next();
    const bool hasNone = first.kind == MofToken::Kind::End;
    return hasNone ? std::nullopt : std::optional(std::string(source->Text().substr(0, first.offset)));
}

} // namespace quillet::wmi
