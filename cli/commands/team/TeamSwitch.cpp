// quilletctl team switch-test: whether the switch is set up for a team.
#include "commands/team/TeamCommand.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>

namespace quilletctl {

namespace {

class TestSwitch final : public TeamCommand {
  public:
    void Declare(Syntax& syntax) override {
        TeamCommand::Declare(syntax);
        syntax.Number("--timeout", m_seconds, 1, 3600, "For how many seconds to wait for the result");
    }

  private:
    struct Result {
        CTeam::SwitchCmdStatus status{};
        std::vector<std::wstring> causes, solutions;
        std::vector<int> causeIds, solutionIds;
    };

    ExitStatus RunFor(const CTeam& team, Invocation& run) override {
        CQuillet& session = run.Session();
        if (session.TestSwitchSupport(team.m_eTeamMode) == 0) {
            throw UsageError(Called(team) + ": " + TeamModeText(team.m_eTeamMode) +
                             " asks nothing of the switch, so there is nothing to test");
        }
        run.HoldInterrupts();
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(m_seconds);
        Result result = Send(session, team, CTeam::SwitchCmdStart);
        while (result.status == CTeam::SwitchCmdStatusRunning) {
            if (!run.MayGoOn()) {
                result = Send(session, team, CTeam::SwitchCmdStop);
                break;
            }
            if (std::chrono::steady_clock::now() >= until) {
                Send(session, team, CTeam::SwitchCmdStop);
                throw Refusal("test the switch of " + Called(team) + " in time",
                              static_cast<HRESULT>(WBEM_E_TIMED_OUT));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            result = Send(session, team, CTeam::SwitchCmdQuery);
        }
        Print(run, team, result);
        return result.status == CTeam::SwitchCmdStatusPassed ? ExitStatus::Done : ExitStatus::Findings;
    }

    static Result Send(CQuillet& session, const CTeam& team, CTeam::SwitchCmd command) {
        Result result;
        ThrowIfRefused(session.TestSwitchConfiguration(team.m_wsTeamID, command, result.status, result.causes,
                                                       result.solutions, result.causeIds, result.solutionIds),
                       "test the switch of " + Called(team));
        return result;
    }

    /// The text or number at a place; lists of the provider's need not be of one length.
    template <class Value>
    static Value At(const std::vector<Value>& values, std::size_t place) {
        return place < values.size() ? values[place] : Value();
    }

    static void Print(Invocation& run, const CTeam& team, const Result& result) {
        const std::string status = NumberInWords(result.status, CTeamTexts::SwitchCmdStatus(result.status));
        const std::size_t count = std::max(result.causes.size(), result.solutions.size());
        if (run.WantsJson()) {
            Json troubles = Json::array();
            for (std::size_t i = 0; i < count; ++i) {
                troubles.push_back(Json{{"cause", ToUtf8(At(result.causes, i))},
                                        {"causeId", At(result.causeIds, i)},
                                        {"solution", ToUtf8(At(result.solutions, i))},
                                        {"solutionId", At(result.solutionIds, i)}});
            }
            run.Print(Json{{"path", ToUtf8(team.m_wsTeamID)},
                           {"status", Coded(result.status, status)},
                           {"troubles", std::move(troubles)}});
            return;
        }
        run.Out() << "the test of the switch: " << status << '\n';
        for (std::size_t i = 0; i < count; ++i) {
            run.Out() << Printable(ToUtf8(At(result.causes, i))) << '\n'
                      << "  " << Printable(ToUtf8(At(result.solutions, i))) << '\n';
        }
    }

    std::uint32_t m_seconds = 60;
};

} // namespace

void AddTeamSwitch(CommandTree::Noun& team) {
    team.Verb("switch-test", "Test whether the switch is set up for a team", std::make_unique<TestSwitch>());
}

} // namespace quilletctl
