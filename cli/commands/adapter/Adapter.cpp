// quilletctl adapter: the machine's network adapters; all but "list" and "show".
#include "app/List.h"
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

namespace quilletctl {

namespace {

class ListCapabilities final : public AdapterListCommand {
  public:
    ListCapabilities() : AdapterListCommand({{"CODE"}, {"CAPABILITY", Fit::MayShorten}}) {}

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const std::vector<quillet::Capability> capabilities =
            ReadRecord(run.Session(), &quillet::Session::Capabilities, adapter, "the capabilities");
        List list = NewList();
        for (const quillet::Capability capability : capabilities) {
            list.AddRow({std::to_string(static_cast<std::int32_t>(capability)), InWords(capability)},
                        Coded(capability));
        }
        return list.Answer(
            run,
            [&](Json entries) {
                return Json{{"path", adapter.path}, {"capabilities", std::move(entries)}};
            },
            "no capabilities");
    }
};

class ListPorts final : public AdapterListCommand {
  public:
    ListPorts()
        : AdapterListCommand({{"PORT", Fit::MayShorten},
                              {"OBJECT ID", Fit::Whole, {}, Stay::WhileAllFits},
                              {"TEAM", Fit::MayShorten}}) {}

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::Session& session = run.Session();
        const std::vector<quillet::TeamedPort> ports = Attempt(
            "list the ports beside " + adapter.Called(), [&] { return session.TeamedPorts(adapter.id); });
        const auto adapters = ports.empty() ? std::vector<ListedAdapter>() : ReadAdapters(session);
        const auto teams = ports.empty() ? std::vector<quillet::Team>() : ReadTeams(session);
        List list = NewList();
        for (const quillet::TeamedPort& port : ports) {
            list.AddRow({PortName(adapters, port), ObjectIdIn(port.id), TeamName(teams, port)},
                        Json{{"path", PathOf(port.id)},
                             {"objectId", TextOrNull(ObjectIdIn(port.id))},
                             {"teamed", port.teamed},
                             {"teamPath", PathOf(port.team)},
                             {"teamId", TextOrNull(ObjectIdIn(port.team))}});
        }
        return list.Answer(
            run,
            [&](Json entries) {
                return Json{{"path", adapter.path}, {"ports", std::move(entries)}};
            },
            "no port of this board is in a team");
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
    AddAdapterList(adapter);
    AddAdapterShow(adapter);
    adapter.Query("capabilities", "What an adapter can do", std::make_unique<ListCapabilities>())
        .Query("ports", "The ports of an adapter's board that are in a team", std::make_unique<ListPorts>())
        .Verb("identify", "Let an adapter blink, so that it is found in the rack",
              std::make_unique<IdentifyAdapter>());
}

} // namespace quilletctl
