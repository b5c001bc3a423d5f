// quilletctl team modes: the modes that adapters can be teamed in.
#include "app/Answers.h"
#include "app/List.h"
#include "commands/team/TeamMembers.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

/// The modes that adapters can be teamed in, or the one that suits a team best.
class ListModes final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "adapter", m_adapters, 0, 64,
            "The adapters, by name, object ID, object path or pattern; none: all that are in no team");
        syntax.Text("--team", m_team, "TEAM", "Ask which mode suits this team best instead");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        if (m_team && !m_adapters.empty()) {
            throw UsageError("--team: not together with adapters");
        }
        return m_team ? Best(run) : Compatible(run);
    }

  private:
    ExitStatus Compatible(Invocation& run) {
        quillet::Session& session = run.Session();
        const std::vector<quillet::AdapterId> adapters =
            m_adapters.empty() ? Free(session) : IdsOf(FindAdapters(session, m_adapters));
        std::vector<quillet::OfferedTeamMode> modes;
        if (!adapters.empty()) {
            modes =
                Attempt("find the modes of the adapters", [&] { return session.CommonTeamModes(adapters); });
        }
        List list(m_options);
        for (const quillet::OfferedTeamMode& each : modes) {
            const auto number = static_cast<std::int32_t>(each.mode);
            const std::string description = ToUtf8(each.description);
            list.AddRow({std::to_string(number), InWords(each.mode), description},
                        Coded(number, description));
        }
        return list.Answer(
            run,
            [&](Json entries) {
                return Json{{"adapters", adapters.size()}, {"modes", std::move(entries)}};
            },
            "these adapters cannot be teamed in any mode");
    }

    static std::vector<quillet::AdapterId> Free(quillet::Session& session) {
        const std::vector<quillet::AdapterId> all = IdsOf(ReadAdapters(session));
        const std::vector<bool> areTeamed =
            Attempt("find the adapters that are in no team", [&] { return session.AreTeamed(all); });
        std::vector<quillet::AdapterId> free;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (!areTeamed[i]) {
                free.push_back(all[i]);
            }
        }
        return free;
    }

    ExitStatus Best(Invocation& run) {
        quillet::Session& session = run.Session();
        const quillet::Team team = FindTeam(session, *m_team);
        const auto [best, status, coverage] = Attempt("find the best mode for " + Called(team),
                                                      [&] { return session.FindBestTeamMode(team.id); });
        const auto mode = static_cast<std::int32_t>(best.mode);
        const std::string description = ToUtf8(best.description);
        return AnswerSheet(run,
                           Json{{"path", PathOf(team.id)},
                                {"status", Coded(status)},
                                {"coverage", coverage},
                                {"mode", Coded(mode, description)}},
                           Sheet()
                               .Add("Detection", InWords(status))
                               .Add("Coverage", std::to_string(coverage) + " %")
                               .Add("Best mode", description + " (" + std::to_string(mode) + ")"));
    }

    std::vector<std::string> m_adapters;
    std::optional<std::string> m_team;
    ListOptions m_options{{{"MODE"}, {"NAME", Fit::MayShorten}, {"DESCRIPTION", Fit::MayShorten}}};
};

} // namespace

void AddTeamModes(CommandTree::Noun& team) {
    team.Query("modes", "The modes that adapters can be teamed in", std::make_unique<ListModes>());
}

} // namespace quilletctl
