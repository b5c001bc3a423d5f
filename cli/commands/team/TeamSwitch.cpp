// quilletctl team switch-test: whether the switch is set up for a team.
#include "commands/team/TeamCommand.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>

namespace quilletctl {

namespace {

using quillet::SwitchCommand;
using quillet::SwitchTest;
using quillet::SwitchTestStatus;

class TestSwitch final : public TeamCommand {
  public:
    void Declare(Syntax& syntax) override {
        TeamCommand::Declare(syntax);
        syntax.Number("--timeout", m_seconds, 1, 3600, "For how many seconds to wait for the result");
    }

  private:
    ExitStatus RunFor(const quillet::Team& team, Invocation& run) override {
        quillet::Session& session = run.Session();
        if (!quillet::HasSwitchTest(team.mode)) {
            throw UsageError(Called(team) + ": " + InWords(team.mode) +
                             " asks nothing of the switch, so there is nothing to test");
        }
        run.BeginChanges({"test the switch of " + Called(team)});
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(m_seconds);
        SwitchTest test = Send(session, team, SwitchCommand::Start);
        while (test.status == SwitchTestStatus::Running) {
            if (!run.MayGoOn()) {
                test = Send(session, team, SwitchCommand::Stop);
                break;
            }
            if (std::chrono::steady_clock::now() >= until) {
                Send(session, team, SwitchCommand::Stop);
                throw Refusal("test the switch of " + Called(team) + " in time",
                              static_cast<HRESULT>(WBEM_E_TIMED_OUT));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            test = Send(session, team, SwitchCommand::Query);
        }
        Print(run, team, test);
        return test.status == SwitchTestStatus::Passed ? ExitStatus::Done : ExitStatus::Findings;
    }

    static SwitchTest Send(quillet::Session& session, const quillet::Team& team, SwitchCommand command) {
        return Attempt("test the switch of " + Called(team),
                       [&] { return session.TestSwitch(team.id, command); });
    }

    static void Print(Invocation& run, const quillet::Team& team, const SwitchTest& test) {
        if (run.WantsJson()) {
            Json troubles = Json::array();
            for (const quillet::SwitchTrouble& trouble : test.troubles) {
                troubles.push_back(Json{{"cause", ToUtf8(trouble.cause)},
                                        {"causeId", trouble.causeId},
                                        {"solution", ToUtf8(trouble.solution)},
                                        {"solutionId", trouble.solutionId}});
            }
            run.Print(Json{{"path", PathOf(team.id)},
                           {"status", Coded(test.status)},
                           {"troubles", std::move(troubles)}});
            return;
        }
        run.Out() << "the test of the switch: " << InWords(test.status) << '\n';
        for (const quillet::SwitchTrouble& trouble : test.troubles) {
            run.Out() << Printable(ToUtf8(trouble.cause)) << '\n'
                      << "  " << Printable(ToUtf8(trouble.solution)) << '\n';
        }
    }

    std::uint32_t m_seconds = 60;
};

} // namespace

void AddTeamSwitch(CommandTree::Noun& team) {
    team.Verb("switch-test", "Test whether the switch is set up for a team", std::make_unique<TestSwitch>());
}

} // namespace quilletctl
