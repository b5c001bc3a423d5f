// quilletctl report: what it writes and refuses. How the page looks is tried in a browser.
#include "support/RunCommandLine.h"

#include <commands/report/Markup.h>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using quilletctl::Escaped;
using quilletctl::EstimatedWidth;
using quilletctl::ShortenedTo;
using testing::HasSubstr;
using testing::Not;

TEST(MarkupTest, Texts_HoldNoMarkupAndNoControls) {
    EXPECT_EQ(Escaped("<a href='x' b=\"y\">&amp;"), "&lt;a href=&#39;x&#39; b=&quot;y&quot;&gt;&amp;amp;");
    EXPECT_EQ(Escaped("a\x1b[0m\nb\x7f"), "a\xEF\xBF\xBD[0m\xEF\xBF\xBD"
                                          "b\xEF\xBF\xBD");
    EXPECT_EQ(Escaped("\xEF\xBF\xBE\xEF\xBF\xBF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Escaped("\xff"), "\xEF\xBF\xBD");
    EXPECT_LT(Escaped(std::string(1'000'000, 'a')).size(), 500U);
}

TEST(MarkupTest, ShortenedTexts_FitAndKeepTheirEnds) {
    EXPECT_EQ(ShortenedTo("Port 1", 1000), "Port 1");
    const std::string shortened = ShortenedTo("Zorel Quad Port Gigabit Server Adapter #2", 1200);
    EXPECT_LE(EstimatedWidth(shortened), 1200);
    EXPECT_THAT(shortened, testing::StartsWith("Zorel"));
    EXPECT_THAT(shortened, testing::EndsWith("#2"));
    EXPECT_LE(EstimatedWidth(ShortenedTo(std::string(500, 'W'), 1200)), 1200);
}

class ReportTest : public CommandLine {};

TEST_F(ReportTest, Page_TellsWhatThereIs) {
    const Outcome run = RunCommandLine({"--simulate", "report", Utf8(InFolder("a.html")), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    const Json answer = Json::parse(run.out);
    EXPECT_EQ(answer["adapters"], 10);
    EXPECT_EQ(answer["teams"], 1);
    EXPECT_GT(answer["differences"], 5);
    EXPECT_EQ(answer["untold"], Json::array());
    const std::string page = ReadFile(InFolder("a.html"));
    for (const char* part :
         {"TEAM : Zürich", ">340<", "Storage Server", "Slot 4, port 1", "02-00-5E-00-10-01", "<svg "}) {
        EXPECT_THAT(page, HasSubstr(part));
    }
}

TEST_F(ReportTest, WhatIsNotTold_IsSaidAndStopsNothing) {
    const Outcome run = RunCommandLine({"--simulate", "--fault", "ExecMethod:GetKavlorWarnings:1+=0x80041003",
                                        "--fault", "GetObject:Zorel_BootAgent:1+=0x80041003", "report",
                                        Utf8(InFolder("a.html")), "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_GT(Json::parse(run.out)["untold"].size(), 1U);
    const std::string page = ReadFile(InFolder("a.html"));
    EXPECT_THAT(
        page, HasSubstr("The provider does not tell the pending warnings of the machine: access is denied"));
    EXPECT_THAT(page, Not(HasSubstr("None is pending.")));
}

TEST_F(ReportTest, Secrets_AreNotOnThePage) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Left"; OriginalDisplayName = "Left"; };
        instance of Zorel_LinkSecConfiguration { DeviceID = "{A}"; LinksecCredPassword = "hush"; strManualPMKey = "hush"; };
        instance of Zorel_AdapterSettingString { ParentId = "{A}"; ParentType = "NIC"; Caption = "TargetCHAPSecret";
            Description = "Target"; MiniHelp = ""; ExposeLevel = 1; Writable = TRUE; Grouped = FALSE; CurrentValue = "hush";
            DefaultValue = ""; MaxLength = 20; };)");
    ASSERT_EQ(RunCommandLine({"--simulate", machine, "report", Utf8(InFolder("a.html"))}).status, 0);
    EXPECT_THAT(ReadFile(InFolder("a.html")), testing::AllOf(Not(HasSubstr("hush")), HasSubstr(">***<")));
}

TEST_F(ReportTest, FilesThatAreNeitherPageNorDrawing_AreRefused) {
    for (const char* name : {"a.pdf", "a", ".html", "html", ""}) {
        const Outcome run = RunCommandLine({"--simulate", "report", name});
        EXPECT_EQ(run.status, 2) << name;
        EXPECT_THAT(run.err, HasSubstr("must end in .html (a page) or .svg")) << name;
    }
    WriteFile(InFolder("a.svg"), "mine");
    EXPECT_EQ(RunCommandLine({"--simulate", "report", Utf8(InFolder("a.svg"))}).status, 2);
    EXPECT_EQ(ReadFile(InFolder("a.svg")), "mine");
    EXPECT_EQ(RunCommandLine({"--simulate", "report", Utf8(InFolder("a.svg")), "--yes"}).status, 0);
    EXPECT_THAT(ReadFile(InFolder("a.svg")), testing::StartsWith("<svg "));
}

} // namespace
