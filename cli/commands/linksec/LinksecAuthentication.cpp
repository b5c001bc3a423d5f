// quilletctl linksec set-auth: how an adapter authenticates.
#include "changes/ClientSet.h"
#include "commands/AdapterCommand.h"
#include "commands/linksec/LinksecFields.h"
#include "commands/linksec/LinksecOptions.h"
#include "commands/linksec/LinksecVerbs.h"
#include "secrets/SecretInput.h"

#include <map>
#include <memory>
#include <optional>

namespace quilletctl {

namespace {

class SetAuthentication final : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Number("--outer", m_outer, 1, 4, "Outer EAP method");
        syntax.Number("--inner", m_inner, kLeast, kGreatest,
                      "Inner EAP method, 1 to 3; 0: leave it as it is");
        syntax.Text("--user", m_user, "NAME", "User name");
        syntax.Flag("--password", m_askPassword, "Ask for a new password (as with --secret-fd)");
        syntax.Number("--changed-credentials", m_changed, kLeast, kGreatest,
                      "Which kind of credentials changed, the provider's number");
        syntax.Choice("--machine-credentials", m_machine, kOnOff, "Use the machine's credentials");
        syntax.Number("--windows-credentials", m_windows, kLeast, kGreatest,
                      "Not 0: use the credentials of the user who is logged on");
        syntax.Choice("--auto-pac", m_autoPac, kOnOff, "Obtain the PAC automatically");
        syntax.Text("--pac-authority", m_authority, "TEXT", "File or authority of the PAC");
        syntax.Number("--key-type", m_keyType, kLeast, kGreatest, "Kind of keys, the provider's number");
        syntax.Choice("--random-mac", m_randomMac, kOnOff, "Use a random MAC address");
        m_reload.Declare(syntax);
        m_secrets.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        quillet::Authentication wanted = ReadAuthentication(run.Session(), adapter);
        // A password that is not sent stays; there is no need to send it around.
        wanted.password.Clear();
        if (m_askPassword || m_secrets.IsNamed()) {
            wanted.password = m_secrets.Read(run, "Password");
        }
        Take(m_outer, wanted.methods.outer);
        Take(m_inner, wanted.methods.inner);
        Take(m_keyType, wanted.methods.keySecurity);
        Take(m_user, wanted.userName);
        Take(m_changed, wanted.changedCredentials);
        Take(m_machine, wanted.machineCredentials);
        Take(m_windows, wanted.windowsCredentials);
        Take(m_autoPac, wanted.autoPac);
        Take(m_authority, wanted.pac);
        Take(m_randomMac, wanted.methods.randomMac);
        return ChangeInSet(
            run, "set the authentication of " + adapter.Called(), "authentication set",
            Named(FieldsOf(wanted)),
            [&](quillet::Session& session) {
                session.SetAuthentication(adapter.id, wanted, m_reload.Chosen());
            },
            [&](quillet::Session& session, Verification& taken) {
                const quillet::Authentication now = ReadAuthentication(session, adapter);
                taken.Compare(Named(FieldsOf(wanted)), FieldsOf(now));
                if (!wanted.password.IsEmpty()) {
                    taken.CompareSecret(FieldsOf(wanted), "password", wanted.password, now.password);
                }
            });
    }

    /// Those of the values that the command line names. What goes with an outer method only is not sent with
    /// the others, and is among them all the same: whoever names it wants it set.
    std::vector<Field> Named(std::vector<Field> fields) const {
        const std::map<std::string, bool> named{{"outerEap", m_outer.has_value()},
                                                {"innerEap", m_inner.value_or(0) != 0},
                                                {"userName", m_user.has_value()},
                                                {"password", m_askPassword || m_secrets.IsNamed()},
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

    std::optional<LONG> m_outer, m_inner, m_changed, m_windows, m_keyType;
    std::optional<std::string> m_user, m_authority;
    std::string m_machine, m_autoPac, m_randomMac;
    bool m_askPassword = false;
    ReloadOption m_reload;
    SecretInput m_secrets;
};

} // namespace

void AddLinksecAuthentication(CommandTree::Noun& linksec) {
    linksec.Verb("set-auth", "Change how the adapter authenticates; what is not named stays",
                 std::make_unique<SetAuthentication>());
}

} // namespace quilletctl
