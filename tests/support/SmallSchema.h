// A small schema and shorthands for the tests of the language layer.
#pragma once

#include <quillet-simulator/Repository.h>
#include <quillet-wmi/Mof.h>
#include <quillet-wmi/Text.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

namespace quillet::wmi {

inline void PrintTo(const Value& value, std::ostream* out) {
    const auto print = [out](const std::optional<Scalar>& scalar) {
        if (!scalar) {
            *out << "NULL";
        } else if (const auto* flag = std::get_if<bool>(&*scalar)) {
            *out << (*flag ? "TRUE" : "FALSE");
        } else if (const auto* number = std::get_if<std::int64_t>(&*scalar)) {
            *out << *number;
        } else if (const auto* magnitude = std::get_if<std::uint64_t>(&*scalar)) {
            *out << *magnitude << 'u';
        } else if (const auto* real = std::get_if<double>(&*scalar)) {
            *out << *real << "r";
        } else {
            *out << '"' << ToUtf8(std::get<std::wstring>(*scalar)) << '"';
        }
    };
    if (value.IsArray()) {
        *out << '{';
        for (const auto& element : value.Elements()) {
            print(element);
            *out << ' ';
        }
        *out << '}';
    } else {
        print(value.AsScalar() != nullptr ? std::optional<Scalar>(*value.AsScalar()) : std::nullopt);
    }
}

} // namespace quillet::wmi

namespace quillet::tests {

using namespace simulator;

inline constexpr CIMTYPE kArrayFlag = CIM_FLAG_ARRAY;

inline Value Texts(std::initializer_list<const wchar_t*> texts) {
    Value::Array array;
    for (const wchar_t* text : texts) {
        array.push_back(text != nullptr ? std::optional<Scalar>(std::wstring(text)) : std::nullopt);
    }
    return Value(std::move(array));
}

/// Codes are enumerators in some headers; a test compares numbers.
template <class Status>
constexpr HRESULT Code(Status status) {
    return static_cast<HRESULT>(status);
}

/// Devices, ports below them, and two associations.
inline constexpr const char* kSchema = R"mof(
    [Abstract] class T_Element { string Caption; };
    class T_Device : T_Element
    {
        [Key] string DeviceID;
        uint32 Speed = 1000;
        sint64 Offset;
        uint64 Serial;
        boolean Enabled = TRUE;
        string Names[];
        datetime Installed;
        real64 Load;
        char16 Letter;
        T_Device REF Peer;
        string ParentId;
    };
    class T_FastDevice : T_Device { uint16 Lanes; };
    class T_Numbered { [Key] uint32 Number; [Key] boolean Flag; string Caption; };
    [Singleton] class T_Service { string State = "Running"; };
    [Association] class T_Member
    {
        [Key] T_Element REF Group;
        [Key] T_Element REF Part;
        uint16 Rank;
    };
    [Association] class T_Next
    {
        [Key] string Id;
        T_Device REF From;
        T_Device REF To;
    };
)mof";

class RepositoryFixture : public ::testing::Test {
  protected:
    RepositoryFixture() { CompileMof(m_repository, kSchema, "schema.mof"); }

    void Compile(const std::string& text) { CompileMof(m_repository, text, "test.mof"); }
    Instance New(const wchar_t* className) const { return Instance(m_repository.FindClass(className)); }
    HRESULT PutDevice(const std::wstring& id, const wchar_t* className = L"T_Device") {
        Instance device = New(className);
        device.Set(L"DeviceID", Value::Text(id));
        return m_repository.PutInstance(std::move(device));
    }
    /// The first text property of the class's key, of every instance that a query finds.
    std::vector<std::wstring> Query(std::wstring_view text) {
        WqlError error;
        const std::optional<WqlQuery> query = ParseWql(text, &error);
        if (!query) {
            ADD_FAILURE() << "no WQL: " << ToUtf8(text) << " at " << error.position << ": "
                          << ToUtf8(error.message);
            return {};
        }
        std::vector<InstancePtr> found;
        m_lastResult = query->kind == WqlQuery::Kind::Select ? m_repository.Select(*query, found)
                                                             : m_repository.Associations(*query, found);
        std::vector<std::wstring> paths;
        for (const InstancePtr& instance : found) {
            const std::wstring id = instance->Text(L"DeviceID");
            paths.push_back(id.empty() ? RelativePath(*instance) : id);
        }
        return paths;
    }

    Repository m_repository{L"HOST", L"ROOT\\Test"};
    HRESULT m_lastResult = 0;
};

} // namespace quillet::tests
