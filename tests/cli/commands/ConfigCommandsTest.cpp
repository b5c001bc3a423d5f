// quilletctl config: documents in, documents out.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <vector>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

class ConfigCommandsTest : public CommandLine {
  protected:
    /// Runs a command on a machine that stays as the command leaves it.
    Outcome Run(std::vector<std::string> arguments, Screen screen = {}) {
        arguments.insert(arguments.begin(), "config");
        arguments.insert(arguments.end(), {"--state", Utf8(InFolder("lab.mof"))});
        return RunCommandLine(arguments, std::move(screen));
    }
    Outcome Run(const std::string& verb, const Json& document, std::vector<std::string> more = {}) {
        more.insert(more.begin(), {verb, Written(document)});
        return Run(std::move(more));
    }
    Json Answer(const Outcome& outcome, int status) {
        EXPECT_EQ(outcome.status, status) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    std::string Written(const Json& document) const {
        WriteFile(InFolder("wanted.json"), document.dump());
        return Utf8(InFolder("wanted.json"));
    }

    const Json m_small =
        Json::parse(R"({"adapters": [{"slot": 2, "port": 1, "settings": {"*JumboPacket": 4088},
                                                       "vlans": [{"id": 7, "name": "Lab"}]}]})");
    const Json m_deletion = Json::parse(R"({"teams": [{"name": "TEAM : Zürich", "state": "absent"}]})");
    const Json m_wrong = Json::parse(R"({"adapters": [{"name": "nobody"}]})");
};

TEST_F(ConfigCommandsTest, WhatIsShown_AppliedElsewhere_MakesTheSameMachine) {
    ASSERT_EQ(Run("apply", m_small).status, 0);
    const Json shown = Answer(Run({"show"}), 0);
    std::filesystem::remove(InFolder("lab.mof"));
    EXPECT_EQ(Run("diff", shown).status, 3);
    EXPECT_EQ(Run("apply", shown, {"--yes"}).status, 0);
    EXPECT_EQ(Answer(Run({"show"}), 0), shown);
    EXPECT_EQ(Run("diff", shown).out, "nothing differs\n");
}

TEST_F(ConfigCommandsTest, Diff_HasWhatIsAndWhatIsWanted) {
    const Outcome outcome = Run("diff", m_small);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "- adapter Zorel 10G Dual Port Server Adapter, *JumboPacket: 9014\n"
                           "+ adapter Zorel 10G Dual Port Server Adapter, *JumboPacket: 4088\n"
                           "+ adapter Zorel 10G Dual Port Server Adapter, VLAN 7: Lab\n");
    const Json answer = Answer(Run("diff", m_small, {"--json"}), 3);
    EXPECT_EQ(answer.at("changes").at(0).at("now"), 9014);
    EXPECT_EQ(answer.at("changes").at(1).at("now"), nullptr);
    EXPECT_THAT(Run({"diff", Written(m_small)}, {.isTerminal = true}).out, HasSubstr("\x1b[31m- adapter"));
    EXPECT_FALSE(std::filesystem::exists(InFolder("lab.mof")));
}

TEST_F(ConfigCommandsTest, Apply_TellsTheSteps) {
    const Outcome outcome = Run("apply", m_small);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "set *JumboPacket of adapter Zorel 10G Dual Port Server Adapter to 4088 Bytes (4088), now "
              "9014 Bytes (9014)\n"
              "add VLAN 7 \"Lab\" to adapter Zorel 10G Dual Port Server Adapter\n"
              "the machine is as the document says\n"
              "no restart is needed\n");
    EXPECT_EQ(Run("apply", m_small).out, "nothing differs\nno restart is needed\n");
}

TEST_F(ConfigCommandsTest, WhatCannotBeUndone_IsSaidAndAsked) {
    const Outcome unasked = Run("apply", m_deletion);
    EXPECT_EQ(unasked.status, 2);
    EXPECT_THAT(unasked.out, HasSubstr("cannot be undone: team TEAM : Zürich"));
    const Outcome refused = Run({"apply", Written(m_deletion)}, {.isTerminal = true, .answers = "n\n"});
    EXPECT_EQ(refused.status, 0);
    EXPECT_THAT(refused.out, HasSubstr("nothing was changed"));
    const Outcome agreed = Run({"apply", Written(m_deletion)}, {.isTerminal = true, .answers = "y\n"});
    EXPECT_THAT(agreed.out, HasSubstr("the machine is as the document says"));
}

TEST_F(ConfigCommandsTest, AProblem_ChangesNothing) {
    const Outcome outcome = Run("apply", m_wrong);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "problem: adapters: there is no adapter \"nobody\"\nnothing was changed\n");
    EXPECT_EQ(Run("validate", m_wrong).out, "adapters: there is no adapter \"nobody\"\n");
    EXPECT_EQ(Run("validate", m_small).out, "the document fits this machine\n");
    EXPECT_EQ(Answer(Run("apply", m_wrong, {"--json"}), 3).at("problems").size(), 1U);
}

TEST_F(ConfigCommandsTest, NoDocument_IsBadUsage) {
    WriteFile(InFolder("wanted.json"), "{\"adapters\": 1");
    EXPECT_THAT(Run({"apply", Utf8(InFolder("wanted.json"))}).err,
                HasSubstr("wanted.json: it is no JSON, at byte 15"));
    EXPECT_EQ(Run({"diff", Utf8(InFolder("none.json"))}).status, 2);
    const Outcome outcome = Run("validate", Json{{"teams", 7}, {"adapter", Json::array()}});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr("the document: there is no key \"adapter\""));
    EXPECT_THAT(outcome.err, HasSubstr("teams: a list is needed"));
}

TEST_F(ConfigCommandsTest, AFailure_IsTakenBack) {
    const std::string machine = Utf8(InFolder("faulty.mof"));
    WriteFile(InFolder("faulty.mof"), ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                                          R"(instance of QuilletSimulator_Fault {
                                               Id = 1; Operation = "ExecMethod"; MethodName = "CreateVLAN"; };)");
    const Json answer = Answer(Run("apply", m_small, {"--json", "--simulate", machine}), 1);
    EXPECT_EQ(answer.at("done"), 1);
    EXPECT_THAT(answer.at("failure").get<std::string>(), HasSubstr("could not add VLAN 7"));
    EXPECT_EQ(answer.at("code"), "0x80041001 WBEM_E_FAILED");
    EXPECT_EQ(answer.at("wentBack"), true);
    EXPECT_EQ(answer.at("notRestored"), Json::array());
    std::filesystem::remove(InFolder("lab.mof"));
    const Outcome left = Run("apply", m_small, {"--no-rollback", "--simulate", machine});
    EXPECT_EQ(left.status, 1);
    EXPECT_THAT(left.out, HasSubstr("1 of 2 steps were made, and stay"));
}

TEST_F(ConfigCommandsTest, WithoutAYes_ItGoesBack) {
    const Outcome no =
        Run({"apply", Written(m_small), "--confirm", "1"}, {.isTerminal = true, .answers = "no\n"});
    EXPECT_EQ(no.status, 1);
    EXPECT_THAT(no.out, HasSubstr("everything is as it was before"));
    EXPECT_THAT(no.err, HasSubstr("nobody confirmed the changes, so they were taken back"));
    EXPECT_EQ(Run("diff", m_small).status, 3);
    EXPECT_EQ(
        Run({"apply", Written(m_small), "--confirm", "60"}, {.isTerminal = true, .answers = "yes\n"}).status,
        0);
    EXPECT_EQ(Run("diff", m_small).status, 0);
}

TEST_F(ConfigCommandsTest, Show_Chooses) {
    const Json shown = Answer(Run({"show", "Zorel 10G*", "--changed", "--by", "slot"}), 0);
    EXPECT_EQ(shown.at("adapters").size(), 2U);
    EXPECT_EQ(shown.at("adapters").at(0).at("slot"), "Slot 2");
    EXPECT_EQ(shown.at("teams").size(), 0U);
    EXPECT_EQ(Answer(Run({"show", "--like", Written(m_small)}), 0)
                  .at("adapters")
                  .at(0)
                  .at("settings")
                  .at("*JumboPacket"),
              9014);
    EXPECT_EQ(Run({"show", "--like", Written(m_small), "--changed"}).status, 2);
    EXPECT_EQ(Run({"show", "--like", Written(m_wrong)}).status, 2);
}

TEST_F(ConfigCommandsTest, Schema_IsThatOfTheDocuments) {
    const Outcome outcome = RunCommandLine({"config", "schema"});
    EXPECT_EQ(Json::parse(outcome.out),
              Json::parse(ReadFile(QUILLET_SOURCE_DIR "/state/document.schema.json")));
    EXPECT_EQ(outcome.err, "");
}

} // namespace
