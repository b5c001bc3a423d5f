// quilletctl linksec import-pac, pac-show and pac-delete: the PAC files of an adapter.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

/// What an adapter tells of a PAC file, in the order of what that says for its being there. A provider may
/// answer about a file that it does not have, with nothing in the answer.
enum class Pac { Missing, Untold, There };

Pac LookForPac(quillet::Session& session, const ListedAdapter& adapter, const std::string& name) {
    try {
        const bool isTold = session.ReadPac(adapter.id, ToWide(name)) != quillet::PacContents();
        return isTold ? Pac::There : Pac::Untold;
    } catch (const quillet::Error& failure) {
        return failure.Code() == static_cast<HRESULT>(WBEM_E_NOT_FOUND) ? Pac::Missing : Pac::Untold;
    }
}

class ImportPac final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("file", m_file, "Its path on the managed machine");
        syntax.Flag("--no-password", m_noPassword, "The file has no password; none is asked for");
        m_reload.Declare(syntax);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::PacFile file;
        file.path = ToWide(m_file);
        file.changed = true;
        if (m_noPassword && m_secrets.IsNamed()) {
            throw UsageError("--no-password: not together with --secret-fd");
        }
        if (!m_noPassword) {
            file.password = m_secrets.Read(run, "Password of the file");
        }
        const std::string name = m_file.substr(m_file.find_last_of("/\\") + 1);
        const Pac before = LookForPac(run.Session(), adapter, name);
        return ChangeInSet(
            run, "import " + m_file + " into " + adapter.Called(), "PAC file imported", {},
            [&](quillet::Session& session) { session.ImportPac(adapter.id, file, m_reload.Chosen()); },
            [&](quillet::Session& session, Verification& taken) {
                const Pac now = LookForPac(session, adapter, name);
                if (now == Pac::Missing) {
                    taken.Add("file", name, Json(), adapter.Called() + " has no " + name);
                } else if (now <= before) {
                    // One of this name was there before: this may be the old one still.
                    taken.LeaveOpen();
                }
            });
    }

    std::string m_file;
    bool m_noPassword = false;
    ReloadOption m_reload;
    SecretInput m_secrets;
};

/// A command about a file that was imported.
class PacCommand : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("name", m_file, "Name of the imported file");
    }

  protected:
    std::string m_file;
};

class ShowPac final : public PacCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const quillet::PacContents pac = Attempt("read " + m_file + " of " + adapter.Called(), [&] {
            return run.Session().ReadPac(adapter.id, ToWide(m_file));
        });
        return AnswerSheet(run,
                           Json{{"path", adapter.path},
                                {"file", m_file},
                                {"type", pac.type},
                                {"typeText", UnknownText(pac.type)},
                                {"info", ToUtf8(pac.description)},
                                {"authority", ToUtf8(pac.authority)},
                                {"authorityInfo", ToUtf8(pac.authorityText)},
                                {"issuedTo", ToUtf8(pac.issuedTo)},
                                {"expiryTime", pac.expires}},
                           Sheet()
                               .Add("File", m_file)
                               .Add("Kind", UnknownText(pac.type))
                               .Add("Description", ToUtf8(pac.description))
                               .Add("Authority", ToUtf8(pac.authority))
                               .Add("Authority's description", ToUtf8(pac.authorityText))
                               .Add("Issued to", ToUtf8(pac.issuedTo))
                               .Add("Expires", std::to_string(pac.expires)));
    }
};

class DeletePac final : public PacCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        if (!run.ConfirmChange("Delete " + m_file + " from " + adapter.Called() + "?")) {
            return ExitStatus::Done;
        }
        const Pac before = LookForPac(run.Session(), adapter, m_file);
        return ChangeInSet(
            run, "delete " + m_file + " from " + adapter.Called(), "PAC file deleted", {},
            [&](quillet::Session& session) { session.DeletePac(adapter.id, ToWide(m_file)); },
            [&](quillet::Session& session, Verification& taken) {
                const Pac now = LookForPac(session, adapter, m_file);
                if (now == Pac::There) {
                    taken.Add("file", Json(), m_file, adapter.Called() + " still has " + m_file);
                } else if (now != Pac::Missing && now >= before) {
                    taken.LeaveOpen();
                }
            });
    }
};

} // namespace

void AddLinksecPac(CommandTree::Noun& linksec) {
    linksec.Verb("import-pac", "Import a PAC file of the managed machine", std::make_unique<ImportPac>())
        .Query("pac-show", "Show what an imported PAC file holds", std::make_unique<ShowPac>())
        .Verb("pac-delete", "Delete an imported PAC file", std::make_unique<DeletePac>());
}

} // namespace quilletctl
