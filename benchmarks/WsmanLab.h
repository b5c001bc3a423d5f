// What the benchmarks of WS-Management share: a machine behind a server, and libcurl without anything around
// it.
#pragma once

#include "Bench.h"

#include <quillet-wsman/Remote.h>

#include <server/HttpServer.h>

#include <atomic>
#include <mutex>

namespace quillet::bench {

/// A simulated machine behind a server of this process.
class ServedMachine {
  public:
    explicit ServedMachine(std::shared_ptr<simulator::Machine> machine, wsman::ServiceOptions options = {});
    ~ServedMachine() { m_server.Stop(); }
    ServedMachine(const ServedMachine&) = delete;
    ServedMachine& operator=(const ServedMachine&) = delete;

    simulator::Machine& Machine() noexcept { return *m_machine; }
    int Port() const noexcept { return m_port; }
    std::string Url() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/wsman"; }
    /// From now on requests are kept, for Recorded.
    void Record() noexcept { m_isRecording = true; }
    /// The requests since Record, in order; no more are kept.
    std::vector<std::string> Recorded();

  private:
    const std::shared_ptr<simulator::Machine> m_machine;
    std::atomic<bool> m_isRecording = false;
    std::mutex m_mutex;
    std::vector<std::string> m_recorded;
    wsman::HttpServer m_server;
    int m_port = 0;
};

/// The way to a server of this computer.
wsman::RemoteOptions OptionsFor(int port);

/// The library and the client layer, connected to a machine over the wire.
struct WireLab {
    explicit WireLab(const MachineSize& size);
    ~WireLab();

    ServedMachine served;
    CQuillet quillet;
    std::optional<Session> session;
    PlainClient plain;
};

/// Posts texts on one connection that is kept, as a client would that knows nothing about them.
class Poster {
  public:
    explicit Poster(const std::string& url);
    ~Poster();
    Poster(const Poster&) = delete;
    Poster& operator=(const Poster&) = delete;

    /// The answer, until the next one. Throws std::runtime_error where its status is not 200.
    const std::string& Post(const std::string& body);

  private:
    void* const m_curl;
    void* m_headers = nullptr;
    std::string m_answer;
};

void RegisterWsmanOperations();
void RegisterWsmanRequests();
void RegisterWsmanLoad();
void RegisterWsmanFlash();
/// What a process does that another one of this program made to serve a machine with an image of flash
/// memory.
int ServeFlash();

} // namespace quillet::bench
