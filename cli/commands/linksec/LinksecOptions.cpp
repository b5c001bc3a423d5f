// Declaring options, and taking over what they gave.
#include "commands/linksec/LinksecOptions.h"

#include "texts/Text.h"

namespace quilletctl {

void ReloadOption::Declare(Syntax& syntax) {
    syntax.Flag("--reload", m_isGiven, "Reload the driver, so that the change takes effect at once");
}

void Take(const std::optional<LONG>& given, std::int32_t& member) {
    member = given ? static_cast<std::int32_t>(*given) : member;
}

void Take(const std::optional<std::string>& given, std::wstring& member) {
    if (given) {
        member = ToWide(*given);
    }
}

void Take(const std::string& given, bool& member) {
    if (!given.empty()) {
        member = given == "on";
    }
}

} // namespace quilletctl
