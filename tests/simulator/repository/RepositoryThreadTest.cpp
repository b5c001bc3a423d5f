// Many threads read and write one repository.
#include "SmallSchema.h"

#include <atomic>
#include <thread>

namespace quillet::tests {
namespace {

TEST(RepositoryThreads, ReadersSeeWholeInstancesWhileWritersChangeThem) {
    Repository repository(L"HOST", L"ROOT\\Test");
    CompileMof(repository, kSchema, "schema.mof");
    constexpr int kWriters = 2;
    constexpr int kReaders = 3;
    constexpr int kRounds = 300;
    constexpr int kDevices = 10;
    std::atomic<int> torn{0};
    std::atomic<int> failures{0};
    std::atomic<std::size_t> answers{0};

    const auto write = [&](int writer) {
        for (int round = 1; round <= kRounds; ++round) {
            Instance device(repository.FindClass(L"T_Device"));
            const std::wstring id = std::to_wstring(writer) + L"-" + std::to_wstring(round % kDevices);
            device.Set(L"DeviceID", Value::Text(id));
            // Readers check that these two always belong together.
            device.Set(L"Speed", Value::Unsigned(static_cast<std::uint64_t>(round)));
            device.Set(L"ParentId", Value::Text(L"p" + std::to_wstring(round)));
            failures += repository.PutInstance(std::move(device)) != 0 ? 1 : 0;
            Instance link(repository.FindClass(L"T_Next"));
            link.Set(L"Id", Value::Text(id));
            link.Set(L"From", Value::Text(L"T_Device='" + id + L"'"));
            link.Set(L"To", Value::Text(L"T_Device='0-1'"));
            failures += repository.PutInstance(std::move(link)) != 0 ? 1 : 0;
            if (round % 7 == 0) {
                failures +=
                    repository.DeleteInstance(*ObjectPath::Parse(L"T_Next='" + id + L"'")) != 0 ? 1 : 0;
            }
            if (round % 50 == 0) {
                CompileMof(repository,
                           "class Extra" + std::to_string(writer) + "_" + std::to_string(round) +
                               " : T_Device { };",
                           "extra.mof");
            }
        }
    };
    const auto check = [&](const InstancePtr& device) {
        ++answers;
        torn += device->Text(L"ParentId") != L"p" + std::to_wstring(device->Number(L"Speed")) ? 1 : 0;
    };
    const auto read = [&](int reader) {
        for (int round = 1; round <= kRounds; ++round) {
            std::vector<InstancePtr> found;
            const auto byParent =
                ParseWql(L"SELECT * FROM T_Device WHERE ParentId = 'p" + std::to_wstring(round) + L"'");
            failures += repository.Select(*byParent, found) != 0 ? 1 : 0;
            for (const InstancePtr& device : found) {
                check(device);
            }
            const HRESULT result =
                repository.Associations(*ParseWql(L"ASSOCIATORS OF {T_Device='0-1'}"), found);
            failures += result != 0 && result != Code(WBEM_E_NOT_FOUND) ? 1 : 0;
            if (const InstancePtr device =
                    repository.FindInstance(L"T_Device='1-" + std::to_wstring(reader) + L"'")) {
                check(device);
            }
            for (const InstancePtr& device : repository.Instances(L"T_Device")) {
                check(device);
            }
        }
    };

    std::vector<std::thread> threads;
    for (int writer = 0; writer < kWriters; ++writer) {
        threads.emplace_back(write, writer);
    }
    for (int reader = 0; reader < kReaders; ++reader) {
        threads.emplace_back(read, reader);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(failures, 0);
    EXPECT_GT(answers, 0u);
    EXPECT_EQ(repository.Instances(L"T_Device").size(), static_cast<std::size_t>(kWriters * kDevices));
}

} // namespace
} // namespace quillet::tests
