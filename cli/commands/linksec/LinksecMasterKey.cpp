// quilletctl linksec pmk: the pairwise master key of an adapter.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecFields.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"

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
        m_reload.Declare(syntax);
        m_secrets.Declare(syntax);
    }
    bool OnlyReads() const noexcept override { return !IsNew() && !m_remove && m_randomMac.empty(); }

  private:
    bool IsNew() const noexcept { return m_set || m_secrets.IsNamed(); }

    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::MasterKey wanted = ReadMasterKey(run.Session(), adapter);
        if (IsNew() && m_remove) {
            throw UsageError("--remove: not together with a new key");
        }
        if (OnlyReads()) {
            return Show(adapter, wanted, run);
        }
        if (IsNew()) {
            wanted.key = m_secrets.Read(run, "Pairwise master key");
        } else if (m_remove) {
            wanted.key.Clear();
        }
        Take(m_randomMac, wanted.randomMac);
        return ChangeInSet(
            run, "set the pairwise master key of " + adapter.Called(), "pairwise master key set",
            FieldsOf(wanted),
            [&](quillet::Session& session) { session.SetMasterKey(adapter.id, wanted, m_reload.Chosen()); },
            [&](quillet::Session& session, Verification& taken) {
                const quillet::MasterKey now = ReadMasterKey(session, adapter);
                const std::vector<Field> fields = FieldsOf(wanted);
                taken.Compare(fields, FieldsOf(now));
                taken.CompareSecret(fields, "key", wanted.key, now.key);
            });
    }

    static ExitStatus Show(const ListedAdapter& adapter, const quillet::MasterKey& key, Invocation& run) {
        const std::vector<Field> fields = FieldsOf(key);
        Json json{{"path", adapter.path}};
        json.update(AsJson(fields));
        Sheet sheet;
        AddTo(sheet, fields);
        return AnswerSheet(run, json, sheet);
    }

    bool m_set = false;
    bool m_remove = false;
    std::string m_randomMac;
    ReloadOption m_reload;
    SecretInput m_secrets;
};

} // namespace

void AddLinksecMasterKey(CommandTree::Noun& linksec) {
    linksec.Verb("pmk", "Tell whether there is a pairwise master key, or set one",
                 std::make_unique<MasterKey>());
}

} // namespace quilletctl
