// What the client layer throws, and the words for result codes.
#pragma once

#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

namespace quillet {

/// The category of the codes of WMI, COM and Windows (HRESULT). Its messages are sentences without a full
/// stop, with the code and its name behind them: "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED". Codes
/// that have a counterpart in std::errc compare equal to it: `error.code() == std::errc::permission_denied`.
const std::error_category& ResultCategory() noexcept;

/// "0x80041010 WBEM_E_INVALID_CLASS"; the code alone where it has no name here.
std::string DescribeResult(std::int32_t code);
/// The same with what it means before it. Codes that say nothing but that something failed have no words.
/// @param reason what it means here; empty: what it means everywhere
std::string ExplainResult(std::int32_t code, const std::string& reason = {});

/// An operation failed. What has been changed until then stays changed.
class Error : public std::system_error {
  public:
    /// @param code      the HRESULT
    /// @param operation which operation of CQuillet failed: "EnumerateAdapters"
    /// @param about     what it was about: an object path, a name; nothing that is secret
    Error(std::int32_t code, std::string operation, const std::wstring& about = {});

    /// The HRESULT.
    std::int32_t Code() const noexcept { return code().value(); }
    /// The operation of CQuillet that failed.
    const std::string& Operation() const noexcept { return m_operation; }
    /// What it was about, as UTF-8; empty where it was about the machine.
    const std::string& About() const noexcept { return m_about; }

  private:
    Error(std::int32_t code, std::string operation, std::string about);

    std::string m_operation;
    std::string m_about;
};

/// An operation that yields a list, or a record that is read in parts, failed on the way.
template <class Result>
class PartialError : public Error {
  public:
    /// @param error how it failed
    /// @param read  what was read before
    PartialError(const Error& error, Result read) : Error(error), m_read(std::move(read)) {}

    /// What was read before the failure.
    const Result& Read() const noexcept { return m_read; }

  private:
    Result m_read;
};

} // namespace quillet
