// quilletctl report: the machine on one page, or in one drawing.
#include "commands/Commands.h"
#include "commands/report/Differences.h"
#include "commands/report/Drawing.h"
#include "commands/report/Page.h"
#include "files/Files.h"
#include "terminal/Progress.h"
#include "texts/Text.h"
#include "texts/UtcText.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <memory>
#include <optional>

namespace quilletctl {

namespace {

bool EndsIn(const std::string& file, std::string_view ending) {
    return file.size() > ending.size() &&
           SameIgnoringCase(std::string_view(file).substr(file.size() - ending.size()), ending);
}

class WriteReport final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("file", m_file,
                        "The file to write: FILE.html is the page, FILE.svg the drawing alone");
    }

    ExitStatus Run(Invocation& run) override {
        const bool isDrawing = EndsIn(m_file, ".svg");
        if (!isDrawing && !EndsIn(m_file, ".html")) {
            throw UsageError(
                "report: the file's name must end in .html (a page) or .svg (the drawing alone)");
        }
        if (!run.MayReplace(m_file)) {
            return ExitStatus::Done;
        }
        const MachineFacts facts = Read(run, isDrawing ? Detail::Drawing : Detail::All);
        run.BeginChanges({"write the report to " + m_file});
        ReplaceWholeFile(
            m_file, isDrawing ? DrawMachine(facts)
                              : PageOf(facts, "Made by quilletctl " QUILLETCTL_VERSION ", " +
                                                  UtcText(std::chrono::system_clock::now(), " ") + " UTC"));
        Tell(run, facts);
        return ExitStatus::Done;
    }

  private:
    static MachineFacts Read(Invocation& run, Detail detail) {
        quillet::Session& session = run.Session();
        std::optional<Progress> bar;
        if (run.Screen().outIsTerminal && !run.WantsJson()) {
            bar.emplace(run.Screen());
        }
        const std::string machine = run.MachineName().empty() ? "this machine" : run.MachineName();
        return ReadMachineFacts(
            session, machine, detail, [&](const std::string& what, std::size_t done, std::size_t all) {
                if (bar) {
                    bar->Show(what, all == 0 ? std::nullopt : std::optional(Pieces{done, all}));
                }
            });
    }

    void Tell(Invocation& run, const MachineFacts& facts) const {
        if (run.WantsJson()) {
            run.Print(Json{{"file", m_file},
                           {"adapters", facts.adapters.value.size()},
                           {"teams", facts.teams.value.size()},
                           {"differences", DifferencesFromDefaults(facts).size()},
                           {"untold", facts.untold}});
            return;
        }
        run.Out() << "the report was written to " << Printable(m_file) << '\n';
        if (!facts.untold.empty()) {
            run.Out() << "the provider did not tell everything; the report names what: "
                      << facts.untold.size() << '\n';
        }
    }

    std::string m_file;
};

} // namespace

void AddReportCommand(CommandTree& tree) {
    tree.AddCommand("report", "The whole machine on one page", CommandTree::Group::Diagnostics,
                    std::make_unique<WriteReport>());
}

} // namespace quilletctl
