// Files that a command reads or writes as a whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quilletctl {

/// The path of a name from the command line (UTF-8).
std::filesystem::path FilePath(const std::string& utf8);
bool FileExists(const std::string& file);
/// Throws UsageError where there is no such file, or it cannot be read.
void CheckReadable(const std::string& file);
/// As CheckReadable.
std::vector<std::uint8_t> ReadWholeFile(const std::string& file);
/// Standard input up to its end. Of more than so many bytes only the beginning, which is longer than they.
std::string ReadStandardInput(std::size_t most);

/// Who may read what is written.
enum class Access { Usual, OwnerOnly };

/// Throws UsageError where a file could not be replaced; what there is stays as it is.
void CheckReplaceable(const std::string& file);
/// Replaces a file, as a whole or not at all. One that is there keeps its rights, its owner and the links
/// that lead to it; who may read a new one is said here. Throws UsageError.
void ReplaceWholeFile(const std::string& file, std::string_view bytes, Access access = Access::Usual);

} // namespace quilletctl
