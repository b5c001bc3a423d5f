// Documents that nobody wrote: apply, show, compare; apply again; fail somewhere and go back.
#include "StateTest.h"

#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

namespace quillet::tests {

namespace {

using state::Json;

unsigned FromEnvironment(const char* name, unsigned byDefault) {
    const char* text = std::getenv(name);
    return text == nullptr ? byDefault : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

class RandomDocumentsTest : public StateFixture {
  protected:
    RandomDocumentsTest() {
        for (const Adapter& adapter : session->Adapters()) {
            m_names.push_back(ToUtf8(adapter.name));
            m_settings.push_back(session->Settings(adapter.id));
        }
        m_shown = Whole().at("adapters");
    }

    unsigned Below(std::size_t count) {
        return static_cast<unsigned>(m_random() % std::max<std::size_t>(1, count));
    }
    bool Chance(unsigned outOf) { return Below(outOf) == 0; }

    /// A value that a setting can have.
    Json ValueFor(const Setting& setting) {
        struct Maker {
            RandomDocumentsTest& test;
            Json operator()(const NumberValue& value) const {
                const auto steps =
                    static_cast<std::size_t>((value.maximum - value.minimum) / std::max(1, value.step));
                return value.minimum +
                       static_cast<std::int32_t>(test.Below(steps + 1)) * std::max(1, value.step);
            }
            Json operator()(const ChoiceValue& value) const {
                const Choice& choice = value.choices.at(test.Below(value.choices.size()));
                return ToUtf8(test.Chance(2) && !choice.text.empty() ? choice.text : choice.value);
            }
            Json operator()(const SliderValue& value) const {
                return value.possible.at(test.Below(value.possible.size()));
            }
            Json operator()(const SelectionValue& value) const {
                Json chosen = Json::array();
                for (const Choice& choice : value.choices) {
                    if (test.Chance(2)) {
                        chosen.push_back(ToUtf8(choice.text));
                    }
                }
                return chosen;
            }
            Json operator()(const TextValue&) const { return test.Chance(2) ? "" : "02005e0000AB"; }
            Json operator()(const TextListValue&) const { return Json{"01-00-5E-00-00-01"}; }
        };
        return std::visit(Maker{*this}, setting.value);
    }

    Json RandomVlans() {
        Json vlans = Json::array();
        for (std::int32_t id = Chance(4) ? 0 : 1 + static_cast<std::int32_t>(Below(4)); id < 8;
             id += 1 + static_cast<std::int32_t>(Below(4))) {
            if (Chance(3)) {
                vlans.push_back(Json{{"id", id}, {"state", "absent"}});
            } else {
                vlans.push_back(Json{
                    {"id", id},
                    {"name", std::string("V") + std::to_string(id + static_cast<std::int32_t>(Below(2)))}});
            }
        }
        return vlans;
    }

    Json RandomDocument() {
        Json adapters = Json::array();
        Json teams = Json::array();
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            if (!Chance(4)) {
                continue;
            }
            Json adapter{{"name", m_names[i]}};
            for (const Setting& setting : m_settings[i]) {
                if (setting.writable && Chance(6)) {
                    adapter["settings"][ToUtf8(setting.keyword)] = ValueFor(setting);
                }
            }
            if (Chance(3) && m_shown.at(i).contains("wakeOnLan")) {
                adapter["wakeOnLan"] = {{"magicPacket", Chance(2)}};
            }
            if (Chance(3)) {
                adapter["vlans"] = RandomVlans();
            }
            if (Chance(5) && m_shown.at(i).contains("iscsi")) {
                adapter["iscsi"] = Chance(2) ? "primary" : Chance(2) ? "secondary" : "off";
            }
            adapters.push_back(std::move(adapter));
        }
        // An adapter has one team or none; the teams that nobody names go, and their members are free.
        const bool withTeams = Chance(2);
        std::map<std::string, Json> members;
        for (const std::string& name : m_names) {
            if (withTeams && Chance(2)) {
                members[Chance(2) ? "One" : "Two"].push_back(name);
                for (Json& each : adapters) {
                    if (each.at("name") == name) {
                        each.erase("vlans");
                    }
                }
            }
        }
        for (auto& [name, list] : members) {
            Json team{{"name", name}, {"members", list}};
            if (Chance(2)) {
                team["mode"] = Below(2);
            }
            if (Chance(2)) {
                team["primary"] = list.at(Below(list.size()));
            }
            if (Chance(2)) {
                team["vlans"] = RandomVlans();
            }
            teams.push_back(std::move(team));
        }
        Json document = Json::object();
        if (!adapters.empty()) {
            document["adapters"] = std::move(adapters);
        }
        if (!teams.empty()) {
            document["teams"] = std::move(teams);
        }
        if (withTeams || Chance(5)) {
            document["exclusive"] = true;
        }
        return document;
    }

    /// Lets a write fail in a while.
    void BreakSomething() {
        simulator::FaultRule rule;
        rule.operation =
            Chance(3) ? simulator::Operation::PutInstance
                      : (Chance(2) ? simulator::Operation::DeleteInstance : simulator::Operation::ExecMethod);
        rule.nth = 1 + Below(rule.operation == simulator::Operation::ExecMethod ? 60 : 8);
        machine->Rules().Add(rule);
    }

  public:
    std::mt19937 m_random{FromEnvironment("QUILLET_RANDOM_SEED", 1)};
    std::vector<std::string> m_names;
    Json m_shown; ///< the adapters as they were at first
    std::vector<std::vector<Setting>> m_settings;
};

TEST_F(RandomDocumentsTest, ApplyShowCompareAndGoBack) {
    const unsigned rounds = FromEnvironment("QUILLET_RANDOM_DOCUMENTS", 60);
    unsigned applied = 0;
    unsigned wentBack = 0;
    for (unsigned round = 0; round < rounds; ++round) {
        const Json json = RandomDocument();
        SCOPED_TRACE(json.dump());
        const state::Document document = state::DocumentOf(json);
        const state::Plan plan = state::MakePlan(*session, document);
        if (!plan.problems.empty()) {
            continue; // most of what chance writes is refused
        }
        const Json before = Whole();
        if (Chance(3)) {
            BreakSomething();
        }
        state::Outcome outcome;
        try {
            outcome = state::Apply(*session, document, plan);
        } catch (const Error&) { // the machine could not be read before: nothing was changed
            machine->Rules().Clear();
            ++wentBack;
            ASSERT_EQ(nlohmann::json(Whole()), nlohmann::json(before));
            continue;
        }
        machine->Rules().Clear();
        if (!outcome.IsReached()) {
            ++wentBack;
            EXPECT_TRUE(outcome.wentBack);
            const bool isRead = std::none_of(
                outcome.notRestored.begin(), outcome.notRestored.end(), [](const std::string& each) {
                    return each.starts_with("the machine could not be read again"); // by the same fault
                });
            if (isRead) {
                EXPECT_EQ(outcome.notRestored.empty(), nlohmann::json(Whole()) == nlohmann::json(before))
                    << outcome.failure.value_or("") << testing::PrintToString(outcome.differences)
                    << testing::PrintToString(outcome.notRestored) << nlohmann::json::diff(before, Whole());
            }
            if (testing::Test::HasFailure()) {
                break;
            }
            continue;
        }
        ++applied;
        // The order of the keys says nothing.
        EXPECT_EQ(nlohmann::json(state::ShowLike(*session, document)), nlohmann::json(json));
        const state::Plan again = state::MakePlan(*session, document);
        EXPECT_TRUE(again.steps.empty());
        EXPECT_TRUE(again.problems.empty());
        if (testing::Test::HasFailure()) {
            break;
        }
    }
    std::cout << rounds << " documents: " << applied << " applied, " << wentBack << " taken back, "
              << rounds - applied - wentBack << " refused by the checks\n";
    EXPECT_GE(applied, rounds / 20);
}

} // namespace

} // namespace quillet::tests
