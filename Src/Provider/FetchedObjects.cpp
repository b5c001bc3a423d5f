#include "Provider/FetchedObjects.h"

#include <quillet/FetchOnce.h>

namespace {

thread_local FetchedObjects* g_innermost = nullptr;

} // namespace

CFetchOnce::CFetchOnce(const CQuillet& quillet)
    : m_objects(FetchedObjects::Of(quillet) == nullptr ? std::make_unique<FetchedObjects>(quillet)
                                                       : nullptr) {}

CFetchOnce::~CFetchOnce() = default;

FetchedObjects::FetchedObjects(const CQuillet& quillet) noexcept : m_quillet(quillet), m_outer(g_innermost) {
    g_innermost = this;
}

FetchedObjects::~FetchedObjects() {
    g_innermost = m_outer;
}

FetchedObjects* FetchedObjects::Of(const CQuillet& quillet) noexcept {
    FetchedObjects* each = g_innermost;
    while (each != nullptr && &each->m_quillet != &quillet) {
        each = each->m_outer;
    }
    return each;
}

HRESULT FetchedObjects::Get(const CQuillet& quillet, const std::wstring& path, const Fetch& fetch,
                            ATL::CComPtr<IWbemClassObject>& object) {
    FetchedObjects* const objects = Of(quillet);
    if (objects == nullptr) {
        return fetch(&object);
    }
    const auto known = objects->m_answers.find(path);
    if (known != objects->m_answers.end()) {
        object = known->second.object;
        return known->second.result;
    }
    const HRESULT result = fetch(&object);
    objects->m_answers.emplace(path, Answer{result, object});
    return result;
}

void FetchedObjects::Forget() noexcept {
    for (FetchedObjects* each = g_innermost; each != nullptr; each = each->m_outer) {
        each->m_answers.clear();
    }
}
