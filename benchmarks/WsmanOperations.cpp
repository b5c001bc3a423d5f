// An operation over the wire against libcurl that posts the same requests and does not look at the answers.
#include "WsmanLab.h"

namespace quillet::bench {

namespace {

constexpr MachineSize kSize{.adapters = 1000};
constexpr std::string_view kContext = "n:EnumerationContext>";

WireLab& Lab() {
    static WireLab lab(kSize);
    return lab;
}

HRESULT EnumerateAdapters(WireLab& lab) {
    CAdapters adapters;
    const HRESULT result = lab.quillet.EnumerateAdapters(adapters);
    return FAILED(result) ? result : adapters.m_vecItems.size() == kSize.adapters ? S_OK : E_UNEXPECTED;
}

HRESULT IdentifyAdapter(WireLab& lab) {
    static const std::wstring kFirst = AdapterId(1);
    return lab.quillet.IdentifyAdapter(kFirst, 10);
}

/// The text between a begin tag and its end; empty where there is none.
std::string_view ContextOf(std::string_view message) {
    const std::size_t begin = message.find(kContext);
    if (begin == std::string_view::npos) {
        return {};
    }
    message.remove_prefix(begin + kContext.size());
    return message.substr(0, message.find("</"));
}

/// Requests that were recorded, sent again. Each names the context that the answer before it has told.
class Replay {
  public:
    explicit Replay(WireLab& lab, HRESULT (*operation)(WireLab&)) : m_poster(lab.served.Url()) {
        operation(lab); // so that the classes are there
        lab.served.Record();
        operation(lab);
        m_requests = lab.served.Recorded();
    }

    HRESULT Run() {
        std::string context;
        for (std::string& request : m_requests) {
            if (const std::string_view old = ContextOf(request); !old.empty()) {
                request.replace(static_cast<std::size_t>(old.data() - request.data()), old.size(), context);
            }
            context = ContextOf(m_poster.Post(request));
        }
        // Nothing is left over on the server, as after the operation.
        return !m_requests.empty() && context.empty() ? S_OK : E_UNEXPECTED;
    }

  private:
    Poster m_poster;
    std::vector<std::string> m_requests;
};

struct Contest {
    const char* name;
    HRESULT (*library)(WireLab&);
    HRESULT (*client)(WireLab&);
};

const Contest kContests[] = {
    {"enumerate_1000_adapters", EnumerateAdapters,
     [](WireLab& lab) { return lab.session->Adapters().size() == kSize.adapters ? S_OK : E_UNEXPECTED; }},
    {"method_call", IdentifyAdapter,
     [](WireLab& lab) {
         static const quillet::AdapterId kFirst(AdapterId(1));
         lab.session->Identify(kFirst, std::chrono::seconds(10));
         return HRESULT(S_OK);
     }},
};

void Ours(benchmark::State& state, HRESULT (*operation)(WireLab&)) {
    WireLab& lab = Lab();
    Measure(state, lab.served.Machine().Calls(), [&] { return operation(lab); });
}

void Plain(benchmark::State& state, HRESULT (*operation)(WireLab&)) {
    WireLab& lab = Lab();
    Replay replay(lab, operation);
    Measure(state, lab.served.Machine().Calls(), [&] { return replay.Run(); });
}

} // namespace

void RegisterWsmanOperations() {
    for (const Contest& contest : kContests) {
        const std::string name = std::string("wsman/") + contest.name + '/';
        // Whoever waits for a server uses no processor: the wall clock tells.
        benchmark::RegisterBenchmark((name + "library").c_str(), Ours, contest.library)->UseRealTime();
        benchmark::RegisterBenchmark((name + "client").c_str(), Ours, contest.client)->UseRealTime();
        benchmark::RegisterBenchmark((name + "libcurl").c_str(), Plain, contest.library)->UseRealTime();
    }
}

} // namespace quillet::bench
