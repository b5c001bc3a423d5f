// A session with a simulated machine, and documents for it.
#pragma once

#include <quillet-state/State.h>

#include <quillet-simulator/Machine.h>
#include <quillet/client/Session.h>
#include <quillet/client/Text.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::tests {

/// The machine that ships with the simulator, and a session with it.
class StateFixture : public testing::Test {
  protected:
    StateFixture() : session(std::in_place) {}

    void TearDown() override {
        session.reset();
        registration.reset();
        EXPECT_EQ(simulator::Machine::LiveObjects(), 0);
    }

    /// Brings the machine to the state of a document, by all checks.
    state::Outcome Apply(std::string_view text, const state::ApplyOptions& options = {}) {
        const state::Document document = state::ReadDocument(text);
        const state::Plan plan = state::MakePlan(*session, document);
        EXPECT_THAT(plan.problems, testing::IsEmpty());
        return state::Apply(*session, document, plan, options);
    }
    /// What stands between the machine and a document, in words.
    std::vector<std::string> Words(std::string_view text) {
        std::vector<std::string> words;
        for (const state::Step& step : state::MakePlan(*session, state::ReadDocument(text)).steps) {
            words.push_back(step.words);
        }
        return words;
    }
    std::vector<std::string> Problems(std::string_view text) {
        return state::MakePlan(*session, state::ReadDocument(text)).problems;
    }
    /// The whole machine as a document.
    state::Json Whole() { return state::Show(*session).document; }
    /// Whether a call changes something.
    static bool IsWrite(const simulator::JournalEntry& call) {
        static constexpr std::string_view kChanging[] = {"CreateTeam", "CreateVLAN", "SetiSCSI_Status"};
        const std::string method = ToUtf8(call.method);
        const bool isSetter =
            method.starts_with("Set") ||
            std::find(std::begin(kChanging), std::end(kChanging), method) != std::end(kChanging);
        return call.operation == simulator::Operation::PutInstance ||
               call.operation == simulator::Operation::DeleteInstance ||
               (call.operation == simulator::Operation::ExecMethod && isSetter);
    }

    const std::shared_ptr<simulator::Machine> machine = simulator::Machine::BuiltIn();

    const ComUsage com;
    std::optional<simulator::Registration> registration{std::in_place, machine};
    std::optional<Session> session;
};

} // namespace quillet::tests
