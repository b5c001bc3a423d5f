// Writing of packed machines.
#include "packed/PackedWriter.h"

#include "packed/PackedFormat.h"

#include <quillet-wmi/ClassMerge.h>
#include <quillet-wmi/Text.h>

#include <bit>
#include <stdexcept>

namespace quillet::simulator {

using namespace wmi;

namespace {

void AppendNumber(std::string& bytes, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) {
        bytes += static_cast<char>(0x80 | (number & 0x7F));
    }
    bytes += static_cast<char>(number);
}

} // namespace

PackedWriter::PackedWriter(const PackedWriter* schema) {
    if (schema != nullptr) {
        m_classes = schema->m_classes;
        m_qualifiers = schema->m_qualifiers;
    }
}

ClassPtr PackedWriter::FindClass(std::wstring_view name) const {
    const auto found = m_classes.find(name);
    return found != m_classes.end() ? found->second : nullptr;
}

HRESULT PackedWriter::AddClass(ClassDefinition definition, std::wstring* reason) {
    std::wstring why;
    const ClassPtr superclass = FindClass(definition.superclass);
    ClassDefinition merged = definition;
    if (FindClass(definition.name) != nullptr) {
        why = L"it exists already";
    } else if (MergeClass(merged, superclass.get(), why)) {
        Byte(PackedCall::AddClass);
        Text(definition.name);
        Text(definition.superclass);
        Write(definition.properties);
        Write(definition.methods);
        Write(definition.qualifiers);
        m_classes.emplace(definition.name, std::make_shared<const ClassDefinition>(std::move(merged)));
        return 0;
    }
    if (reason != nullptr) {
        *reason = why;
    }
    return static_cast<HRESULT>(WBEM_E_INVALID_CLASS);
}

InstancePtr PackedWriter::FindInstance(std::wstring_view) const {
    return nullptr;
}

HRESULT PackedWriter::StoreInstance(Instance& instance, WriteMode, InstancePtr& kept, std::wstring*) {
    Byte(PackedCall::StoreInstance);
    Write(instance);
    kept = std::make_shared<const Instance>(std::move(instance));
    return 0;
}

std::optional<QualifierDeclaration> PackedWriter::FindQualifierDeclaration(std::wstring_view name) const {
    const auto found = m_qualifiers.find(name);
    return found != m_qualifiers.end() ? std::optional(found->second) : std::nullopt;
}

HRESULT PackedWriter::DeclareQualifier(QualifierDeclaration declaration) {
    Byte(PackedCall::DeclareQualifier);
    Text(declaration.name);
    Signed(declaration.type);
    Write(declaration.defaultValue);
    Number(declaration.scope);
    Signed(declaration.flavor);
    std::wstring name = declaration.name;
    m_qualifiers.insert_or_assign(std::move(name), std::move(declaration));
    return 0;
}

std::string PackedWriter::Packed() const {
    std::string bytes;
    AppendNumber(bytes, m_texts.size());
    for (const std::wstring& text : m_texts) {
        const std::string encoded = ToUtf8(text);
        if (FromUtf8(encoded) != text) {
            throw std::invalid_argument("a text is not Unicode: " + encoded);
        }
        AppendNumber(bytes, encoded.size());
        bytes += encoded;
    }
    return bytes + m_calls;
}

void PackedWriter::Number(std::uint64_t number) {
    AppendNumber(m_calls, number);
}

void PackedWriter::Signed(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    Number(number < 0 ? ~(bits << 1) : bits << 1);
}

void PackedWriter::Text(const std::wstring& text) {
    const auto [found, isNew] = m_numbers.try_emplace(text, m_texts.size());
    if (isNew) {
        m_texts.push_back(text);
    }
    Number(found->second);
}

void PackedWriter::Write(const Value& value) {
    if (const Scalar* scalar = value.AsScalar()) {
        Write(*scalar);
    } else if (const Value::Bytes* bytes = value.AsBytes()) {
        Byte(PackedValue::Bytes);
        Number(bytes->size());
        m_calls.append(bytes->begin(), bytes->end());
    } else if (const Value::Array* array = value.AsArray()) {
        Byte(PackedValue::Array);
        Number(array->size());
        for (const std::optional<Scalar>& element : *array) {
            Write(element ? Value(*element) : Value());
        }
    } else {
        Byte(PackedValue::Null);
    }
}

void PackedWriter::Write(const Scalar& scalar) {
    if (const auto* flag = std::get_if<bool>(&scalar)) {
        Byte(*flag ? PackedValue::True : PackedValue::False);
    } else if (const auto* number = std::get_if<std::int64_t>(&scalar)) {
        Byte(PackedValue::Signed);
        Signed(*number);
    } else if (const auto* magnitude = std::get_if<std::uint64_t>(&scalar)) {
        Byte(PackedValue::Unsigned);
        Number(*magnitude);
    } else if (const auto* real = std::get_if<double>(&scalar)) {
        Byte(PackedValue::Real);
        auto bits = std::bit_cast<std::uint64_t>(*real);
        for (std::size_t count = 0; count < sizeof bits; ++count, bits >>= 8) {
            Byte(bits & 0xFF);
        }
    } else if (const auto* text = std::get_if<std::wstring>(&scalar)) {
        Byte(PackedValue::Text);
        Text(*text);
    } else {
        Byte(PackedValue::Embedded);
        Write(*std::get<Embedded>(scalar).object);
    }
}

void PackedWriter::Write(const Instance& instance) {
    Text(instance.definition->name);
    for (const Value& value : instance.values) {
        Write(value);
    }
}

void PackedWriter::Write(const Qualifiers& qualifiers) {
    Number(qualifiers.All().size());
    for (const Qualifier& qualifier : qualifiers.All()) {
        Text(qualifier.name);
        Signed(qualifier.type);
        Write(qualifier.value);
        Signed(qualifier.flavor);
        Number(qualifier.amended ? 1 : 0);
        Number(qualifier.localized.size());
        for (const auto& [language, value] : qualifier.localized) {
            Number(language);
            Write(value);
        }
    }
}

void PackedWriter::Write(const std::vector<Property>& properties) {
    Number(properties.size());
    for (const Property& property : properties) {
        Text(property.name);
        Signed(property.type);
        Text(property.referenceClass);
        Write(property.defaultValue);
        Write(property.qualifiers);
        Number(property.arrayLimit);
    }
}

void PackedWriter::Write(const std::vector<Method>& methods) {
    Number(methods.size());
    for (const Method& method : methods) {
        Text(method.name);
        Signed(method.returnType);
        Number(method.returnsVoid ? 1 : 0);
        Write(method.in);
        Write(method.out);
        Write(method.qualifiers);
    }
}

} // namespace quillet::simulator
