// How much memory it takes to read a flash memory. A program of its own: what other tests allocated before
// would be counted as well. The host must tell a process its own peak.
#include "Boot/BootMachine.h"

#include <fstream>

namespace {

using boot::Bytes;

/// A number of /proc/self/status, in bytes.
std::size_t Status(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == name + ":") {
            std::size_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    }
    return 0;
}

class BootMemoryTest : public boot::BootTest {};

TEST_F(BootMemoryTest, Read_PeaksAtNoMoreThanThreeTimesTheImage) {
    constexpr std::size_t SIZE = 16u << 20;
    {
        auto agent = *machine->Store().FindInstance(AGENT);
        agent.Set(L"FlashImage", quillet::simulator::Value(boot::Noise(SIZE)));
        ASSERT_TRUE(SUCCEEDED(machine->Store().PutInstance(agent)));
    }
    std::ofstream("/proc/self/clear_refs") << 5; // the peak begins anew
    const std::size_t before = Status("VmRSS");
    LONG size = 0;
    unsigned char* data = nullptr;
    ASSERT_EQ(Code(quillet.ReadBootAgentFlash(AGENT, size, &data)), "0x00000000");
    const std::size_t peak = Status("VmHWM");
    EXPECT_EQ(size, static_cast<LONG>(SIZE));
    ASSERT_GT(before, SIZE) << "the flash memory itself";
    ASSERT_GE(peak, before);
    const std::size_t grown = peak - before;
    std::printf("image %zu bytes, grown by %zu at the peak\n", SIZE, grown);
    RecordProperty("grown", static_cast<int>(grown));
    EXPECT_GE(grown, SIZE) << "the buffer alone takes as much; the measurement is broken";
    EXPECT_LE(grown, 3 * SIZE);
    ::operator delete(data);
}

} // namespace
