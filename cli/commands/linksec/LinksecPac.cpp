// quilletctl linksec import-pac, pac-show and pac-delete: the PAC files of an adapter.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

/// What an adapter tells of a PAC file, in the order of what that says for its being there. A provider may
/// answer about a file that it does not have, with nothing in the answer.
enum class Pac { Missing, Untold, There };

Pac LookForPac(CQuillet& session, const ListedAdapter& adapter, const std::string& name) {
    CAdapterPacFileInfo info;
    info.m_sPACFileName = ToWide(name);
    const HRESULT result = session.GetAdapterPacFileContents(ToWide(adapter.path), info);
    if (result == static_cast<HRESULT>(WBEM_E_NOT_FOUND)) {
        return Pac::Missing;
    }
    const bool isTold = info.m_lPacType != 0 || !info.m_sinfo.empty() || !info.m_saId.empty() ||
                        !info.m_saIdInfo.empty() || !info.m_sIId.empty() || info.m_lExpiryTime != 0;
    return SUCCEEDED(result) && isTold ? Pac::There : Pac::Untold;
}

class ImportPac final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("file", m_file, "Its path on the managed machine");
        syntax.Flag("--no-password", m_noPassword, "The file has no password; none is asked for");
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterPACInfo info;
        info.m_sPACPath = ToWide(m_file);
        info.m_bPACInfoChanged = true;
        if (m_noPassword && m_secrets.IsNamed()) {
            throw UsageError("--no-password: not together with --secret-fd");
        }
        if (!m_noPassword) {
            m_secrets.Read("Password of the file", info.m_sPACFilePassword);
        }
        const std::string name = m_file.substr(m_file.find_last_of("/\\") + 1);
        const Pac before = LookForPac(run.Session(), adapter, name);
        return ChangeInSet(
            run, "import " + m_file + " into " + adapter.Called(), "PAC file imported",
            [&](CQuillet& session) {
                return session.AdapterImportManualPAC(ToWide(adapter.path), info, m_reload);
            },
            [&](CQuillet& session, Verification& taken) {
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
    bool m_reload = false;
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
        CAdapterPacFileInfo info;
        info.m_sPACFileName = ToWide(m_file);
        ThrowIfRefused(run.Session().GetAdapterPacFileContents(ToWide(adapter.path), info),
                       "read " + m_file + " of " + adapter.Called());
        return AnswerSheet(run,
                           Json{{"path", adapter.path},
                                {"file", m_file},
                                {"type", info.m_lPacType},
                                {"info", ToUtf8(info.m_sinfo)},
                                {"authority", ToUtf8(info.m_saId)},
                                {"authorityInfo", ToUtf8(info.m_saIdInfo)},
                                {"issuedTo", ToUtf8(info.m_sIId)},
                                {"expiryTime", info.m_lExpiryTime}},
                           Sheet()
                               .Add("File", m_file)
                               .Add("Kind", std::to_string(info.m_lPacType))
                               .Add("Description", ToUtf8(info.m_sinfo))
                               .Add("Authority", ToUtf8(info.m_saId))
                               .Add("Authority's description", ToUtf8(info.m_saIdInfo))
                               .Add("Issued to", ToUtf8(info.m_sIId))
                               .Add("Expires", std::to_string(info.m_lExpiryTime)));
    }
};

class DeletePac final : public PacCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        if (!run.ConfirmChange("Delete " + m_file + " from " + adapter.Called() + "?")) {
            return ExitStatus::Done;
        }
        const Pac before = LookForPac(run.Session(), adapter, m_file);
        return ChangeInSet(
            run, "delete " + m_file + " from " + adapter.Called(), "PAC file deleted",
            [&](CQuillet& session) { return session.DeletePacFile(ToWide(adapter.path), ToWide(m_file)); },
            [&](CQuillet& session, Verification& taken) {
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
