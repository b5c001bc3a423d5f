// quilletctl linksec: what it shows and changes, where its secrets come from, and that they go nowhere.
#include "support/Descriptor.h"
#include "support/LinksecMachine.h"
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

class LinksecTest : public CommandLine {
  protected:
    LinksecTest() : m_state(Utf8(InFolder("lab.mof"))) {
        WriteFile(InFolder("lab.mof"),
                  ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/empty.mof") + kLinksecMachine);
    }
    /// Runs a verb on the machine, which keeps what is changed. Nothing that it writes may be a secret.
    Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--state", m_state, "linksec"});
        Outcome outcome = RunCommandLine(arguments);
        EXPECT_EQ(outcome.out.find("CANARY"), std::string::npos) << outcome.out;
        EXPECT_EQ(outcome.err.find("CANARY"), std::string::npos) << outcome.err;
        return outcome;
    }
    /// The same, with lines to read secrets from.
    Outcome RunWith(const std::string& secrets, std::vector<std::string> arguments) {
        const Descriptor descriptor(secrets);
        arguments.insert(arguments.end(), {"--secret-fd", descriptor.Number()});
        return Run(std::move(arguments));
    }
    Json RunJson(std::vector<std::string> arguments) {
        arguments.push_back("--json");
        const Outcome outcome = Run(std::move(arguments));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    /// Whether the machine has this value.
    bool Has(const std::string& text) {
        return ReadFile(InFolder("lab.mof")).find(text) != std::string::npos;
    }

  private:
    std::string m_state;
};

TEST_F(LinksecTest, Show_TellsEverythingButTheSecrets) {
    const Outcome outcome = Run({"show", "A"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    for (const char* line :
         {"Outer EAP method", "host.domain", "authority", "saved.domain", "1, 2", "3, 4", "***"}) {
        EXPECT_NE(outcome.out.find(line), std::string::npos) << line << "\n" << outcome.out;
    }
    const Json json = RunJson({"show", "A"});
    EXPECT_EQ(json.at("authentication"), (Json{{"outerEap", 2},
                                               {"outerEapText", "code 2 (unknown)"},
                                               {"innerEap", 3},
                                               {"innerEapText", "code 3 (unknown)"},
                                               {"userName", "user"},
                                               {"password", "***"},
                                               {"machineDomainName", "host.domain"},
                                               {"machineCredentials", true},
                                               {"windowsCredentials", 1},
                                               {"windowsCredentialsText", "yes"},
                                               {"autoPac", true},
                                               {"pacAuthority", "authority"},
                                               {"keyType", 4},
                                               {"keyTypeText", "code 4 (unknown)"},
                                               {"randomMac", false}}));
    EXPECT_EQ(json.at("keys").dump(),
              R"({"outgoing":{"key":"***","associationNumbers":[1,2],"channelIdentifier":"tx",)"
              R"("identifierInFrames":true},"incoming":{"key":"***","associationNumbers":[3,4],)"
              R"("channelIdentifier":"rx"},"encryption":true})");
    EXPECT_EQ(json.at("savedCredentials"), (Json{{"userName", "saved"},
                                                 {"password", "***"},
                                                 {"machineDomainName", "saved.domain"},
                                                 {"machineCredentials", true}}));
}

TEST_F(LinksecTest, Show_OfAnAdapterWithoutIt_IsRefused) {
    const Outcome outcome = Run({"show", "B"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "quilletctl: could not read the authentication of B: this is not supported: "
                           "0x8004100C WBEM_E_NOT_SUPPORTED\n");
}

TEST_F(LinksecTest, SetKeys_ReadsTwoLinesAndKeepsWhatIsNotNamed) {
    const Outcome outcome =
        RunWith("CANARY-new-tx\nCANARY-new-rx\n", {"set-keys", "A", "--tx-sci", "new", "--rx-number2", "-9",
                                                   "--encryption", "off", "--reload", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.starts_with("keys set; no restart is needed\n")) << outcome.out;
    EXPECT_NE(outcome.out.find("SetLinksecManualCfgKeys(strTXSAKey=***, nTXAssocNum1=1, nTXAssocNum2=2, "
                               "bIncludeSCIOnTX=true, strTXSCI=\"new\", strRXSAKey=***, nRXAssocNum1=3, "
                               "nRXAssocNum2=-9, strRXSCI=\"rx\", bUseEncryption=false, bDriverReload=true)"),
              std::string::npos)
        << outcome.out;
    EXPECT_TRUE(Has("strTXSAKey = \"CANARY-new-tx\""));
    EXPECT_TRUE(Has("strRXSAKey = \"CANARY-new-rx\""));
}

TEST_F(LinksecTest, SetKeys_ReadsOnlyTheKeysThatAreNew) {
    const Outcome incoming =
        RunWith("CANARY-new-rx\r\n", {"set-keys", "A", "--keys", "rx", "--include-sci", "off"});
    EXPECT_EQ(incoming.status, 0) << incoming.err;
    EXPECT_EQ(incoming.out, "keys set; a restart is needed\n");
    EXPECT_TRUE(Has("strTXSAKey = \"CANARY-outgoing-CANARY\""));
    EXPECT_TRUE(Has("strRXSAKey = \"CANARY-new-rx\"")) << "the carriage return belongs to the line end";
    EXPECT_TRUE(Has("bIncludeSCIOnTX = FALSE"));
    EXPECT_EQ(RunWith("CANARY-new-tx\n", {"set-keys", "A", "--keys", "tx"}).status, 0);
    EXPECT_TRUE(Has("strTXSAKey = \"CANARY-new-tx\""));
    EXPECT_TRUE(Has("strRXSAKey = \"CANARY-new-rx\""));
    EXPECT_EQ(Run({"set-keys", "A", "--keys", "none", "--rx-sci", "other"}).status, 0)
        << "nothing is asked for";
    EXPECT_TRUE(Has("strRXSCI = \"other\""));
    EXPECT_TRUE(Has("strTXSAKey = \"CANARY-new-tx\""));
}

TEST_F(LinksecTest, SetKeys_MissingLine_IsBadUsageAndChangesNothing) {
    const Outcome outcome = RunWith("CANARY-only-one", {"set-keys", "A"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("no line is left"), std::string::npos) << outcome.err;
    EXPECT_TRUE(Has("strTXSAKey = \"CANARY-outgoing-CANARY\""));
}

TEST_F(LinksecTest, SetAuth_SendsThePasswordOnlyWhenOneIsGiven) {
    EXPECT_EQ(RunJson({"set-auth",
                       "A",
                       "--outer",
                       "4",
                       "--inner",
                       "1",
                       "--user",
                       "Zoë",
                       "--auto-pac",
                       "off",
                       "--pac-authority",
                       "new",
                       "--key-type",
                       "6",
                       "--random-mac",
                       "on",
                       "--machine-credentials",
                       "off",
                       "--windows-credentials",
                       "0",
                       "--changed-credentials",
                       "2"}),
              (Json{{"restartNeeded", true}, {"took", true}, {"differences", Json::array()}}));
    const Json shown = RunJson({"show", "A"}).at("authentication");
    EXPECT_EQ(shown.at("outerEap"), 4);
    EXPECT_EQ(shown.at("innerEap"), 1);
    EXPECT_EQ(shown.at("userName"), "Zoë");
    EXPECT_EQ(shown.at("autoPac"), false);
    EXPECT_EQ(shown.at("pacAuthority"), "new");
    EXPECT_EQ(shown.at("keyType"), 6);
    EXPECT_EQ(shown.at("randomMac"), true);
    EXPECT_EQ(shown.at("machineCredentials"), false);
    EXPECT_EQ(shown.at("windowsCredentials"), 0);
    EXPECT_TRUE(Has("LinksecCredPassword = \"CANARY-password-CANARY\"")) << "it was not sent";

    const Outcome outcome = RunWith("CANARY-neues-Paßwort-東京", {"set-auth", "A", "--reload", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("LinksecCredPassword=***"), std::string::npos) << outcome.out;
    EXPECT_TRUE(Has("LinksecCredPassword = \"CANARY-neues-Paßwort-東京\""));
}

TEST_F(LinksecTest, SetAuth_OuterMethodOutOfRange_IsBadUsage) {
    EXPECT_EQ(Run({"set-auth", "A", "--outer", "5"}).status, 2);
    EXPECT_EQ(Run({"set-auth", "A", "--outer", "0"}).status, 2);
    EXPECT_TRUE(Has("OuterEAPType = 2"));
}

TEST_F(LinksecTest, ImportPac_RightAndWrongPasswords) {
    const Outcome wrong = RunWith("CANARY-wrong\n", {"import-pac", "A", "C:\\pac\\new.pac"});
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(wrong.err, "quilletctl: could not import C:\\pac\\new.pac into A: access is denied: 0x80041003 "
                         "WBEM_E_ACCESS_DENIED\n");
    const Outcome right =
        RunWith("CANARY-file-CANARY\n", {"import-pac", "A", "C:\\pac\\new.pac", "--reload"});
    EXPECT_EQ(right.status, 0) << right.err;
    EXPECT_EQ(right.out, "PAC file imported; no restart is needed\n");
    EXPECT_EQ(RunJson({"pac-show", "A", "new.pac"}).at("file"), "new.pac");
    EXPECT_EQ(RunWith("CANARY\n", {"import-pac", "A", "none.pac"}).status, 1);
}

TEST_F(LinksecTest, Pac_IsShownAndDeleted) {
    EXPECT_EQ(RunJson({"pac-show", "A", "old.pac"}), (Json{{"path", RunJson({"show", "A"}).at("path")},
                                                           {"file", "old.pac"},
                                                           {"type", 2},
                                                           {"typeText", "code 2 (unknown)"},
                                                           {"info", "info"},
                                                           {"authority", "aid"},
                                                           {"authorityInfo", "aid info"},
                                                           {"issuedTo", "iid"},
                                                           {"expiryTime", 86400}}));
    EXPECT_NE(Run({"pac-show", "A", "old.pac"}).out.find("86400"), std::string::npos);
    const Outcome deleted = Run({"pac-delete", "A", "old.pac", "--yes"});
    EXPECT_EQ(deleted.status, 0) << deleted.err;
    EXPECT_EQ(deleted.out, "PAC file deleted; no restart is needed\n");
    const Outcome gone = Run({"pac-show", "A", "old.pac"});
    EXPECT_EQ(gone.status, 1);
    EXPECT_EQ(
        gone.err,
        "quilletctl: could not read old.pac of A: there is no such object: 0x80041002 WBEM_E_NOT_FOUND\n");
    EXPECT_EQ(Run({"pac-delete", "A", "old.pac", "--yes"}).status, 1);
}

TEST_F(LinksecTest, Pmk_TellsWhetherThereIsOneAndSetsIt) {
    EXPECT_EQ(RunJson({"pmk", "A"}).at("key"), "***");
    EXPECT_NE(Run({"pmk", "A"}).out.find("***"), std::string::npos);
    EXPECT_EQ(RunWith("CANARY-new-master\n", {"pmk", "A", "--reload"}).out,
              "pairwise master key set; no restart is needed\n");
    EXPECT_TRUE(Has("strManualPMKey = \"CANARY-new-master\""));
    // The key stays when only the flag changes.
    EXPECT_EQ(Run({"pmk", "A", "--random-mac", "on"}).status, 0);
    EXPECT_TRUE(Has("strManualPMKey = \"CANARY-new-master\""));
    EXPECT_EQ(RunJson({"pmk", "A"}).at("randomMac"), true);
    EXPECT_EQ(Run({"pmk", "A", "--remove"}).status, 0);
    EXPECT_TRUE(RunJson({"pmk", "A"}).at("key").is_null());
    EXPECT_EQ(Run({"pmk", "A", "--remove", "--set"}).status, 2);
}

TEST_F(LinksecTest, Stats_AreShownLineByLine) {
    EXPECT_EQ(Run({"stats", "A"}).out, "InPktsOK 7\nOutPktsOK 8\n");
    EXPECT_EQ(RunJson({"stats", "A"}).at("log"), "InPktsOK 7\nOutPktsOK 8");
}

TEST_F(LinksecTest, Changes_AreMadeInAClientSetThatIsAlwaysClosed) {
    const Outcome outcome = RunWith("CANARY-wrong\n", {"import-pac", "A", "new.pac", "--journal"});
    EXPECT_EQ(outcome.status, 1);
    const auto begin = outcome.out.find(", BeginApply()");
    const auto import = outcome.out.find(", ImportManualPAC(PACPath=\"new.pac\", PACFilePassword=***");
    const auto apply = outcome.out.find(", Apply(ClientSetHandle=");
    EXPECT_LT(begin, import) << outcome.out;
    EXPECT_LT(import, apply) << outcome.out;
    EXPECT_NE(apply, std::string::npos) << outcome.out;
}

TEST_F(LinksecTest, Secrets_AreNeverOnTheCommandLineAndNeverShown) {
    EXPECT_EQ(Run({"show", "A", "--show-secrets"}).status, 2);
    EXPECT_EQ(Run({"set-auth", "A", "--password", "typed"}).status, 2);
    EXPECT_EQ(Run({"pmk", "A", "--set", "typed"}).status, 2);
    for (const char* verb :
         {"show", "set-keys", "set-auth", "import-pac", "pac-show", "pac-delete", "pmk", "stats"}) {
        const Outcome help = RunCommandLine({"linksec", verb, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.out.find("--show"), std::string::npos) << help.out;
    }
    EXPECT_EQ(Run({"pmk", "A", "--secret-fd", "-1"}).status, 2);
    EXPECT_EQ(Run({"pmk", "A", "--secret-fd", "stdin"}).status, 2);
    const Outcome closed = Run({"pmk", "A", "--secret-fd", "65535"});
    EXPECT_EQ(closed.status, 2);
    EXPECT_NE(closed.err.find("descriptor 65535 cannot be read"), std::string::npos) << closed.err;
    EXPECT_TRUE(Has("strManualPMKey = \"CANARY-master-CANARY\""));
}

TEST_F(LinksecTest, Secrets_OnlyTheirLinesAreTakenFromTheDescriptor) {
    Descriptor descriptor("CANARY-key\nfor somebody else\n");
    EXPECT_EQ(Run({"pmk", "A", "--secret-fd", descriptor.Number()}).status, 0);
    EXPECT_EQ(descriptor.Rest(), "for somebody else\n");
}

TEST_F(LinksecTest, Secrets_ThatAreEmptyAreAMistakeBeforeAnythingIsSent) {
    const std::vector<std::string> verbs[] = {{"set-keys", "A"},
                                              {"set-keys", "A", "--keys", "rx"},
                                              {"set-auth", "A"},
                                              {"import-pac", "A", "new.pac"},
                                              {"pmk", "A"}};
    for (const std::vector<std::string>& verb : verbs) {
        for (const char* line : {"\n", "\r\n", "\nCANARY\n"}) {
            std::vector<std::string> words = verb;
            words.emplace_back("--journal");
            const Outcome outcome = RunWith(line, words);
            EXPECT_EQ(outcome.status, 2) << verb.front();
            EXPECT_NE(outcome.err.find(" is empty\n"), std::string::npos) << outcome.err;
            EXPECT_EQ(outcome.out.find("BeginApply"), std::string::npos) << outcome.out;
        }
    }
    EXPECT_TRUE(Has("strTXSAKey = \"CANARY-outgoing-CANARY\""));
    EXPECT_TRUE(Has("strManualPMKey = \"CANARY-master-CANARY\""));
}

TEST_F(LinksecTest, Secrets_ThatAreNoTextAreAMistakeBeforeAnythingIsSent) {
    const char* const lines[] = {
        "CANARY\xC0\xAF",         // a slash, too long
        "CANARY\xE0\x80\xAF",     // the same, longer
        "CANARY\xF0\x80\x80\xAF", // and longer
        "CANARY\xED\xA0\x80",     // a surrogate
        "CANARY\xF4\x90\x80\x80", // beyond Unicode
        "CANARY\xF5\x80\x80\x80", // no such first byte
        "CANARY\xE6\x9D",         // broken off
        "CANARY\x80",             // no first byte
        "\xFF\xFE",               // the mark of another encoding
    };
    for (const char* line : lines) {
        const Outcome outcome = RunWith(line, {"pmk", "A", "--journal"});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.err, "quilletctl: a secret must be valid UTF-8\n");
        EXPECT_EQ(outcome.out.find("BeginApply"), std::string::npos) << outcome.out;
    }
    EXPECT_TRUE(Has("strManualPMKey = \"CANARY-master-CANARY\""));
    // The character that stands for broken ones is one itself, and so is the last of all.
    EXPECT_EQ(RunWith("CANARY\xEF\xBF\xBD\xF4\x8F\xBF\xBF\n", {"pmk", "A"}).status, 0);
}

TEST_F(LinksecTest, ImportPac_OfAFileWithoutPassword_AsksForNone) {
    const Outcome outcome = Run({"import-pac", "A", "/pac/old.pac", "--no-password", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("ImportManualPAC(PACPath=\"/pac/old.pac\", "), std::string::npos)
        << outcome.out;
    EXPECT_EQ(RunWith("CANARY\n", {"import-pac", "A", "old.pac", "--no-password"}).status, 2);
}

TEST_F(LinksecTest, Secrets_HaveAnEnd) {
    const Outcome longest = RunWith(std::string(4096, 'k') + "\n", {"pmk", "A"});
    EXPECT_EQ(longest.status, 0) << longest.err;
    EXPECT_TRUE(Has(std::string(4096, 'k')));
    const Outcome longer = RunWith(std::string(4097, 'l') + "\n", {"pmk", "A"});
    EXPECT_EQ(longer.status, 2);
    EXPECT_NE(longer.err.find("a secret has at most 4096 bytes"), std::string::npos) << longer.err;
    EXPECT_FALSE(Has("llll"));
}

} // namespace
