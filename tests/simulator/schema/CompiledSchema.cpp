#include "CompiledSchema.h"

namespace quillet::simulator::tests {

std::filesystem::path SchemaFile() {
    return std::filesystem::path(QUILLET_SCHEMA_DIRECTORY) / "zorel.mof";
}

std::filesystem::path MachineFile(const std::string& name) {
    return std::filesystem::path(QUILLET_MACHINE_DIRECTORY) / name;
}

std::filesystem::path GeneratedMachineFile(int adapters) {
    return std::filesystem::path(QUILLET_GENERATED_DIRECTORY) /
           ("machine-" + std::to_string(adapters) + ".mof");
}

std::unique_ptr<Repository> Compile(const std::filesystem::path& machine) {
    auto repository = std::make_unique<Repository>(L"RACK12", L"ROOT\\MarloLUM2");
    CompileMofFile(*repository, SchemaFile());
    if (!machine.empty()) {
        CompileMofFile(*repository, machine);
    }
    return repository;
}

const Repository& Schema() {
    static const std::unique_ptr<Repository> schema = Compile();
    return *schema;
}

std::vector<std::int64_t> Numbers(const Instance& instance, std::wstring_view property) {
    std::vector<std::int64_t> numbers;
    const Value* value = instance.Find(property);
    if (value == nullptr) {
        return numbers;
    }
    for (const auto& element : value->Elements()) {
        if (!element) {
            continue;
        }
        if (const auto* number = std::get_if<std::int64_t>(&*element)) {
            numbers.push_back(*number);
        } else if (const auto* unsignedNumber = std::get_if<std::uint64_t>(&*element)) {
            numbers.push_back(static_cast<std::int64_t>(*unsignedNumber));
        }
    }
    return numbers;
}

std::vector<std::wstring> Texts(const Value& value) {
    std::vector<std::wstring> texts;
    if (value.AsArray() == nullptr) {
        return texts;
    }
    for (const auto& element : *value.AsArray()) {
        if (const auto* text = element ? std::get_if<std::wstring>(&*element) : nullptr) {
            texts.push_back(*text);
        }
    }
    return texts;
}

std::vector<std::wstring> Texts(const Instance& instance, std::wstring_view property) {
    const Value* value = instance.Find(property);
    return value == nullptr ? std::vector<std::wstring>() : Texts(*value);
}

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t letter : text) {
        narrow += letter > 0 && letter < 0x7F ? static_cast<char>(letter) : '?';
    }
    return narrow;
}

} // namespace quillet::simulator::tests
