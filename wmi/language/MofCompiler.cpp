// From MOF to classes and instances in a target: what stands in a file, one production after the other.
#include <quillet-wmi/Mof.h>
#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Text.h>

#include "language/MofBuilder.h"
#include "language/MofUnit.h"

namespace quillet::wmi {

namespace {

using Kind = MofToken::Kind;

/// Reads one file.
class FileCompiler : private MofParser {
  public:
    FileCompiler(MofUnit& unit, MofFile file)
        : MofParser(std::move(file.source)), m_unit(unit), m_folder(std::move(file.folder)),
          m_builder(unit.target, Source()) {}

    void Run() {
        Advance();
        while (Token().kind != Kind::End) {
            Production();
        }
    }

  private:
    void Production() {
        if (Token().kind == Kind::Pragma) {
            Pragma();
        } else if (Token().Is(L"Qualifier")) {
            QualifierDeclaration();
        } else {
            std::vector<MofQualifierUse> qualifiers = QualifierList();
            const std::size_t offset = Token().offset;
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
        if (!Token().Is('(')) {
            return;
        }
        Advance();
        if (SameName(name, L"include")) {
            if (Token().kind != Kind::String) {
                Expected(L"the name of a file in quotes");
            }
            const MofToken file = Take();
            Require(')');
            Include(file);
            return;
        }
        while (!Token().Is(')')) {
            if (Token().kind == Kind::End) {
                Expected(L"')'");
            }
            Advance();
        }
        Advance();
    }

    void Include(const MofToken& name) {
        FileCompiler(m_unit, m_unit.files.Include(name.text, m_folder, Here(name.offset))).Run();
        m_unit.files.End();
    }

    void QualifierDeclaration() {
        Advance();
        const std::size_t offset = Token().offset;
        wmi::QualifierDeclaration declaration;
        declaration.name = Name(L"the name of a qualifier");
        Require(':');
        declaration.type = DataType();
        std::size_t limit = 0;
        declaration.type |= ArraySuffix(limit);
        if (Accept('=')) {
            ReadInitialiser(false, m_value);
            declaration.defaultValue = m_builder.ValueOf(m_value, declaration.type, limit);
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

    // Classes

    /// A type or "Class REF"; void only where a method may follow.
    void TypeOrReference(Property& property, bool* isVoid) {
        const std::size_t offset = Token().offset;
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

    void Class(std::vector<MofQualifierUse>& uses, std::size_t offset) {
        ClassDefinition definition;
        definition.name = Name(L"a class name");
        if (Token().Is(L"as")) {
            Fail(Token().offset, L"only instances have aliases");
        }
        unsigned scope = ScopeClass;
        if (Accept(':')) {
            const std::size_t place = Token().offset;
            definition.superclass = Name(L"the name of the superclass");
            const ClassPtr superclass = m_unit.target.FindClass(definition.superclass);
            if (!superclass) {
                Fail(place, L"unknown superclass " + Quoted(definition.superclass));
            }
            scope |= superclass->IsAssociation() ? unsigned{ScopeAssociation} : 0u;
        }
        for (const MofQualifierUse& use : uses) {
            if (SameName(use.name, L"Association")) {
                scope |= ScopeAssociation;
            } else if (SameName(use.name, L"Indication")) {
                scope |= ScopeIndication;
            }
        }
        definition.qualifiers = m_builder.QualifiersOf(uses, scope, L"class");
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
        std::vector<MofQualifierUse> uses = QualifierList();
        Property property;
        bool isVoid = false;
        const std::size_t offset = Token().offset;
        TypeOrReference(property, &isVoid);
        property.name = Name(L"the name of a property or method");
        const bool isReference = property.type == CIM_REFERENCE;
        if (Token().Is('(')) {
            if (isReference) {
                Fail(offset, L"a method does not return a reference");
            }
            MethodOf(definition, property, isVoid, uses);
            return;
        }
        if (isVoid) {
            Fail(offset, L"only a method can be void");
        }
        if (Token().Is('[') && isReference) {
            Fail(Token().offset, L"a property is not an array of references");
        }
        property.type |= ArraySuffix(property.arrayLimit);
        property.qualifiers = isReference ? m_builder.QualifiersOf(uses, ScopeReference, L"reference")
                                          : m_builder.QualifiersOf(uses, ScopeProperty, L"property");
        if (Accept('=')) {
            ReadInitialiser(false, m_value);
            property.defaultValue = m_builder.ValueOf(m_value, property.type, property.arrayLimit);
        }
        Require(';');
        definition.properties.push_back(std::move(property));
    }

    void MethodOf(ClassDefinition& definition, const Property& signature, bool isVoid,
                  std::vector<MofQualifierUse>& uses) {
        Method method;
        method.name = signature.name;
        method.returnType = signature.type;
        method.returnsVoid = isVoid;
        method.qualifiers = m_builder.QualifiersOf(uses, ScopeMethod, L"method");
        Require('(');
        if (!Token().Is(')')) {
            do {
                Parameter(method);
            } while (Accept(','));
        }
        Require(')');
        Require(';');
        definition.methods.push_back(std::move(method));
    }

    void Parameter(Method& method) {
        std::vector<MofQualifierUse> uses = QualifierList();
        Property parameter;
        TypeOrReference(parameter, nullptr);
        parameter.name = Name(L"the name of a parameter");
        parameter.type |= ArraySuffix(parameter.arrayLimit);
        parameter.qualifiers = m_builder.QualifiersOf(uses, ScopeParameter, L"parameter");
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
        const std::size_t classOffset = Token().offset;
        const std::wstring className = Name(L"a class name");
        const ClassPtr definition = m_unit.target.FindClass(className);
        if (!definition) {
            Fail(classOffset, L"unknown class " + Quoted(className));
        }
        MofUnit::Waiting entry{Instance(definition), {}, AliasOf(definition), Here(offset)};
        m_given.assign(definition->properties.size(), false);
        Require('{');
        while (!Accept('}')) {
            PropertyValue(entry);
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
        if (Token().kind != Kind::Alias) {
            Expected(L"an alias ($Name)");
        }
        std::wstring alias = Token().text;
        if (!m_unit.aliases.try_emplace(alias, MofUnit::Alias{definition, std::nullopt}).second) {
            Fail(Token().offset, L"alias '$" + alias + L"' stands for another instance already");
        }
        Advance();
        return alias;
    }

    /// The place among the properties of a class of the property that is named here.
    std::size_t GivenProperty(const ClassDefinition& definition) {
        const std::size_t offset = Token().offset;
        if (Token().kind != Kind::Identifier) {
            Expected(L"a property or '}'");
        }
        const std::optional<std::size_t> index = definition.PropertyIndex(Token().text);
        if (index && !m_given[*index]) {
            m_given[*index] = true;
            Advance();
            return *index;
        }
        const std::wstring name = Name(L"a property or '}'");
        Fail(offset, L"property " + Quoted(name) +
                         (index ? L" is given twice" : L" is not in class " + Quoted(definition.name)));
    }

    void PropertyValue(MofUnit::Waiting& entry) {
        if (Token().Is('[')) {
            // An instance may repeat the qualifiers of its class; they say nothing new.
            std::vector<MofQualifierUse> uses = QualifierList();
            m_builder.QualifiersOf(uses, ScopeAny, L"property");
        }
        const ClassDefinition& definition = *entry.instance.definition;
        const std::size_t index = GivenProperty(definition);
        Require('=');
        const Property& property = definition.properties[index];
        ReadInitialiser(property.type == CIM_REFERENCE, m_value);
        Require(';');
        if (property.type == CIM_REFERENCE && !m_value.isArray && m_value.items.front().kind == Kind::Alias) {
            MofToken& item = m_value.items.front();
            entry.instance.values[index] = Value();
            entry.uses.push_back({index, std::move(item.text), Here(item.offset)});
            return;
        }
        const std::size_t offset = m_value.offset;
        Value value = m_builder.ValueOf(m_value, property.type, property.arrayLimit);
        const Scalar* reference = property.type == CIM_REFERENCE ? value.AsScalar() : nullptr;
        std::wstring error;
        if (reference != nullptr && !ObjectPath::Parse(std::get<std::wstring>(*reference), &error)) {
            Fail(offset, L"this is no object path: " + error);
        }
        entry.instance.values[index] = std::move(value);
    }

    MofUnit& m_unit;
    std::filesystem::path m_folder;
    MofBuilder m_builder;
    MofInitialiser m_value;    ///< the one that is read now
    std::vector<bool> m_given; ///< which properties the instance that is read now has already
};

} // namespace

void CompileMof(MofTarget& target, std::string_view text, const std::string& fileName, InstanceCheck check) {
    MofUnit unit(target, std::move(check));
    FileCompiler(unit, {std::make_shared<const MofSource>(fileName, text), {}}).Run();
    unit.Finish();
}

void CompileMofFile(MofTarget& target, const std::filesystem::path& file, InstanceCheck check) {
    MofFile first = ReadMofFile(file);
    MofUnit unit(target, std::move(check));
    unit.files.Begin(file);
    FileCompiler(unit, std::move(first)).Run();
    unit.Finish();
}

std::optional<std::string> LeadingComments(const std::filesystem::path& file) {
    const std::shared_ptr<const MofSource> source = ReadMofFile(file).source;
    MofToken first;
    MofLexer(*source).Next(first);
    const bool hasNone = first.kind == MofToken::Kind::End;
    return hasNone ? std::nullopt : std::optional(std::string(source->Text().substr(0, first.offset)));
}

} // namespace quillet::wmi
