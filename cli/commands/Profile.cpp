// quilletctl profile: the performance profiles of adapters.
#include "app/Answers.h"
#include "commands/Commands.h"
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
        CQuillet& session = run.Session();
        const std::vector<ListedAdapter> adapters =
            m_adapters.empty() ? ReadAdapters(session) : FindAdapters(session, m_adapters);
        Json list = Json::array();
        Table table({{"ADAPTER", Fit::MayShorten},
                     {"PROFILE", Fit::Whole},
                     {"DESCRIPTION", Fit::MayShorten},
                     {"CURRENT", Fit::Whole}});
        for (const ListedAdapter& adapter : adapters) {
            CPerformanceProfiles profiles;
            const HRESULT result = session.GetAdapterProfiles(ToWide(adapter.path), profiles);
            // The library does not tell an adapter without profiles from one whose profiles it cannot read.
            if (result != static_cast<HRESULT>(WBEM_E_FAILED)) {
                ThrowIfRefused(result, "read the profiles of " + adapter.Called());
            }
            if (profiles.m_vecItems.empty()) {
                table.AddRow({adapter.Called(), "-", "no profiles", ""});
            }
            Json offered = Json::array();
            for (const CPerformanceProfile* profile : profiles.m_vecItems) {
                const std::string description = ToUtf8(profile->m_wsDescription);
                table.AddRow({adapter.Called(), std::to_string(profile->m_eProfile), description,
                              profile->m_bIsCurrent ? "yes" : ""});
                offered.push_back(Json{{"profile", static_cast<LONG>(profile->m_eProfile)},
                                       {"description", description},
                                       {"current", profile->m_bIsCurrent}});
            }
            list.push_back(Json{{"adapter", adapter.path}, {"profiles", std::move(offered)}});
        }
        return AnswerList(run, Json{{"adapters", std::move(list)}}, table, "no adapters");
    }

  private:
    std::vector<std::string> m_adapters;
};

} // namespace

void AddProfileCommands(CommandTree& tree) {
    tree.AddNoun("profile", "The performance profiles of adapters")
        .Query("list", "List the profiles that an adapter offers, and which it has",
               std::make_unique<ListProfiles>());
}

} // namespace quilletctl
