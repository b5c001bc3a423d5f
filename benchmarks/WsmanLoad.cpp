// Fifty clients at once: this server against one of the HTTP library alone.
#include "WsmanLab.h"

#include <httplib.h>

#include <chrono>
#include <latch>
#include <thread>

namespace quillet::bench {

namespace {

constexpr unsigned kClients = 50;
constexpr int kRequests = 20; ///< of each client in one go

/// The request that all of them make, and its answer.
struct Sample {
    std::string request;
    std::string answer;
};

ServedMachine& Served() {
    static ServedMachine served(
        simulator::Machine::FromText(tests::MachineText({.adapters = 100}), "benchmark.mof"));
    return served;
}

/// One adapter by its path.
const Sample& GetAdapter() {
    static const Sample kSample = [] {
        ServedMachine& served = Served();
        const wsman::Remote remote(OptionsFor(served.Port()));
        CQuillet quillet;
        if (FAILED(quillet.InitQuillet())) {
            throw std::runtime_error("the library can not connect: " + wsman::LastFailure());
        }
        CAdapter adapter;
        quillet.GetAdapterBasicInfo(AdapterId(1), adapter); // the classes, too
        served.Record();
        const HRESULT result = quillet.GetAdapterBasicInfo(AdapterId(1), adapter);
        quillet.UninitQuillet();
        const std::vector<std::string> requests = served.Recorded();
        if (FAILED(result) || requests.size() != 1) {
            throw std::runtime_error("an adapter is not one request");
        }
        return Sample{requests.front(), Poster(served.Url()).Post(requests.front())};
    }();
    return kSample;
}

/// The library with as many threads as there are clients; it answers whatever it gets with the same text.
class BareServer {
  public:
    explicit BareServer(const std::string& answer) {
        m_server.new_task_queue = [] { return new httplib::ThreadPool(kClients); };
        m_server.set_keep_alive_max_count(1'000'000);
        m_server.set_tcp_nodelay(true); // or each answer waits for the client's acknowledgement of its head
        m_server.Post("/wsman", [answer](const httplib::Request&, httplib::Response& response) {
            response.set_content(answer, "application/soap+xml;charset=UTF-8");
        });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~BareServer() {
        m_server.stop();
        m_thread.join();
    }
    BareServer(const BareServer&) = delete;
    BareServer& operator=(const BareServer&) = delete;

    std::string Url() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/wsman"; }

  private:
    httplib::Server m_server;
    int m_port = 0;
    std::thread m_thread;
};

/// All clients are connected before the clock runs. What is timed ends with the last answer.
void Load(benchmark::State& state, const std::string& url, std::size_t expected) {
    using Clock = std::chrono::steady_clock;
    std::atomic<int> errors{0};
    for (auto _ : state) {
        std::latch ready(kClients + 1);
        std::vector<std::thread> clients;
        for (unsigned client = 0; client < kClients; ++client) {
            clients.emplace_back([&] {
                const std::string& request = GetAdapter().request;
                Poster poster(url);
                const auto post = [&] {
                    try {
                        errors += poster.Post(request).size() == expected ? 0 : 1;
                    } catch (const std::runtime_error&) {
                        ++errors;
                    }
                };
                post();
                ready.arrive_and_wait();
                for (int i = 0; i < kRequests; ++i) {
                    post();
                }
            });
        }
        ready.arrive_and_wait();
        const Clock::time_point begin = Clock::now();
        for (std::thread& client : clients) {
            client.join();
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
        Served().Machine().Calls().Clear();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kClients * kRequests);
    state.counters["errors"] = errors.load();
    if (errors != 0) {
        state.SkipWithError("requests fail");
    }
}

} // namespace

void RegisterWsmanLoad() {
    benchmark::RegisterBenchmark("wsman/50_clients/server", [](benchmark::State& state) {
        Load(state, Served().Url(), GetAdapter().answer.size());
    })->UseManualTime();
    benchmark::RegisterBenchmark("wsman/50_clients/httplib", [](benchmark::State& state) {
        static BareServer server(GetAdapter().answer);
        Load(state, server.Url(), GetAdapter().answer.size());
    })->UseManualTime();
}

} // namespace quillet::bench
