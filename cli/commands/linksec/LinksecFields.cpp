// What the records of link security hold.
#include "commands/linksec/LinksecFields.h"

#include "texts/InWords.h"
#include "texts/Text.h"

namespace quilletctl {

namespace {

/// All that is ever told of a secret: whether there is one.
Field Masked(const char* key, const char* label, const quillet::Secret& secret) {
    return {key, label, secret.IsEmpty() ? Json() : Json("***"), true};
}

/// A number whose meaning is the provider's own.
Field Numbered(const char* key, const char* label, std::int32_t number) {
    return {key, label, number, false, UnknownText(number)};
}

} // namespace

quillet::ManualKeys ReadKeys(quillet::Session& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &quillet::Session::ReadManualKeys, adapter, "the keys");
}

quillet::Authentication ReadAuthentication(quillet::Session& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &quillet::Session::ReadAuthentication, adapter, "the authentication");
}

quillet::SavedCredentials ReadSaved(quillet::Session& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &quillet::Session::ReadSavedCredentials, adapter, "the saved credentials");
}

quillet::MasterKey ReadMasterKey(quillet::Session& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &quillet::Session::ReadMasterKey, adapter, "the pairwise master key");
}

std::vector<Field> FieldsOf(const quillet::ManualKeys& keys) {
    const quillet::SecureAssociation& outgoing = keys.outgoing;
    const quillet::SecureAssociation& incoming = keys.incoming;
    return {Masked("outgoing.key", "Outgoing key", outgoing.key),
            {"outgoing.associationNumbers",
             "Outgoing association numbers",
             {outgoing.firstNumber, outgoing.secondNumber}},
            {"outgoing.channelIdentifier", "Outgoing channel identifier", ToUtf8(outgoing.channelId)},
            {"outgoing.identifierInFrames", "Identifier in outgoing frames", keys.includeChannelId},
            Masked("incoming.key", "Incoming key", incoming.key),
            {"incoming.associationNumbers",
             "Incoming association numbers",
             {incoming.firstNumber, incoming.secondNumber}},
            {"incoming.channelIdentifier", "Incoming channel identifier", ToUtf8(incoming.channelId)},
            {"encryption", "Encryption", keys.encryption}};
}

std::vector<Field> FieldsOf(const quillet::Authentication& authentication) {
    const quillet::AuthenticationMethods& methods = authentication.methods;
    return {Numbered("outerEap", "Outer EAP method", methods.outer),
            Numbered("innerEap", "Inner EAP method", methods.inner),
            {"userName", "User name", ToUtf8(authentication.userName)},
            Masked("password", "Password", authentication.password),
            {"machineDomainName", "Machine and domain", ToUtf8(authentication.machineDomainName)},
            {"machineCredentials", "Machine's credentials", authentication.machineCredentials},
            {"windowsCredentials", "Windows credentials", authentication.windowsCredentials, false,
             YesOrNo(authentication.windowsCredentials != 0)},
            {"autoPac", "Automatic PAC", authentication.autoPac},
            {"pacAuthority", "PAC authority", ToUtf8(authentication.pac)},
            Numbered("keyType", "Kind of keys", methods.keySecurity),
            {"randomMac", "Random MAC address", methods.randomMac}};
}

std::vector<Field> FieldsOf(const quillet::SavedCredentials& saved) {
    return {{"userName", "Saved user name", ToUtf8(saved.userName)},
            Masked("password", "Saved password", saved.password),
            {"machineDomainName", "Saved machine and domain", ToUtf8(saved.machineDomainName)},
            {"machineCredentials", "Saved machine's credentials", saved.machineCredentials}};
}

std::vector<Field> FieldsOf(const quillet::MasterKey& key) {
    return {Masked("key", "Pairwise master key", key.key),
            {"randomMac", "Random MAC address", key.randomMac}};
}

void AddTo(Sheet& sheet, const std::vector<Field>& fields) {
    for (const Field& field : fields) {
        const Json& value = field.value;
        sheet.Add(field.label, !field.text.empty()  ? field.text
                               : value.is_null()    ? std::string()
                               : value.is_boolean() ? YesOrNo(value.get<bool>())
                               : value.is_string()  ? value.get<std::string>()
                                                    : TextOf(value));
    }
}

} // namespace quilletctl
