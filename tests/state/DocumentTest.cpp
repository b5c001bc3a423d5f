// Reading documents: everything that is wrong with one, at its place.
#include <quillet-state/Document.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using state::Document;
using state::DocumentError;
using state::ReadDocument;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> ProblemsOf(std::string_view text) {
    try {
        ReadDocument(text);
    } catch (const DocumentError& error) {
        return error.Problems();
    }
    return {};
}

TEST(DocumentTest, All_OfIt) {
    const Document document = ReadDocument(R"({
        "$schema": "document.schema.json",
        "adapters": [
            {"name": "A", "settings": {"*JumboPacket": 9014, "X": "on", "Y": ["a", 2]}, "profile": 2,
             "power": {"mode": 1, "aspm": true}, "wakeOnLan": {"link": false}, "iscsi": "primary",
             "vlans": [{"id": 0, "name": "U"}, {"id": 5, "state": "absent"}]},
            {"slot": 2, "port": "1"}, {"mac": "00:11:22:33:44:55"}, {"match": "Z*"}],
        "teams": [{"name": "T", "mode": 1, "members": ["A", {"slot": "Slot 2", "port": 1}], "primary": "A",
                   "secondary": null, "multiVendor": true, "vlans": []},
                  {"name": "Gone", "state": "absent"}],
        "exclusive": true})");
    ASSERT_EQ(document.adapters.size(), 4U);
    EXPECT_EQ(document.adapters[0].vlans->at(1).isAbsent, true);
    EXPECT_EQ(document.adapters[1].selector.slot, "2");
    EXPECT_EQ(document.adapters[1].selector.port, "1");
    EXPECT_TRUE(document.adapters[3].selector.IsPattern());
    EXPECT_EQ(document.teams[0].members->at(1).port, "1");
    EXPECT_TRUE(document.teams[0].secondary->IsEmpty());
    EXPECT_FALSE(document.teams[1].primary.has_value());
    EXPECT_TRUE(document.isExclusive);
}

TEST(DocumentTest, AllMistakes_AreToldAtOnce) {
    EXPECT_THAT(
        ProblemsOf(R"({"adapters": [{"name": "A", "mac": "00:11", "colour": 1, "iscsi": "tertiary",
                                     "power": {"mode": 3, "aspm": 1, "x": true},
                                     "settings": {"J": 1.5, "K": {"a": 1}, "L": [[1]]},
                                     "vlans": [{"id": 4095, "name": ""}, {"name": "x"}, {"id": 5}, {"id": 5}]},
                                    {"port": 1}, {"mac": "no"}],
                       "teams": [{"state": "gone", "mode": "fast"}, 7], "exclusive": "yes"})"),
        ElementsAre(
            "adapters[0]: there is no key \"colour\"",
            "adapters[0]: an adapter is named by one of name, mac, match, and slot, to which a port may "
            "belong",
            "adapters[0].settings.J: a whole number, a text, or a list of these is needed",
            "adapters[0].settings.K: a whole number, a text, or a list of these is needed",
            "adapters[0].settings.L: a whole number, a text, or a list of these is needed",
            "adapters[0].power.mode: a number from 0 to 2 is needed",
            "adapters[0].power.aspm: true or false is needed", "adapters[0].power.x: there is no such option",
            "adapters[0]: \"iscsi\" is \"primary\", \"secondary\" or \"off\"",
            "adapters[0].vlans[0]: \"id\" is needed: a number from 1 to 4094, or 0 for the untagged VLAN",
            "adapters[0].vlans[0].name: a text is needed",
            "adapters[0].vlans[1]: \"id\" is needed: a number from 1 to 4094, or 0 for the untagged VLAN",
            "adapters[0].vlans[1]: VLAN 0 is described twice",
            "adapters[0].vlans[3]: VLAN 5 is described twice",
            "adapters[1]: an adapter is named by one of name, mac, match, and slot, to which a port may "
            "belong",
            "adapters[2]: \"no\" is no MAC address", "teams[0]: a team needs its name",
            "teams[0].state: \"present\" or \"absent\" is needed",
            "teams[0]: no team mode is called \"fast\"", "teams[1]: an object is needed",
            "exclusive: true or false is needed"));
}

TEST(DocumentTest, NoJson_IsToldWithItsPlace) {
    EXPECT_THAT(ProblemsOf("{\"adapters\": [}"), ElementsAre("it is no JSON, at byte 15"));
    EXPECT_THAT(ProblemsOf(""), ElementsAre(HasSubstr("it is no JSON")));
    EXPECT_THAT(ProblemsOf("{\"teams\": [{\"name\": \"\xFF\"}]}"), ElementsAre(HasSubstr("it is no JSON")));
    EXPECT_THAT(ProblemsOf("[]"), ElementsAre("the document: an object is needed"));
}

TEST(DocumentTest, WhatIsSaidTwice_IsRefused) {
    EXPECT_THAT(ProblemsOf(R"({"exclusive": true, "exclusive": false})"),
                ElementsAre("the key \"exclusive\" stands twice in an object"));
}

TEST(DocumentTest, Depth_AndSize_HaveLimits) {
    EXPECT_THAT(ProblemsOf(std::string(1000000, '[')), ElementsAre("the document is nested too deeply"));
    EXPECT_THAT(ProblemsOf(std::string((16U << 20) + 1, ' ')),
                ElementsAre("the document is larger than 16 MiB"));
}

TEST(DocumentTest, Schema_IsJson) {
    EXPECT_EQ(state::Json::parse(state::DocumentSchema()).at("type"), "object");
}

} // namespace

} // namespace quillet::tests
