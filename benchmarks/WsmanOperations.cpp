// An operation over the wire against libcurl that posts the same requests and does not look at the answers.
#include "WsmanLab.h"

namespace quillet::bench {

namespace {

constexpr MachineSize kSize{.adapters = 1000};
constexpr std::string_view kContext = "n:EnumerationContext>";

WireLab& Lab() {
    static const std::unique_ptr<WireLab> kLab = [] {
        KeepFreedMemory(); // here, and not where memory itself is measured
        return std::make_unique<WireLab>(kSize);
    }();
    return *kLab;
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

/// The in-parameters of one method call, which are made once.
ATL::CComPtr<IWbemClassObject> Parameters(WireLab& lab) {
    ATL::CComPtr<IWbemClassObject> definition;
    ATL::CComPtr<IWbemClassObject> signature;
    ATL::CComPtr<IWbemClassObject> parameters;
    const ATL::CComBSTR name(L"Zorel_PhysicalEthernetAdapter");
    VARIANT seconds;
    VariantInit(&seconds);
    V_VT(&seconds) = VT_I4;
    V_I4(&seconds) = 10;
    if (FAILED(lab.plain.Services()->GetObject(name.m_str, 0, nullptr, &definition, nullptr)) ||
        FAILED(definition->GetMethod(L"IdentifyAdapter", 0, &signature, nullptr)) ||
        FAILED(signature->SpawnInstance(0, &parameters)) ||
        FAILED(parameters->Put(L"nSeconds", 0, &seconds, 0))) {
        throw std::runtime_error("the method has no parameters");
    }
    return parameters;
}

HRESULT ExecMethod(WireLab& lab) {
    static const ATL::CComPtr<IWbemClassObject> kParameters = Parameters(lab);
    static const ATL::CComBSTR kPath(AdapterId(1).c_str());
    static const ATL::CComBSTR kMethod(L"IdentifyAdapter");
    ATL::CComPtr<IWbemClassObject> out;
    const HRESULT result = lab.plain.Services()->ExecMethod(kPath.m_str, kMethod.m_str, 0,
                                                            lab.plain.Context(), kParameters, &out, nullptr);
    return FAILED(result) || out != nullptr ? result : E_UNEXPECTED;
}

struct Contest {
    const char* name;
    HRESULT (*library)(WireLab&);
    HRESULT (*client)(WireLab&);
    HRESULT (*wmi)(WireLab&); ///< the interfaces of WMI alone
};

const Contest kContests[] = {
    {"enumerate_1000_adapters", EnumerateAdapters,
     [](WireLab& lab) { return lab.session->Adapters().size() == kSize.adapters ? S_OK : E_UNEXPECTED; },
     [](WireLab& lab) {
         std::vector<PlainAdapter> adapters;
         const HRESULT result = lab.plain.EnumerateAdapters(adapters, PlainClient::Use::ThisThread);
         return FAILED(result) ? result : adapters.size() == kSize.adapters ? S_OK : E_UNEXPECTED;
     }},
    {"method_call", IdentifyAdapter,
     [](WireLab& lab) {
         static const quillet::AdapterId kFirst(AdapterId(1));
         lab.session->Identify(kFirst, std::chrono::seconds(10));
         return HRESULT(S_OK);
     },
     ExecMethod},
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
        benchmark::RegisterBenchmark((name + "wmi").c_str(), Ours, contest.wmi)->UseRealTime();
        benchmark::RegisterBenchmark((name + "libcurl").c_str(), Plain, contest.library)->UseRealTime();
    }
}

} // namespace quillet::bench
