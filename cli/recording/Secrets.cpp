// Finding secrets among the values of an instance.
#include "recording/Secrets.h"

#include <algorithm>
#include <array>
#include <cwctype>

namespace quilletctl {

namespace {

using quillet::wmi::Instance;
using quillet::wmi::Property;
using quillet::wmi::Value;

/// The schema marks properties that are secrets. A setting is no property of its own, so its keyword has to
/// tell: the boot agents of some machines keep the passwords of iSCSI targets in settings.
constexpr std::array<std::wstring_view, 5> kSecretWords{L"password", L"secret", L"chap", L"psk",
                                                        L"passphrase"};

bool IsSecretSetting(const Instance& instance) {
    return instance.definition->IsA(L"Zorel_Setting") &&
           NamesASecret(instance.Text(L"Caption") + L' ' + instance.Text(L"Description"));
}

bool IsValueOfSetting(const Property& property) {
    return quillet::wmi::SameName(property.name, L"CurrentValue") ||
           quillet::wmi::SameName(property.name, L"CurrentValues") ||
           quillet::wmi::SameName(property.name, L"DefaultValue");
}

bool HasText(const Value& value) {
    const auto isText = [](const auto& scalar) {
        const auto* text = std::get_if<std::wstring>(&scalar);
        return text != nullptr && !text->empty();
    };
    if (const auto* scalar = value.AsScalar()) {
        return isText(*scalar);
    }
    return std::ranges::any_of(value.Elements(),
                               [&](const auto& element) { return element && isText(*element); });
}

Value StandInFor(const Value& value) {
    return value.IsArray() ? Value(Value::Array{quillet::wmi::Scalar(std::wstring(kSecretStandIn))})
                           : Value::Text(kSecretStandIn);
}

} // namespace

bool NamesASecret(std::wstring names) {
    std::ranges::transform(names, names.begin(), [](wchar_t each) {
        return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(each)));
    });
    return std::ranges::any_of(
        kSecretWords, [&](std::wstring_view word) { return names.find(word) != std::wstring::npos; });
}

std::size_t HideSecrets(Instance& instance) {
    const bool isSecretSetting = IsSecretSetting(instance);
    std::size_t count = 0;
    for (std::size_t i = 0; i < instance.values.size(); ++i) {
        const Property& property = instance.definition->properties[i];
        const bool isSecret =
            property.qualifiers.Has(L"Secret") || (isSecretSetting && IsValueOfSetting(property));
        if (isSecret && HasText(instance.values[i])) {
            instance.values[i] = StandInFor(instance.values[i]);
            ++count;
        }
    }
    return count;
}

} // namespace quilletctl
