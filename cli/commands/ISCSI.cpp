// quilletctl iscsi: booting from an iSCSI target.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "names/ObjectPath.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace quilletctl {

namespace {

using quillet::IscsiAdapter;
using quillet::IscsiStatus;

constexpr std::array kPlaces{IscsiStatus::NotBootPort, IscsiStatus::PrimaryPort, IscsiStatus::SecondaryPort};

/// The adapter of a port, which its boot agent is called after; null where the machine has none.
const ListedAdapter* AdapterOf(const std::vector<ListedAdapter>& adapters, const IscsiAdapter& port) {
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(each.objectId, ToUtf8(port.objectId));
    });
    return found == adapters.end() ? nullptr : &*found;
}

/// What an adapter is called everywhere; the provider calls it otherwise here.
std::string PortName(const ListedAdapter* adapter, const IscsiAdapter& port) {
    return adapter == nullptr ? ToUtf8(port.adapterName) : adapter->Called();
}

std::vector<IscsiAdapter> ReadPorts(quillet::Session& session) {
    return Attempt("list the adapters that can boot from iSCSI", [&] { return session.IscsiAdapters(); });
}

class ListIscsiPorts final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "adapter", m_adapters, 0, kMostNames,
            "Adapters that can: names or boot agent IDs; a pattern names several (default: all)");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        const std::vector<IscsiAdapter> ports = ReadPorts(run.Session());
        const std::vector<ListedAdapter> adapters = ReadAdapters(run.Session());
        std::vector<Named> names;
        for (const IscsiAdapter& port : ports) {
            const std::string id = ToUtf8(port.objectId);
            const std::string name = PortName(AdapterOf(adapters, port), port);
            names.push_back({id, name, {PathOf(port.bootAgent), id, name}});
        }
        List list(m_options);
        for (const std::size_t i : ChooseNamed(names, m_adapters, "adapter that can boot from iSCSI")) {
            const IscsiAdapter& port = ports[i];
            const ListedAdapter* adapter = AdapterOf(adapters, port);
            list.AddRow({names[i].called, InWords(port.status), names[i].id},
                        Json{{"adapter", adapter == nullptr ? Json() : Json(adapter->path)},
                             {"name", names[i].called},
                             {"bootAgentId", names[i].id},
                             {"status", Coded(port.status)},
                             {"path", PathOf(port.bootAgent)}});
        }
        return list.Answer(run, Under("adapters"), "no adapter can boot from iSCSI");
    }

  private:
    std::vector<std::string> m_adapters;
    ListOptions m_options{
        {{"ADAPTER", Fit::MayShorten}, {"PLACE"}, {"BOOT AGENT ID", Fit::Whole, {}, Stay::WhileAllFits}}};
};

class SetPlace final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        std::vector<std::string> words;
        words.reserve(std::size(kPlaces));
        for (const IscsiStatus place : kPlaces) {
            words.push_back(InWords(place));
        }
        syntax.Argument("place", m_place, "Its place", words);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const auto* place = std::find_if(kPlaces.begin(), kPlaces.end(),
                                         [this](IscsiStatus each) { return m_place == InWords(each); });
        const std::optional<IscsiAdapter> port = PortOf(adapter, ReadPorts(run.Session()));
        if (!port) {
            throw UsageError(adapter.Called() + " cannot boot from iSCSI; see quilletctl iscsi list");
        }
        const std::string asked = "change the place of " + adapter.Called();
        ClientSet changes(run, {asked + " to " + m_place});
        const unsigned code =
            Attempt(asked, [&] { return run.Session().SetIscsiStatus(port->bootAgent, *place); });
        const std::optional<bool> restartNeeded = changes.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const std::optional<IscsiAdapter> now = PortOf(adapter, ReadPorts(run.Session()));
            compare.Compare({{"status", "its place", m_place}},
                            {{"status", "", now ? Json(InWords(now->status)) : Json()}});
        });
        if (run.WantsJson()) {
            Json answer{{"code", code},
                        {"text", code == 0 ? "done" : UnknownText(code)},
                        {"restartNeeded", RestartJson(restartNeeded)}};
            taken.AddTo(answer);
            run.Print(answer);
        } else if (code != 0) {
            run.Out() << "the provider refused: " << UnknownText(code) << '\n';
        } else {
            run.Out() << Printable(taken.Text(adapter.Called() + " is " + m_place)) << "; "
                      << RestartText(restartNeeded) << '\n';
        }
        if (code != 0) {
            throw NotTaken(asked, "the provider refused: " + UnknownText(code));
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
                           Json{{"status", Coded(status)},
                                {"systemSupported", info.byOperatingSystem},
                                {"patchPresent", info.patchPresent},
                                {"hotFixPresent", info.hotFixPresent}},
                           Sheet()
                               .Add("Adapter", adapter.Called())
                               .Add("Place", InWords(status))
                               .Add("System supports it", YesOrNo(info.byOperatingSystem))
                               .Add("Patch present", YesOrNo(info.patchPresent))
                               .Add("Hot fix present", YesOrNo(info.hotFixPresent)));
    }
};

} // namespace

void AddISCSICommands(CommandTree& tree) {
    tree.AddNoun("iscsi", "Booting from an iSCSI target")
        .Query("list", "List the adapters that can, and their places", std::make_unique<ListIscsiPorts>())
        .Query("show", "Show an adapter's place, and what the system can do", std::make_unique<ShowPort>())
        .Verb("set", "Change an adapter's place", std::make_unique<SetPlace>());
}

} // namespace quilletctl
