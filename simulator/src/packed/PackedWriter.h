// Compiles machines into their packed form. Of the build and of tests: no program has it.
#pragma once

#include <quillet-wmi/Mof.h>

#include <unordered_map>

namespace quillet::simulator {

/// Writes down what it is told, and knows as much as a compiler asks for.
class PackedWriter : public wmi::MofTarget {
  public:
    /// @param schema whose classes and qualifiers this one knows, too; null for none
    explicit PackedWriter(const PackedWriter* schema = nullptr);

    wmi::ClassPtr FindClass(std::wstring_view name) const override;
    HRESULT AddClass(wmi::ClassDefinition definition, std::wstring* reason) override;
    /// Null: an object that is there twice is not noticed here, but by the repository that reads it.
    wmi::InstancePtr FindInstance(std::wstring_view path) const override;
    HRESULT StoreInstance(wmi::Instance& instance, wmi::WriteMode mode, wmi::InstancePtr& kept,
                          std::wstring* reason) override;
    std::optional<wmi::QualifierDeclaration> FindQualifierDeclaration(std::wstring_view name) const override;
    HRESULT DeclareQualifier(wmi::QualifierDeclaration declaration) override;

    /// All that was told. Throws std::invalid_argument for a text that UTF-8 cannot say.
    std::string Packed() const;

  private:
    template <class Tag>
    void Byte(Tag tag) {
        m_calls += static_cast<char>(tag);
    }
    void Number(std::uint64_t number);
    void Signed(std::int64_t number);
    void Text(const std::wstring& text);
    void Write(const wmi::Value& value);
    void Write(const wmi::Scalar& scalar);
    void Write(const wmi::Instance& instance);
    void Write(const wmi::Qualifiers& qualifiers);
    void Write(const std::vector<wmi::Property>& properties);
    void Write(const std::vector<wmi::Method>& methods);

    std::map<std::wstring, wmi::ClassPtr, wmi::NameLess> m_classes;
    std::map<std::wstring, wmi::QualifierDeclaration, wmi::NameLess> m_qualifiers;
    std::unordered_map<std::wstring, std::size_t> m_numbers; ///< of the texts
    std::vector<std::wstring> m_texts;
    std::string m_calls;
};

} // namespace quillet::simulator
