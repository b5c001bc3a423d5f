// What Windows lets a process count: its handles (files, registry keys, tokens), and the blocks of OLE's
// allocator, in which BSTRs, SAFEARRAYs and the payloads of VARIANTs live.
#include "LeakCheck.h"

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <atomic>
#include <stdexcept>

namespace quillet::test {

namespace {

/// Sees every block come and go. It lives as long as the process, so its references are not counted.
class BlockCounter : public IMallocSpy {
  public:
    virtual ~BlockCounter() = default;
    long Live() const noexcept { return m_live; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown && iid != IID_IMallocSpy) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IMallocSpy*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override {
        m_live += block != nullptr;
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, BOOL ours) override {
        m_live -= ours && block != nullptr;
        return block;
    }
    void STDMETHODCALLTYPE PostFree(BOOL) override {}
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** passed, BOOL ours) override {
        // A block that moves is one that goes and, if there is memory for it, one that comes.
        m_live -= ours && block != nullptr;
        *passed = block;
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL ours) override {
        m_live += ours && block != nullptr;
        return block;
    }
    void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int actual) override { return actual; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

  private:
    std::atomic<long> m_live{0};
};

/// OLE keeps freed BSTRs for reuse, which would count as alive. The function has no declaration in the SDK.
void SwitchOffStringCache() {
    using Switch = void(WINAPI*)();
    const HMODULE module = GetModuleHandleW(L"oleaut32.dll");
    if (module == nullptr) {
        return;
    }
    const FARPROC address = GetProcAddress(module, "SetOaNoCache");
    if (address != nullptr) {
        reinterpret_cast<Switch>(reinterpret_cast<void*>(address))();
    }
}

} // namespace

void RegisterHostLeakCounters() {
    static BlockCounter blocks;
    SwitchOffStringCache();
    if (CoRegisterMallocSpy(&blocks) != S_OK) {
        throw std::runtime_error("the allocator of OLE can not be watched");
    }
    RegisterLeakCounter("blocks of OLE's allocator", [] { return blocks.Live(); });
    RegisterLeakCounter("handles", [] {
        DWORD handles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        return static_cast<long>(handles);
    });
}

} // namespace quillet::test
