// One machine, many threads: what ThreadSanitizer runs.
#include "ComFixture.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

using ATL::CComPtr;

namespace {

constexpr int Rounds = 60;

class Threads : public ComTest {
  protected:
    Threads() {
        EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
                  S_OK);
    }
    /// Runs work(number) on threads of their own, every other one in an apartment of its own.
    template <class Work>
    static void OnThreads(int count, Work work) {
        std::vector<std::thread> threads;
        for (int number = 0; number < count; ++number) {
            threads.emplace_back([number, &work] {
                const auto apartment = number % 2 == 0 ? COINIT_MULTITHREADED : COINIT_APARTMENTTHREADED;
                ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, static_cast<DWORD>(apartment))));
                work(number);
                CoUninitialize();
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }
    template <class Interface>
    CComPtr<Interface> Retrieve(DWORD cookie, REFIID iid) {
        CComPtr<Interface> object;
        EXPECT_EQ(Code(table->GetInterfaceFromGlobal(cookie, iid, reinterpret_cast<void**>(&object))),
                  "0x00000000");
        return object;
    }

    CComPtr<IGlobalInterfaceTable> table;
};

TEST_F(Threads, EachWorksWithItsOwnProxyAndContext) {
    DWORD service = 0;
    DWORD context = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(services, IID_IWbemServices, &service), S_OK);
    ASSERT_EQ(table->RegisterInterfaceInGlobal(Context(), IID_IWbemContext, &context), S_OK);
    machine->Calls().RecordLocal(true);
    FaultRule slow;
    slow.operation = Operation::GetCallStatus;
    slow.effect = Effect::Delay;
    slow.repeat = true;
    machine->Rules().Add(slow);

    OnThreads(4, [&](int number) {
        for (int round = 0; round < Rounds; ++round) {
            const auto proxy = Retrieve<IWbemServices>(service, IID_IWbemServices);
            ASSERT_EQ(SetBlanket(proxy), S_OK);
            const auto mine = Retrieve<IWbemContext>(context, IID_IWbemContext);
            _variant_t id = I4(number);
            ASSERT_EQ(mine->SetValue(L"ClientSetId", 0, &id), S_OK);

            CComPtr<IWbemClassObject> definition;
            CComPtr<IWbemClassObject> fresh;
            ASSERT_EQ(Code(proxy->GetObject(_bstr_t(L"Test_Lone").GetBSTR(), 0, mine, &definition, nullptr)),
                      "0x00000000");
            ASSERT_EQ(definition->SpawnInstance(0, &fresh), S_OK);
            ASSERT_EQ(Put(fresh, L"Number", I4(1000 * (number + 1) + round)), S_OK);
            CComPtr<IWbemCallResult> result;
            ASSERT_EQ(Code(proxy->PutInstance(fresh, 0x20010, mine, &result)), "0x00000000");
            LONG status = 1;
            ASSERT_EQ(result->GetCallStatus(static_cast<LONG>(WBEM_INFINITE), &status), S_OK);
            ASSERT_EQ(status, 0);

            CComPtr<IEnumWbemClassObject> answer;
            ASSERT_EQ(Code(proxy->ExecQuery(_bstr_t(L"WQL").GetBSTR(),
                                            _bstr_t(L"SELECT * FROM Test_All WHERE Name = 'one'").GetBSTR(),
                                            0, mine, &answer)),
                      "0x00000000");
            CComPtr<IWbemClassObject> one;
            ULONG returned = 0;
            ASSERT_EQ(answer->Next(static_cast<LONG>(WBEM_INFINITE), 1, &one, &returned), S_OK);
            ASSERT_EQ(Get(one, L"Caption"), _variant_t(L"First"));
            const std::wstring path = L"Test_Lone=" + std::to_wstring(1000 * (number + 1) + round);
            ASSERT_EQ(Code(proxy->DeleteInstance(_bstr_t(path.c_str()).GetBSTR(), 0, mine, nullptr)),
                      "0x00000000");
        }
    });

    for (const auto& call : machine->Calls().Of(Operation::PutInstance)) {
        const auto* id = call.ContextValue(L"ClientSetId");
        const auto* number = call.Argument(L"Number");
        ASSERT_NE(id, nullptr);
        ASSERT_NE(number, nullptr);
        const auto thread = std::get<std::int64_t>(*id->value.AsScalar());
        const auto key = std::get<std::uint64_t>(*number->value.AsScalar());
        EXPECT_EQ(static_cast<std::int64_t>(key / 1000) - 1, thread);
    }
    EXPECT_EQ(machine->Calls().Of(Operation::PutInstance).size(), 4u * Rounds);
    EXPECT_EQ(machine->Store().Instances(L"Test_Lone").size(), 1u);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(service), S_OK);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(context), S_OK);
}

TEST_F(Threads, ManyShareOneObject) {
    const auto shared = Object(kAll);
    OnThreads(4, [&](int number) {
        for (int round = 0; round < Rounds; ++round) {
            ASSERT_EQ(Put(shared, L"Caption", number % 2 == 0 ? L"even" : L"odd"), S_OK);
            const auto caption = Get(shared, L"Caption");
            const std::wstring text = V_BSTR(&caption);
            ASSERT_TRUE(text == L"even" || text == L"odd");
            CComPtr<IWbemClassObject> copy;
            ASSERT_EQ(shared->Clone(&copy), S_OK);
            ASSERT_EQ(shared->BeginEnumeration(0), S_OK);
            ASSERT_GE(shared->Next(0, nullptr, nullptr, nullptr, nullptr), S_OK);
        }
    });
}

TEST_F(Threads, ManyShareOneEnumerationAndEachObjectComesOnce) {
    std::string instances;
    for (int number = 100; number < 500; ++number) {
        instances += "instance of Test_Lone { Number = " + std::to_string(number) + "; };";
    }
    Use(instances);
    Connect();
    CComPtr<IEnumWbemClassObject> answer;
    ASSERT_EQ(services->CreateInstanceEnum(_bstr_t(L"Test_Lone").GetBSTR(), 0, nullptr, &answer), S_OK);
    std::atomic<int> seen{0};
    OnThreads(4, [&](int) {
        for (;;) {
            IWbemClassObject* objects[3] = {};
            ULONG returned = 0;
            const HRESULT result = answer->Next(static_cast<LONG>(WBEM_INFINITE), 3, objects, &returned);
            ASSERT_TRUE(SUCCEEDED(result));
            for (ULONG index = 0; index < returned; ++index) {
                objects[index]->Release();
            }
            seen += static_cast<int>(returned);
            if (result != S_OK) {
                return;
            }
        }
    });
    EXPECT_EQ(seen, 401);
}

TEST_F(Threads, TheJournalHasEveryCallOnceAndInTheOrderOfItsThread) {
    machine->Calls().Clear();
    DWORD service = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(services, IID_IWbemServices, &service), S_OK);
    OnThreads(4, [&](int number) {
        const auto proxy = Retrieve<IWbemServices>(service, IID_IWbemServices);
        ASSERT_EQ(SetBlanket(proxy), S_OK);
        for (int round = 0; round < Rounds; ++round) {
            const std::wstring path =
                L"Test_Lone=" + std::to_wstring(100'000 * (number + 1) + round); // there is none
            CComPtr<IWbemClassObject> object;
            ASSERT_EQ(Code(proxy->GetObject(_bstr_t(path.c_str()).GetBSTR(), 0, nullptr, &object, nullptr)),
                      "0x80041002");
        }
    });
    int rounds[4] = {};
    for (const auto& call : machine->Calls().All()) {
        const auto path = ObjectPath::Parse(call.target);
        ASSERT_TRUE(path);
        const auto number = std::get<std::int64_t>(path->keys.at(0).value);
        int& round = rounds[number / 100'000 - 1];
        EXPECT_EQ(number % 100'000, round);
        ++round;
    }
    EXPECT_THAT(rounds, testing::Each(Rounds));
    EXPECT_EQ(machine->Calls().Size(), 4u * Rounds);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(service), S_OK);
}

TEST_F(Threads, CallsThatFollowEachOtherStandSoInTheJournal) {
    std::atomic<int> turn{0};
    OnThreads(2, [&](int number) {
        for (int call = number; call < 2 * Rounds; call += 2) {
            while (turn.load() != call) {
                std::this_thread::yield();
            }
            JournalEntry entry;
            entry.target = std::to_wstring(call);
            machine->Calls().Add(entry);
            turn.store(call + 1);
        }
    });
    const auto calls = machine->Calls().All();
    ASSERT_EQ(calls.size(), 2u * Rounds);
    for (std::size_t index = 0; index < calls.size(); ++index) {
        EXPECT_EQ(calls[index].target, std::to_wstring(index));
    }
}

TEST_F(Threads, ClientSetsNeverCollide) {
    std::mutex lock;
    std::vector<LONG> handles;
    OnThreads(4, [&](int) {
        for (int round = 0; round < Rounds; ++round) {
            const LONG handle = Begin();
            const std::lock_guard guard(lock);
            handles.push_back(handle);
        }
    });
    std::sort(handles.begin(), handles.end());
    EXPECT_EQ(std::adjacent_find(handles.begin(), handles.end()), handles.end());
    EXPECT_EQ(handles.size(), 4u * Rounds);
}

} // namespace
