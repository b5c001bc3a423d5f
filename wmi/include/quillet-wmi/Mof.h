// MOF, the text form of CIM classes and instances: compiling it and writing it back.
#pragma once

#include <quillet-wmi/Model.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>

namespace quillet::wmi {

/// A MOF text that does not compile: file, line and column (both from 1), and what is wrong.
class MofError : public std::runtime_error {
  public:
    /// An error at a place.
    MofError(std::string file, std::size_t line, std::size_t column, const std::string& message);
    /// The file's name.
    const std::string& File() const noexcept { return m_file; }
    /// The line, from 1.
    std::size_t Line() const noexcept { return m_line; }
    /// The column, from 1.
    std::size_t Column() const noexcept { return m_column; }

  private:
    std::string m_file;
    std::size_t m_line;
    std::size_t m_column;
};

/// Where compiled classes and instances go.
class MofTarget {
  public:
    virtual ~MofTarget() = default;

    /// The class of that name; null when there is none.
    virtual ClassPtr FindClass(std::wstring_view name) const = 0;
    /// Takes a class (its own properties, methods and qualifiers only). A failure comes with its reason in
    /// words, if asked for.
    virtual HRESULT AddClass(ClassDefinition definition, std::wstring* reason) = 0;
    /// The instance that the text of a path names; null when there is none.
    virtual InstancePtr FindInstance(std::wstring_view path) const = 0;
    /// Takes an instance of one of its classes, and tells as what it is kept. One that is not taken has the
    /// values that it had; the reason of a failure as above.
    virtual HRESULT StoreInstance(Instance& instance, WriteMode mode, InstancePtr& kept,
                                  std::wstring* reason) = 0;
    /// The declaration of a qualifier; nothing when there is none.
    virtual std::optional<QualifierDeclaration> FindQualifierDeclaration(std::wstring_view name) const = 0;
    /// Takes the declaration of a qualifier. WBEM_E_TYPE_MISMATCH when it is there with another type.
    virtual HRESULT DeclareQualifier(QualifierDeclaration declaration) = 0;
};

/// Looks at an instance before it is stored and throws std::invalid_argument where it cannot be used; the
/// reason is told with the place of the instance in its text.
using InstanceCheck = std::function<void(const Instance& instance)>;

/// Compiles MOF (UTF-8) into a target. Throws MofError; what stood before the error is kept.
void CompileMof(MofTarget& target, std::string_view text, const std::string& fileName,
                InstanceCheck check = {});
/// The same for a file; `#pragma include` is resolved beside it.
void CompileMofFile(MofTarget& target, const std::filesystem::path& file, InstanceCheck check = {});

/// What stands before the first word of a MOF file: comments, and the blanks around them. Nothing for a file
/// without a word. Throws MofError.
std::optional<std::string> LeadingComments(const std::filesystem::path& file);

/// Writes instances as MOF that compiles into the same instances (UTF-8).
std::string WriteInstancesAsMof(const std::vector<InstancePtr>& instances);
/// The MOF text of one instance or class, for GetObjectText.
std::wstring ObjectText(const Instance& instance);
std::wstring ObjectText(const ClassDefinition& definition);

} // namespace quillet::wmi
