// The files of a compilation.
#pragma once

#include "language/MofLexer.h"

#include <filesystem>
#include <memory>

namespace quillet::wmi {

/// A place in a text that outlives the reading of the text.
struct MofPlace {
    std::shared_ptr<const MofSource> source;
    std::size_t offset = 0;
    [[noreturn]] void Fail(const std::wstring& message) const { throw source->Error(offset, message); }
};

/// A text, and where the files beside it are.
struct MofFile {
    std::shared_ptr<const MofSource> source;
    std::filesystem::path folder;
};

/// Reads a file. Throws MofError.
MofFile ReadMofFile(const std::filesystem::path& file);

/// The files that are being read, each included by the one before it.
class MofFiles {
  public:
    /// Notes the file with which a compilation begins. A text that is no file begins without one.
    void Begin(const std::filesystem::path& file);
    /// Reads what the text at a place includes. Throws MofError.
    MofFile Include(const std::wstring& name, const std::filesystem::path& folder, const MofPlace& place);
    /// Ends the file that was included last.
    void End() { m_open.pop_back(); }

  private:
    std::vector<std::filesystem::path> m_open;
};

} // namespace quillet::wmi
