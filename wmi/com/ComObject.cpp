// The count of live objects, and marshalling that copies on each retrieval.
#include "com/ComObject.h"

#include <quillet-wmi/ReadMostlyMutex.h>
#include <quillet-wmi/Registration.h>

#include <array>
#include <new>

namespace quillet::wmi {

namespace {

/// Part of the count of live objects. Every call makes objects: with one number for all threads they would
/// wait for it rather than for each other's calls.
struct alignas(64) LivePart {
    std::atomic<long> count{0};
};
std::array<LivePart, OwnPart::kCount> g_live;

/// Stands for an object in a marshalled stream; whoever queries it gets a copy of that object.
class RetrievalSource final : public IUnknown {
  public:
    explicit RetrievalSource(IClientSecurity* source) : m_source(source) { source->AddRef(); }
    RetrievalSource(const RetrievalSource&) = delete;
    RetrievalSource& operator=(const RetrievalSource&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        // The marshaler keeps the stand-in by its identity.
        if (IsEqualGUID(iid, IID_IUnknown)) {
            AddRef();
            *object = static_cast<IUnknown*>(this);
            return S_OK;
        }
        IUnknown* copied = nullptr;
        const HRESULT result = m_source->CopyProxy(m_source.get(), &copied);
        if (FAILED(result)) {
            return result;
        }
        const ComOwner<IUnknown> copy(copied);
        return copy->QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return m_references.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  private:
    virtual ~RetrievalSource() = default;

    ComOwner<IClientSecurity> m_source;
    std::atomic<ULONG> m_references{1};
};

} // namespace

long LiveObjectCount() noexcept {
    long sum = 0;
    for (const LivePart& part : g_live) {
        sum += part.count.load(std::memory_order_acquire);
    }
    return sum;
}

CountedLife::CountedLife() noexcept {
    g_live[OwnPart::Index()].count.fetch_add(1, std::memory_order_relaxed);
}

CountedLife::~CountedLife() {
    g_live[OwnPart::Index()].count.fetch_sub(1, std::memory_order_release);
}

ComOwner<IMarshal> FreeThreadedMarshaler() noexcept {
    IUnknown* made = nullptr;
    if (FAILED(CoCreateFreeThreadedMarshaler(nullptr, &made))) {
        return nullptr;
    }
    const ComOwner<IUnknown> unknown(made);
    void* marshaler = nullptr;
    if (FAILED(unknown->QueryInterface(IID_IMarshal, &marshaler))) {
        return nullptr;
    }
    return ComOwner<IMarshal>(static_cast<IMarshal*>(marshaler));
}

HRESULT MarshalCopies(IClientSecurity* source, IStream* stream, DWORD destination, void* destinationContext,
                      DWORD flags) noexcept {
    const auto marshaler = FreeThreadedMarshaler();
    const ComOwner<IUnknown> standIn(new (std::nothrow) RetrievalSource(source));
    if (!marshaler || !standIn) {
        return E_OUTOFMEMORY;
    }
    return marshaler->MarshalInterface(stream, IID_IUnknown, standIn.get(), destination, destinationContext,
                                       flags);
}

} // namespace quillet::wmi
