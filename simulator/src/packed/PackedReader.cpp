// Reading of packed machines.
#include "packed/PackedReader.h"

#include "packed/PackedFormat.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace quillet::simulator {

using namespace wmi;

namespace {

/// Instances within instances: nothing of ours goes so deep.
constexpr unsigned kDeepest = 8;

[[noreturn]] void Damaged() {
    throw std::runtime_error("a packed machine is damaged");
}

class Reader {
  public:
    Reader(MofTarget& target, std::string_view bytes) : m_target(target), m_rest(bytes) {}

    void Run() {
        Texts();
        while (!m_rest.empty()) {
            switch (static_cast<PackedCall>(Byte())) {
            case PackedCall::DeclareQualifier:
                Declaration();
                break;
            case PackedCall::AddClass:
                Class();
                break;
            case PackedCall::StoreInstance:
                Store();
                break;
            default:
                Damaged();
            }
        }
    }

  private:
    std::uint8_t Byte() {
        if (m_rest.empty()) {
            Damaged();
        }
        const auto byte = static_cast<std::uint8_t>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte;
    }

    std::uint64_t Number() {
        std::uint64_t number = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const std::uint8_t byte = Byte();
            number |= std::uint64_t{byte & 0x7Fu} << shift;
            if (byte < 0x80) {
                return number;
            }
        }
        Damaged();
    }

    std::int64_t Signed() {
        const std::uint64_t bits = Number();
        return static_cast<std::int64_t>((bits & 1) != 0 ? ~(bits >> 1) : bits >> 1);
    }

    /// How many things follow, each of which takes a byte at least.
    std::size_t Count() {
        const std::uint64_t count = Number();
        if (count > m_rest.size()) {
            Damaged();
        }
        return static_cast<std::size_t>(count);
    }

    std::string_view Bytes() {
        const std::size_t size = Count();
        const std::string_view bytes = m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        return bytes;
    }

    void Texts() {
        m_texts.resize(Count());
        for (PackedText& text : m_texts) {
            const std::string_view bytes = Bytes();
            const bool ascii = std::all_of(bytes.begin(), bytes.end(),
                                           [](char c) { return static_cast<unsigned char>(c) < 0x80; });
            text = {bytes, ascii};
        }
    }

    std::wstring Text() {
        const std::uint64_t number = Number();
        if (number >= m_texts.size()) {
            Damaged();
        }
        const PackedText& text = m_texts[static_cast<std::size_t>(number)];
        if (text.ascii) {
            return {text.bytes.begin(), text.bytes.end()};
        }
        std::optional<std::wstring> decoded = FromUtf8(text.bytes);
        if (!decoded) {
            Damaged();
        }
        return *std::move(decoded);
    }

    /// One element, or nothing for null.
    std::optional<Scalar> Element(PackedValue tag, unsigned depth) {
        switch (tag) {
        case PackedValue::Null:
            return std::nullopt;
        case PackedValue::False:
        case PackedValue::True:
            return tag == PackedValue::True;
        case PackedValue::Signed:
            return Signed();
        case PackedValue::Unsigned:
            return Number();
        case PackedValue::Real: {
            std::uint64_t bits = 0;
            for (unsigned shift = 0; shift < 64; shift += 8) {
                bits |= std::uint64_t{Byte()} << shift;
            }
            return std::bit_cast<double>(bits);
        }
        case PackedValue::Text:
            return Text();
        case PackedValue::Embedded:
            return Embedded{std::make_shared<const Instance>(Object(depth + 1))};
        default:
            Damaged();
        }
    }

    Value Any(unsigned depth = 0) {
        const auto tag = static_cast<PackedValue>(Byte());
        if (tag == PackedValue::Array) {
            Value::Array array(Count());
            for (std::optional<Scalar>& element : array) {
                element = Element(static_cast<PackedValue>(Byte()), depth);
            }
            return Value(std::move(array));
        }
        if (tag == PackedValue::Bytes) {
            const std::string_view bytes = Bytes();
            return Value(Value::Bytes(bytes.begin(), bytes.end()));
        }
        std::optional<Scalar> scalar = Element(tag, depth);
        return scalar ? Value(*std::move(scalar)) : Value();
    }

    Instance Object(unsigned depth = 0) {
        Instance instance;
        instance.definition = m_target.FindClass(Text());
        if (instance.definition == nullptr || depth > kDeepest) {
            Damaged();
        }
        const std::size_t count = instance.definition->properties.size();
        instance.values.reserve(count);
        while (instance.values.size() < count) {
            instance.values.push_back(Any(depth));
        }
        return instance;
    }

    Qualifiers AllQualifiers() {
        Qualifiers qualifiers;
        for (std::size_t left = Count(); left > 0; --left) {
            Qualifier qualifier;
            qualifier.name = Text();
            qualifier.type = static_cast<CIMTYPE>(Signed());
            qualifier.value = Any();
            qualifier.flavor = static_cast<LONG>(Signed());
            qualifier.amended = Number() != 0;
            for (std::size_t languages = Count(); languages > 0; --languages) {
                const auto language = static_cast<LCID>(Number());
                qualifier.localized.insert_or_assign(language, Any());
            }
            qualifiers.Set(std::move(qualifier));
        }
        return qualifiers;
    }

    std::vector<Property> Properties() {
        std::vector<Property> properties(Count());
        for (Property& property : properties) {
            property.name = Text();
            property.type = static_cast<CIMTYPE>(Signed());
            property.referenceClass = Text();
            property.defaultValue = Any();
            property.qualifiers = AllQualifiers();
            property.arrayLimit = static_cast<std::size_t>(Number());
        }
        return properties;
    }

    std::vector<Method> Methods() {
        std::vector<Method> methods(Count());
        for (Method& method : methods) {
            method.name = Text();
            method.returnType = static_cast<CIMTYPE>(Signed());
            method.returnsVoid = Number() != 0;
            method.in = Properties();
            method.out = Properties();
            method.qualifiers = AllQualifiers();
        }
        return methods;
    }

    void Declaration() {
        QualifierDeclaration declaration;
        declaration.name = Text();
        declaration.type = static_cast<CIMTYPE>(Signed());
        declaration.defaultValue = Any();
        declaration.scope = static_cast<unsigned>(Number());
        declaration.flavor = static_cast<LONG>(Signed());
        Told(m_target.DeclareQualifier(std::move(declaration)), L"a qualifier");
    }

    void Class() {
        ClassDefinition definition;
        definition.name = Text();
        definition.superclass = Text();
        definition.properties = Properties();
        definition.methods = Methods();
        definition.qualifiers = AllQualifiers();
        std::wstring reason;
        const HRESULT result = m_target.AddClass(std::move(definition), &reason);
        Told(result, reason);
    }

    void Store() {
        Instance instance = Object();
        InstancePtr kept;
        std::wstring reason;
        const HRESULT result = m_target.StoreInstance(instance, WriteMode::CreateOnly, kept, &reason);
        Told(result, reason);
    }

    static void Told(HRESULT result, const std::wstring& reason) {
        if (result != 0) {
            throw std::runtime_error("a packed machine does not fit: " + ToUtf8(reason));
        }
    }

    struct PackedText {
        std::string_view bytes; ///< UTF-8
        bool ascii = false;
    };

    MofTarget& m_target;
    std::string_view m_rest;
    std::vector<PackedText> m_texts;
};

} // namespace

void ReadPacked(MofTarget& target, std::string_view bytes) {
    Reader(target, bytes).Run();
}

} // namespace quillet::simulator
