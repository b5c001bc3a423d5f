// The tables of the process while several threads use them at once.
#include "ComObjects.h"

#include <quillet-platform/TestHooks.h>

#include <windows.h>
#include <objbase.h>

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using quillet::platform::Live;
using quillet::tests::AgileObject;

constexpr int kThreads = 4;
constexpr int kRounds = 300;

/// Runs `work` on several threads that start together, each in an apartment of COM.
void InParallel(const std::function<void(int)>& work) {
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&ready, &work, i] {
            EXPECT_EQ(CoInitializeEx(nullptr, i % 2 ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED), S_OK);
            ++ready;
            while (ready < kThreads) {
                std::this_thread::yield();
            }
            work(i);
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

IGlobalInterfaceTable* Table() {
    IGlobalInterfaceTable* table = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                               IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
              S_OK);
    return table;
}

TEST(ThreadsTest, InterfaceTableKeepsEveryEntryToItself) {
    std::vector<std::set<DWORD>> cookies(kThreads);
    AgileObject shared;
    IGlobalInterfaceTable* const table = Table();
    DWORD sharedCookie = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(&shared, IID_IUnknown, &sharedCookie), S_OK);
    InParallel([&](int thread) {
        AgileObject object;
        std::set<DWORD> live;
        for (int i = 0; i < kRounds; ++i) {
            DWORD cookie = 0;
            ASSERT_EQ(table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
            ASSERT_TRUE(cookies[static_cast<std::size_t>(thread)].insert(cookie).second);
            live.insert(cookie);
            IUnknown* got = nullptr;
            ASSERT_EQ(table->GetInterfaceFromGlobal(cookie, IID_IUnknown, reinterpret_cast<void**>(&got)),
                      S_OK);
            ASSERT_EQ(got, static_cast<IUnknown*>(&object));
            got->Release();
            ASSERT_EQ(
                table->GetInterfaceFromGlobal(sharedCookie, IID_IUnknown, reinterpret_cast<void**>(&got)),
                S_OK);
            ASSERT_EQ(got, static_cast<IUnknown*>(&shared));
            got->Release();
            if (i % 2) {
                const DWORD oldest = *live.begin();
                ASSERT_EQ(table->RevokeInterfaceFromGlobal(oldest), S_OK);
                ASSERT_EQ(table->RevokeInterfaceFromGlobal(oldest), E_INVALIDARG);
                live.erase(oldest);
            }
        }
        for (const DWORD cookie : live) {
            ASSERT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
        }
        EXPECT_EQ(object.References(), 1u);
    });
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(sharedCookie), S_OK);
    EXPECT_EQ(shared.References(), 1u);
    std::set<DWORD> all;
    for (const std::set<DWORD>& some : cookies) {
        all.insert(some.begin(), some.end());
    }
    EXPECT_EQ(all.size(), std::size_t{kThreads * kRounds}) << "no cookie was given twice";
    EXPECT_EQ(Live().interfaceTableEntries, 0);
    table->Release();
}

TEST(ThreadsTest, AnEntryIsRevokedOnceHoweverManyTry) {
    IGlobalInterfaceTable* const table = Table();
    for (int round = 0; round < 50; ++round) {
        AgileObject object;
        DWORD cookie = 0;
        ASSERT_EQ(table->RegisterInterfaceInGlobal(&object, IID_IUnknown, &cookie), S_OK);
        std::atomic<int> revoked{0};
        InParallel([&](int) {
            IUnknown* got = nullptr;
            const HRESULT hr =
                table->GetInterfaceFromGlobal(cookie, IID_IUnknown, reinterpret_cast<void**>(&got));
            EXPECT_TRUE(hr == S_OK || hr == E_INVALIDARG);
            EXPECT_EQ(got != nullptr, hr == S_OK);
            if (got) {
                got->Release();
            }
            revoked += table->RevokeInterfaceFromGlobal(cookie) == S_OK;
        });
        EXPECT_EQ(revoked, 1);
        EXPECT_EQ(object.References(), 1u);
    }
    table->Release();
}

TEST(ThreadsTest, ClassTableServesWhileItChanges) {
    constexpr CLSID kCommon = {0x11111111, 1, 1, {1, 2, 3, 4, 5, 6, 7, 8}};
    AgileObject factory;
    DWORD commonCookie = 0;
    ASSERT_EQ(
        CoRegisterClassObject(kCommon, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &commonCookie),
        S_OK);
    InParallel([&](int thread) {
        CLSID own = kCommon;
        own.Data1 = static_cast<std::uint32_t>(thread);
        AgileObject ownFactory;
        for (int i = 0; i < kRounds; ++i) {
            DWORD cookie = 0;
            ASSERT_EQ(
                CoRegisterClassObject(own, &ownFactory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
                S_OK);
            for (const CLSID& clsid : {own, kCommon}) {
                IUnknown* object = nullptr;
                ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                           reinterpret_cast<void**>(&object)),
                          S_OK);
                ASSERT_EQ(object, static_cast<IUnknown*>(clsid == own ? &ownFactory : &factory));
                object->Release();
            }
            ASSERT_EQ(CoRevokeClassObject(cookie), S_OK);
            void* object = nullptr;
            ASSERT_EQ(CoCreateInstance(own, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
                      REGDB_E_CLASSNOTREG);
        }
        EXPECT_EQ(ownFactory.created, kRounds);
        EXPECT_EQ(ownFactory.References(), 1u);
    });
    EXPECT_EQ(factory.created, kThreads * kRounds);
    EXPECT_EQ(CoRevokeClassObject(commonCookie), S_OK);
    EXPECT_EQ(factory.References(), 1u);
}

TEST(ThreadsTest, RegistryIsReadAndWrittenAtOnce) {
    const std::wstring path = L"Software\\QuilletPlatformTests";
    InParallel([&](int thread) {
        for (int i = 0; i < kRounds; ++i) {
            HKEY key = nullptr;
            const std::wstring own = path + L"\\" + std::to_wstring(thread);
            ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, own.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                      &key, nullptr),
                      ERROR_SUCCESS);
            const DWORD number = static_cast<DWORD>(i);
            ASSERT_EQ(RegSetValueExW(key, L"number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                                     sizeof number),
                      ERROR_SUCCESS);
            DWORD read = 0;
            DWORD size = sizeof read;
            ASSERT_EQ(
                RegQueryValueExW(key, L"number", nullptr, nullptr, reinterpret_cast<BYTE*>(&read), &size),
                ERROR_SUCCESS);
            ASSERT_EQ(read, number);
            HKEY parent = nullptr;
            ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &parent), ERROR_SUCCESS);
            wchar_t name[16];
            DWORD length = 16;
            const LSTATUS status = RegEnumKeyExW(parent, static_cast<DWORD>(thread), name, &length, nullptr,
                                                 nullptr, nullptr, nullptr);
            ASSERT_TRUE(status == ERROR_SUCCESS || status == ERROR_NO_MORE_ITEMS);
            ASSERT_EQ(RegCloseKey(parent), ERROR_SUCCESS);
            ASSERT_EQ(RegCloseKey(key), ERROR_SUCCESS);
            if (i % 3 == 0) {
                ASSERT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, own.c_str()), ERROR_SUCCESS);
            }
        }
    });
    EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str()), ERROR_SUCCESS);
    EXPECT_EQ(Live().registryKeys, 0);
}

TEST(ThreadsTest, CriticalSectionGuardsWhatItGuards) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    int counter = 0;
    InParallel([&](int) {
        for (int i = 0; i < kRounds; ++i) {
            EnterCriticalSection(&section);
            EnterCriticalSection(&section);
            ++counter;
            LeaveCriticalSection(&section);
            ++counter;
            LeaveCriticalSection(&section);
            if (TryEnterCriticalSection(&section)) {
                counter += 2;
                LeaveCriticalSection(&section);
            } else {
                EnterCriticalSection(&section);
                counter += 2;
                LeaveCriticalSection(&section);
            }
        }
    });
    EXPECT_EQ(counter, 4 * kThreads * kRounds);
    DeleteCriticalSection(&section);
}

TEST(ThreadsTest, SharedLockGuardsWhatItGuards) {
    SRWLOCK lock = SRWLOCK_INIT;
    int counter = 0;
    InParallel([&](int) {
        int last = 0;
        for (int i = 0; i < kRounds; ++i) {
            AcquireSRWLockExclusive(&lock);
            ++counter;
            ReleaseSRWLockExclusive(&lock);
            AcquireSRWLockShared(&lock);
            EXPECT_GT(counter, last);
            last = counter;
            ReleaseSRWLockShared(&lock);
        }
    });
    EXPECT_EQ(counter, kThreads * kRounds);
}

TEST(ThreadsTest, HooksAndStateOfThreadsDoNotMeet) {
    InParallel([&](int thread) {
        for (int i = 0; i < kRounds; ++i) {
            SetLastError(static_cast<DWORD>(thread * kRounds + i));
            const BSTR text = SysAllocString(L"text");
            SysFreeString(text);
            if (thread == 0) {
                quillet::platform::SetUiLanguages({L"0407", L"0409"}, 0x0407);
                quillet::platform::SetDebugOutput([](const std::wstring&) {});
            } else if (thread == 1) {
                OutputDebugStringW(L"heard or not");
                ASSERT_NE(GetUserDefaultUILanguage(), 0);
            } else {
                HANDLE token = nullptr;
                ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
                ASSERT_TRUE(CloseHandle(token));
            }
            ASSERT_EQ(GetLastError(), static_cast<DWORD>(thread * kRounds + i));
        }
    });
    quillet::platform::ResetHooks();
    EXPECT_EQ(Live().bstrs, 0);
    EXPECT_EQ(Live().tokens, 0);
}

} // namespace
