// Pieces that many answers are made of.
#pragma once

#include "texts/Json.h"

#include <windows.h>

#include <nlohmann/json.hpp>

#include <string>

namespace quilletctl {

inline Json TextOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

/// A number of the provider's and what it means.
inline Json Coded(LONG code, const std::string& text) {
    return Json{{"code", code}, {"text", text}};
}

} // namespace quilletctl
