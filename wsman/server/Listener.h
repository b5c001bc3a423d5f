// Takes the connections of peers, and gives each a thread.
#pragma once

#include "server/Wire.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <thread>

namespace quillet::wsman {

class Listener {
  public:
    /// What is done with a connection, until it is over.
    using Serve = std::function<void(Wire&)>;

    /// @param mostConnections how many there may be at a time; whoever comes then waits
    Listener(Serve serve, std::shared_ptr<SSL_CTX> tls, std::size_t mostConnections)
        : m_serve(std::move(serve)), m_tls(std::move(tls)), m_most(mostConnections) {}
    ~Listener() { Stop(std::chrono::seconds(0)); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Begins to take connections; the port that it does so at. Throws std::runtime_error: the address is in
    /// use, not this computer's, or none at all.
    int Start(const std::string& address, int port);
    /// Takes no more of them, and reads no more from those that there are: what they have asked is answered.
    /// After the patience those that are left are cut off.
    void Stop(std::chrono::milliseconds patience);

  private:
    struct Connection {
        Connection(int socket, SSL_CTX* tls) : wire(std::in_place, socket, tls) {}
        std::optional<Wire> wire; ///< nothing: it is over
        std::thread thread;
    };
    void Accept();
    void Take(int socket);
    /// Joins the threads of connections that are over. With the mutex.
    void Forget();

    const Serve m_serve;
    const std::shared_ptr<SSL_CTX> m_tls;
    const std::size_t m_most;
    int m_socket = -1;
    std::atomic<bool> m_isStopping = false;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::list<Connection> m_connections;
    std::thread m_thread;
};

} // namespace quillet::wsman
