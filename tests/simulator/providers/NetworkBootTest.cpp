// Boot agents of simulated machines.
#include "MethodCalls.h"

#include <quillet-simulator/FlashImage.h>

#include <thread>

namespace quillet::simulator::tests {

namespace {

using namespace std::chrono_literals;

constexpr const char* kNetworkBootMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_BootAgent { Name = "{A}"; FlashImage = {1, 2, 255}; };
    instance of Zorel_BootAgent { Name = "{B}"; };
    instance of Zorel_BootAgent { Name = "{C}"; };
    instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{A}"; iSCSI_Status = 1; };
    instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{B}"; iSCSI_Status = 2; };
    instance of Zorel_BootAgent_iSCSI_Adapters { Name = "{C}"; iSCSI_Status = 0; };)";

constexpr const wchar_t* kAgent = LR"(Zorel_BootAgent.Name="{A}")";

Value::Array Names(std::initializer_list<const wchar_t*> names) {
    Value::Array array;
    for (const wchar_t* name : names) {
        array.emplace_back(Scalar(std::wstring(name)));
    }
    return array;
}

class NetworkBootTest : public MethodCalls {
  protected:
    void SetUp() override { Use(kNetworkBootMachine); }

    static std::vector<std::uint8_t> Image(std::size_t size = 100) {
        return WriteFlashImage(
            {{L"PXE", L"1.4.0", 0, 1, std::vector<std::uint8_t>(size, 7)}, {L"EFI", L"2.0", 0, 1, {9}}});
    }
    std::int64_t Program(const std::vector<std::uint8_t>& image, Value types) {
        const auto out =
            Call(kAgent, L"ProgramFlashEx", {{L"NewFlashData", Value(image)}, {L"ImageType", types}});
        return out != nullptr ? out->Number(L"FlashRetCode", -1) : -1;
    }
    std::int64_t Place(const wchar_t* port, const wchar_t* className = L"Zorel_BootAgent_iSCSI_Adapters") {
        return Find(std::wstring(className) + L".Name=\"" + port + L"\"")->Number(L"iSCSI_Status", -1);
    }
    std::int64_t Set(const wchar_t* port, std::int64_t place) {
        const auto out = Call(std::wstring(L"Zorel_BootAgent.Name=\"") + port + L"\"", L"SetiSCSI_Status",
                              {{L"iSCSI_State", Value::Signed(place)}});
        return out->Number(L"RetCode", -1);
    }
};

TEST_F(NetworkBootTest, Flash_IsReadAsItIs) {
    const auto out = Call(kAgent, L"ReadFlash", {});
    EXPECT_EQ(*out->Find(L"FlashData"), Value(Value::Bytes{1, 2, 255}));
    EXPECT_EQ(out->Find(L"FlashData")->AsBytes(), Find(kAgent)->Find(L"FlashImage")->AsBytes())
        << "the bytes are shared, not copied";
}

TEST_F(NetworkBootTest, Programming_TakesSimulatedTimeByTheImagesSize) {
    const auto start = machine->Now();
    EXPECT_EQ(Program(Image(), Value()), 0);
    EXPECT_EQ(machine->Now() - start, 500ms);
    const auto second = machine->Now();
    EXPECT_EQ(Program(Image(1 << 20), Value()), 0);
    EXPECT_EQ(machine->Now() - second, 628ms);
}

TEST_F(NetworkBootTest, Programming_ChangesTheWholeDescription) {
    EXPECT_EQ(Program(Image(), Value(Names({L"PXE"}))), 0);
    auto agent = Find(kAgent);
    EXPECT_EQ(*agent->Find(L"FlashImage"), Value(Image()));
    EXPECT_EQ(agent->Text(L"Version"), L"1.4.0");
    EXPECT_EQ(agent->Number(L"VersionNumber"), 0x10400);
    EXPECT_EQ(agent->Number(L"FlashImageType"), 1);
    EXPECT_EQ(agent->Number(L"InstalledFlashImageTypes"), 1);
    EXPECT_EQ(agent->Number(L"UpdateAvailable", -1), 0);
    EXPECT_EQ(Program(Image(), Value(Names({L"EFI"}))), 0);
    agent = Find(kAgent);
    EXPECT_EQ(agent->Text(L"Version"), L"2.0");
    EXPECT_TRUE(agent->Find(L"VersionNumber")->IsNull()) << "not three numbers";
    EXPECT_EQ(agent->Number(L"FlashImageType"), 2);
    EXPECT_EQ(Program(Image(), Value(Names({}))), 0) << "no name stands for all images";
    EXPECT_EQ(Find(kAgent)->Number(L"InstalledFlashImageTypes"), 3);
    EXPECT_TRUE(Find(kAgent)->Find(L"FlashImageType")->IsNull()) << "there is no code for these two";
}

TEST_F(NetworkBootTest, Programming_TellsWhichTypesAreInstalled) {
    const auto installed = [this](std::initializer_list<const wchar_t*> types) {
        std::vector<BootImage> images;
        for (const wchar_t* type : types) {
            images.push_back({type, L"1.0", 0, 1, {9}});
        }
        EXPECT_EQ(Program(WriteFlashImage(images), Value()), 0);
        return std::pair(Find(kAgent)->Number(L"InstalledFlashImageTypes"),
                         Find(kAgent)->Number(L"FlashImageType", -1));
    };
    EXPECT_EQ(installed({L"Other"}), std::pair(std::int64_t{0}, std::int64_t{0}));
    EXPECT_EQ(installed({L"PXE"}), std::pair(std::int64_t{1}, std::int64_t{1}));
    EXPECT_EQ(installed({L"EFI"}), std::pair(std::int64_t{2}, std::int64_t{2}));
    EXPECT_EQ(installed({L"iSCSI"}), std::pair(std::int64_t{4}, std::int64_t{3}));
    EXPECT_EQ(installed({L"PXE", L"iSCSI"}), std::pair(std::int64_t{5}, std::int64_t{4}));
    EXPECT_EQ(installed({L"PXE", L"iSCSI", L"EFI"}), std::pair(std::int64_t{7}, std::int64_t{5}));
    EXPECT_EQ(installed({L"EFI", L"iSCSI"}), std::pair(std::int64_t{6}, std::int64_t{-1}));
}

TEST_F(NetworkBootTest, Programming_AnAgentThatIsRemovedMeanwhile_IsNotFound) {
    const Parameters parameters = {{L"NewFlashData", Value(Image(8 << 20))}};
    machine->FollowRealTime(true);
    const auto start = machine->Now();
    std::thread other([this] {
        std::this_thread::sleep_for(100ms);
        EXPECT_EQ(machine->Store().DeleteInstance(*ObjectPath::Parse(kAgent)), S_OK);
    });
    EXPECT_EQ(Call(kAgent, L"ProgramFlashEx", parameters), nullptr);
    other.join();
    EXPECT_EQ(result, HRESULT(WBEM_E_NOT_FOUND));
    EXPECT_GE(machine->Now() - start, 1500ms) << "it was refused before it began";
    EXPECT_EQ(Find(kAgent), nullptr);
}

TEST_F(NetworkBootTest, Programming_IsRefusedForWrongImagesAndTypes) {
    auto damaged = Image();
    damaged.back() ^= 1;
    EXPECT_EQ(Program(damaged, Value()), 3);
    EXPECT_EQ(Program({1, 2, 3}, Value()), 1);
    EXPECT_EQ(Program(Image(), Value(Names({L"iSCSI"}))), 8);
    EXPECT_EQ(Program(Image(), Value(Names({L"PXE", L"pxe"}))), 8);
    EXPECT_EQ(Program(Image(), Value(Value::Array{std::nullopt})), 8);
    EXPECT_EQ(*Find(kAgent)->Find(L"FlashImage"), Value(Value::Bytes{1, 2, 255}));
    Call(kAgent, L"ProgramFlashEx", {});
    EXPECT_EQ(result, S_OK) << "without parameters there is no image";
}

TEST_F(NetworkBootTest, PowerCut_HappensHalfwayAndLeavesTheOldImage) {
    const auto start = machine->Now();
    EXPECT_EQ(Call(kAgent, L"ProgramFlashEx", {{L"NewFlashData", Value(Image())}}, E_ACCESSDENIED), nullptr);
    EXPECT_EQ(result, E_ACCESSDENIED);
    EXPECT_EQ(machine->Now() - start, 250ms);
    EXPECT_EQ(*Find(kAgent)->Find(L"FlashImage"), Value(Value::Bytes{1, 2, 255}));
}

TEST_F(NetworkBootTest, Changes_NeedARestartAndTheStrictMachinesClientSet) {
    EXPECT_EQ(Program(Image(), Value()), 0);
    EXPECT_EQ(machine->Internals().sets.Close(0), 1);
    EXPECT_EQ(Set(L"{B}", 0), 0);
    EXPECT_EQ(machine->Internals().sets.Close(0), 1);
    MachineOptions strict;
    strict.strict = true;
    Use(kNetworkBootMachine, strict);
    EXPECT_EQ(Program(Image(), Value()), -1);
    EXPECT_EQ(result, HRESULT(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(*Find(kAgent)->Find(L"FlashImage"), Value(Value::Bytes{1, 2, 255}));
    EXPECT_EQ(
        Call(LR"(Zorel_BootAgent.Name="{B}")", L"SetiSCSI_Status", {{L"iSCSI_State", Value::Signed(1)}}),
        nullptr);
    EXPECT_EQ(result, HRESULT(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(Place(L"{B}"), 2);
}

TEST_F(NetworkBootTest, AProgrammedMachine_IsSavedAndLoadedByteForByte) {
    std::vector<std::uint8_t> contents(1000);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        contents[i] = static_cast<std::uint8_t>(i * 37);
    }
    const auto image = WriteFlashImage({{L"PXE", L"1.4.0", 0, 1, contents}});
    EXPECT_EQ(Program(image, Value()), 0);
    Use(machine->Save());
    ASSERT_NE(Find(kAgent)->Find(L"FlashImage")->AsBytes(), nullptr);
    EXPECT_EQ(*Find(kAgent)->Find(L"FlashImage")->AsBytes(), image);
    EXPECT_EQ(Find(kAgent)->Text(L"Version"), L"1.4.0");
}

TEST_F(NetworkBootTest, ImageFiles_AreListedInTheirOrder) {
    const auto out = Call(kAgent, L"ReadImageFile", {{L"FlashData", Value(Image())}});
    EXPECT_EQ(out->Number(L"FlashRetCode", -1), 0);
    EXPECT_EQ(*out->Find(L"ImageType"), Value(Names({L"PXE", L"EFI"})));
    EXPECT_EQ(*out->Find(L"ImageVersionNumber"), Value(Names({L"1.4.0", L"2.0"})));
    EXPECT_EQ(out->Find(L"ImageGroupNumber")->Size(), 2u);
    EXPECT_EQ(out->Find(L"ImageExposeLevel")->Size(), 2u);
    const auto refused = Call(kAgent, L"ReadImageFile", {{L"FlashData", Value(Value::Bytes{1})}});
    EXPECT_EQ(refused->Number(L"FlashRetCode", -1), 1);
    EXPECT_TRUE(refused->Find(L"ImageType")->IsNull());
}

TEST_F(NetworkBootTest, Places_ThereIsOnePrimaryPort) {
    EXPECT_EQ(Set(L"{B}", 1), 0);
    EXPECT_EQ(Place(L"{B}"), 1);
    EXPECT_EQ(Place(L"{B}", L"Zorel_BootAgent"), 1);
    EXPECT_EQ(Place(L"{A}"), 2) << "they changed places";
    EXPECT_EQ(Place(L"{A}", L"Zorel_BootAgent"), 2);
    EXPECT_EQ(Place(L"{C}"), 0);
    EXPECT_EQ(Set(L"{C}", 1), 0);
    EXPECT_EQ(Place(L"{B}"), 0);
    EXPECT_EQ(Set(L"{C}", 1), 0);
    EXPECT_EQ(Place(L"{C}"), 1);
    EXPECT_EQ(Set(L"{C}", 0), 0);
    EXPECT_EQ(Place(L"{C}"), 0);
}

TEST_F(NetworkBootTest, Places_OthersAreRefused) {
    EXPECT_EQ(Set(L"{A}", 3), 1);
    EXPECT_EQ(Set(L"{A}", -1), 1);
    Call(kAgent, L"SetiSCSI_Status", {});
    EXPECT_EQ(result, S_OK);
    EXPECT_EQ(Place(L"{A}"), 1);
    Use(R"(instance of Zorel_BootAgent { Name = "{D}"; };)");
    EXPECT_EQ(Set(L"{D}", 1), 2);
}

} // namespace

} // namespace quillet::simulator::tests
