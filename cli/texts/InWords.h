// The provider's numbers in words.
#pragma once

#include "texts/Text.h"

#include <windows.h>

#include <quillet/client/Adapter.h>

#include <string>

namespace quilletctl {

/// What a number means to which the client layer gives a type; one that has no word is "code 7".
template <class Number>
std::string InWords(LONG number) {
    return ToUtf8(quillet::Text(static_cast<Number>(number)));
}

} // namespace quilletctl
