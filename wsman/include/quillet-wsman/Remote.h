// Machines over WS-Management in the place of this host's own WMI.
#pragma once

#include <quillet-wmi/Connection.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quillet::wsman {

/// A password. It is overwritten when it goes, and goes into no stream.
class Password {
  public:
    Password() = default;
    /// Takes a copy (UTF-8). The text that it is made from is the caller's to overwrite.
    explicit Password(std::string_view text) : m_text(text) {}
    Password(const Password& other) = default;
    Password(Password&& other) noexcept {
        m_text.swap(other.m_text);
        // A short one was copied out of the other's own memory, which has it still.
        other.m_text.assign(other.m_text.capacity(), '\0');
        other.m_text.clear();
    }
    Password& operator=(Password other) noexcept {
        m_text.swap(other.m_text);
        return *this;
    }
    ~Password() {
        // Not to be left out as a write that nobody reads.
        volatile char* place = m_text.data();
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            place[i] = '\0';
        }
    }

    bool IsEmpty() const noexcept { return m_text.empty(); }
    /// The text, for whoever must have it.
    const std::string& Reveal() const noexcept { return m_text; }

  private:
    std::string m_text;
};

/// How the caller proves who it is.
enum class Authentication {
    Negotiate, ///< by the Kerberos ticket that the caller has (kinit); needs no password
    Ntlm,      ///< by user and password, which do not travel
    Basic      ///< by user and password, which TLS alone protects
};

/// The way to machines.
struct RemoteOptions {
    /// The machine for sessions that name none: a host name or an address.
    std::string host{};
    int port = 0; ///< 0: 5986, or 5985 for plain HTTP
    Authentication authentication = Authentication::Negotiate;
    std::string user{};  ///< "name", or "DOMAIN\name"; not used by Negotiate
    Password password{}; ///< not used by Negotiate
    /// A file of certificates (PEM) that a machine's certificate may come from; empty: the system's.
    std::string authorities{};
    /// Takes any certificate. Whoever is between here and the machine can then read and change everything.
    bool isUnverified = false;
    /// HTTP without TLS. Other machines than this one then have to take unprotected messages, and everybody
    /// between can read them.
    bool isPlain = false;
    std::chrono::milliseconds connectTimeout{10'000}; ///< to reach a machine
    std::chrono::milliseconds timeout{180'000};       ///< of each request; the machine may set less
    unsigned pageSize = 256;                          ///< the most objects that one answer has
    /// The name in object paths; empty: the machine's own, for which it is asked, or as it was named.
    std::wstring serverName{};
    /// The classes that are known here, for a machine that does not tell them.
    std::function<wmi::ClassPtr(std::wstring_view)> schema{};
    /// Asks the machine only for classes that `schema` does not have: fewer requests, but properties that the
    /// machine's provider has and `schema` has not are not seen.
    bool isSchemaTrusted = false;
    /// Asked about ten times a second by whoever waits for an answer, on the waiting thread. Once it says
    /// yes, the request ends as with Remote::Cancel, on this thread alone. Empty: nobody is asked.
    std::function<bool()> isInterrupted{};
};

/// Where connections to machines come from. Safe for many threads; sessions of one machine share its HTTP
/// connections. Throws std::invalid_argument for options that contradict each other or are not safe: Basic
/// and no TLS to another machine than this one, no user where one is needed.
std::shared_ptr<wmi::Host> MakeRemoteHost(RemoteOptions options);

/// Puts machines behind CLSID_WbemLocator for this process while it lives, as wmi::ClassRegistration does:
/// a session that names a machine (quillet::SessionOptions::machine) is then one with that machine, over
/// HTTPS. COM must have been initialised on the thread.
///
///     quillet::ComUsage com;
///     quillet::wsman::Remote remote({.host = "server12", .user = "admin", .password = password});
///     quillet::Session session({.machine = L"server12"});
class Remote {
  public:
    /// Throws std::invalid_argument as MakeRemoteHost.
    explicit Remote(RemoteOptions options);
    ~Remote();
    Remote(const Remote&) = delete;
    Remote& operator=(const Remote&) = delete;
    /// S_OK, or why COM did not take the registration.
    HRESULT Result() const noexcept;
    /// Ends all requests that wait, on all threads, with WBEM_E_CALL_CANCELLED, and those that come later.
    /// What a machine has begun it may bring to its end.
    void Cancel() noexcept;

  private:
    struct State;
    const std::unique_ptr<State> m_state;
};

/// Whether a host name or an address means the computer that asks: nothing that is sent there leaves it.
bool IsThisComputer(std::string_view host);

/// Why the last request of this thread failed, for people: which machine, which URL, what happened. Empty:
/// it did not fail. A result code alone says less.
std::string LastFailure();

} // namespace quillet::wsman
