// quilletctl linksec set-keys: the manually entered keys of an adapter.
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecFields.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"
#include "texts/Text.h"

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
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterManualAuthInfo info = ReadKeys(run.Session(), adapter);
        if (m_keys != "rx" && m_keys != "none") {
            Ask("Key for outgoing frames", info, &CAdapterManualAuthInfo::m_sTXSAKey);
        }
        if (m_keys != "tx" && m_keys != "none") {
            Ask("Key for incoming frames", info, &CAdapterManualAuthInfo::m_sRXSAKey);
        }
        Take(m_txNumber1, info.m_nTXAssocNum1);
        Take(m_txNumber2, info.m_nTXAssocNum2);
        Take(m_txSci, info.m_sTXSCI);
        Take(m_includeSci, info.m_bIncludeSCIOnTX);
        Take(m_rxNumber1, info.m_nRXAssocNum1);
        Take(m_rxNumber2, info.m_nRXAssocNum2);
        Take(m_rxSci, info.m_sRXSCI);
        Take(m_encryption, info.m_bUseEncryption);
        return ChangeInSet(
            run, "set the keys of " + adapter.Called(), "keys set",
            [&](CQuillet& session) {
                return session.SetAdapterLinksecManualAuthOptions(ToWide(adapter.path), info, m_reload);
            },
            [&](CQuillet& session, Verification& taken) {
                const CAdapterManualAuthInfo now = ReadKeys(session, adapter);
                const std::vector<Field> wanted = FieldsOf(info);
                taken.Compare(wanted, FieldsOf(now));
                taken.CompareSecret(wanted, "outgoing.key", info.m_sTXSAKey, now.m_sTXSAKey);
                taken.CompareSecret(wanted, "incoming.key", info.m_sRXSAKey, now.m_sRXSAKey);
            });
    }

    void Ask(const char* asked, CAdapterManualAuthInfo& info,
             std::wstring CAdapterManualAuthInfo::*key) const {
        // What was there goes into this record, which overwrites it.
        CAdapterManualAuthInfo given;
        m_secrets.Read(asked, given.*key, Blank::KeepsAtPrompt);
        if (!(given.*key).empty()) {
            (given.*key).swap(info.*key);
        }
    }

    std::optional<LONG> m_txNumber1, m_txNumber2, m_rxNumber1, m_rxNumber2;
    std::optional<std::string> m_txSci, m_rxSci;
    std::string m_includeSci, m_encryption, m_keys;
    bool m_reload = false;
    SecretInput m_secrets;
};

} // namespace

void AddLinksecKeys(CommandTree::Noun& linksec) {
    linksec.Verb("set-keys", "Change the manually entered keys; what is not named stays",
                 std::make_unique<SetKeys>());
}

} // namespace quilletctl
