// What every COM object of this layer shares: its reference count, the count of live objects, and the
// way it reaches another apartment.
#pragma once

#include <windows.h>
#include <objidl.h>
#include <wbemidl.h>

#include <atomic>
#include <memory>

namespace quillet::wmi {

/// Owns one reference.
struct ComRelease {
    template <class Interface>
    void operator()(Interface* object) const noexcept {
        object->Release();
    }
};
template <class Interface>
using ComOwner = std::unique_ptr<Interface, ComRelease>;

/// Counts one live object while it lives.
class CountedLife {
  public:
    CountedLife() noexcept;
    ~CountedLife();
    CountedLife(const CountedLife&) = delete;
    CountedLife& operator=(const CountedLife&) = delete;
};

/// Marshals an object for another apartment of this process so that each retrieval calls CopyProxy on it.
/// The free-threaded marshaler writes a pointer into the stream and queries it at each retrieval; the
/// pointer it gets is not the object itself but a stand-in whose QueryInterface copies.
HRESULT MarshalCopies(IClientSecurity* source, IStream* stream, DWORD destination, void* destinationContext,
                      DWORD flags) noexcept;
/// A free-threaded marshaler for the calls that need no object.
ComOwner<IMarshal> FreeThreadedMarshaler() noexcept;

/// Base of an object with one interface. What the Global Interface Table hands out is the object itself
/// unless CopyForRetrieval says otherwise.
template <class Interface, const IID& InterfaceId>
class ComObject : public Interface, public IMarshal, public IClientSecurity {
  public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, InterfaceId)) {
            *object = static_cast<Interface*>(this);
        } else if (IsEqualGUID(iid, IID_IMarshal)) {
            *object = static_cast<IMarshal*>(this);
        } else if (IsEqualGUID(iid, IID_IClientSecurity)) {
            *object = static_cast<IClientSecurity*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
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

    // IMarshal
    HRESULT STDMETHODCALLTYPE GetUnmarshalClass(REFIID iid, void* object, DWORD destination,
                                                void* destinationContext, DWORD flags,
                                                CLSID* unmarshalClass) override {
        const auto marshaler = FreeThreadedMarshaler();
        return marshaler ? marshaler->GetUnmarshalClass(iid, object, destination, destinationContext, flags,
                                                        unmarshalClass)
                         : E_OUTOFMEMORY;
    }
    HRESULT STDMETHODCALLTYPE GetMarshalSizeMax(REFIID iid, void* object, DWORD destination,
                                                void* destinationContext, DWORD flags, DWORD* size) override {
        const auto marshaler = FreeThreadedMarshaler();
        return marshaler
                   ? marshaler->GetMarshalSizeMax(iid, object, destination, destinationContext, flags, size)
                   : E_OUTOFMEMORY;
    }
    HRESULT STDMETHODCALLTYPE MarshalInterface(IStream* stream, REFIID, void*, DWORD destination,
                                               void* destinationContext, DWORD flags) override {
        return MarshalCopies(this, stream, destination, destinationContext, flags);
    }
    HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream* stream, REFIID iid, void** object) override {
        const auto marshaler = FreeThreadedMarshaler();
        return marshaler ? marshaler->UnmarshalInterface(stream, iid, object) : E_OUTOFMEMORY;
    }
    HRESULT STDMETHODCALLTYPE ReleaseMarshalData(IStream* stream) override {
        const auto marshaler = FreeThreadedMarshaler();
        return marshaler ? marshaler->ReleaseMarshalData(stream) : E_OUTOFMEMORY;
    }
    HRESULT STDMETHODCALLTYPE DisconnectObject(DWORD) override { return S_OK; }

    // IClientSecurity: an object that is no proxy has no blanket.
    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                           DWORD*) override {
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*,
                                         DWORD) override {
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* proxy, IUnknown** copy) override {
        if (proxy == nullptr || copy == nullptr) {
            return E_INVALIDARG;
        }
        *copy = CopyForRetrieval();
        return *copy != nullptr ? S_OK : E_OUTOFMEMORY;
    }

  protected:
    ComObject() = default;
    virtual ~ComObject() = default;

    /// What another thread gets for this object, with a reference of its own.
    virtual IUnknown* CopyForRetrieval() {
        AddRef();
        return static_cast<Interface*>(this);
    }

  private:
    std::atomic<ULONG> m_references{1};
    CountedLife m_life;
};

} // namespace quillet::wmi
