// The same enumeration answered by the simulator and by the WMI of the system, in one process. There is no
// package of Google Benchmark for mingw-w64, so this program keeps time itself. It prints JSON: for each
// enumeration the nanoseconds of every repetition.
#include <quillet-simulator/Machine.h>
#include <quillet-wmi/Text.h>

#include <atlbase.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ATL::CComBSTR;
using ATL::CComPtr;
using Clock = std::chrono::steady_clock;

constexpr int REPETITIONS = 15;
constexpr std::chrono::milliseconds LEAST(40); ///< of each repetition

/// A class of the system's namespace, its key and the texts that are read of each instance.
struct Subject {
    const wchar_t* className;
    std::vector<const wchar_t*> texts; ///< the first is the key
};

/// The texts of all instances.
using Rows = std::vector<std::vector<std::wstring>>;

void Require(HRESULT result, const char* what) {
    if (FAILED(result)) {
        char text[200];
        std::snprintf(text, sizeof text, "%s: 0x%08lX", what, static_cast<unsigned long>(result));
        throw std::runtime_error(text);
    }
}

CComPtr<IWbemServices> Connect() {
    CComPtr<IWbemLocator> locator;
    Require(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                             reinterpret_cast<void**>(&locator)),
            "no locator");
    CComPtr<IWbemServices> services;
    Require(locator->ConnectServer(CComBSTR(L"\\\\localhost\\ROOT\\cimv2").m_str, nullptr, nullptr, nullptr,
                                   0, nullptr, nullptr, &services),
            "no connection");
    Require(CoSetProxyBlanket(services, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                              RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
            "no blanket");
    return services;
}

std::wstring Read(IWbemClassObject* object, const wchar_t* name) {
    VARIANT value;
    VariantInit(&value);
    std::wstring text;
    if (SUCCEEDED(object->Get(name, 0, &value, nullptr, nullptr)) && V_VT(&value) == VT_BSTR) {
        text.assign(V_BSTR(&value) ? V_BSTR(&value) : L"", SysStringLen(V_BSTR(&value)));
    }
    VariantClear(&value);
    return text;
}

/// One object at a time, as the library enumerates.
Rows Enumerate(IWbemServices* services, const Subject& subject) {
    CComPtr<IEnumWbemClassObject> objects;
    Require(services->CreateInstanceEnum(CComBSTR(subject.className).m_str, 0, nullptr, &objects),
            "no enumeration");
    Rows rows;
    for (;;) {
        CComPtr<IWbemClassObject> object;
        ULONG count = 0;
        Require(objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &count), "no object");
        if (count == 0) {
            return rows;
        }
        rows.emplace_back();
        for (const wchar_t* name : subject.texts) {
            rows.back().push_back(Read(object, name));
        }
        rows.back().push_back(Read(object, L"__PATH"));
    }
}

std::string Quoted(const std::wstring& text) {
    std::string quoted = "\"";
    for (const char character : quillet::simulator::ToUtf8(text)) {
        quoted +=
            character == '"' || character == '\\' ? std::string("\\") + character : std::string(1, character);
    }
    return quoted + '"';
}

/// A machine that has the class and what the system says that it holds.
std::string MachineText(const Subject& subject, const Rows& rows) {
    const auto name = [](const wchar_t* text) { return quillet::simulator::ToUtf8(text); };
    std::string text = "class " + name(subject.className) + " {\n";
    for (std::size_t index = 0; index < subject.texts.size(); ++index) {
        text += std::string(index == 0 ? "[Key] " : "") + "string " + name(subject.texts[index]) + ";\n";
    }
    text += "};\n";
    for (const auto& row : rows) {
        text += "instance of " + name(subject.className) + " {\n";
        for (std::size_t index = 0; index < subject.texts.size(); ++index) {
            text += name(subject.texts[index]) + " = " + Quoted(row[index]) + ";\n";
        }
        text += "};\n";
    }
    return text;
}

/// Nanoseconds of one enumeration, the mean of as many as take a while.
long long Time(IWbemServices* services, const Subject& subject, std::size_t expected) {
    long long runs = 0;
    const Clock::time_point begin = Clock::now();
    Clock::duration taken{};
    do {
        if (Enumerate(services, subject).size() != expected) {
            throw std::runtime_error("the system has changed meanwhile");
        }
        ++runs;
        taken = Clock::now() - begin;
    } while (taken < LEAST);
    return std::chrono::duration_cast<std::chrono::nanoseconds>(taken).count() / runs;
}

void Print(const char* side, const std::vector<long long>& times) {
    std::printf("\"%s\": [", side);
    for (std::size_t index = 0; index < times.size(); ++index) {
        std::printf("%s%lld", index == 0 ? "" : ", ", times[index]);
    }
    std::printf("]");
}

void Compare(const Subject& subject) {
    const CComPtr<IWbemServices> system = Connect();
    const Rows rows = Enumerate(system, subject);

    quillet::simulator::MachineOptions options;
    options.namespaceName = L"ROOT\\cimv2";
    const auto machine =
        quillet::simulator::Machine::FromText(MachineText(subject, rows), "system.mof", options);
    const quillet::simulator::Registration registration(machine);
    Require(registration.Result(), "the simulator can not be registered");
    const CComPtr<IWbemServices> simulator = Connect();
    const Rows simulated = Enumerate(simulator, subject);
    for (std::size_t index = 0; index < rows.size() && index < simulated.size(); ++index) {
        // All but the paths, which name the computer in their own ways.
        for (std::size_t text = 0; text < subject.texts.size(); ++text) {
            if (rows[index][text] != simulated[index][text]) {
                throw std::runtime_error("the two answer differently");
            }
        }
    }

    Time(system, subject, rows.size()); // the system starts services of its own for the first
    std::vector<long long> bySystem;
    std::vector<long long> bySimulator;
    for (int repetition = 0; repetition < REPETITIONS; ++repetition) {
        bySystem.push_back(Time(system, subject, rows.size()));
        bySimulator.push_back(Time(simulator, subject, rows.size()));
        machine->Calls().Clear();
    }
    std::printf("[{\"name\": \"enumerate %zu of %s\", ", rows.size(),
                quillet::simulator::ToUtf8(subject.className).c_str());
    Print("simulator", bySimulator);
    std::printf(", ");
    Print("system", bySystem);
    std::printf("}]\n");
}

} // namespace

int main() {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    int status = 0;
    try {
        // One of the classes that the WMI of Wine has, and whose instances stay the same meanwhile.
        Compare({L"Win32_NetworkAdapter", {L"DeviceID", L"Name", L"Description", L"MACAddress"}});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "wmi_comparison: %s\n", failure.what());
        status = 1;
    }
    CoUninitialize();
    return status;
}
