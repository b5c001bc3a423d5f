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
        const std::vector<quillet::Capability> capabilities =
            ReadRecord(run.Session(), &quillet::Session::Capabilities, adapter, "the capabilities");
        Json list = Json::array();
        Table table({{"CODE", Fit::Whole}, {"CAPABILITY", Fit::MayShorten}});
        for (const quillet::Capability capability : capabilities) {
            list.push_back(Coded(capability));
            table.AddRow({std::to_string(static_cast<std::int32_t>(capability)), InWords(capability)});
        }
        return AnswerList(run, Json{{"path", adapter.path}, {"capabilities", std::move(list)}}, table,
                          "no capabilities");
    }
};

class ListPorts final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::Session& session = run.Session();
        const std::vector<quillet::TeamedPort> ports = Attempt(
            "list the ports beside " + adapter.Called(), [&] { return session.TeamedPorts(adapter.id); });
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const quillet::TeamedPort& port : ports) {
                list.push_back(Json{{"path", PathOf(port.id)},
                                    {"objectId", TextOrNull(ObjectIdIn(port.id))},
                                    {"teamed", port.teamed},
                                    {"teamPath", PathOf(port.team)},
                                    {"teamId", TextOrNull(ObjectIdIn(port.team))}});
            }
            run.Print(Json{{"path", adapter.path}, {"ports", std::move(list)}});
        } else if (ports.empty()) {
            run.Out() << "no port of this board is in a team\n";
        } else {
            const std::vector<ListedAdapter> adapters = ReadAdapters(session);
            const std::vector<quillet::Team> teams = ReadTeams(session);
            Table table({{"PORT", Fit::MayShorten}, {"OBJECT ID", Fit::Whole}, {"TEAM", Fit::MayShorten}});
            for (const quillet::TeamedPort& port : ports) {
                table.AddRow({PortName(adapters, port), ObjectIdIn(port.id), TeamName(teams, port)});
            }
            table.Print(run.Screen());
        }
        return ExitStatus::Done;
    }

    static std::string PortName(const std::vector<ListedAdapter>& adapters, const quillet::TeamedPort& port) {
        for (const ListedAdapter& each : adapters) {
            if (each.objectId == ObjectIdIn(port.id)) {
                return each.Called();
            }
        }
        return PathOf(port.id);
    }
    static std::string TeamName(const std::vector<quillet::Team>& teams, const quillet::TeamedPort& port) {
        for (const quillet::Team& each : teams) {
            if (ObjectIdIn(each.id) == ObjectIdIn(port.team)) {
                return Called(each);
            }
        }
        return ObjectIdIn(port.team);
    }
};

class IdentifyAdapter final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--seconds", m_seconds, 1, 3600, "For how long");
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::Session& session = run.Session();
        run.BeginChanges({"let " + adapter.Called() + " blink for " + Duration()});
        Attempt("identify " + adapter.Called(),
                [&] { session.Identify(adapter.id, std::chrono::seconds(m_seconds)); });
        // Only who stands before the rack sees whether it does.
        Verification taken;
        taken.LeaveOpen();
        if (run.WantsJson()) {
            Json answer{{"path", adapter.path}, {"seconds", m_seconds}};
            taken.AddTo(answer);
            run.Print(answer);
        } else {
            run.Out() << Printable(adapter.Called()) << " was asked to blink for " << Duration()
                      << "; it does not tell whether it does\n";
        }
        return ExitStatus::Done;
    }

    std::string Duration() const {
        return std::to_string(m_seconds) + (m_seconds == 1 ? " second" : " seconds");
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
