// Reads values below HKEY_LOCAL_MACHINE that somebody else wrote: a value of another type or size than
// expected counts as missing.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>

/// One key of HKEY_LOCAL_MACHINE, open for reading as long as this object lives.
class LumRegistryKey {
  public:
    explicit LumRegistryKey(const wchar_t* path) noexcept;
    ~LumRegistryKey();
    LumRegistryKey(const LumRegistryKey&) = delete;
    LumRegistryKey& operator=(const LumRegistryKey&) = delete;

    bool IsOpen() const noexcept { return m_key != nullptr; }

    /// Whether there is a value of this name, whatever its type and size.
    bool Has(const wchar_t* name) const noexcept;

    /// The first four bytes' worth of a value of any type; nothing if it is missing or longer.
    std::optional<DWORD> ReadFourBytes(const wchar_t* name) const noexcept;

    /// A REG_DWORD value; nothing if the key or the value is missing or of another type.
    std::optional<DWORD> ReadDword(const wchar_t* name) const noexcept;

    /// A REG_SZ or REG_EXPAND_SZ value as stored, up to its first zero; nothing if the key or the value is
    /// missing, of another type, or longer than `capacity` characters, terminator included.
    std::optional<std::wstring> ReadString(const wchar_t* name, std::size_t capacity) const;

  private:
    HKEY m_key = nullptr;
};
