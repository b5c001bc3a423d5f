// MOF, the text form of CIM classes and instances: compiling it and writing it back.
#pragma once

#include <quillet-simulator/Repository.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>

namespace quillet::simulator {

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

/// Looks at an instance before it is stored and throws std::invalid_argument where it cannot be used; the
/// reason is told with the place of the instance in its text.
using InstanceCheck = std::function<void(const Instance& instance)>;

/// Compiles MOF (UTF-8) into a repository. Throws MofError; what stood before the error is kept.
void CompileMof(Repository& repository, std::string_view text, const std::string& fileName,
                InstanceCheck check = {});
/// The same for a file; `#pragma include` is resolved beside it.
void CompileMofFile(Repository& repository, const std::filesystem::path& file, InstanceCheck check = {});

/// What stands before the first word of a MOF file: comments, and the blanks around them. Nothing for a file
/// without a word. Throws MofError.
std::optional<std::string> LeadingComments(const std::filesystem::path& file);

/// Writes the instances of a repository as MOF that compiles into the same instances (UTF-8).
std::string WriteInstancesAsMof(const Repository& repository);
/// The MOF text of one instance or class, for GetObjectText.
std::wstring ObjectText(const Instance& instance);
std::wstring ObjectText(const ClassDefinition& definition);

} // namespace quillet::simulator
