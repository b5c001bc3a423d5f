// VARIANTs of every type that a provider may answer with, and what each reads as.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <comutil.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/// A VARIANT and what it reads as; nothing where the value must stay as it was.
struct VariantCase {
    const char* name;
    /// Makes the VARIANT anew, with whatever it owns; called for each read.
    std::function<VARIANT()> make;
    std::optional<bool> asBool;
    std::optional<LONG> asLong;
    std::optional<ULONGLONG> asUInt64;
    std::wstring asText; ///< anything but a BSTR reads as an empty text
};

inline std::ostream& operator<<(std::ostream& stream, const VariantCase& variantCase) {
    return stream << variantCase.name;
}

/// All of them: each scalar type with its edges, text, and everything that points somewhere.
std::vector<VariantCase> AllVariantCases();

/// An object in VARIANTs that must never be called. It lives as long as the process.
IUnknown* UncallableObject();
/// How often it was called all the same, references apart.
int CallsOfUncallableObject();
/// Its references beyond the one it began with.
ULONG ReferencesOfUncallableObject();
