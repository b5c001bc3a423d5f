// The rules are read off the properties of a setting: the classes of adapters, teams, VLANs and boot agents
// repeat one pattern, and a machine file may add classes of its own.
#include "rules/SettingRules.h"

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::simulator {

namespace {

constexpr const wchar_t* kValues[] = {L"CurrentValue", L"CurrentValues"};

bool HasValue(const Instance& instance, std::wstring_view property) {
    const Value* value = instance.Find(property);
    return value != nullptr && !value->IsNull();
}

/// The numbers of "PossibleValues", which holds them as texts.
std::vector<std::int64_t> PossibleValues(const Instance& setting) {
    std::vector<std::int64_t> numbers;
    const Value* value = setting.Find(L"PossibleValues");
    if (value == nullptr || value->AsArray() == nullptr) {
        return numbers;
    }
    for (const auto& element : *value->AsArray()) {
        const auto* text = element ? std::get_if<std::wstring>(&*element) : nullptr;
        if (const auto number = text != nullptr ? ParseDecimal(*text) : std::nullopt) {
            const auto magnitude = static_cast<std::int64_t>(number->magnitude);
            numbers.push_back(number->negative ? -magnitude : magnitude);
        }
    }
    return numbers;
}

bool IsShortEnough(const Instance& setting, const std::wstring& text) {
    return !HasValue(setting, L"MaxLength") ||
           static_cast<std::int64_t>(text.size()) <= setting.Number(L"MaxLength");
}

/// Whether a value, a number or texts, is one that the setting can have.
bool MayHold(const Instance& setting, const Value& value) {
    if (const auto* texts = value.AsArray()) {
        return std::all_of(texts->begin(), texts->end(), [&](const auto& element) {
            const auto* text = element ? std::get_if<std::wstring>(&*element) : nullptr;
            return text != nullptr && IsShortEnough(setting, *text);
        });
    }
    if (const auto* text = std::get_if<std::wstring>(value.AsScalar())) {
        return IsShortEnough(setting, *text);
    }
    const auto* number = std::get_if<std::int64_t>(value.AsScalar());
    return number != nullptr && MayTake(setting, *number);
}

} // namespace

bool MayTake(const Instance& setting, std::int64_t number) {
    const Property* property = setting.definition->FindProperty(L"CurrentValue");
    if (property == nullptr || !IsIntegerType(property->type)) {
        return false;
    }
    if (HasValue(setting, L"Min") && number < setting.Number(L"Min")) {
        return false;
    }
    if (HasValue(setting, L"Max") && number > setting.Number(L"Max")) {
        return false;
    }
    const auto step = setting.Number(L"Step");
    if (step > 1 && (number - setting.Number(L"Min")) % step != 0) {
        return false;
    }
    if (setting.definition->FindProperty(L"PossibleValues") == nullptr) {
        return true;
    }
    const auto possible = PossibleValues(setting);
    if (setting.definition->name.find(L"MultiSelection") == std::wstring::npos) {
        return std::find(possible.begin(), possible.end(), number) != possible.end();
    }
    std::int64_t bits = 0;
    for (const auto each : possible) {
        bits |= each;
    }
    return number >= 0 && (number & ~bits) == 0;
}

HRESULT TakeOver(Instance& stored, const Instance& written) {
    if (stored.Number(L"Writable") == 0) {
        return HRESULT(WBEM_E_READ_ONLY);
    }
    for (const auto& property : stored.definition->properties) {
        if (!property.qualifiers.Has(L"Write") &&
            !(*written.Find(property.name) == *stored.Find(property.name))) {
            return HRESULT(WBEM_E_READ_ONLY);
        }
    }
    for (const auto* name : kValues) {
        if (stored.definition->FindProperty(name) == nullptr) {
            continue;
        }
        const Value* value = written.Find(name);
        if (value == nullptr || value->IsNull()) {
            return HRESULT(WBEM_E_ILLEGAL_NULL);
        }
        if (!MayHold(stored, *value)) {
            return HRESULT(WBEM_E_VALUE_OUT_OF_RANGE);
        }
        stored.Set(name, *value);
    }
    return S_OK;
}

InstancePtr FindSetting(const Repository& store, std::wstring_view className, std::wstring_view parentId,
                        std::wstring_view caption) {
    for (const auto& setting : store.Instances(className)) {
        if (SameName(setting->Text(L"ParentId"), parentId) && SameName(setting->Text(L"Caption"), caption)) {
            return setting;
        }
    }
    return nullptr;
}

} // namespace quillet::simulator
