// The commands about one adapter: what they show, and how the adapter is named.
#include "support/RunCommandLine.h"

#include <quillet/Adapter.h>
#include <quillet/client/Adapter.h>

#include <app/Connection.h>
#include <texts/InWords.h>

#include <nlohmann/json.hpp>

#include <set>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

/// What only the provider of the test has words for.
enum class Odd : std::int32_t { Known = 1, Told = 2, Untold = 3 };

std::wstring Text(Odd number) {
    return number == Odd::Known ? L"ours" : quillet::UnknownNumber(static_cast<std::int32_t>(number));
}

} // namespace

template <>
inline constexpr quillet::ValueSource quillet::kValueSource<Odd>{L"Test_Texts", L"Odd"};

namespace {

constexpr const char* kFirst = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";

class OneAdapterTest : public CommandLine {
  protected:
    /// Runs a command on the shipped machine under its fixed name.
    static Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--simulate", TestMachine("golden.mof")});
        return RunCommandLine(arguments);
    }
    static Json RunJson(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        const Outcome outcome = Run(std::move(arguments));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    static std::string Golden(const std::string& name) {
        return ReadFile(QUILLET_SOURCE_DIR "/tests/cli/golden/" + name);
    }
};

class NamedAdapterTest : public OneAdapterTest, public testing::WithParamInterface<const char*> {};

TEST_P(NamedAdapterTest, IsFound) {
    const Json shown = RunJson({"adapter", "show", GetParam()});
    ASSERT_TRUE(shown.is_object());
    EXPECT_EQ(shown.at("objectId"), kFirst);
}

INSTANTIATE_TEST_SUITE_P(
    Names, NamedAdapterTest,
    testing::Values("{64D1BF82-B507-5E42-AED2-547CA8AAC36A}", "{64d1bf82-b507-5e42-aed2-547ca8aac36a}",
                    "64D1BF82-B507-5E42-AED2-547CA8AAC36A", "Zorel 10G Dual Port Server Adapter",
                    "ZOREL 10g dual port server adapter",
                    "\\\\LAB-SERVER\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter."
                    "DeviceID=\"{64D1BF82-B507-5E42-AED2-547CA8AAC36A}\"",
                    "Zorel_PhysicalEthernetAdapter.DeviceID='{64D1BF82-B507-5E42-AED2-547CA8AAC36A}'"));

TEST_F(OneAdapterTest, UnknownName_IsBadUsage) {
    const Outcome outcome = Run({"adapter", "show", "nobody"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "quilletctl: no adapter is called \"nobody\"; see quilletctl adapter list\n");
}

TEST_F(OneAdapterTest, PathThatTheProviderDoesNotKnow_IsRefusedByIt) {
    const Outcome outcome = Run({"adapter", "show", "Zorel_PhysicalEthernetAdapter.DeviceID=\"{0}\""});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("0x80041002 WBEM_E_NOT_FOUND"), std::string::npos) << outcome.err;
}

TEST_F(OneAdapterTest, NameOfSeveral_IsBadUsageAndTellsTheirIds) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "twin"; OriginalDisplayName = "model"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Twin"; OriginalDisplayName = "model"; };)");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "adapter", "show", "twin"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "quilletctl: several adapters are called \"twin\": {A}, {B}\n");
}

TEST_F(OneAdapterTest, NameIsMissing_IsBadUsage) {
    for (const char* verb : {"show", "capabilities", "ports", "identify"}) {
        EXPECT_EQ(Run({"adapter", verb}).status, 2) << verb;
        EXPECT_EQ(Run({"adapter", verb, ""}).status, 2) << verb;
    }
}

TEST_F(OneAdapterTest, Show_MatchesTheGoldenFiles) {
    EXPECT_EQ(Run({"adapter", "show", kFirst, "--json"}).out, Golden("adapter-show.json"));
    EXPECT_EQ(Run({"adapter", "show", "Zorel Gigabit Server Adapter (東京)"}).out,
              Golden("adapter-show.txt"));
}

TEST_F(OneAdapterTest, Show_TellsNumbersAndTheirMeanings) {
    const Json shown = RunJson({"adapter", "show", kFirst});
    EXPECT_EQ(shown.at("speed"), (Json{{"code", 5}, {"text", "10 Gbit/s"}}));
    EXPECT_EQ(shown.at("duplex"), (Json{{"code", 2}, {"text", "full duplex"}}));
    EXPECT_EQ(shown.at("hardwareStatus"), (Json{{"code", 3}, {"text", "link present"}}));
    EXPECT_EQ(shown.at("adapterStatus"), (Json{{"code", 1}, {"text", "enabled"}}));
    EXPECT_EQ(shown.at("ndisVersion"), "6.20");
    EXPECT_EQ(shown.at("hbaPath"), "ScsiPort1");
    EXPECT_EQ(shown.at("warnings"), "0x0000000000000000");
    const Json missing = RunJson({"adapter", "show", "Zorel Gigabit Server Adapter #2"});
    EXPECT_EQ(missing.at("hardwareStatus"), (Json{{"code", 0}, {"text", "hardware missing"}}));
    EXPECT_EQ(missing.at("adapterStatus"), (Json{{"code", 4}, {"text", "hardware missing"}}));
    EXPECT_EQ(missing.at("speed"), (Json{{"code", 0}, {"text", "no link"}}));
}

TEST_F(OneAdapterTest, Show_MethodRefused_DoesNotHideTheRest) {
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "model";
                           Capabilities = {46}; NetworkAddresses = {"02-00-5E-00-00-01"}; };
                       instance of QuilletSimulator_Fault { Id = 1; Operation = "ExecMethod";
                           MethodName = "GetNDISVersion"; Code = 0x80041004; };)");
    const Outcome text = RunCommandLine({"--simulate", machine, "adapter", "show", "one"});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("not told: the provider broke down: 0x80041004 WBEM_E_PROVIDER_FAILURE\n"),
              std::string::npos)
        << text.out;
    const Outcome json = RunCommandLine({"--simulate", machine, "adapter", "show", "one", "--json"});
    EXPECT_TRUE(Json::parse(json.out).at("ndisVersion").is_null());
    EXPECT_TRUE(Json::parse(json.out).at("hbaPath").is_null());
    EXPECT_EQ(Json::parse(json.out).at("warnings"), "0x0000000000000000");
}

TEST_F(OneAdapterTest, WordsAreOursThenTheProvidersThenNone) {
    EXPECT_EQ(quilletctl::InWords(Odd::Told), "code 2 (unknown)") << "nobody can be asked";
    quilletctl::GlobalOptions options;
    std::ostringstream out;
    const quilletctl::Terminal terminal{out, out, false, false, false, false, 80, nullptr};
    {
        quilletctl::Connection connection(
            options, terminal,
            quillet::simulator::Machine::FromText(
                "class Test_Texts { [Key] string Name; [ValueMap{\"1\", \"2\"}, "
                "Values{\"theirs\", \"told by them\"}] uint16 Odd; };"
                "instance of Zorel_NetService { Name = \"ZorelNetService\"; };",
                "test.mof"));
        EXPECT_EQ(quilletctl::InWords(Odd::Known), "ours");
        EXPECT_EQ(quilletctl::InWords(Odd::Told), "told by them");
        EXPECT_EQ(quilletctl::InWords(Odd::Untold), "code 3 (unknown)");
        connection.Reconnect();
        EXPECT_EQ(quilletctl::InWords(Odd::Told), "told by them");
    }
    EXPECT_EQ(quilletctl::InWords(Odd::Told), "code 2 (unknown)") << "and again nobody";
}

TEST_F(OneAdapterTest, ForNumbersWithoutAWord_TheProviderIsAskedOnceForAll) {
    std::string odd = ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof");
    const std::string present = "HardwareStatus = 3;";
    for (auto at = odd.find(present); at != std::string::npos; at = odd.find(present, at)) {
        odd.replace(at, present.size(), "HardwareStatus = 77;");
    }
    WriteFile(InFolder("odd.mof"), odd);
    const auto list = [&](std::vector<std::string> line) {
        line.insert(line.begin(), {"adapter", "list", "--columns", "state", "--no-headings", "--journal"});
        return RunCommandLine(line).out;
    };
    const auto count = [](const std::string& out, const std::string& part) {
        std::size_t found = 0;
        for (auto at = out.find(part); at != std::string::npos; at = out.find(part, at + 1)) {
            ++found;
        }
        return found;
    };
    const std::string fetch = "GetObject Zorel_PhysicalEthernetAdapter, ";
    const std::string asked = list({"--simulate", Utf8(InFolder("odd.mof"))});
    EXPECT_GT(count(asked, "code 77 (unknown)\n"), 1U) << asked;
    EXPECT_EQ(count(asked, fetch), 1U) << asked;
    EXPECT_EQ(count(list({"--simulate", TestMachine("golden.mof")}), fetch), 0U)
        << "numbers that have words cost no call";
}

TEST_F(OneAdapterTest, Capabilities_MatchTheGoldenFileAndHaveAWordEach) {
    EXPECT_EQ(Run({"adapter", "capabilities", kFirst, "--json"}).out, Golden("adapter-capabilities.json"));
    const Outcome text = Run({"adapter", "capabilities", kFirst});
    EXPECT_TRUE(text.out.starts_with("CODE  CAPABILITY\n3     Teaming\n4     Fault tolerance team\n"))
        << text.out;
    std::set<std::string> words;
    for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
        const std::string word = quilletctl::InWords(static_cast<quillet::Capability>(flag.m_lCode));
        EXPECT_NE(word, "code " + std::to_string(flag.m_lCode));
        EXPECT_TRUE(words.insert(word).second) << word;
    }
}

TEST_F(OneAdapterTest, Capabilities_NoArray_IsTheLibrarysCode) {
    const std::string machine = MachineFile(
        R"(instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "one"; OriginalDisplayName = "model"; };)");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "adapter", "capabilities", "one"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "quilletctl: could not read the capabilities of one: 0x80041001 WBEM_E_FAILED\n");
}

TEST_F(OneAdapterTest, Ports_ListTheTeamedPortsOfTheBoard) {
    const std::string port = "Zorel Quad Port Gigabit Server Adapter #2";
    EXPECT_EQ(Run({"adapter", "ports", port, "--json"}).out, Golden("adapter-ports.json"));
    const Outcome text = Run({"adapter", "ports", port});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(std::count(text.out.begin(), text.out.end(), '\n'), 3) << text.out;
    EXPECT_EQ(Run({"adapter", "ports", kFirst}).out, "no port of this board is in a team\n");
    EXPECT_EQ(RunJson({"adapter", "ports", kFirst}).at("ports"), Json::array());
}

TEST_F(OneAdapterTest, Identify_AsksForSoManySeconds) {
    EXPECT_EQ(
        Run({"adapter", "identify", kFirst}).out,
        "Zorel 10G Dual Port Server Adapter was asked to blink for 10 seconds; it does not tell whether "
        "it does\n");
    EXPECT_EQ(Run({"adapter", "identify", kFirst, "--seconds", "5", "--json"}).out,
              Golden("adapter-identify.json"));
    const Outcome outcome = Run({"adapter", "identify", kFirst, "--seconds", "1", "--journal"});
    EXPECT_TRUE(
        outcome.out.starts_with("Zorel 10G Dual Port Server Adapter was asked to blink for 1 second; "));
    EXPECT_NE(outcome.out.find(", IdentifyAdapter(nSeconds=1) -> 0x00000000\n"), std::string::npos)
        << outcome.out;
    EXPECT_EQ(Run({"adapter", "identify", kFirst, "--seconds", "0"}).status, 2);
}

} // namespace
