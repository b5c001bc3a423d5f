// Compiles the schema and machines of the tree for the tests, and reads instances without ceremony.
#pragma once

#include <quillet-wmi/Mof.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quillet::simulator::tests {

/// Folders of the tree and of the build, from CMake.
std::filesystem::path SchemaFile();
std::filesystem::path MachineFile(const std::string& name);
/// A machine that scripts/make-machine wrote while the tests were built.
std::filesystem::path GeneratedMachineFile(int adapters);

/// A repository with the schema, and a machine if one is named. Throws MofError.
std::unique_ptr<Repository> Compile(const std::filesystem::path& machine = {});

/// The schema alone, compiled once.
const Repository& Schema();

/// The integers, or the texts, of a list property; empty when it is null.
std::vector<std::int64_t> Numbers(const Instance& instance, std::wstring_view property);
std::vector<std::wstring> Texts(const Instance& instance, std::wstring_view property);
/// The texts of a qualifier.
std::vector<std::wstring> Texts(const Value& value);

/// Plain letters for failure messages; others as "?".
std::string Narrow(std::wstring_view text);

} // namespace quillet::simulator::tests
