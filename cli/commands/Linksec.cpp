// quilletctl linksec: link security of an adapter. Secrets are asked for, never shown, and never on the
// command line.
#include "AdapterCommand.h"
#include "ClientSet.h"
#include "Commands.h"
#include "SecretInput.h"
#include "Sheet.h"
#include "Text.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <sstream>

namespace quilletctl {

namespace {

const std::vector<std::string> SWITCH{"on", "off"};
constexpr LONG LEAST = std::numeric_limits<LONG>::min();
constexpr LONG GREATEST = std::numeric_limits<LONG>::max();

/// All that is ever told of a secret: whether there is one.
std::string Masked(const std::wstring& secret) {
    return secret.empty() ? std::string() : "***";
}

Json MaskedJson(const std::wstring& secret) {
    return secret.empty() ? Json() : Json("***");
}

CAdapterManualAuthInfo ReadKeys(CQuillet& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &CQuillet::GetAdapterLinksecManualAuthOptions, adapter, "the keys");
}

CAdapterAuthTypeInfo ReadAuthentication(CQuillet& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &CQuillet::GetAdapterLinksecStrictPreferredOptions, adapter,
                      "the authentication");
}

CAdapterLinksecSavedCredInfo ReadSaved(CQuillet& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &CQuillet::GetAdapterSavedCredOptions, adapter, "the saved credentials");
}

CAdapterManualPMKInfo ReadMasterKey(CQuillet& session, const ListedAdapter& adapter) {
    CAdapterManualPMKInfo info;
    bool randomMac = false;
    Invocation::Check(session.GetAdapterManualPMKOptions(ToWide(adapter.path), info, randomMac),
                      "read the pairwise master key of " + adapter.Called());
    info.m_bRandMACAddress = randomMac;
    return info;
}

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

void DeclareReload(Syntax& syntax, bool& reload) {
    syntax.Flag("--reload", reload, "Reload the driver, so that the change takes effect at once");
}

class ShowLinksec final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CQuillet& session = run.Session();
        const CAdapterAuthTypeInfo auth = ReadAuthentication(session, adapter);
        const CAdapterManualAuthInfo keys = ReadKeys(session, adapter);
        const CAdapterLinksecSavedCredInfo saved = ReadSaved(session, adapter);
        if (run.WantsJson()) {
            run.Print(Json{{"path", adapter.path},
                           {"authentication", AsJson(auth)},
                           {"keys", AsJson(keys)},
                           {"savedCredentials", AsJson(saved)}});
            return ExitStatus::Done;
        }
        Sheet sheet;
        sheet.Add("Outer EAP method", std::to_string(auth.m_eOuterEAP))
            .Add("Inner EAP method", std::to_string(auth.m_InnerEAP))
            .Add("User name", ToUtf8(auth.m_sUserName))
            .Add("Password", Masked(auth.m_sPassword))
            .Add("Machine and domain", ToUtf8(auth.m_sMachineDomainName))
            .Add("Machine's credentials", YesOrNo(auth.m_bMachineCred))
            .Add("Windows credentials", std::to_string(auth.m_bUseWindowsCreds))
            .Add("Automatic PAC", YesOrNo(auth.m_bUseAutoPAC))
            .Add("PAC authority", ToUtf8(auth.m_sPACAuthority))
            .Add("Kind of keys", std::to_string(auth.m_eKeySecType))
            .Add("Random MAC address", YesOrNo(auth.m_bRandMACAddress))
            .Add("Outgoing key", Masked(keys.m_sTXSAKey))
            .Add("Outgoing association numbers",
                 std::to_string(keys.m_nTXAssocNum1) + ", " + std::to_string(keys.m_nTXAssocNum2))
            .Add("Outgoing channel identifier", ToUtf8(keys.m_sTXSCI))
            .Add("Identifier in outgoing frames", YesOrNo(keys.m_bIncludeSCIOnTX))
            .Add("Incoming key", Masked(keys.m_sRXSAKey))
            .Add("Incoming association numbers",
                 std::to_string(keys.m_nRXAssocNum1) + ", " + std::to_string(keys.m_nRXAssocNum2))
            .Add("Incoming channel identifier", ToUtf8(keys.m_sRXSCI))
            .Add("Encryption", YesOrNo(keys.m_bUseEncryption))
            .Add("Saved user name", ToUtf8(saved.m_sUserName))
            .Add("Saved password", Masked(saved.m_sPassword))
            .Add("Saved machine and domain", ToUtf8(saved.m_sMachineDomainName));
        sheet.Print(run.Screen());
        return ExitStatus::Done;
    }

    static Json AsJson(const CAdapterAuthTypeInfo& auth) {
        return Json{{"outerEap", static_cast<LONG>(auth.m_eOuterEAP)},
                    {"innerEap", static_cast<LONG>(auth.m_InnerEAP)},
                    {"userName", ToUtf8(auth.m_sUserName)},
                    {"password", MaskedJson(auth.m_sPassword)},
                    {"machineDomainName", ToUtf8(auth.m_sMachineDomainName)},
                    {"machineCredentials", auth.m_bMachineCred},
                    {"windowsCredentials", auth.m_bUseWindowsCreds},
                    {"autoPac", auth.m_bUseAutoPAC},
                    {"pacAuthority", ToUtf8(auth.m_sPACAuthority)},
                    {"keyType", static_cast<LONG>(auth.m_eKeySecType)},
                    {"randomMac", auth.m_bRandMACAddress}};
    }
    static Json AsJson(const CAdapterManualAuthInfo& keys) {
        return Json{{"outgoing", Json{{"key", MaskedJson(keys.m_sTXSAKey)},
                                      {"associationNumbers", {keys.m_nTXAssocNum1, keys.m_nTXAssocNum2}},
                                      {"channelIdentifier", ToUtf8(keys.m_sTXSCI)},
                                      {"identifierInFrames", keys.m_bIncludeSCIOnTX}}},
                    {"incoming", Json{{"key", MaskedJson(keys.m_sRXSAKey)},
                                      {"associationNumbers", {keys.m_nRXAssocNum1, keys.m_nRXAssocNum2}},
                                      {"channelIdentifier", ToUtf8(keys.m_sRXSCI)}}},
                    {"encryption", keys.m_bUseEncryption}};
    }
    static Json AsJson(const CAdapterLinksecSavedCredInfo& saved) {
        return Json{{"userName", ToUtf8(saved.m_sUserName)},
                    {"password", MaskedJson(saved.m_sPassword)},
                    {"machineDomainName", ToUtf8(saved.m_sMachineDomainName)},
                    {"machineCredentials", saved.m_bMachineCred}};
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
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterManualAuthInfo info = ReadKeys(run.Session(), adapter);
        Ask("Key for outgoing frames (empty: as it is)", info, &CAdapterManualAuthInfo::m_sTXSAKey);
        Ask("Key for incoming frames (empty: as it is)", info, &CAdapterManualAuthInfo::m_sRXSAKey);
        Take(m_txNumber1, info.m_nTXAssocNum1);
        Take(m_txNumber2, info.m_nTXAssocNum2);
        Take(m_txSci, info.m_sTXSCI);
        Take(m_includeSci, info.m_bIncludeSCIOnTX);
        Take(m_rxNumber1, info.m_nRXAssocNum1);
        Take(m_rxNumber2, info.m_nRXAssocNum2);
        Take(m_rxSci, info.m_sRXSCI);
        Take(m_encryption, info.m_bUseEncryption);
        return ChangeInSet(run, "set the keys of " + adapter.Called(), "keys set", [&](CQuillet& session) {
            return session.SetAdapterLinksecManualAuthOptions(ToWide(adapter.path), info, m_reload);
        });
    }

    void Ask(const char* asked, CAdapterManualAuthInfo& info,
             std::wstring CAdapterManualAuthInfo::*key) const {
        // What was there goes into this record, which overwrites it.
        CAdapterManualAuthInfo given;
        m_secrets.Read(asked, given.*key);
        if (!(given.*key).empty()) {
            (given.*key).swap(info.*key);
        }
    }

    std::optional<LONG> m_txNumber1, m_txNumber2, m_rxNumber1, m_rxNumber2;
    std::optional<std::string> m_txSci, m_rxSci;
    std::string m_includeSci, m_encryption;
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
        return ChangeInSet(run, "set the authentication of " + adapter.Called(), "authentication set",
                           [&](CQuillet& session) {
                               return session.SetAdapterLinksecStrictPreferredOptions(ToWide(adapter.path),
                                                                                      info, m_reload);
                           });
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

class ImportPac final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("file", m_file, "Its path on the managed machine");
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterPACInfo info;
        info.m_sPACPath = ToWide(m_file);
        info.m_bPACInfoChanged = true;
        m_secrets.Read("Password of the file", info.m_sPACFilePassword);
        return ChangeInSet(run, "import " + m_file + " into " + adapter.Called(), "PAC file imported",
                           [&](CQuillet& session) {
                               return session.AdapterImportManualPAC(ToWide(adapter.path), info, m_reload);
                           });
    }

    std::string m_file;
    bool m_reload = false;
    SecretInput m_secrets;
};

class ShowPac final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("name", m_file, "Name of the imported file");
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterPacFileInfo info;
        info.m_sPACFileName = ToWide(m_file);
        Invocation::Check(run.Session().GetAdapterPacFileContents(ToWide(adapter.path), info),
                          "read " + m_file + " of " + adapter.Called());
        if (run.WantsJson()) {
            run.Print(Json{{"path", adapter.path},
                           {"file", m_file},
                           {"type", info.m_lPacType},
                           {"info", ToUtf8(info.m_sinfo)},
                           {"authority", ToUtf8(info.m_saId)},
                           {"authorityInfo", ToUtf8(info.m_saIdInfo)},
                           {"issuedTo", ToUtf8(info.m_sIId)},
                           {"expiryTime", info.m_lExpiryTime}});
            return ExitStatus::Done;
        }
        Sheet sheet;
        sheet.Add("File", m_file)
            .Add("Kind", std::to_string(info.m_lPacType))
            .Add("Description", ToUtf8(info.m_sinfo))
            .Add("Authority", ToUtf8(info.m_saId))
            .Add("Authority's description", ToUtf8(info.m_saIdInfo))
            .Add("Issued to", ToUtf8(info.m_sIId))
            .Add("Expires", std::to_string(info.m_lExpiryTime));
        sheet.Print(run.Screen());
        return ExitStatus::Done;
    }

    std::string m_file;
};

class DeletePac final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("name", m_file, "Name of the imported file");
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        if (!run.ConfirmChange("Delete " + m_file + " from " + adapter.Called() + "?")) {
            return ExitStatus::Done;
        }
        return ChangeInSet(
            run, "delete " + m_file + " from " + adapter.Called(), "PAC file deleted",
            [&](CQuillet& session) { return session.DeletePacFile(ToWide(adapter.path), ToWide(m_file)); });
    }

    std::string m_file;
};

class MasterKey final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Flag("--set", m_set, "Ask for a new key (as with --secret-fd)");
        syntax.Choice("--random-mac", m_randomMac, SWITCH, "Use a random MAC address");
        DeclareReload(syntax, m_reload);
        m_secrets.Declare(syntax);
    }
    bool OnlyReads() const noexcept override { return !IsNew() && m_randomMac.empty(); }

  private:
    bool IsNew() const noexcept { return m_set || m_secrets.IsNamed(); }

    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        CAdapterManualPMKInfo info = ReadMasterKey(run.Session(), adapter);
        if (OnlyReads()) {
            return Show(adapter, info, run);
        }
        if (IsNew()) {
            info.Clear();
            m_secrets.Read("Pairwise master key", info.m_sManualPMKKey);
        }
        Take(m_randomMac, info.m_bRandMACAddress);
        return ChangeInSet(run, "set the pairwise master key of " + adapter.Called(),
                           "pairwise master key set", [&](CQuillet& session) {
                               return session.SetAdapterManualPMKOptions(ToWide(adapter.path), info, m_reload,
                                                                         false);
                           });
    }

    static ExitStatus Show(const ListedAdapter& adapter, const CAdapterManualPMKInfo& info, Invocation& run) {
        if (run.WantsJson()) {
            run.Print(Json{{"path", adapter.path},
                           {"key", MaskedJson(info.m_sManualPMKKey)},
                           {"randomMac", info.m_bRandMACAddress}});
            return ExitStatus::Done;
        }
        Sheet sheet;
        sheet.Add("Pairwise master key", Masked(info.m_sManualPMKKey))
            .Add("Random MAC address", YesOrNo(info.m_bRandMACAddress));
        sheet.Print(run.Screen());
        return ExitStatus::Done;
    }

    bool m_set = false;
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
    tree.AddNoun("linksec", "Link security (IEEE 802.1AE) of an adapter")
        .Query("show", "Show authentication, keys and saved credentials; secrets as ***",
               std::make_unique<ShowLinksec>())
        .Verb("set-keys", "Change the manually entered keys; what is not named stays",
              std::make_unique<SetKeys>())
        .Verb("set-auth", "Change how the adapter authenticates; what is not named stays",
              std::make_unique<SetAuthentication>())
        .Verb("import-pac", "Import a PAC file of the managed machine", std::make_unique<ImportPac>())
        .Query("pac-show", "Show what an imported PAC file holds", std::make_unique<ShowPac>())
        .Verb("pac-delete", "Delete an imported PAC file", std::make_unique<DeletePac>())
        .Verb("pmk", "Tell whether there is a pairwise master key, or set one", std::make_unique<MasterKey>())
        .Query("stats", "Show the log of security statistics", std::make_unique<ShowStatistics>());
}

} // namespace quilletctl
