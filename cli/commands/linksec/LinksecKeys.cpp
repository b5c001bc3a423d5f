// quilletctl linksec set-keys: the manually entered keys of an adapter.
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecFields.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

const std::vector<std::string> kKeys{"both", "tx", "rx", "none"};

class SetKeys final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--tx-number1", m_txNumber1, kLeast, kGreatest, "First outgoing association number");
        syntax.Number("--tx-number2", m_txNumber2, kLeast, kGreatest, "Second outgoing association number");
        syntax.Text("--tx-sci", m_txSci, "TEXT", "Outgoing secure channel identifier");
        syntax.Choice("--include-sci", m_includeSci, kOnOff, "Put it into outgoing frames");
        syntax.Number("--rx-number1", m_rxNumber1, kLeast, kGreatest, "First incoming association number");
        syntax.Number("--rx-number2", m_rxNumber2, kLeast, kGreatest, "Second incoming association number");
        syntax.Text("--rx-sci", m_rxSci, "TEXT", "Incoming secure channel identifier");
        syntax.Choice("--encryption", m_encryption, kOnOff, "Encrypt frames, not only authenticate them");
        syntax.Choice("--keys", m_keys, kKeys, "Which keys are new (default: both)");
        m_reload.Declare(syntax);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::ManualKeys wanted = ReadKeys(run.Session(), adapter);
        if (m_keys != "rx" && m_keys != "none") {
            Ask(run, "Key for outgoing frames", wanted.outgoing.key);
        }
        if (m_keys != "tx" && m_keys != "none") {
            Ask(run, "Key for incoming frames", wanted.incoming.key);
        }
        Take(m_txNumber1, wanted.outgoing.firstNumber);
        Take(m_txNumber2, wanted.outgoing.secondNumber);
        Take(m_txSci, wanted.outgoing.channelId);
        Take(m_includeSci, wanted.includeChannelId);
        Take(m_rxNumber1, wanted.incoming.firstNumber);
        Take(m_rxNumber2, wanted.incoming.secondNumber);
        Take(m_rxSci, wanted.incoming.channelId);
        Take(m_encryption, wanted.encryption);
        return ChangeInSet(
            run, "set the keys of " + adapter.Called(), "keys set", FieldsOf(wanted),
            [&](quillet::Session& session) { session.SetManualKeys(adapter.id, wanted, m_reload.Chosen()); },
            [&](quillet::Session& session, Verification& taken) {
                const quillet::ManualKeys now = ReadKeys(session, adapter);
                const std::vector<Field> fields = FieldsOf(wanted);
                taken.Compare(fields, FieldsOf(now));
                taken.CompareSecret(fields, "outgoing.key", wanted.outgoing.key, now.outgoing.key);
                taken.CompareSecret(fields, "incoming.key", wanted.incoming.key, now.incoming.key);
            });
    }

    void Ask(const Invocation& run, const char* asked, quillet::Secret& key) const {
        quillet::Secret given = m_secrets.Read(run, asked, Blank::KeepsAtPrompt);
        if (!given.IsEmpty()) {
            key = std::move(given);
        }
    }

    std::optional<LONG> m_txNumber1, m_txNumber2, m_rxNumber1, m_rxNumber2;
    std::optional<std::string> m_txSci, m_rxSci;
    std::string m_includeSci, m_encryption, m_keys;
    ReloadOption m_reload;
    SecretInput m_secrets;
};

} // namespace

void AddLinksecKeys(CommandTree::Noun& linksec) {
    linksec.Verb("set-keys", "Change the manually entered keys; what is not named stays",
                 std::make_unique<SetKeys>());
}

} // namespace quilletctl
