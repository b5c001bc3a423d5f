// The free-threaded marshaler, as far as an object aggregates it.
#include <windows.h>
#include <objbase.h>

#include <atomic>
#include <new>

namespace {

/// The aggregated part: its own IUnknown counts for it, its IMarshal belongs to the outer object.
class FreeThreadedMarshaler final : public IUnknown {
  public:
    explicit FreeThreadedMarshaler(IUnknown* outer) noexcept : m_marshal(outer ? outer : this) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        if (riid == IID_IUnknown) {
            *object = static_cast<IUnknown*>(this);
            AddRef();
            return S_OK;
        }
        if (riid == IID_IMarshal) {
            *object = static_cast<IMarshal*>(&m_marshal);
            m_marshal.AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  private:
    class Marshal final : public IMarshal {
      public:
        explicit Marshal(IUnknown* outer) noexcept : m_outer(outer) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
            return m_outer->QueryInterface(riid, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return m_outer->AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return m_outer->Release(); }
        HRESULT STDMETHODCALLTYPE GetUnmarshalClass(REFIID, void*, DWORD, void*, DWORD, CLSID*) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetMarshalSizeMax(REFIID, void*, DWORD, void*, DWORD, DWORD*) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE MarshalInterface(IStream*, REFIID, void*, DWORD, void*, DWORD) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream*, REFIID, void**) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE ReleaseMarshalData(IStream*) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE DisconnectObject(DWORD) override { return E_NOTIMPL; }

      private:
        IUnknown* m_outer; // not counted: the outer object owns this one
    };

    std::atomic<ULONG> m_references{1};
    Marshal m_marshal;
};

} // namespace

HRESULT WINAPI CoCreateFreeThreadedMarshaler(IUnknown* outer, IUnknown** marshaler) {
    if (!marshaler) {
        return E_INVALIDARG;
    }
    *marshaler = new (std::nothrow) FreeThreadedMarshaler(outer);
    return *marshaler ? S_OK : E_OUTOFMEMORY;
}
