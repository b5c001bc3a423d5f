// From what a document says to the value of a setting, and back.
#pragma once

#include <quillet-state/Document.h>

#include <quillet/client/Setting.h>

#include <stdexcept>
#include <string>

namespace quillet::state {

/// The keyword of the setting that is the performance profile.
inline constexpr const char* kProfile = "PerformanceProfile";

/// A setting cannot have a value: why, as the end of a sentence.
class ValueError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The setting that a caption or, where only one has it, a display name means; null where there is none.
const Setting* SettingCalled(const std::vector<Setting>& settings, const std::string& name);

/// Whether it is the performance profile.
bool IsProfile(const Setting& setting);

/// A copy of the setting with another value. A number, or the text of one of its values; of a selection a
/// list of these, or texts with "+" between them; of a list of texts a list. Throws ValueError.
Setting WithValue(const Setting& setting, const Json& value);

/// The current value as documents have it: a number, a text, or a list of texts.
Json ValueOf(const Setting& setting);
/// Whether two values of a setting are the same: the digits of an address have no case.
bool HasSameValue(const Setting& left, const Setting& right);
/// Whether the value is the one that the driver comes with.
bool IsStandard(const Setting& setting);
/// The value for people: "9014 Bytes (9014)".
std::string ValueText(const Setting& setting);

} // namespace quillet::state
