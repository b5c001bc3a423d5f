// quilletctl iscsi: booting from an iSCSI target.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace quilletctl {

namespace {

struct Place {
    CISCSIAdapter::iSCSIStatus status;
    const char* word;
};

constexpr std::array kPlaces{Place{CISCSIAdapter::NotBootPort, "off"},
                             Place{CISCSIAdapter::PrimaryPort, "primary"},
                             Place{CISCSIAdapter::SecondaryPort, "secondary"}};

std::string PlaceText(LONG status) {
    const auto* found = std::find_if(kPlaces.begin(), kPlaces.end(),
                                     [status](const Place& place) { return place.status == status; });
    return found != kPlaces.end() ? found->word : "place " + std::to_string(status);
}

Json PlaceAsJson(LONG status) {
    return Coded(status, PlaceText(status));
}

/// The adapter of a port, which its boot agent is called after; null where the machine has none.
const ListedAdapter* AdapterOf(const std::vector<ListedAdapter>& adapters, const CISCSIAdapter& port) {
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(each.objectId, ToUtf8(port.m_wsBootAgentID));
    });
    return found == adapters.end() ? nullptr : &*found;
}

/// What an adapter is called everywhere; the provider calls it otherwise here.
std::string NameOf(const ListedAdapter* adapter, const CISCSIAdapter& port) {
    return adapter == nullptr ? ToUtf8(port.m_wsAdapterName) : adapter->Called();
}

CISCSIAdapters ReadPorts(CQuillet& session) {
    CISCSIAdapters ports;
    ThrowIfRefused(session.EnumerateISCSIAdapters(ports), "list the adapters that can boot from iSCSI");
    return ports;
}

ExitStatus ListPorts(Invocation& run) {
    const CISCSIAdapters ports = ReadPorts(run.Session());
    const std::vector<ListedAdapter> adapters = ReadAdapters(run.Session());
    Json list = Json::array();
    Table table({{"ADAPTER", Fit::MayShorten}, {"PLACE", Fit::Whole}, {"BOOT AGENT ID", Fit::Whole}});
    for (const CISCSIAdapter* port : ports.m_vecItems) {
        const ListedAdapter* adapter = AdapterOf(adapters, *port);
        const std::string name = NameOf(adapter, *port);
        list.push_back(Json{{"adapter", adapter == nullptr ? Json() : Json(adapter->path)},
                            {"name", name},
                            {"bootAgentId", ToUtf8(port->m_wsBootAgentID)},
                            {"status", PlaceAsJson(port->m_eStatus)},
                            {"path", ToUtf8(port->m_wsPath)}});
        table.AddRow({name, PlaceText(port->m_eStatus), ToUtf8(port->m_wsBootAgentID)});
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
        const CISCSIAdapters ports = ReadPorts(run.Session());
        const CISCSIAdapter* port = PortOf(adapter, ports);
        if (port == nullptr) {
            throw UsageError(adapter.Called() + " cannot boot from iSCSI; see quilletctl iscsi list");
        }
        const std::string asked = "change the place of " + adapter.Called();
        ClientSet changes(run);
        unsigned int code = 0;
        ThrowIfRefused(run.Session().SetiSCSIStatus(port->m_wsPath, place->status, code), asked);
        const std::optional<bool> restartNeeded = changes.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CISCSIAdapters after = ReadPorts(run.Session());
            const CISCSIAdapter* now = PortOf(adapter, after);
            compare.Compare({{"status", "its place", m_place}},
                            {{"status", "", now == nullptr ? Json() : Json(PlaceText(now->m_eStatus))}});
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

    /// The adapter's entry in the list; null where it has none.
    static const CISCSIAdapter* PortOf(const ListedAdapter& adapter, const CISCSIAdapters& ports) {
        const auto port =
            std::find_if(ports.m_vecItems.begin(), ports.m_vecItems.end(), [&](const CISCSIAdapter* each) {
                return SameIgnoringCase(ToUtf8(each->m_wsBootAgentID), adapter.objectId);
            });
        return port == ports.m_vecItems.end() ? nullptr : *port;
    }

    std::string m_place;
};

class ShowPort final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CiSCSI info;
        ThrowIfRefused(run.Session().GetiSCSI_Info(ToWide(adapter.path), info),
                       "read the iSCSI boot status of " + adapter.Called());
        return AnswerSheet(run,
                           Json{{"status", PlaceAsJson(info.m_lStatus)},
                                {"systemSupported", info.m_bOSSupported},
                                {"patchPresent", info.m_bPatchPresent},
                                {"hotFixPresent", info.m_bHotFixPresent}},
                           Sheet()
                               .Add("Adapter", adapter.Called())
                               .Add("Place", PlaceText(info.m_lStatus))
                               .Add("System supports it", YesOrNo(info.m_bOSSupported))
                               .Add("Patch present", YesOrNo(info.m_bPatchPresent))
                               .Add("Hot fix present", YesOrNo(info.m_bHotFixPresent)));
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
