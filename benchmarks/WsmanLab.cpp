// A machine behind a server, and libcurl.
#include "WsmanLab.h"

#include "LumDebug.h"

#include <curl/curl.h>

#include <stdexcept>

namespace quillet::bench {

ServedMachine::ServedMachine(std::shared_ptr<simulator::Machine> machine, wsman::ServiceOptions options)
    : m_machine(std::move(machine)), m_server({}) {
    std::shared_ptr<wmi::Connection> connection;
    wmi::ConnectArguments arguments;
    const std::wstring place = m_machine->Store().NamespaceName();
    arguments.resource = place;
    const wmi::Outcome outcome = simulator::HostOf(m_machine)->Connect({}, arguments, connection);
    if (FAILED(outcome.status)) {
        throw std::runtime_error("the machine takes no connection");
    }
    const auto service = std::make_shared<wsman::Service>(
        std::move(connection), [this](std::wstring_view name) { return m_machine->Store().FindClass(name); },
        options);
    m_server.Serve("/wsman", [this, service](std::string request, const std::string& user) {
        if (m_isRecording) {
            const std::lock_guard lock(m_mutex);
            m_recorded.push_back(request);
        }
        return service->Answer(std::move(request), user);
    });
    m_port = m_server.Start();
}

std::vector<std::string> ServedMachine::Recorded() {
    const std::lock_guard lock(m_mutex);
    m_isRecording = false;
    return std::exchange(m_recorded, {});
}

wsman::RemoteOptions OptionsFor(int port) {
    wsman::RemoteOptions options;
    options.host = "127.0.0.1";
    options.port = port;
    options.isPlain = true;
    options.authentication = wsman::Authentication::Basic;
    options.user = "bench";
    return options;
}

WireLab::WireLab(const MachineSize& size)
    : served(simulator::Machine::FromText(tests::MachineText(size), "benchmark.mof")) {
    const wsman::Remote remote(OptionsFor(served.Port()));
    if (FAILED(remote.Result()) || FAILED(quillet.InitQuillet()) || FAILED(plain.Connect())) {
        throw std::runtime_error("the library can not connect: " + wsman::LastFailure());
    }
    session.emplace();
}

WireLab::~WireLab() {
    session.reset();
    quillet.UninitQuillet();
}

Poster::Poster(const std::string& url) : m_curl(curl_easy_init()) {
    if (m_curl == nullptr) {
        throw std::bad_alloc();
    }
    m_headers = curl_slist_append(nullptr, "Content-Type: application/soap+xml;charset=UTF-8");
    curl_easy_setopt(m_curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(m_curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(m_curl, CURLOPT_PROXY, "");
    curl_easy_setopt(m_curl, CURLOPT_HTTPHEADER, m_headers);
    curl_easy_setopt(m_curl, CURLOPT_POST, 1L);
    curl_easy_setopt(m_curl, CURLOPT_WRITEDATA, &m_answer);
    curl_easy_setopt(
        m_curl, CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t size, std::size_t count, void* answer) {
            static_cast<std::string*>(answer)->append(bytes, size * count);
            return size * count;
        });
}

Poster::~Poster() {
    curl_easy_cleanup(m_curl);
    curl_slist_free_all(static_cast<curl_slist*>(m_headers));
}

const std::string& Poster::Post(const std::string& body) {
    m_answer.clear();
    curl_easy_setopt(m_curl, CURLOPT_POSTFIELDS, body.data());
    curl_easy_setopt(m_curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    const CURLcode code = curl_easy_perform(m_curl);
    long status = 0;
    curl_easy_getinfo(m_curl, CURLINFO_RESPONSE_CODE, &status);
    if (code != CURLE_OK || status != 200) {
        throw std::runtime_error("a request fails: " + std::string(curl_easy_strerror(code)) + ", status " +
                                 std::to_string(status));
    }
    return m_answer;
}

} // namespace quillet::bench

int main(int argc, char** argv) {
    using namespace quillet::bench;
    const Apartment apartment;
    try {
        if (argc == 2 && std::string_view(argv[1]) == "--serve-flash") {
            return ServeFlash();
        }
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
            return 2;
        }
        curl_global_init(CURL_GLOBAL_DEFAULT);
        LumTrace().Configure(L"Quillet", L"", CLumDebug::LevelOff, false, 0);
        RegisterWsmanOperations();
        RegisterWsmanRequests();
        RegisterWsmanLoad();
        RegisterWsmanFlash();
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "benchmarks: %s\n", failure.what());
        return 1;
    }
    return 0;
}
