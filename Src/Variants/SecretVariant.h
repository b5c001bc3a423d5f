// A VARIANT that holds a secret on its way between a record and the provider: whatever texts it holds are
// overwritten before they are freed, on every path.
#pragma once

#include <windows.h>
#include <oleauto.h>
#include <comutil.h>

#include <string>

/// Overwrites the texts that a VARIANT owns, in arrays, too; a provider may answer in any form. Lengths and
/// types stay, so that the VARIANT can be cleared as usual.
void OverwriteTexts(VARIANT& value) noexcept;

class SecretVariant : public _variant_t {
  public:
    /// Empty, for the provider to fill.
    SecretVariant() = default;
    /// The text to put, all of it; raises _com_error(E_OUTOFMEMORY).
    explicit SecretVariant(const std::wstring& text);
    ~SecretVariant() { OverwriteTexts(*this); }
    SecretVariant(const SecretVariant&) = delete;
    SecretVariant& operator=(const SecretVariant&) = delete;
};

/// Copies the text into the caller's string and into nothing else; what the string held is overwritten first.
/// Anything but a BSTR reads as an empty text, and yields false.
bool ReadVariant(const SecretVariant& value, std::wstring& result);
