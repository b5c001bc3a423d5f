// Reading what a report tells.
#include "commands/report/MachineFacts.h"

#include "names/ObjectPath.h"
#include "texts/Text.h"

#include <windows.h>
#include <wbemidl.h>

#include <system_error>
#include <utility>

namespace quilletctl {

namespace {

using quillet::AdapterId;

/// Asks one thing after the other, and notes what was not told.
class Reader {
  public:
    Reader(quillet::Session& session, MachineFacts& facts) : m_session(session), m_facts(facts) {}

    template <class Read>
    auto Ask(const std::string& what, Read read) -> Told<decltype(read())> {
        using Value = decltype(read());
        try {
            return {read()};
        } catch (const quillet::PartialError<Value>& failure) {
            return {failure.Read(), Note(what, failure.code())};
        } catch (const quillet::Error& failure) {
            return {{}, Note(what, failure.code())};
        }
    }
    std::string Note(const std::string& what, const std::error_code& why) {
        m_facts.untold.push_back(what + ": " + why.message());
        return why.message();
    }
    quillet::Session& Session() noexcept { return m_session; }

  private:
    quillet::Session& m_session;
    MachineFacts& m_facts;
};

bool IsNone(const quillet::Error& failure) {
    return failure.Code() == static_cast<std::int32_t>(WBEM_E_NOT_FOUND);
}

std::vector<TestFact> ReadTests(quillet::Session& session, const AdapterId& adapter) {
    std::vector<TestFact> ran;
    for (const quillet::Diagnostic& test : session.Diagnostics(adapter)) {
        if (auto result = session.ReadResult(test.id)) {
            ran.push_back({test, *std::move(result)});
        }
    }
    return ran;
}

void ReadDetails(Reader& reader, AdapterFacts& adapter) {
    quillet::Session& session = reader.Session();
    const AdapterId& id = adapter.overview.adapter.id;
    const std::string of = " of " + NameOf(adapter.overview);
    adapter.warnings = reader.Ask("the warnings" + of, [&] { return session.Warnings(id); });
    adapter.settings = reader.Ask("the settings" + of, [&] { return session.Settings(id); });
    adapter.bootAgent = reader.Ask("the boot agent" + of, [&]() -> std::optional<quillet::BootAgent> {
        try {
            return session.ReadBootAgent(id);
        } catch (const quillet::Error& failure) {
            if (IsNone(failure)) {
                return std::nullopt;
            }
            throw;
        }
    });
    if (adapter.bootAgent.value) {
        adapter.bootSettings = reader.Ask("the settings of the boot agent" + of,
                                          [&] { return session.Settings(adapter.bootAgent.value->id); });
    }
    adapter.tests = reader.Ask("the diagnostic tests" + of, [&] { return ReadTests(session, id); });
}

TeamFacts ReadTeamFacts(Reader& reader, const quillet::Team& listed, Detail detail) {
    quillet::Session& session = reader.Session();
    const quillet::TeamId& id = listed.id;
    const std::string of = " of the team " + ToUtf8(listed.name);
    TeamFacts team{.team = listed};
    team.status = reader.Ask("the status" + of, [&] { return session.ReadStatus(id); });
    team.members = reader.Ask("the members" + of, [&] { return session.Members(id); });
    team.vlans = reader.Ask("the VLANs" + of, [&] { return session.Vlans(id); });
    if (detail == Detail::All) {
        team.settings = reader.Ask("the settings" + of, [&] { return session.Settings(id); });
    }
    return team;
}

} // namespace

std::string NameOf(const quillet::AdapterOverview& overview) {
    const quillet::Adapter& adapter = overview.adapter;
    const std::wstring& name = adapter.name.empty() ? adapter.displayName : adapter.name;
    return name.empty() ? PathOf(adapter.id) : ToUtf8(name);
}

MachineFacts ReadMachineFacts(quillet::Session& session, const std::string& machine, Detail detail,
                              const FactsProgress& progress) {
    MachineFacts facts{.machine = machine};
    Reader reader(session, facts);
    progress("Reading the adapters", 0, 0);
    auto overviews = reader.Ask("the adapters", [&] { return session.AdapterOverviews(); });
    facts.adapters.failure = overviews.failure;
    for (quillet::AdapterOverview& overview : overviews.value) {
        progress("Reading " + NameOf(overview), facts.adapters.value.size(), overviews.value.size());
        AdapterFacts adapter{.overview = std::move(overview)};
        const std::string name = NameOf(adapter.overview);
        if (adapter.overview.failure) {
            adapter.failure = reader.Note("all of " + name, adapter.overview.failure);
        }
        adapter.vlans =
            reader.Ask("the VLANs of " + name, [&] { return session.Vlans(adapter.overview.adapter.id); });
        if (detail == Detail::All) {
            ReadDetails(reader, adapter);
        }
        facts.adapters.value.push_back(std::move(adapter));
    }
    progress("Reading the teams", overviews.value.size(), overviews.value.size());
    const auto teams = reader.Ask("the teams", [&] { return session.Teams(); });
    facts.teams.failure = teams.failure;
    for (const quillet::Team& team : teams.value) {
        facts.teams.value.push_back(ReadTeamFacts(reader, team, detail));
    }
    if (detail == Detail::All) {
        facts.iscsi = reader.Ask("the places in iSCSI boot", [&] { return session.IscsiAdapters(); });
        facts.warnings = reader.Ask("the pending warnings", [&] { return session.Warnings(); });
    }
    return facts;
}

} // namespace quilletctl
