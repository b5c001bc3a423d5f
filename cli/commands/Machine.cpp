// quilletctl machine record: a machine, as a file that the simulator plays.
#include "commands/Commands.h"
#include "files/Files.h"
#include "recording/Recorder.h"
#include "texts/Text.h"

#include <quillet-wmi/ObjectPath.h>

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

/// "\\host\namespace". Which namespace the provider is in can be configured; the paths of its objects tell.
std::wstring ResourceOf(Invocation& run) {
    std::wstring name = L"ROOT\\MarloLUM2";
    for (const quillet::Adapter& adapter :
         Attempt("list the adapters", [&] { return run.Session().Adapters(); })) {
        const auto path = quillet::wmi::ObjectPath::Parse(adapter.id.Path());
        if (path && !path->namespacePath.empty()) {
            name = path->namespacePath;
            break;
        }
    }
    const std::string& machine = run.MachineName();
    return L"\\\\" + ToWide(machine.empty() ? "127.0.0.1" : machine) + L'\\' + name;
}

std::string ReasonOf(const Unrecorded& each) {
    return FAILED(each.code) ? ExplainResult(each.code) : ToUtf8(each.reason);
}

Json RecordJson(const Record& record) {
    Json classes = Json::array();
    for (const auto& [name, count] : record.found) {
        classes.push_back(Json{{"class", ToUtf8(name)}, {"instances", count}});
    }
    Json absent = Json::array();
    for (const std::wstring& name : record.absent) {
        absent.push_back(ToUtf8(name));
    }
    Json unrecorded = Json::array();
    for (const Unrecorded& each : record.unrecorded) {
        unrecorded.push_back(Json{{"class", ToUtf8(each.className)},
                                  {"code", FAILED(each.code) ? Json(DescribeResult(each.code)) : Json()},
                                  {"losses", each.count},
                                  {"reason", ReasonOf(each)}});
    }
    return Json{{"classes", std::move(classes)},
                {"secrets", record.secrets},
                {"absent", std::move(absent)},
                {"unrecorded", std::move(unrecorded)}};
}

class RecordVerb final : public Command {
  public:
    void Declare(Syntax& syntax) override { syntax.Argument("file", m_file, "The machine file to write"); }
    ExitStatus Run(Invocation& run) override {
        if (!run.MayReplace(m_file)) {
            return ExitStatus::Done;
        }
        const std::wstring resource =
            ResourceOf(run); // first: the session is what makes this process a client
        ProviderNamespace provider(resource);
        const Record record = RecordMachine(provider);
        run.BeginChanges({"write what the provider holds to " + m_file});
        // Names and addresses of a machine are not everybody's, though no secret is among them.
        ReplaceWholeFile(
            m_file, "// Recorded by quilletctl. Secrets are left out: *** stands for each.\n" + record.mof,
            Access::OwnerOnly);
        Tell(run, record);
        for (const Unrecorded& each : record.unrecorded) {
            if (FAILED(each.code)) {
                run.FailAfterAnswer(Refusal("record " + ToUtf8(each.className), each.code));
            }
        }
        return ExitStatus::Done;
    }

  private:
    void Tell(Invocation& run, const Record& record) const {
        Json answer{{"file", m_file}};
        answer.update(RecordJson(record));
        if (run.WantsJson()) {
            run.Print(answer);
            return;
        }
        std::size_t instances = 0;
        for (const auto& [name, count] : record.found) {
            instances += count;
        }
        run.Out() << instances << " instances of " << record.found.size() << " classes were written to "
                  << Printable(m_file) << '\n';
        run.Out() << "secrets left out: " << record.secrets << '\n';
        for (const Unrecorded& each : record.unrecorded) {
            run.Out() << "not all recorded: " << Printable(ToUtf8(each.className)) << "\n  "
                      << Printable(ReasonOf(each)) << '\n';
        }
    }

    std::string m_file;
};

} // namespace

void AddMachineCommands(CommandTree& tree) {
    tree.AddNoun("machine", "A whole machine", CommandTree::Group::Diagnostics)
        .Query("record", "Write what the provider holds as a machine file for --simulate",
               std::make_unique<RecordVerb>());
}

} // namespace quilletctl
