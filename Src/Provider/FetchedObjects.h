// What a thread has fetched from a session where it fetches each object only once (CFetchOnce).
#pragma once

#include <quillet/Quillet.h>

#include <functional>
#include <map>
#include <string>

class FetchedObjects {
  public:
    using Fetch = std::function<HRESULT(IWbemClassObject** object)>;

    explicit FetchedObjects(const CQuillet& quillet) noexcept;
    ~FetchedObjects();
    FetchedObjects(const FetchedObjects&) = delete;
    FetchedObjects& operator=(const FetchedObjects&) = delete;

    /// Those of the calling thread; null where it fetches every time.
    static FetchedObjects* Of(const CQuillet& quillet) noexcept;
    /// The object at a path, and what fetching it said, the first time or now.
    static HRESULT Get(const CQuillet& quillet, const std::wstring& path, const Fetch& fetch,
                       ATL::CComPtr<IWbemClassObject>& object);
    /// Before the calling thread makes a change: what it has fetched may be true no longer.
    static void Forget() noexcept;

  private:
    struct Answer {
        HRESULT result;
        ATL::CComPtr<IWbemClassObject> object;
    };

    const CQuillet& m_quillet;
    FetchedObjects* const m_outer; ///< of another session, while this one lives
    std::map<std::wstring, Answer> m_answers;
};
