// Checking passwords.
#include "server/Passwords.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <vector>

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

namespace quillet::wsman {

namespace {

/// Bytes that are overwritten before they are given back.
class Secret {
  public:
    explicit Secret(std::size_t size) : m_bytes(size) {}
    ~Secret() { OPENSSL_cleanse(m_bytes.data(), m_bytes.size()); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;

    unsigned char* Data() { return m_bytes.data(); }
    std::string_view Text(std::size_t size) const {
        return {reinterpret_cast<const char*>(m_bytes.data()), size};
    }

  private:
    std::vector<unsigned char> m_bytes;
};

bool IsControl(char character) {
    return std::iscntrl(static_cast<unsigned char>(character)) != 0;
}

} // namespace

Passwords::Passwords() {
    if (RAND_bytes(m_key.data(), static_cast<int>(m_key.size())) != 1) {
        throw std::runtime_error("there are no random numbers");
    }
}

Passwords::Digest Passwords::DigestOf(std::string_view password) const {
    Digest digest{};
    HMAC(EVP_sha256(), m_key.data(), static_cast<int>(m_key.size()),
         reinterpret_cast<const unsigned char*>(password.data()), password.size(), digest.data(), nullptr);
    return digest;
}

void Passwords::Add(const std::string& user, std::string_view password) {
    if (user.empty() || user.find(':') != std::string::npos ||
        std::any_of(user.begin(), user.end(), IsControl)) {
        throw std::invalid_argument("the name of a user is empty, or has a colon or a control character");
    }
    if (password.empty()) {
        throw std::invalid_argument("the password of " + user + " is empty");
    }
    if (!m_users.emplace(user, DigestOf(password)).second) {
        throw std::invalid_argument("there are two passwords for " + user);
    }
}

std::optional<std::string> Passwords::UserOf(std::string_view authorization) const {
    constexpr std::string_view kScheme = "basic ";
    constexpr std::size_t kLongest = 2048;
    const bool isBasic =
        authorization.size() > kScheme.size() && authorization.size() < kLongest &&
        std::equal(kScheme.begin(), kScheme.end(), authorization.begin(), [](char known, char given) {
            return known == std::tolower(static_cast<unsigned char>(given));
        });
    if (!isBasic) {
        return std::nullopt;
    }
    std::string_view encoded = authorization.substr(kScheme.size());
    while (encoded.starts_with(' ')) {
        encoded.remove_prefix(1);
    }
    Secret decoded(encoded.size());
    const int decodedSize =
        EVP_DecodeBlock(decoded.Data(), reinterpret_cast<const unsigned char*>(encoded.data()),
                        static_cast<int>(encoded.size()));
    if (decodedSize < 0) {
        return std::nullopt;
    }
    const std::size_t padding = encoded.ends_with("==") ? 2 : encoded.ends_with('=') ? 1 : 0;
    const std::string_view both = decoded.Text(static_cast<std::size_t>(decodedSize) - padding);
    const std::size_t colon = both.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const auto found = m_users.find(both.substr(0, colon));
    const Digest given = DigestOf(both.substr(colon + 1));
    const Digest& known = found != m_users.end() ? found->second : m_nobody;
    const bool isRight = CRYPTO_memcmp(given.data(), known.data(), known.size()) == 0;
    return isRight && found != m_users.end() ? std::optional(found->first) : std::nullopt;
}

} // namespace quillet::wsman
