// Taking connections.
#include "server/Listener.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillet::wsman {

namespace {

/// A socket that listens, and is closed unless it is taken.
class ListeningSocket {
  public:
    explicit ListeningSocket(const addrinfo& where)
        : m_socket(socket(where.ai_family, where.ai_socktype | SOCK_CLOEXEC, where.ai_protocol)) {
        const int on = 1; // so that a server can start again at once
        if (m_socket < 0 || setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
            bind(m_socket, where.ai_addr, where.ai_addrlen) != 0 || listen(m_socket, SOMAXCONN) != 0) {
            m_error = errno;
        }
    }
    ~ListeningSocket() {
        if (m_socket >= 0) {
            close(m_socket);
        }
    }
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    int Error() const { return m_error; }
    int Take() { return std::exchange(m_socket, -1); }

  private:
    int m_socket;
    int m_error = 0;
};

/// Keeps signals from the threads that are made meanwhile: they are the program's, and a peer that is gone
/// is a failure to write and no signal.
class NoSignals {
  public:
    NoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

  private:
    sigset_t m_before{};
};

int PortOf(int socket) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6&>(address).sin6_port
                                               : reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

} // namespace

int Listener::Start(const std::string& address, int port) {
    const std::string where = address + ':' + std::to_string(port);
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int failure = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (failure != 0) {
        throw std::runtime_error(where + ": " + gai_strerror(failure));
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> all(found, freeaddrinfo);
    int error = 0;
    for (const addrinfo* each = found; each != nullptr && m_socket < 0; each = each->ai_next) {
        ListeningSocket listening(*each);
        error = listening.Error();
        m_socket = error == 0 ? listening.Take() : -1;
    }
    if (m_socket < 0) {
        throw std::runtime_error(where + ": " + std::generic_category().message(error));
    }
    const NoSignals noSignals;
    m_thread = std::thread([this] { Accept(); });
    return PortOf(m_socket);
}

void Listener::Accept() {
    while (!m_isStopping) {
        {
            std::unique_lock lock(m_mutex);
            m_ended.wait(lock, [this] {
                Forget();
                return m_isStopping || m_connections.size() < m_most;
            });
        }
        const int taken = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (taken >= 0) {
            Take(taken);
        } else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20)); // until another one is over
        }
    }
}

void Listener::Take(int socket) {
    const std::lock_guard lock(m_mutex);
    Connection& connection = m_connections.emplace_back(socket, m_tls.get());
    if (m_isStopping) {
        m_connections.pop_back();
        return;
    }
    try {
        connection.thread = std::thread([this, &connection] {
            m_serve(*connection.wire);
            const std::lock_guard ended(m_mutex);
            connection.wire.reset();
            m_ended.notify_all();
        });
    } catch (const std::system_error&) { // no more threads: the peer may come again
        m_connections.pop_back();
    }
}

void Listener::Forget() {
    std::erase_if(m_connections, [](Connection& each) {
        if (!each.wire) {
            each.thread.join();
        }
        return !each.wire;
    });
}

void Listener::Stop(std::chrono::milliseconds patience) {
    if (m_socket < 0) {
        return;
    }
    std::unique_lock lock(m_mutex);
    m_isStopping = true;
    shutdown(m_socket, SHUT_RDWR); // ends the wait for the next one
    m_ended.notify_all();
    for (Connection& each : m_connections) {
        if (each.wire) {
            each.wire->StopReading();
        }
    }
    const auto areOver = [this] {
        return std::all_of(m_connections.begin(), m_connections.end(),
                           [](const Connection& each) { return !each.wire; });
    };
    if (!m_ended.wait_for(lock, patience, areOver)) {
        for (Connection& each : m_connections) {
            if (each.wire) {
                each.wire->Abort();
            }
        }
    }
    m_ended.wait(lock, areOver);
    lock.unlock();
    m_thread.join();
    Forget();
    close(std::exchange(m_socket, -1));
}

} // namespace quillet::wsman
