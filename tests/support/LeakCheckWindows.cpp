// What Windows lets a process count: its handles to files, registry keys and tokens, and the blocks of OLE's
// allocator, in which BSTRs, SAFEARRAYs and the payloads of VARIANTs live.
#include "LeakCheck.h"

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <winternl.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <vector>

namespace quillet::tests {

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

/// One entry of the system's handle table, in the layout of SystemExtendedHandleInformation.
struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT backTrace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

/// The handles of this process.
std::vector<HandleEntry> OwnHandles() {
    // Not every SDK declares this class of information.
    constexpr ULONG kExtendedHandles = 64;
    constexpr auto kLengthMismatch = static_cast<NTSTATUS>(0xC0000004);
    using Query = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);
    static const auto kQuery = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    struct Header {
        ULONG_PTR count;
        ULONG_PTR reserved;
    };
    std::vector<std::byte> buffer(std::size_t{1} << 18);
    NTSTATUS status;
    while ((status = kQuery(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size()), nullptr)) ==
           kLengthMismatch) {
        buffer.resize(buffer.size() * 2);
    }
    if (status != 0) {
        throw std::runtime_error("the handles of this process can not be counted");
    }
    const auto& header = *reinterpret_cast<const Header*>(buffer.data());
    const auto* const entries = reinterpret_cast<const HandleEntry*>(buffer.data() + sizeof(Header));
    std::vector<HandleEntry> own;
    std::copy_if(entries, entries + header.count, std::back_inserter(own),
                 [](const HandleEntry& entry) { return entry.processId == GetCurrentProcessId(); });
    return own;
}

/// The system tells types by numbers that are its own affair: a handle of the type shows which it is.
USHORT TypeOf(HANDLE handle) {
    for (const HandleEntry& entry : OwnHandles()) {
        if (entry.handle == reinterpret_cast<ULONG_PTR>(handle)) {
            return entry.type;
        }
    }
    throw std::runtime_error("a handle of this process is not in the system's table");
}

void RegisterHandleCounter(const char* name, HANDLE example) {
    RegisterLeakCounter(name, [type = TypeOf(example)] {
        const std::vector<HandleEntry> handles = OwnHandles();
        return static_cast<long>(std::count_if(
            handles.begin(), handles.end(), [type](const HandleEntry& entry) { return entry.type == type; }));
    });
}

/// COM opens keys and files for itself when its parts are first used, and keeps them. They are no test's
/// leak.
void WarmUpCom() {
    std::thread([] {
        if (SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
            CoUninitialize();
        }
    }).join();
    // A class that there is, and one that nobody has.
    for (const CLSID& clsid : {CLSID_StdGlobalInterfaceTable, IID_IMallocSpy}) {
        IUnknown* object = nullptr;
        if (SUCCEEDED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                       reinterpret_cast<void**>(&object)))) {
            object->Release();
        }
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
    WarmUpCom();

    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_READ, &key) != ERROR_SUCCESS) {
        throw std::runtime_error("the registry can not be read");
    }
    RegisterHandleCounter("registry keys", key);
    RegCloseKey(key);

    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) {
        throw std::runtime_error("the process's token can not be opened");
    }
    RegisterHandleCounter("token handles", token);
    CloseHandle(token);

    const HANDLE file = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("no file can be opened");
    }
    RegisterHandleCounter("open files", file);
    CloseHandle(file);
}

} // namespace quillet::tests
