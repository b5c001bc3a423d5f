// One object in several threads and apartments, and threads that have not initialised COM.
#include "ProviderTest.h"

#include <atomic>
#include <thread>

namespace {

using testing::Contains;
using testing::IsEmpty;
using Access = QuilletTestAccess;

constexpr int CALLS = 1000;

/// COM for one thread of a test.
class Apartment {
  public:
    explicit Apartment(DWORD model) : m_result(CoInitializeEx(nullptr, model)) {}
    ~Apartment() {
        if (SUCCEEDED(m_result)) {
            CoUninitialize();
        }
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    HRESULT Result() const { return m_result; }

  private:
    HRESULT m_result;
};

class ThreadsTest : public ProviderTest {
  protected:
    /// What one thread found out; gtest's assertions stay with the main thread.
    struct Tally {
        HRESULT apartment = E_FAIL;
        int good = 0;
        HRESULT firstFailure = S_OK;
    };
    /// Runs an operation CALLS times in two multithreaded apartments and a single-threaded one.
    template <class Once>
    void InThreeThreads(Once once) {
        constexpr DWORD models[] = {COINIT_MULTITHREADED, COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED};
        Tally tallies[3];
        std::vector<std::thread> threads;
        for (int index = 0; index < 3; ++index) {
            threads.emplace_back([&once, model = models[index], &tally = tallies[index]] {
                const Apartment apartment(model);
                tally.apartment = apartment.Result();
                for (int call = 0; call < CALLS; ++call) {
                    const HRESULT result = once();
                    if (result == S_OK) {
                        ++tally.good;
                    } else if (tally.firstFailure == S_OK) {
                        tally.firstFailure = result;
                    }
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const Tally& tally : tallies) {
            EXPECT_EQ(Code(tally.apartment), "0x00000000");
            EXPECT_EQ(tally.good, CALLS);
            EXPECT_EQ(Code(tally.firstFailure), "0x00000000");
        }
    }
};

TEST_F(ThreadsTest, EnumerateAdapters_ThreeThreadsOnOneObject_EachSeesAllAdaptersEveryTime) {
    Connect();
    const std::size_t expected = machine->Store().Instances(L"Zorel_PhysicalEthernetAdapter").size();
    ASSERT_GT(expected, 0u);
    // Tracing is on, at level 1: the log is what the threads share most.
    InThreeThreads([this, expected] {
        CAdapters adapters;
        const HRESULT result = quillet.EnumerateAdapters(adapters);
        return result == S_OK && adapters.m_vecItems.size() != expected ? E_UNEXPECTED : result;
    });
    const std::vector<JournalEntry> calls = Calls();
    std::size_t enumerations = 0;
    bool partial = true;
    for (const JournalEntry& call : calls) {
        if (call.operation == Operation::CreateInstanceEnum) {
            ++enumerations;
            const NamedValue* mode = call.ContextValue(L"Zorel_PartialData");
            partial = partial && mode && mode->value == quillet::simulator::Value::Signed(1);
        }
    }
    EXPECT_EQ(enumerations, 3u * CALLS);
    EXPECT_TRUE(partial) << "one thread's context was switched by another";
}

TEST_F(ThreadsTest, GetWarnings_ThreeThreadsOnOneObject_NeverFails) {
    UseText(R"(instance of Zorel_NetService { Name = "ZorelNetService"; Warnings = 5; };)");
    Connect();
    InThreeThreads([this] {
        ULONGLONG warnings = 0;
        const HRESULT result = quillet.GetWarnings(warnings);
        return result == S_OK && warnings != 5 ? E_UNEXPECTED : result;
    });
}

TEST_F(ThreadsTest, CopiesOfOneObject_EachInItsThread_ShareTheConnection) {
    Connect();
    InThreeThreads([this] {
        CQuillet copy(quillet);
        CAdapters adapters;
        return copy.EnumerateAdapters(adapters);
    });
}

TEST_F(ThreadsTest, InitQuillet_AnObjectForEachThread_Connects) {
    constexpr int connections = 20;
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (const DWORD model : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        threads.emplace_back([this, &good, model] {
            const Apartment apartment(model);
            // Classes are registered for an apartment: each thread that connects registers its own.
            const quillet::simulator::Registration registration(machine);
            for (int count = 0; count < connections; ++count) {
                CQuillet own;
                CAdapters adapters;
                if (own.InitQuillet() == S_OK && own.EnumerateAdapters(adapters) == S_OK &&
                    !adapters.m_vecItems.empty()) {
                    ++good;
                }
                own.UninitQuillet();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 3 * connections);
}

} // namespace
