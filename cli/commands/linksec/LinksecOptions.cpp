// Declaring options, and taking over what they gave.
#include "commands/linksec/LinksecOptions.h"

#include "texts/Text.h"

namespace quilletctl {

void DeclareReload(Syntax& syntax, bool& reload) {
    syntax.Flag("--reload", reload, "Reload the driver, so that the change takes effect at once");
}

void Take(const std::optional<LONG>& given, LONG& member) {
    member = given.value_or(member);
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
