// Pieces that many answers are made of.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>

#include <string>

namespace quilletctl {

inline nlohmann::ordered_json TextOrNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

/// A number of the provider's and what it means.
inline nlohmann::ordered_json Coded(LONG code, const std::string& text) {
    return nlohmann::ordered_json{{"code", code}, {"text", text}};
}

} // namespace quilletctl
