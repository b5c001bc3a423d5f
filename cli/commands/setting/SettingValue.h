// From what was typed to the value of a setting.
#pragma once

#include <quillet/client/Setting.h>

#include <optional>
#include <string>

namespace quilletctl {

/// A copy of the setting with another value. Numbers are given as such or, where the value has a text, by
/// that text (case does not count); several bits by their texts with "+" between them; lists with "," between
/// their texts. Whether a number is one that the setting can have is the provider's to say. Throws UsageError
/// for a text that is neither number nor one of the setting's texts.
quillet::Setting WithValue(const quillet::Setting& setting, const std::string& text);

/// A copy of the setting with its default as its value; nothing where that is no value that it can have, for
/// the provider tells none then.
std::optional<quillet::Setting> WithDefault(const quillet::Setting& setting);

} // namespace quilletctl
