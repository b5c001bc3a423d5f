// Machines: where they come from, what they say about themselves, time, and writing one back.
#include "ComFixture.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "TemporaryDirectory.h"

using namespace std::chrono_literals;

namespace {

MachineOptions OnTestHost() {
    MachineOptions options;
    options.serverName = L"TESTHOST";
    return options;
}

TEST(Machines, AnEmptyOneHasOnlyTheNetworkService) {
    const auto machine = Machine::Empty(OnTestHost());
    const auto instances = machine->Store().AllInstances();
    ASSERT_EQ(instances.size(), 1u);
    EXPECT_EQ(Narrow(machine->Store().FullPath(*instances[0])),
              "\\\\TESTHOST\\ROOT\\MarloLUM2:Zorel_NetService.Name=\"ZorelNetService\"");
    EXPECT_NE(machine->Store().FindClass(L"Zorel_VLAN"), nullptr);
}

TEST(Machines, TheBuiltInOneHasAdapters) {
    const auto machine = Machine::BuiltIn(OnTestHost());
    EXPECT_GE(machine->Store().Instances(L"Zorel_PhysicalEthernetAdapter").size(), 9u);
    EXPECT_EQ(machine->Store().Instances(L"Zorel_NetService").size(), 1u);
}

TEST(Machines, TheNameIsThatOfThisComputerUnlessGiven) {
    WCHAR name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(name, &size));
    EXPECT_EQ(Machine::Empty()->Store().ServerName(), name);
    const char* const named =
        "instance of QuilletSimulator_Machine { Name = \"lab\"; ServerName = \"LAB7\"; };";
    EXPECT_EQ(Machine::FromText(named, "lab.mof")->Store().ServerName(), L"LAB7");
    EXPECT_EQ(Machine::FromText(named, "lab.mof", OnTestHost())->Store().ServerName(), L"TESTHOST");
    const auto lab = Machine::FromText(named, "lab.mof");
    const std::wstring rest = LR"(\ROOT\MarloLUM2:QuilletSimulator_Machine.Name="lab")";
    ASSERT_EQ(lab->Store().AllInstances().size(), 1u);
    EXPECT_EQ(lab->Store().FullPath(*lab->Store().AllInstances()[0]), L"\\\\LAB7" + rest);
    EXPECT_NE(lab->Store().FindInstance(L"\\\\LAB7" + rest), nullptr);
    EXPECT_EQ(lab->Store().FindInstance(L"\\\\" + Machine::Empty()->Store().ServerName() + rest), nullptr);
}

TEST(Machines, OfManyNamesEachKeepsItsOwn) {
    std::vector<std::shared_ptr<Machine>> machines;
    for (int round = 0; round < 2; ++round) {
        for (int number = 0; number < 10; ++number) {
            MachineOptions options;
            options.serverName = L"HOST" + std::to_wstring(number);
            machines.push_back(Machine::Empty(options));
        }
    }
    for (std::size_t number = 0; number < machines.size(); ++number) {
        auto& store = machines[number]->Store();
        EXPECT_EQ(store.FullPath(*store.AllInstances().at(0)),
                  L"\\\\HOST" + std::to_wstring(number % 10) +
                      L"\\ROOT\\MarloLUM2:Zorel_NetService.Name=\"ZorelNetService\"");
    }
}

TEST(Machines, ANewLinkIsAsFastAsThePortCanBe) {
    const auto machine = Machine::FromText(
        "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"{A}\"; Capabilities = {32, 33, 34, 35}; };"
        "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"{B}\"; Capabilities = {32, 33, 34}; };"
        "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"{C}\"; Capabilities = {32, 33}; };"
        "instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"{D}\"; Capabilities = {32}; };",
        "ports.mof", OnTestHost());
    const auto linked = [&](const std::wstring& id) {
        EXPECT_EQ(machine->SetHardwareStatus(id, 3), S_OK);
        return machine->Store()
            .FindInstance(L"Zorel_PhysicalEthernetAdapter.DeviceID=\"" + id + L'"')
            ->Number(L"Speed");
    };
    EXPECT_EQ(linked(L"{A}"), 10'000'000'000);
    EXPECT_EQ(linked(L"{B}"), 1'000'000'000);
    EXPECT_EQ(linked(L"{C}"), 100'000'000);
    EXPECT_EQ(linked(L"{D}"), 10'000'000);
}

TEST(Machines, EachChangesOnItsOwn) {
    const auto first = Machine::BuiltIn(OnTestHost());
    const auto second = Machine::BuiltIn(OnTestHost());
    const auto path = ObjectPath::Parse(L"Zorel_NetService.Name=\"ZorelNetService\"");
    auto service = *first->Store().FindInstance(*path);
    service.Set(L"Caption", Value::Text(L"changed"));
    ASSERT_EQ(first->Store().PutInstance(service), S_OK);
    ASSERT_EQ(second->Store().DeleteInstance(*path), S_OK);
    EXPECT_EQ(first->Store().FindInstance(*path)->Text(L"Caption"), L"changed");
    EXPECT_EQ(second->Store().FindInstance(*path), nullptr);
    const auto third = Machine::BuiltIn(OnTestHost());
    EXPECT_EQ(third->Store().FindInstance(*path)->Text(L"Caption"), L"Zorel Network Configuration Service");
    EXPECT_EQ(third->Store().AllInstances().size(), first->Store().AllInstances().size());
}

TEST(Machines, ACopyHoldsWhatTheOriginalDoesAndBeginsAnew) {
    const auto original = Machine::FromText(
        "instance of QuilletSimulator_Machine { Name = \"one\"; Strict = TRUE; };"
        "instance of QuilletSimulator_Fault { Id = 1; Effect = \"Fail\"; Code = 0x80041003; };",
        "one.mof", OnTestHost());
    original->Rules().Hit(Operation::GetObject, L"Zorel_VLAN"); // the only one that the rule meets
    original->Advance(std::chrono::seconds(5));
    original->Calls().Add({});
    const auto copy = original->Copy();
    EXPECT_EQ(copy->Store().ServerName(), L"TESTHOST");
    EXPECT_EQ(copy->Save(), original->Save());
    EXPECT_EQ(copy->Calls().Size(), 0u);
    EXPECT_EQ(copy->Now(), std::chrono::milliseconds(0));
    EXPECT_FALSE(original->Rules().Hit(Operation::GetObject, L"Zorel_VLAN"));
    EXPECT_TRUE(copy->Rules().Hit(Operation::GetObject, L"Zorel_VLAN"));
    const auto path = ObjectPath::Parse(L"QuilletSimulator_Machine.Name=\"one\"");
    ASSERT_EQ(copy->Store().DeleteInstance(*path), S_OK);
    EXPECT_NE(original->Store().FindInstance(*path), nullptr);
}

TEST(Machines, ACopyAnswersQueriesAsTheOriginalDoes) {
    const auto original = Machine::BuiltIn(OnTestHost());
    const auto teams = original->Store().Instances(L"Zorel_TeamOfAdapters");
    ASSERT_FALSE(teams.empty());
    const auto query = ParseWql(L"REFERENCES OF {" + original->Store().FullPath(*teams[0]) +
                                L"} WHERE ResultClass = Zorel_TeamedMemberAdapter");
    ASSERT_TRUE(query);
    std::vector<InstancePtr> expected;
    ASSERT_EQ(original->Store().Associations(*query, expected), S_OK);
    EXPECT_EQ(expected.size(), 2u);
    Repository copy(original->Store());
    std::vector<InstancePtr> found;
    ASSERT_EQ(copy.Associations(*query, found), S_OK);
    EXPECT_TRUE(found == expected);
    EXPECT_EQ(copy.ClassAndSubclasses(L"Zorel_AdapterSetting").size(),
              original->Store().ClassAndSubclasses(L"Zorel_AdapterSetting").size());
    EXPECT_EQ(copy.Generation(), original->Store().Generation());
}

TEST(Machines, BadTextIsReportedWithItsPlace) {
    try {
        Machine::FromText("instance of Zorel_NetService {\n  Name = ;\n};", "bad.mof");
        FAIL() << "compiled";
    } catch (const MofError& error) {
        EXPECT_EQ(error.File(), "bad.mof");
        EXPECT_EQ(error.Line(), 2u);
    }
    EXPECT_THROW(Machine::FromFile("no-such-file.mof"), std::exception);
}

TEST(Machines, FaultsComeFromTheirText) {
    const auto machine = Machine::FromText("instance of QuilletSimulator_Fault { Id = 1; Operation = "
                                           "\"getobject\"; Target = \"Zorel_VLAN\"; Nth = 2;"
                                           " Effect = \"Fail\"; Code = 0x80041003; };"
                                           "instance of QuilletSimulator_Fault { Id = 2; Effect = \"Delay\"; "
                                           "Repeat = TRUE; Milliseconds = 2; };",
                                           "faults.mof");
    auto& rules = machine->Rules();
    EXPECT_EQ(rules.Hit(Operation::GetObject, L"Zorel_VLAN")->effect, Effect::Delay);
    const auto second = rules.Hit(Operation::GetObject, L"Zorel_VLAN.Name=\"x\"");
    ASSERT_TRUE(second);
    EXPECT_EQ(Code(second->code), "0x80041003");
    EXPECT_EQ(second->milliseconds, 2u);
    EXPECT_FALSE(rules.Hit(Operation::Get, L"Name"));
}

TEST(Machines, AFaultThatMeansNothingIsReported) {
    for (const auto* fault :
         {"Operation = \"Explode\"; Effect = \"Fail\";", "Effect = \"Explode\";",
          "Operation = \"Get\"; Effect = \"EndOfData\";", "Nth = 0; Effect = \"Fail\";"}) {
        const std::string text = std::string("instance of QuilletSimulator_Fault { Id = 6; };\n\n"
                                             "  instance of QuilletSimulator_Fault { Id = 7; ") +
                                 fault + " };";
        try {
            Machine::FromText(text, "faults.mof");
            ADD_FAILURE() << fault;
        } catch (const MofError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith("faults.mof:3:3: QuilletSimulator_Fault.Id=7: "))
                << fault;
        }
    }
}

TEST(Machines, AFaultInAnIncludedFileIsReportedThere) {
    const quillet::tests::TemporaryDirectory directory;
    const auto folder = std::filesystem::path(directory.Path());
    std::ofstream(folder / "inner.mof", std::ios::binary)
        << "// A comment.\ninstance of QuilletSimulator_Fault { Id = 1; Effect = \"Explode\"; };\n";
    std::ofstream(folder / "outer.mof", std::ios::binary) << "#pragma include (\"inner.mof\")\n";
    try {
        Machine::FromFile(folder / "outer.mof");
        FAIL() << "compiled";
    } catch (const MofError& error) {
        EXPECT_EQ(error.Line(), 2u);
        EXPECT_THAT(error.File(), testing::EndsWith("inner.mof"));
    }
}

TEST(Machines, TimeStandsUntilItIsAdvanced) {
    const auto machine = Machine::Empty(OnTestHost());
    EXPECT_EQ(machine->Now(), 0ms);
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(machine->Now(), 0ms);
    machine->Advance(250ms);
    EXPECT_EQ(machine->Now(), 250ms);
    machine->FollowRealTime(true);
    std::this_thread::sleep_for(20ms);
    EXPECT_GE(machine->Now(), 270ms);
    machine->FollowRealTime(false);
    const auto stopped = machine->Now();
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(machine->Now(), stopped);
}

TEST(Machines, TheirTextSaysHowTheyBehave) {
    const auto machine = Machine::FromText(
        "instance of QuilletSimulator_Machine { Name = \"m\"; FollowRealTime = TRUE; };", "m.mof");
    std::this_thread::sleep_for(10ms);
    EXPECT_GE(machine->Now(), 10ms);
}

TEST(Machines, OneIsWrittenBackWhole) {
    const quillet::tests::TemporaryDirectory directory;
    const auto original = Machine::BuiltIn(OnTestHost());
    const auto file = std::filesystem::path(directory.Path()) / "state.mof";
    std::ofstream(file, std::ios::binary) << original->Save();
    const auto loaded = Machine::FromFile(file, OnTestHost());
    const auto before = original->Store().AllInstances();
    const auto after = loaded->Store().AllInstances();
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t index = 0; index < before.size(); ++index) {
        EXPECT_EQ(RelativePath(*after[index]), RelativePath(*before[index]));
        EXPECT_TRUE(after[index]->values == before[index]->values) << Narrow(RelativePath(*before[index]));
    }
    EXPECT_EQ(loaded->Save(), original->Save());
}

class StrictMachine : public ComTest {};

TEST_F(StrictMachine, ItsTextMakesAMachineStrict) {
    Use("instance of QuilletSimulator_Machine { Name = \"m\"; Strict = TRUE; };");
    Connect();
    EXPECT_EQ(Code(services->DeleteInstance(_bstr_t(L"Test_Lone=1").GetBSTR(), 0, nullptr, nullptr)),
              "0x80041003");
}

} // namespace
