// quilletctl linksec: link security of an adapter. Secrets are asked for, never shown, and never on the
// command line.
#include "app/Answers.h"
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "commands/linksec/LinksecFields.h"
#include "secrets/SecretInput.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <map>
#include <sstream>

namespace quilletctl {

namespace {

const std::vector<std::string> SWITCH{"on", "off"};
const std::vector<std::string> KEYS{"both", "tx", "rx", "none"};
constexpr LONG LEAST = std::numeric_limits<LONG>::min();
constexpr LONG GREATEST = std::numeric_limits<LONG>::max();

/// Takes over what the command line gave.
void Take(const std::optional<LONG>& given, LONG& member) {
    member = given.value_or(member);
}

void Take(const std::optional<std::string>& given, std::wstring& member) {
    if (given) {
        member = ToWide(*given);
    }
}

void Take(const std::string& given, bool& member) {
    if (!given.empty()) {
        member = given == "on";
    }
}

void AddTo(Sheet& sheet, const std::vector<Field>& fields) {
    for (const Field& field : fields) {
        const Json& value = field.value;
        sheet.Add(field.label, value.is_null()      ? std::string()
                               : value.is_boolean() ? YesOrNo(value.get<bool>())
                               : value.is_string()  ? value.get<std::string>()
                                                    : TextOf(value));
    }
}

class ShowLinksec final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
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

class SetKeys final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--tx-number1", m_txNumber1, LEAST, GREATEST, "First outgoing association number");
        syntax.Number("--tx-number2", m_txNumber2, LEAST, GREATEST, "Second outgoing association number");
        syntax.Text("--tx-sci", m_txSci, "TEXT", "Outgoing secure channel identifier");
        syntax.Choice("--include-sci", m_includeSci, SWITCH, "Put it into outgoing frames");
        syntax.Number("--rx-number1", m_rxNumber1, LEAST, GREATEST, "First incoming association number");
        syntax.Number("--rx-number2", m_rxNumber2, LEAST, GREATEST, "Second incoming association number");
        syntax.Text("--rx-sci", m_rxSci, "TEXT", "Incoming secure channel identifier");
        syntax.Choice("--encryption", m_encryption, SWITCH, "Encrypt frames, not only authenticate them");
        syntax.Choice("--keys", m_keys, KEYS, "Which keys are new (default: both)");
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

class SetAuthentication final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--outer", m_outer, 1, 4, "Outer EAP method");
        syntax.Number("--inner", m_inner, LEAST, GREATEST, "Inner EAP method, 1 to 3; 0: leave it as it is");
        syntax.Text("--user", m_user, "NAME", "User name");
        syntax.Flag("--password", m_askPassword, "Ask for a new password (as with --secret-fd)");
        syntax.Number("--changed-credentials", m_changed, LEAST, GREATEST,
                      "Which kind of credentials changed, the provider's number");
        syntax.Choice("--machine-credentials", m_machine, SWITCH, "Use the machine's credentials");
        syntax.Number("--windows-credentials", m_windows, LEAST, GREATEST,
                      "Not 0: use the credentials of the user who is logged on");
        syntax.Choice("--auto-pac", m_autoPac, SWITCH, "Obtain the PAC automatically");
        syntax.Text("--pac-authority", m_authority, "TEXT", "File or authority of the PAC");
        syntax.Number("--key-type", m_keyType, LEAST, GREATEST, "Kind of keys, the provider's number");
        syntax.Choice("--random-mac", m_randomMac, SWITCH, "Use a random MAC address");
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterAuthTypeInfo info = ReadAuthentication(run.Session(), adapter);
        // A password that is not sent stays; there is no need to send it around.
        info.Clear();
        if (m_askPassword || m_secrets.IsNamed()) {
            m_secrets.Read("Password", info.m_sPassword);
        }
        TakeCode(m_outer, info.m_eOuterEAP);
        TakeCode(m_inner, info.m_InnerEAP);
        TakeCode(m_keyType, info.m_eKeySecType);
        Take(m_user, info.m_sUserName);
        Take(m_changed, info.m_nTypeOfCredsChanged);
        Take(m_machine, info.m_bMachineCred);
        Take(m_windows, info.m_bUseWindowsCreds);
        Take(m_autoPac, info.m_bUseAutoPAC);
        Take(m_authority, info.m_sPACAuthority);
        Take(m_randomMac, info.m_bRandMACAddress);
        return ChangeInSet(
            run, "set the authentication of " + adapter.Called(), "authentication set",
            [&](CQuillet& session) {
                return session.SetAdapterLinksecStrictPreferredOptions(ToWide(adapter.path), info, m_reload);
            },
            [&](CQuillet& session, Verification& taken) {
                const CAdapterAuthTypeInfo now = ReadAuthentication(session, adapter);
                const std::vector<Field> wanted = Named(FieldsOf(info));
                taken.Compare(wanted, FieldsOf(now));
                if (!info.m_sPassword.empty()) {
                    taken.CompareSecret(FieldsOf(info), "password", info.m_sPassword, now.m_sPassword);
                }
            });
    }

    /// Those of the values that the command line names. What goes with an outer method only is not sent with
    /// the others, and is among them all the same: whoever names it wants it set.
    std::vector<Field> Named(std::vector<Field> fields) const {
        const std::map<std::string, bool> named{{"outerEap", m_outer.has_value()},
                                                {"innerEap", m_inner.value_or(0) != 0},
                                                {"userName", m_user.has_value()},
                                                {"machineCredentials", !m_machine.empty()},
                                                {"windowsCredentials", m_windows.has_value()},
                                                {"autoPac", !m_autoPac.empty()},
                                                {"pacAuthority", m_authority.has_value()},
                                                {"keyType", m_keyType.has_value()},
                                                {"randomMac", !m_randomMac.empty()}};
        std::erase_if(fields, [&named](const Field& field) {
            const auto found = named.find(field.key);
            return found == named.end() || !found->second;
        });
        return fields;
    }

    template <class Code>
    static void TakeCode(const std::optional<LONG>& given, Code& member) {
        member = static_cast<Code>(given.value_or(member));
    }

    std::optional<LONG> m_outer, m_inner, m_changed, m_windows, m_keyType;
    std::optional<std::string> m_user, m_authority;
    std::string m_machine, m_autoPac, m_randomMac;
    bool m_askPassword = false;
    bool m_reload = false;
    SecretInput m_secrets;
};

class MasterKey final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Flag("--set", m_set, "Ask for a new key (as with --secret-fd)");
        syntax.Flag("--remove", m_remove, "Take the key away");
        syntax.Choice("--random-mac", m_randomMac, SWITCH, "Use a random MAC address");
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

class ShowStatistics final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const std::wstring log =
            ReadRecord(run.Session(), &CQuillet::GetAdapterLinksecSecurityStats, adapter, "the statistics");
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
    linksec
        .Query("show", "Show authentication, keys and saved credentials; secrets as ***",
               std::make_unique<ShowLinksec>())
        .Verb("set-keys", "Change the manually entered keys; what is not named stays",
              std::make_unique<SetKeys>())
        .Verb("set-auth", "Change how the adapter authenticates; what is not named stays",
              std::make_unique<SetAuthentication>());
    AddLinksecPac(linksec);
    linksec
        .Verb("pmk", "Tell whether there is a pairwise master key, or set one", std::make_unique<MasterKey>())
        .Query("stats", "Show the log of security statistics", std::make_unique<ShowStatistics>());
}

} // namespace quilletctl
