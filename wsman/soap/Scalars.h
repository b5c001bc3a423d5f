// A scalar as the text that it has in XML.
#pragma once

#include <quillet-wmi/Model.h>
#include <quillet-wmi/Text.h>

#include <string>

namespace quillet::wsman {

/// "true", "-12", "1.5", or the text itself (UTF-8).
inline std::string ScalarText(const wmi::Scalar& scalar) {
    if (const auto* flag = std::get_if<bool>(&scalar)) {
        return *flag ? "true" : "false";
    }
    if (const auto* whole = std::get_if<std::int64_t>(&scalar)) {
        return std::to_string(*whole);
    }
    if (const auto* natural = std::get_if<std::uint64_t>(&scalar)) {
        return std::to_string(*natural);
    }
    if (const auto* real = std::get_if<double>(&scalar)) {
        return wmi::ToUtf8(wmi::RealText(*real));
    }
    const auto* text = std::get_if<std::wstring>(&scalar);
    return text != nullptr ? wmi::ToUtf8(*text) : std::string(); // an object has none
}

} // namespace quillet::wsman
