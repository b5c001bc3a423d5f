// Bytes over a socket.
#include "server/Wire.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <stdexcept>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillet::wsman {

namespace {

/// What OpenSSL says about its last failure.
std::string TlsFailure() {
    const char* reason = ERR_reason_error_string(ERR_peek_last_error());
    std::string text = reason != nullptr ? reason : "it cannot be read";
    ERR_clear_error();
    return text;
}

std::string AddressOf(int socket) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (getpeername(socket, any, &size) != 0 ||
        getnameinfo(any, size, host.data(), host.size(), port.data(), port.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
        return "-";
    }
    return address.ss_family == AF_INET6 ? '[' + std::string(host.data()) + "]:" + port.data()
                                         : std::string(host.data()) + ':' + port.data();
}

} // namespace

std::shared_ptr<SSL_CTX> TlsOf(const std::string& certificateFile, const std::string& keyFile) {
    std::shared_ptr<SSL_CTX> tls(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    if (tls == nullptr) {
        throw std::runtime_error("there is no TLS: " + TlsFailure());
    }
    SSL_CTX_set_min_proto_version(tls.get(), TLS1_2_VERSION);
    SSL_CTX_set_options(tls.get(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    // A key with a passphrase is refused: nobody is there to be asked for it.
    SSL_CTX_set_default_passwd_cb(tls.get(), [](char*, int, int, void*) { return -1; });
    if (SSL_CTX_use_certificate_chain_file(tls.get(), certificateFile.c_str()) != 1) {
        throw std::runtime_error(certificateFile + ": this is no certificate in PEM: " + TlsFailure());
    }
    if (SSL_CTX_use_PrivateKey_file(tls.get(), keyFile.c_str(), SSL_FILETYPE_PEM) != 1 ||
        SSL_CTX_check_private_key(tls.get()) != 1) {
        throw std::runtime_error(keyFile + ": this is not the certificate's key in PEM: " + TlsFailure());
    }
    return tls;
}

Wire::Wire(int socket, SSL_CTX* tls)
    : m_socket(socket), m_tls(tls != nullptr ? SSL_new(tls) : nullptr, SSL_free), m_peer(AddressOf(socket)) {
    const int on = 1; // answers are sent as they are
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (m_tls != nullptr) {
        SSL_set_fd(m_tls.get(), m_socket);
        SSL_set_mode(m_tls.get(), SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER | SSL_MODE_ENABLE_PARTIAL_WRITE);
    }
}

Wire::~Wire() {
    m_tls.reset();
    close(m_socket);
}

bool Wire::IsReady(short events) const {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - Clock::now()).count();
        if (left <= 0) {
            return false;
        }
        pollfd asked{m_socket, events, 0};
        const int ready = poll(&asked, 1, static_cast<int>(std::min<long long>(left, INT_MAX)));
        if (ready > 0 || (ready < 0 && errno != EINTR)) {
            return ready > 0;
        }
    }
}

bool Wire::GoesOn(int result) {
    switch (SSL_get_error(m_tls.get(), result)) {
    case SSL_ERROR_WANT_READ:
        return IsReady(POLLIN);
    case SSL_ERROR_WANT_WRITE:
        return IsReady(POLLOUT);
    default:
        return false;
    }
}

bool Wire::Handshake() {
    if (m_tls == nullptr) {
        return true;
    }
    for (;;) {
        ERR_clear_error();
        const int result = SSL_accept(m_tls.get());
        if (result == 1 || !GoesOn(result)) {
            return result == 1;
        }
    }
}

ssize_t Wire::Read(char* bytes, std::size_t size) {
    for (;;) {
        if (m_tls != nullptr) {
            ERR_clear_error();
            const int read =
                SSL_read(m_tls.get(), bytes, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
            if (read > 0 || !GoesOn(read)) {
                return read > 0 ? read : SSL_get_error(m_tls.get(), read) == SSL_ERROR_ZERO_RETURN ? 0 : -1;
            }
            continue;
        }
        const ssize_t read = recv(m_socket, bytes, size, 0);
        if (read >= 0) {
            return read;
        }
        if (errno != EINTR && !((errno == EAGAIN || errno == EWOULDBLOCK) && IsReady(POLLIN))) {
            return -1;
        }
    }
}

bool Wire::Write(const char* bytes, std::size_t size) {
    while (size > 0) {
        ssize_t written = 0;
        if (m_tls != nullptr) {
            ERR_clear_error();
            const int result =
                SSL_write(m_tls.get(), bytes, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
            if (result <= 0 && !GoesOn(result)) {
                return false;
            }
            written = std::max(result, 0);
        } else {
            written = send(m_socket, bytes, size, MSG_NOSIGNAL);
            if (written < 0) {
                if (errno != EINTR && !((errno == EAGAIN || errno == EWOULDBLOCK) && IsReady(POLLOUT))) {
                    return false;
                }
                written = 0;
            }
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

void Wire::Finish() {
    if (m_tls != nullptr && SSL_is_init_finished(m_tls.get()) == 1) {
        ERR_clear_error();
        SSL_shutdown(m_tls.get());
    }
    shutdown(m_socket, SHUT_WR);
    SetDeadline(std::chrono::seconds(1));
    constexpr int kMost = 64;
    std::array<char, 16'384> unwanted{};
    for (int count = 0; count < kMost && IsReady(POLLIN); ++count) {
        if (recv(m_socket, unwanted.data(), unwanted.size(), 0) <= 0) {
            break;
        }
    }
}

void Wire::StopReading() noexcept {
    shutdown(m_socket, SHUT_RD);
}

void Wire::Abort() noexcept {
    shutdown(m_socket, SHUT_RDWR);
}

} // namespace quillet::wsman
