// PAC files of link security, and its log.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// The page "PAC and log" of an adapter. What it does, it does at once.
class PacPage : public Page {
  public:
    explicit PacPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;

    /// Whether the adapter has link security.
    bool IsThere() const noexcept { return m_isThere; }
    /// The log of security statistics; why there is none.
    const std::wstring& Log() const noexcept { return m_log; }
    /// What the PAC holds that was asked for last, a line each.
    const std::wstring& Contents() const noexcept { return m_contents; }
    /// The name of the PAC that was imported last, for those who go on with it.
    const std::wstring& Imported() const noexcept { return m_imported; }
    bool IsPasswordTyped() const noexcept { return !m_password.IsEmpty(); }

    void TypePassword(Secret password) { m_password = std::move(password); }
    /// Imports a file of the managed machine with the password that was typed, which is forgotten then.
    Job Importing(const std::wstring& path, Reload reload);
    /// Looks into an imported PAC.
    Job Looking(const std::wstring& name);
    /// Deletes it.
    Job Deleting(const std::wstring& name);

  private:
    AdapterId m_adapter;
    bool m_isThere = false;
    std::wstring m_log;
    std::wstring m_contents;
    std::wstring m_imported;
    Secret m_password;
};

} // namespace quillet::pages
