// How an adapter authenticates for link security.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// The page "Link security" of an adapter. No secret of the machine's gets into it: it only knows whether
/// there is one.
class LinkSecurityPage : public Page {
  public:
    explicit LinkSecurityPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;
    bool IsChanged() const override;
    std::wstring Mistake() const override;
    Change Changes() const override;
    void Settle() override { m_password.Clear(); }

    /// Whether the adapter has link security.
    bool IsThere() const noexcept { return m_isThere; }
    /// The adapter's state of link security in words; why there is none.
    const std::wstring& Status() const noexcept { return m_status; }
    /// Which credentials the adapter has saved, in words.
    const std::wstring& Saved() const noexcept { return m_saved; }
    /// What the user wants; the password is none.
    const Authentication& Wanted() const noexcept { return m_wanted; }
    /// Whether a password is set on the machine.
    bool HasPassword() const noexcept { return m_hasPassword; }
    /// Whether one was typed that is not applied yet.
    bool IsPasswordTyped() const noexcept { return !m_password.IsEmpty(); }
    /// What was typed for the kind of keys.
    const std::wstring& KeyKind() const noexcept { return m_keyKind; }
    /// Whether the outer method uses credentials; whether it uses a PAC.
    bool UsesCredentials() const noexcept { return IsThere() && m_wanted.methods.outer != 1; }
    bool UsesPac() const noexcept { return IsThere() && m_wanted.methods.outer == 4; }
    /// The methods that can be chosen, and the one that is set where it is another one.
    std::vector<std::int32_t> OuterMethods() const { return MethodsTo(4, m_read.methods.outer); }
    std::vector<std::int32_t> InnerMethods() const { return MethodsTo(3, m_read.methods.inner); }

    /// @name What the user does
    /// @{
    void Edit(const std::function<void(Authentication&)>& how);
    void TypePassword(Secret password);
    void TypeKeyKind(const std::wstring& number);
    void SetReload(bool isWanted) { m_reload = isWanted ? Reload::Driver : Reload::No; }
    /// @}

  private:
    struct Read;

    static std::vector<std::int32_t> MethodsTo(std::int32_t last, std::int32_t read);
    void Take(const Read& now, std::wstring notice);
    void TakeAuthentication(const Authentication& now, std::wstring& notice);
    Authentication Written() const;

    AdapterId m_adapter;
    bool m_isThere = false;
    std::wstring m_status;
    std::wstring m_saved;
    Authentication m_read;
    Authentication m_wanted;
    std::wstring m_keyKind;
    bool m_hasPassword = false;
    Secret m_password;
    Reload m_reload = Reload::No;
};

/// The number that a text is, as a whole.
std::optional<std::int32_t> WholeNumber(const std::wstring& text);

} // namespace quillet::pages
