// Who may ask, and what shows that it is they.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::wsman {

/// Users with their passwords. None of the passwords is kept: what is, is of use in this process only.
class Passwords {
  public:
    Passwords();

    /// A user more. Throws std::invalid_argument for a name that is empty, has a colon or a control
    /// character, or is there already, and for an empty password.
    void Add(const std::string& user, std::string_view password);
    bool IsEmpty() const noexcept { return m_users.empty(); }

    /// The user whom the "Authorization" header of a request ("Basic …") is right for; nothing otherwise.
    /// How long it takes tells neither whether there is such a user nor how much of a password was right.
    std::optional<std::string> UserOf(std::string_view authorization) const;

  private:
    using Digest = std::array<unsigned char, 32>;
    Digest DigestOf(std::string_view password) const;

    Digest m_key{}; ///< random
    Digest m_nobody{};
    std::map<std::string, Digest, std::less<>> m_users;
};

} // namespace quillet::wsman
