// As Names.h, for diagnostics, boot agents and link security.
#pragma once

#include "Names.h"

namespace quillet::python {

template <>
struct Fields<Diagnostic> {
    static constexpr const char* kName = "Diagnostic";
    static constexpr auto kFields =
        std::tuple(Field{"path", &Diagnostic::id}, Field{"name", &Diagnostic::name},
                   Field{"number", &Diagnostic::number}, Field{"group", &Diagnostic::group});
};

template <>
struct Fields<TestMessage> {
    static constexpr const char* kName = "TestMessage";
    static constexpr auto kFields =
        std::tuple(Field{"id", &TestMessage::id}, Field{"attribute", &TestMessage::attribute});
};

template <>
struct Fields<TestResult> {
    static constexpr const char* kName = "TestResult";
    static constexpr auto kFields = std::tuple(
        Field{"path", &TestResult::path}, Field{"name", &TestResult::name},
        Field{"number", &TestResult::number}, Field{"state", &TestResult::state},
        Field{"state_text", &TestResult::stateText}, Field{"code", &TestResult::code},
        Field{"title", &TestResult::title}, Field{"result", &TestResult::result},
        Field{"description", &TestResult::description}, Field{"package_name", &TestResult::packageName},
        Field{"is_package", &TestResult::isPackage}, Field{"messages", &TestResult::messages},
        Field{"members", &TestResult::members});
};

template <>
struct Fields<BootAgent> {
    static constexpr const char* kName = "BootAgent";
    static constexpr auto kFields = std::tuple(
        Field{"path", &BootAgent::id}, Field{"version", &BootAgent::version},
        Field{"version_number", &BootAgent::versionNumber},
        Field{"update_available", &BootAgent::updateAvailable}, Field{"image_type", &BootAgent::imageType},
        Field{"image_type_text", &BootAgent::imageTypeText}, Field{"iscsi_status", &BootAgent::iscsiStatus},
        Field{"installed_image_types", &BootAgent::installedImageTypes});
};

template <>
struct Fields<FlashImage> {
    static constexpr const char* kName = "FlashImage";
    static constexpr auto kFields =
        std::tuple(Field{"type", &FlashImage::type}, Field{"version", &FlashImage::version},
                   Field{"group", &FlashImage::group}, Field{"expose_level", &FlashImage::exposeLevel});
};

template <>
struct Fields<FlashVerdict> {
    static constexpr const char* kName = "FlashVerdict";
    static constexpr auto kFields = std::tuple(Field{"code", &FlashVerdict::code});
};

template <>
struct Fields<FlashContents> {
    static constexpr const char* kName = "FlashContents";
    static constexpr auto kFields =
        std::tuple(Field{"verdict", &FlashContents::verdict}, Field{"images", &FlashContents::images});
};

template <>
struct Fields<FlashOutcome> {
    static constexpr const char* kName = "FlashOutcome";
    static constexpr auto kFields =
        std::tuple(Field{"verdict", &FlashOutcome::verdict}, Field{"written", &FlashOutcome::written});
};

template <>
struct Fields<IscsiAdapter> {
    static constexpr const char* kName = "IscsiAdapter";
    static constexpr auto kFields =
        std::tuple(Field{"path", &IscsiAdapter::bootAgent}, Field{"object_id", &IscsiAdapter::objectId},
                   Field{"adapter_name", &IscsiAdapter::adapterName}, Field{"status", &IscsiAdapter::status});
};

template <>
struct Fields<IscsiSupport> {
    static constexpr const char* kName = "IscsiSupport";
    static constexpr auto kFields = std::tuple(Field{"status", &IscsiSupport::status},
                                               Field{"by_operating_system", &IscsiSupport::byOperatingSystem},
                                               Field{"patch_present", &IscsiSupport::patchPresent},
                                               Field{"hot_fix_present", &IscsiSupport::hotFixPresent});
};

template <>
struct Fields<SecureAssociation> {
    static constexpr const char* kName = "SecureAssociation";
    static constexpr auto kFields = std::tuple(Field{"key", &SecureAssociation::key},
                                               Field{"first_number", &SecureAssociation::firstNumber},
                                               Field{"second_number", &SecureAssociation::secondNumber},
                                               Field{"channel_id", &SecureAssociation::channelId});
};

template <>
struct Fields<ManualKeys> {
    static constexpr const char* kName = "ManualKeys";
    static constexpr auto kFields =
        std::tuple(Field{"outgoing", &ManualKeys::outgoing}, Field{"incoming", &ManualKeys::incoming},
                   Field{"include_channel_id", &ManualKeys::includeChannelId},
                   Field{"encryption", &ManualKeys::encryption});
};

template <>
struct Fields<AuthenticationMethods> {
    static constexpr const char* kName = "AuthenticationMethods";
    static constexpr auto kFields = std::tuple(Field{"outer", &AuthenticationMethods::outer},
                                               Field{"inner", &AuthenticationMethods::inner},
                                               Field{"key_security", &AuthenticationMethods::keySecurity},
                                               Field{"random_mac", &AuthenticationMethods::randomMac});
};

template <>
struct Fields<Authentication> {
    static constexpr const char* kName = "Authentication";
    static constexpr auto kFields =
        std::tuple(Field{"methods", &Authentication::methods}, Field{"user_name", &Authentication::userName},
                   Field{"password", &Authentication::password},
                   Field{"machine_domain_name", &Authentication::machineDomainName},
                   Field{"auto_pac", &Authentication::autoPac}, Field{"pac", &Authentication::pac},
                   Field{"machine_credentials", &Authentication::machineCredentials},
                   Field{"changed_credentials", &Authentication::changedCredentials},
                   Field{"windows_credentials", &Authentication::windowsCredentials});
};

template <>
struct Fields<PacFile> {
    static constexpr const char* kName = "PacFile";
    static constexpr auto kFields =
        std::tuple(Field{"path", &PacFile::path}, Field{"password", &PacFile::password},
                   Field{"changed", &PacFile::changed});
};

template <>
struct Fields<PacContents> {
    static constexpr const char* kName = "PacContents";
    static constexpr auto kFields = std::tuple(
        Field{"type", &PacContents::type}, Field{"description", &PacContents::description},
        Field{"authority", &PacContents::authority}, Field{"authority_text", &PacContents::authorityText},
        Field{"issued_to", &PacContents::issuedTo}, Field{"expires", &PacContents::expires});
};

template <>
struct Fields<MasterKey> {
    static constexpr const char* kName = "MasterKey";
    static constexpr auto kFields =
        std::tuple(Field{"key", &MasterKey::key}, Field{"random_mac", &MasterKey::randomMac});
};

template <>
struct Fields<SavedCredentials> {
    static constexpr const char* kName = "SavedCredentials";
    static constexpr auto kFields = std::tuple(
        Field{"user_name", &SavedCredentials::userName}, Field{"password", &SavedCredentials::password},
        Field{"machine_credentials", &SavedCredentials::machineCredentials},
        Field{"machine_domain_name", &SavedCredentials::machineDomainName});
};

} // namespace quillet::python
