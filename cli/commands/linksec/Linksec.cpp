// quilletctl linksec: link security of an adapter. Secrets are asked for, never shown, and never on the
// command line.
#include "app/Answers.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "commands/linksec/LinksecFields.h"
#include "commands/linksec/LinksecVerbs.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <sstream>

namespace quilletctl {

namespace {

class ShowLinksec final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::Session& session = run.Session();
        const std::vector<Field> authentication = FieldsOf(ReadAuthentication(session, adapter));
        const std::vector<Field> keys = FieldsOf(ReadKeys(session, adapter));
        const std::vector<Field> saved = FieldsOf(ReadSaved(session, adapter));
        Sheet sheet;
        AddTo(sheet, authentication);
        AddTo(sheet, keys);
        AddTo(sheet, saved);
        return AnswerSheet(run,
                           Json{{"path", adapter.path},
                                {"authentication", AsJson(authentication)},
                                {"keys", AsJson(keys)},
                                {"savedCredentials", AsJson(saved)}},
                           sheet);
    }
};

class ShowStatistics final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const std::wstring log =
            ReadRecord(run.Session(), &quillet::Session::ReadSecurityLog, adapter, "the statistics");
        if (run.WantsJson()) {
            run.Print(Json{{"path", adapter.path}, {"log", ToUtf8(log)}});
            return ExitStatus::Done;
        }
        if (log.empty()) {
            run.Out() << "no statistics\n";
        }
        std::istringstream lines(ToUtf8(log));
        for (std::string line; std::getline(lines, line);) {
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            run.Out() << Printable(line) << '\n';
        }
        return ExitStatus::Done;
    }
};

} // namespace

void AddLinksecCommands(CommandTree& tree) {
    auto linksec = tree.AddNoun("linksec", "Link security (IEEE 802.1AE) of an adapter");
    linksec.Query("show", "Show authentication, keys and saved credentials; secrets as ***",
                  std::make_unique<ShowLinksec>());
    AddLinksecKeys(linksec);
    AddLinksecAuthentication(linksec);
    AddLinksecPac(linksec);
    AddLinksecMasterKey(linksec);
    linksec.Query("stats", "Show the log of security statistics", std::make_unique<ShowStatistics>());
}

} // namespace quilletctl
