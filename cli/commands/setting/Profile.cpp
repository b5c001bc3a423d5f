// quilletctl profile: the performance profiles of adapters.
#include "app/Answers.h"
#include "commands/Commands.h"
#include "commands/setting/SettingTargets.h"
#include "names/AdapterLookup.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

class ListProfiles final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments("adapter", m_adapters, 0, 1,
                         "The adapter: its name, object ID or object path; a pattern names several "
                         "(default: all)");
    }

    ExitStatus Run(Invocation& run) override {
        quillet::Session& session = run.Session();
        const std::vector<ListedAdapter> adapters =
            m_adapters.empty() ? ReadAdapters(session) : FindAdapters(session, m_adapters);
        Json list = Json::array();
        Table table({{"ADAPTER", Fit::MayShorten},
                     {"PROFILE", Fit::Whole},
                     {"DESCRIPTION", Fit::MayShorten},
                     {"CURRENT", Fit::Whole}});
        for (const ListedAdapter& adapter : adapters) {
            const std::vector<quillet::OfferedProfile> profiles = Profiles(session, adapter);
            if (profiles.empty()) {
                table.AddRow({adapter.Called(), "-", "no profiles", ""});
            }
            Json offered = Json::array();
            for (const quillet::OfferedProfile& each : profiles) {
                const auto number = static_cast<std::int32_t>(each.profile);
                const std::string description = ToUtf8(each.description);
                table.AddRow(
                    {adapter.Called(), std::to_string(number), description, each.isCurrent ? "yes" : ""});
                offered.push_back(
                    Json{{"profile", number}, {"description", description}, {"current", each.isCurrent}});
            }
            list.push_back(Json{{"adapter", adapter.path}, {"profiles", std::move(offered)}});
        }
        return AnswerList(run, Json{{"adapters", std::move(list)}}, table, "no adapters");
    }

  private:
    static std::vector<quillet::OfferedProfile> Profiles(quillet::Session& session,
                                                         const ListedAdapter& adapter) {
        return Attempt("read the profiles of " + adapter.Called(), [&] {
            try {
                return session.Profiles(adapter.id);
            } catch (const quillet::PartialError<std::vector<quillet::OfferedProfile>>& failure) {
                // An adapter without profiles is not told from one whose profiles cannot be read.
                if (failure.Code() != static_cast<HRESULT>(WBEM_E_FAILED)) {
                    throw;
                }
                return failure.Read();
            }
        });
    }

    std::vector<std::string> m_adapters;
};

class SetProfile final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("adapter", m_adapter,
                        "The adapter: its name, object ID or object path; a pattern names several");
        syntax.Argument("profile", m_profile, "The profile: its number or its description");
        m_wait.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        SettingTargets targets(run, IsPattern(m_adapter), Told::Settings);
        for (const ListedAdapter& adapter : FindAdapters(run.Session(), {m_adapter})) {
            targets.Add({adapter.id, adapter.path, adapter.objectId, adapter.Called()},
                        {{"PerformanceProfile", m_profile}});
        }
        return targets.Change(m_wait);
    }

  private:
    std::string m_adapter;
    std::string m_profile;
    WaitOption m_wait;
};

} // namespace

void AddProfileCommands(CommandTree& tree) {
    tree.AddNoun("profile", "The performance profiles of adapters")
        .Query("list", "List the profiles that an adapter offers, and which it has",
               std::make_unique<ListProfiles>())
        .Verb("set", "Give an adapter another profile", std::make_unique<SetProfile>());
}

} // namespace quilletctl
