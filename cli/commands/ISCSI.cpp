// quilletctl iscsi: booting from an iSCSI target.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "names/ObjectPath.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace quilletctl {

namespace {

using quillet::IscsiAdapter;
using quillet::IscsiStatus;

struct Place {
    IscsiStatus status;
    const char* word;
};

constexpr std::array kPlaces{Place{IscsiStatus::NotBootPort, "off"},
                             Place{IscsiStatus::PrimaryPort, "primary"},
                             Place{IscsiStatus::SecondaryPort, "secondary"}};

std::string PlaceText(IscsiStatus status) {
    const auto* found = std::find_if(kPlaces.begin(), kPlaces.end(),
                                     [status](const Place& place) { return place.status == status; });
    return found != kPlaces.end() ? found->word
                                  : "place " + std::to_string(static_cast<std::int32_t>(status));
}

Json PlaceAsJson(IscsiStatus status) {
    return Coded(static_cast<std::int32_t>(status), PlaceText(status));
}

/// The adapter of a port, which its boot agent is called after; null where the machine has none.
const ListedAdapter* AdapterOf(const std::vector<ListedAdapter>& adapters, const IscsiAdapter& port) {
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(each.objectId, ToUtf8(port.objectId));
    });
    return found == adapters.end() ? nullptr : &*found;
}

/// What an adapter is called everywhere; the provider calls it otherwise here.
std::string NameOf(const ListedAdapter* adapter, const IscsiAdapter& port) {
    return adapter == nullptr ? ToUtf8(port.adapterName) : adapter->Called();
}

std::vector<IscsiAdapter> ReadPorts(quillet::Session& session) {
    return Attempt("list the adapters that can boot from iSCSI", [&] { return session.IscsiAdapters(); });
}

ExitStatus ListPorts(Invocation& run) {
    const std::vector<IscsiAdapter> ports = ReadPorts(run.Session());
    const std::vector<ListedAdapter> adapters = ReadAdapters(run.Session());
    Json list = Json::array();
    Table table({{"ADAPTER", Fit::MayShorten}, {"PLACE", Fit::Whole}, {"BOOT AGENT ID", Fit::Whole}});
    for (const IscsiAdapter& port : ports) {
        const ListedAdapter* adapter = AdapterOf(adapters, port);
        const std::string name = NameOf(adapter, port);
        list.push_back(Json{{"adapter", adapter == nullptr ? Json() : Json(adapter->path)},
                            {"name", name},
                            {"bootAgentId", ToUtf8(port.objectId)},
                            {"status", PlaceAsJson(port.status)},
                            {"path", PathOf(port.bootAgent)}});
        table.AddRow({name, PlaceText(port.status), ToUtf8(port.objectId)});
    }
    return AnswerList(run, Json{{"adapters", std::move(list)}}, table, "no adapter can boot from iSCSI");
}

class SetPlace final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        std::vector<std::string> words;
        words.reserve(std::size(kPlaces));
        for (const Place& place : kPlaces) {
            words.emplace_back(place.word);
        }
        syntax.Argument("place", m_place, "Its place", words);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const auto* place = std::find_if(kPlaces.begin(), kPlaces.end(),
                                         [this](const Place& each) { return m_place == each.word; });
        const std::optional<IscsiAdapter> port = PortOf(adapter, ReadPorts(run.Session()));
        if (!port) {
            throw UsageError(adapter.Called() + " cannot boot from iSCSI; see quilletctl iscsi list");
        }
        const std::string asked = "change the place of " + adapter.Called();
        ClientSet changes(run, {asked + " to " + m_place});
        const unsigned code =
            Attempt(asked, [&] { return run.Session().SetIscsiStatus(port->bootAgent, place->status); });
        const std::optional<bool> restartNeeded = changes.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const std::optional<IscsiAdapter> now = PortOf(adapter, ReadPorts(run.Session()));
            compare.Compare({{"status", "its place", m_place}},
                            {{"status", "", now ? Json(PlaceText(now->status)) : Json()}});
        });
        if (run.WantsJson()) {
            Json answer{{"code", code}, {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else if (code != 0) {
            run.Out() << "the provider refused: code " << code << '\n';
        } else {
            run.Out() << Printable(taken.Text(adapter.Called() + " is " + m_place)) << "; "
                      << RestartText(restartNeeded) << '\n';
        }
        if (code != 0) {
            throw NotTaken(asked, "the provider refused, code " + std::to_string(code));
        }
        taken.End(asked);
        return ExitStatus::Done;
    }

    /// The adapter's entry in the list; nothing where it has none.
    static std::optional<IscsiAdapter> PortOf(const ListedAdapter& adapter,
                                              const std::vector<IscsiAdapter>& ports) {
        const auto port = std::find_if(ports.begin(), ports.end(), [&](const IscsiAdapter& each) {
            return SameIgnoringCase(ToUtf8(each.objectId), adapter.objectId);
        });
        return port == ports.end() ? std::nullopt : std::optional(*port);
    }

    std::string m_place;
};

class ShowPort final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const quillet::IscsiSupport info =
            ReadRecord(run.Session(), &quillet::Session::ReadIscsiSupport, adapter, "the iSCSI boot status");
        const auto status = static_cast<IscsiStatus>(info.status);
        return AnswerSheet(run,
                           Json{{"status", PlaceAsJson(status)},
                                {"systemSupported", info.byOperatingSystem},
                                {"patchPresent", info.patchPresent},
                                {"hotFixPresent", info.hotFixPresent}},
                           Sheet()
                               .Add("Adapter", adapter.Called())
                               .Add("Place", PlaceText(status))
                               .Add("System supports it", YesOrNo(info.byOperatingSystem))
                               .Add("Patch present", YesOrNo(info.patchPresent))
                               .Add("Hot fix present", YesOrNo(info.hotFixPresent)));
    }
};

} // namespace

void AddISCSICommands(CommandTree& tree) {
    tree.AddNoun("iscsi", "Booting from an iSCSI target")
        .Query("list", "List the adapters that can, and their places", ListPorts)
        .Query("show", "Show an adapter's place, and what the system can do", std::make_unique<ShowPort>())
        .Verb("set", "Change an adapter's place", std::make_unique<SetPlace>());
}

} // namespace quilletctl
