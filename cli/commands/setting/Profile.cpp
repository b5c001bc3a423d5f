// quilletctl profile: the performance profiles of adapters.
#include "app/List.h"
#include "commands/Commands.h"
#include "commands/setting/SettingTargets.h"
#include "names/AdapterLookup.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

/// Profiles that stand one by one, by their adapters.
Json GroupedByAdapter(Json entries) {
    Json adapters = Json::array();
    for (Json& entry : entries) {
        auto adapter = std::find_if(adapters.begin(), adapters.end(), [&](const Json& each) {
            return each.at("adapter") == entry.at("adapter");
        });
        if (adapter == adapters.end()) {
            adapters.push_back(Json{{"adapter", entry.at("adapter")}, {"profiles", Json::array()}});
            adapter = adapters.end() - 1;
        }
        if (!entry.at("profile").is_null()) {
            (*adapter)["profiles"].push_back(std::move(entry.at("profile")));
        }
    }
    return Json{{"adapters", std::move(adapters)}};
}

class ListProfiles final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "adapter", m_adapters, 0, kMostNames,
            "Adapters: names, object IDs or object paths; a pattern names several (default: all)");
        syntax.Flag("--current", m_currentOnly, "Only the profiles that the adapters have");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        quillet::Session& session = run.Session();
        List list(m_options);
        for (const ListedAdapter& adapter :
             m_adapters.empty() ? ReadAdapters(session) : FindAdapters(session, m_adapters)) {
            const std::vector<quillet::OfferedProfile> profiles = Profiles(session, adapter);
            if (profiles.empty() && !m_currentOnly) {
                list.AddRow({adapter.Called(), "", "no profiles", ""},
                            Json{{"adapter", adapter.path}, {"profile", nullptr}});
            }
            for (const quillet::OfferedProfile& each : profiles) {
                const auto number = static_cast<std::int32_t>(each.profile);
                const std::string description = ToUtf8(each.description);
                if (each.isCurrent || !m_currentOnly) {
                    list.AddRow({adapter.Called(), std::to_string(number), description,
                                 each.isCurrent ? Cell("yes", Tone::Good) : Cell("")},
                                Json{{"adapter", adapter.path},
                                     {"profile",
                                      {{"profile", number},
                                       {"description", description},
                                       {"current", each.isCurrent}}}});
                }
            }
        }
        return list.Answer(run, GroupedByAdapter, "no profiles");
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
    bool m_currentOnly = false;
    ListOptions m_options{
        {{"ADAPTER", Fit::MayShorten}, {"PROFILE"}, {"DESCRIPTION", Fit::MayShorten}, {"CURRENT"}}};
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
        SettingTargets targets(run, IsPattern(m_adapter), ToldBy::Settings);
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
