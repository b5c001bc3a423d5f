// quilletctl adapter: the machine's network adapters; all but "show".
#include "app/Answers.h"
#include "changes/Verification.h"
#include "commands/adapter/AdapterVerbs.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/InWords.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

Json AsJson(const std::vector<ListedAdapter>& adapters) {
    Json list = Json::array();
    for (const ListedAdapter& adapter : adapters) {
        list.push_back(Json{{"path", adapter.path},
                            {"objectId", TextOrNull(adapter.objectId)},
                            {"name", adapter.name},
                            {"displayName", adapter.displayName},
                            {"deviceId", adapter.deviceId}});
    }
    return Json{{"adapters", std::move(list)}};
}

void PrintTable(const std::vector<ListedAdapter>& adapters, const Terminal& screen) {
    // On most machines the two identifiers are one; a second column of the same would only fill the screen.
    const bool twoIds = std::any_of(adapters.begin(), adapters.end(),
                                    [](const ListedAdapter& each) { return each.deviceId != each.objectId; });
    std::vector<Column> columns{
        {"NAME", Fit::MayShorten}, {"DISPLAY NAME", Fit::MayShorten, "NAME"}, {"OBJECT ID", Fit::Whole}};
    if (twoIds) {
        columns.push_back({"DEVICE ID", Fit::Whole});
    }
    Table table(std::move(columns));
    for (const ListedAdapter& adapter : adapters) {
        table.AddRow({adapter.name, adapter.displayName, adapter.objectId, adapter.deviceId});
    }
    table.Print(screen);
}

ExitStatus ListAdapters(Invocation& run) {
    const std::vector<ListedAdapter> adapters = ReadAdapters(run.Session());
    if (run.WantsJson()) {
        run.Print(AsJson(adapters));
    } else if (adapters.empty()) {
        run.Out() << "no adapters\n";
    } else {
        PrintTable(adapters, run.Screen());
    }
    return ExitStatus::Done;
}

class ListCapabilities final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapter known;
        ThrowIfRefused(run.Session().GetAdapterCapabilities(ToWide(adapter.path), known),
                       "read the capabilities of " + adapter.Called());
        std::vector<LONG> codes;
        for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
            if (known.m_pAdapterCapabilities->*flag.m_pFlag) {
                codes.push_back(flag.m_lCode);
            }
        }
        std::sort(codes.begin(), codes.end());
        Json list = Json::array();
        Table table({{"CODE", Fit::Whole}, {"CAPABILITY", Fit::MayShorten}});
        for (const LONG code : codes) {
            list.push_back(Coded(code, InWords<quillet::Capability>(code)));
            table.AddRow({std::to_string(code), InWords<quillet::Capability>(code)});
        }
        return AnswerList(run, Json{{"path", adapter.path}, {"capabilities", std::move(list)}}, table,
                          "no capabilities");
    }
};

class ListPorts final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
        CAdapterPorts ports;
        ThrowIfRefused(session.EnumerateOtherPortOfAdapter(ToWide(adapter.path), ports),
                       "list the ports beside " + adapter.Called());
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const CAdapterPort* port : ports.m_vecItems) {
                list.push_back(Json{{"path", ToUtf8(port->m_wsAdapterID)},
                                    {"objectId", TextOrNull(IdIn(port->m_wsAdapterID))},
                                    {"teamed", port->m_bTeamed},
                                    {"teamPath", ToUtf8(port->m_wsTeamID)},
                                    {"teamId", TextOrNull(IdIn(port->m_wsTeamID))}});
            }
            run.Print(Json{{"path", adapter.path}, {"ports", std::move(list)}});
        } else if (ports.m_vecItems.empty()) {
            run.Out() << "no port of this board is in a team\n";
        } else {
            const std::vector<ListedAdapter> adapters = ReadAdapters(session);
            const CTeams teams = ReadTeams(session);
            Table table({{"PORT", Fit::MayShorten}, {"OBJECT ID", Fit::Whole}, {"TEAM", Fit::MayShorten}});
            for (const CAdapterPort* port : ports.m_vecItems) {
                table.AddRow({PortName(adapters, *port), IdIn(port->m_wsAdapterID), TeamName(teams, *port)});
            }
            table.Print(run.Screen());
        }
        return ExitStatus::Done;
    }

    static std::string PortName(const std::vector<ListedAdapter>& adapters, const CAdapterPort& port) {
        for (const ListedAdapter& each : adapters) {
            if (each.objectId == IdIn(port.m_wsAdapterID)) {
                return each.Called();
            }
        }
        return ToUtf8(port.m_wsAdapterID);
    }
    static std::string TeamName(const CTeams& teams, const CAdapterPort& port) {
        for (const CTeam* each : teams.m_vecItems) {
            if (IdIn(each->m_wsTeamID) == IdIn(port.m_wsTeamID)) {
                return Called(*each);
            }
        }
        return IdIn(port.m_wsTeamID);
    }
    static std::string IdIn(const std::wstring& path) { return NameInPath(ToUtf8(path)).key; }
};

class IdentifyAdapter final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--seconds", m_seconds, 1, 3600, "For how long");
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
        run.HoldInterrupts();
        ThrowIfRefused(session.IdentifyAdapter(ToWide(adapter.path), static_cast<LONG>(m_seconds)),
                       "identify " + adapter.Called());
        // Only who stands before the rack sees whether it does.
        Verification taken;
        taken.LeaveOpen();
        if (run.WantsJson()) {
            Json answer{{"path", adapter.path}, {"seconds", m_seconds}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(adapter.Called()) << " was asked to blink for " << m_seconds
                      << (m_seconds == 1 ? " second" : " seconds") << "; it does not tell whether it does\n";
        }
        return ExitStatus::Done;
    }

    std::uint32_t m_seconds = 10;
};

} // namespace

void AddAdapterCommands(CommandTree& tree) {
    auto adapter = tree.AddNoun("adapter", "The machine's network adapters");
    adapter.Query("list", "List the adapters", ListAdapters);
    AddAdapterShow(adapter);
    adapter.Query("capabilities", "What an adapter can do", std::make_unique<ListCapabilities>())
        .Query("ports", "The ports of an adapter's board that are in a team", std::make_unique<ListPorts>())
        .Verb("identify", "Let an adapter blink, so that it is found in the rack",
              std::make_unique<IdentifyAdapter>());
}

} // namespace quilletctl
