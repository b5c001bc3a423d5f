// What a client of the provider looks like without the library: plain COM, written by hand with care. It
// makes the same provider calls, with the same context, and copies the same values out.
#pragma once

#include <windows.h>
#include <wbemidl.h>
#include <atlbase.h>

#include <string>
#include <variant>
#include <vector>

namespace quillet::bench {

struct PlainAdapter {
    std::wstring id;
    std::wstring name;
    std::wstring displayName;
    std::wstring deviceId;
};

struct PlainNumber {
    LONG current = 0, standard = 0, most = 0, least = 0, step = 0, base = 0, scale = 0;
};
struct PlainChoice {
    LONG current = 0, standard = 0;
    std::vector<std::wstring> texts, values;
};
struct PlainSlider {
    LONG current = 0, standard = 0;
    std::vector<LONG> values;
    std::wstring first, last;
};
struct PlainText {
    std::wstring current, standard;
    LONG longest = 0;
};
struct PlainTexts {
    std::vector<std::wstring> current;
    std::wstring standard;
    LONG longest = 0;
};

struct PlainSetting {
    std::wstring id, caption, description, help;
    LONG exposeLevel = 0, group = 0;
    bool writable = false, grouped = false;
    std::variant<PlainNumber, PlainChoice, PlainSlider, PlainText, PlainTexts> values;
};

/// One connection. Its interfaces belong to the thread that connected, or, for a client that serves any
/// thread, are fetched from the Global Interface Table for each operation, as the library does.
class PlainClient {
  public:
    /// For whom an operation takes its interfaces.
    enum class Use { ThisThread, AnyThread };

    PlainClient() = default;
    PlainClient(const PlainClient&) = delete;
    PlainClient& operator=(const PlainClient&) = delete;
    ~PlainClient();

    HRESULT Connect();

    HRESULT EnumerateAdapters(std::vector<PlainAdapter>& adapters, Use use);
    /// @param objectId of the adapter
    HRESULT GetAdapterSettings(const std::wstring& objectId, std::vector<PlainSetting>& settings, Use use);
    HRESULT IdentifyAdapter(const std::wstring& adapterId, LONG seconds, LONG& verdict, Use use);

    /// The connection's own interfaces, for the thread that made it.
    IWbemServices* Services() const { return m_services; }
    IWbemContext* Context() const { return m_context; }

  private:
    /// The interfaces of one operation.
    struct Interfaces {
        ATL::CComPtr<IWbemServices> services;
        ATL::CComPtr<IWbemContext> context;
    };
    HRESULT Take(Use use, Interfaces& interfaces) const;

    ATL::CComPtr<IWbemServices> m_services;
    ATL::CComPtr<IWbemContext> m_context;
    ATL::CComPtr<IGlobalInterfaceTable> m_table;
    DWORD m_servicesCookie = 0;
    DWORD m_contextCookie = 0;
};

} // namespace quillet::bench
