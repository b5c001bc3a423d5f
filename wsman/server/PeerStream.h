// Between a connection and the library for HTTP.
#pragma once

#include "server/HttpInput.h"

#include <httplib.h>

#include <utility>

namespace quillet::wsman {

/// A connection as the library sees it.
class PeerStream : public httplib::Stream {
  public:
    PeerStream(Wire& wire, HttpInput& input) : m_wire(wire), m_input(input) {}

    ssize_t read(char* bytes, std::size_t size) override {
        return Flush() ? m_input.Read(bytes, size) : -1; // the peer may wait to be told to go on
    }
    /// A head waits for its body, so that a small answer is one packet.
    ssize_t write(const char* bytes, std::size_t size) override {
        constexpr std::size_t kMost = 16'384;
        if (m_waiting.size() + size > kMost && !Flush()) {
            return -1;
        }
        if (size > kMost) {
            return m_wire.Write(bytes, size) ? static_cast<ssize_t>(size) : -1;
        }
        m_waiting.append(bytes, size);
        return static_cast<ssize_t>(size);
    }
    /// Sends what waits.
    bool Flush() {
        const std::string waiting = std::exchange(m_waiting, {});
        return waiting.empty() || m_wire.Write(waiting.data(), waiting.size());
    }
    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    void get_remote_ip_and_port(std::string& ip, int& port) const override {
        ip = m_wire.Peer();
        port = 0;
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override {
        ip.clear();
        port = 0;
    }
    socket_t socket() const override { return INVALID_SOCKET; }

  private:
    Wire& m_wire;
    HttpInput& m_input;
    std::string m_waiting;
};

} // namespace quillet::wsman
