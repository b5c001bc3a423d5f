// A connection to a peer: bytes over a socket, with TLS or without it.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include <openssl/types.h>
#include <sys/types.h>

namespace quillet::wsman {

/// What every connection over TLS has in common. Throws std::runtime_error, which says what is wrong with
/// the certificate (a chain in PEM) or the key.
std::shared_ptr<SSL_CTX> TlsOf(const std::string& certificateFile, const std::string& keyFile);

/// Nothing takes longer than until the deadline, however slow or silent the peer is. For one thread; only
/// StopReading and Abort are for others.
class Wire {
  public:
    using Clock = std::chrono::steady_clock;

    /// @param socket becomes the wire's own @param tls null: without TLS
    Wire(int socket, SSL_CTX* tls);
    ~Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    void SetDeadline(Clock::duration fromNow) { m_deadline = Clock::now() + fromNow; }
    /// Agrees upon TLS, where there is any. False: with this peer it cannot be.
    bool Handshake();
    /// What has come, at least one byte; 0 at the end of it, -1 where it failed or took too long.
    ssize_t Read(char* bytes, std::size_t size);
    /// All of it, or false.
    bool Write(const char* bytes, std::size_t size);
    /// Ends the connection so that the peer still gets what was written: whoever closes a socket on bytes
    /// that were not read has the peer lose the answer.
    void Finish();
    /// From now on there is nothing more to read; what is being written goes out.
    void StopReading() noexcept;
    /// Ends the connection at once.
    void Abort() noexcept;

    /// Address and port of the peer.
    const std::string& Peer() const noexcept { return m_peer; }

  private:
    /// Waits until the socket is ready for this; false at the deadline.
    bool IsReady(short events) const;
    /// Whether TLS wants to go on after it waited for what it lacks.
    bool GoesOn(int result);

    const int m_socket;
    std::unique_ptr<SSL, void (*)(SSL*)> m_tls;
    std::string m_peer;
    Clock::time_point m_deadline{};
};

} // namespace quillet::wsman
