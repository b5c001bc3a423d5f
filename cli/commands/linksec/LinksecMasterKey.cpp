// quilletctl linksec pmk: the pairwise master key of an adapter.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecFields.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

class MasterKey final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Flag("--set", m_set, "Ask for a new key (as with --secret-fd)");
        syntax.Flag("--remove", m_remove, "Take the key away");
        syntax.Choice("--random-mac", m_randomMac, kOnOff, "Use a random MAC address");
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }
    bool OnlyReads() const noexcept override { return !IsNew() && !m_remove && m_randomMac.empty(); }

  private:
    bool IsNew() const noexcept { return m_set || m_secrets.IsNamed(); }

    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterManualPMKInfo info = ReadMasterKey(run.Session(), adapter);
        if (IsNew() && m_remove) {
            throw UsageError("--remove: not together with a new key");
        }
        if (OnlyReads()) {
            return Show(adapter, info, run);
        }
        if (IsNew()) {
            m_secrets.Read("Pairwise master key", info.m_sManualPMKKey);
        } else if (m_remove) {
            info.Clear();
        }
        Take(m_randomMac, info.m_bRandMACAddress);
        return ChangeInSet(
            run, "set the pairwise master key of " + adapter.Called(), "pairwise master key set",
            [&](CQuillet& session) {
                return session.SetAdapterManualPMKOptions(ToWide(adapter.path), info, m_reload, false);
            },
            [&](CQuillet& session, Verification& taken) {
                const CAdapterManualPMKInfo now = ReadMasterKey(session, adapter);
                const std::vector<Field> wanted = FieldsOf(info);
                taken.Compare(wanted, FieldsOf(now));
                taken.CompareSecret(wanted, "key", info.m_sManualPMKKey, now.m_sManualPMKKey);
            });
    }

    static ExitStatus Show(const ListedAdapter& adapter, const CAdapterManualPMKInfo& info, Invocation& run) {
        const std::vector<Field> fields = FieldsOf(info);
        Json json{{"path", adapter.path}};
        json.update(AsJson(fields));
        Sheet sheet;
        AddTo(sheet, fields);
        return AnswerSheet(run, json, sheet);
    }

    bool m_set = false;
    bool m_remove = false;
    std::string m_randomMac;
    bool m_reload = false;
    SecretInput m_secrets;
};

} // namespace

void AddLinksecMasterKey(CommandTree::Noun& linksec) {
    linksec.Verb("pmk", "Tell whether there is a pairwise master key, or set one",
                 std::make_unique<MasterKey>());
}

} // namespace quilletctl
