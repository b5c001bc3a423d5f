// Result codes: their names, their words, their category. Those of WMI, and of COM's those that reach a WMI
// client.
#include <quillet/client/Error.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace quillet {

namespace {

struct ResultName {
    std::uint32_t code = 0;
    const char* name = "";
    const char* words = ""; ///< empty where it says nothing but that something failed
};

/// In order of the codes.
constexpr std::array kResultNames{
    ResultName{0x80004001, "E_NOTIMPL", "this is not implemented"},
    ResultName{0x80004002, "E_NOINTERFACE"},
    ResultName{0x80004003, "E_POINTER"},
    ResultName{0x80004004, "E_ABORT", "it was broken off"},
    ResultName{0x80004005, "E_FAIL"},
    ResultName{0x8000FFFF, "E_UNEXPECTED"},
    ResultName{0x80010105, "RPC_E_SERVERFAULT", "the provider broke down"},
    ResultName{0x80010106, "RPC_E_CHANGED_MODE"},
    ResultName{0x80010108, "RPC_E_DISCONNECTED", "the connection is gone"},
    ResultName{0x8001010E, "RPC_E_WRONG_THREAD"},
    ResultName{0x80010119, "RPC_E_TOO_LATE"},
    ResultName{0x80020005, "DISP_E_TYPEMISMATCH", "a value has another type than expected"},
    ResultName{0x8002000A, "DISP_E_OVERFLOW"},
    ResultName{0x8002000B, "DISP_E_BADINDEX"},
    ResultName{0x80040110, "CLASS_E_NOAGGREGATION"},
    ResultName{0x80040111, "CLASS_E_CLASSNOTAVAILABLE"},
    ResultName{0x80040154, "REGDB_E_CLASSNOTREG", "a component of the system is not installed"},
    ResultName{0x800401F0, "CO_E_NOTINITIALIZED"},
    ResultName{0x800401FD, "CO_E_OBJNOTCONNECTED"},
    ResultName{0x80041001, "WBEM_E_FAILED"},
    ResultName{0x80041002, "WBEM_E_NOT_FOUND", "there is no such object"},
    ResultName{0x80041003, "WBEM_E_ACCESS_DENIED", "access is denied"},
    ResultName{0x80041004, "WBEM_E_PROVIDER_FAILURE", "the provider broke down"},
    ResultName{0x80041005, "WBEM_E_TYPE_MISMATCH", "a value has another type than expected"},
    ResultName{0x80041006, "WBEM_E_OUT_OF_MEMORY", "there is not enough memory"},
    ResultName{0x80041007, "WBEM_E_INVALID_CONTEXT"},
    ResultName{0x80041008, "WBEM_E_INVALID_PARAMETER", "the provider does not take a value"},
    ResultName{0x80041009, "WBEM_E_NOT_AVAILABLE", "it is not there at present"},
    ResultName{0x8004100A, "WBEM_E_CRITICAL_ERROR"},
    ResultName{0x8004100B, "WBEM_E_INVALID_STREAM"},
    ResultName{0x8004100C, "WBEM_E_NOT_SUPPORTED", "this is not supported"},
    ResultName{0x8004100D, "WBEM_E_INVALID_SUPERCLASS"},
    ResultName{0x8004100E, "WBEM_E_INVALID_NAMESPACE", "the machine does not have this provider"},
    ResultName{0x8004100F, "WBEM_E_INVALID_OBJECT"},
    ResultName{0x80041010, "WBEM_E_INVALID_CLASS", "the provider knows nothing of this kind"},
    ResultName{0x80041011, "WBEM_E_PROVIDER_NOT_FOUND", "the provider is not installed"},
    ResultName{0x80041012, "WBEM_E_INVALID_PROVIDER_REGISTRATION"},
    ResultName{0x80041013, "WBEM_E_PROVIDER_LOAD_FAILURE", "the provider cannot be loaded"},
    ResultName{0x80041014, "WBEM_E_INITIALIZATION_FAILURE", "the provider cannot be started"},
    ResultName{0x80041015, "WBEM_E_TRANSPORT_FAILURE", "the connection failed"},
    ResultName{0x80041016, "WBEM_E_INVALID_OPERATION", "this cannot be done now"},
    ResultName{0x80041017, "WBEM_E_INVALID_QUERY", "the provider does not understand the query"},
    ResultName{0x80041018, "WBEM_E_INVALID_QUERY_TYPE"},
    ResultName{0x80041019, "WBEM_E_ALREADY_EXISTS", "it exists already"},
    ResultName{0x8004101A, "WBEM_E_OVERRIDE_NOT_ALLOWED"},
    ResultName{0x8004101B, "WBEM_E_PROPAGATED_QUALIFIER"},
    ResultName{0x8004101C, "WBEM_E_PROPAGATED_PROPERTY"},
    ResultName{0x8004101D, "WBEM_E_UNEXPECTED"},
    ResultName{0x8004101E, "WBEM_E_ILLEGAL_OPERATION"},
    ResultName{0x8004101F, "WBEM_E_CANNOT_BE_KEY"},
    ResultName{0x80041020, "WBEM_E_INCOMPLETE_CLASS"},
    ResultName{0x80041021, "WBEM_E_INVALID_SYNTAX"},
    ResultName{0x80041022, "WBEM_E_NONDECORATED_OBJECT"},
    ResultName{0x80041023, "WBEM_E_READ_ONLY", "it cannot be changed"},
    ResultName{0x80041024, "WBEM_E_PROVIDER_NOT_CAPABLE", "the provider cannot do this"},
    ResultName{0x80041025, "WBEM_E_CLASS_HAS_CHILDREN"},
    ResultName{0x80041026, "WBEM_E_CLASS_HAS_INSTANCES"},
    ResultName{0x80041027, "WBEM_E_QUERY_NOT_IMPLEMENTED"},
    ResultName{0x80041028, "WBEM_E_ILLEGAL_NULL", "a value is missing"},
    ResultName{0x80041029, "WBEM_E_INVALID_QUALIFIER_TYPE"},
    ResultName{0x8004102A, "WBEM_E_INVALID_PROPERTY_TYPE"},
    ResultName{0x8004102B, "WBEM_E_VALUE_OUT_OF_RANGE", "the value is out of range"},
    ResultName{0x8004102C, "WBEM_E_CANNOT_BE_SINGLETON"},
    ResultName{0x8004102D, "WBEM_E_INVALID_CIM_TYPE"},
    ResultName{0x8004102E, "WBEM_E_INVALID_METHOD", "the provider cannot do this"},
    ResultName{0x8004102F, "WBEM_E_INVALID_METHOD_PARAMETERS", "the provider does not take a value"},
    ResultName{0x80041030, "WBEM_E_SYSTEM_PROPERTY"},
    ResultName{0x80041031, "WBEM_E_INVALID_PROPERTY", "the provider does not tell this"},
    ResultName{0x80041032, "WBEM_E_CALL_CANCELLED", "it was broken off"},
    ResultName{0x80041033, "WBEM_E_SHUTTING_DOWN", "the machine is shutting down"},
    ResultName{0x80041034, "WBEM_E_PROPAGATED_METHOD"},
    ResultName{0x80041035, "WBEM_E_UNSUPPORTED_PARAMETER"},
    ResultName{0x80041036, "WBEM_E_MISSING_PARAMETER_ID"},
    ResultName{0x80041037, "WBEM_E_INVALID_PARAMETER_ID"},
    ResultName{0x80041038, "WBEM_E_NONCONSECUTIVE_PARAMETER_IDS"},
    ResultName{0x80041039, "WBEM_E_PARAMETER_ID_ON_RETVAL"},
    ResultName{0x8004103A, "WBEM_E_INVALID_OBJECT_PATH", "this is no path of an object"},
    ResultName{0x8004103B, "WBEM_E_OUT_OF_DISK_SPACE", "the disk is full"},
    ResultName{0x8004103C, "WBEM_E_BUFFER_TOO_SMALL"},
    ResultName{0x8004103D, "WBEM_E_UNSUPPORTED_PUT_EXTENSION"},
    ResultName{0x8004103E, "WBEM_E_UNKNOWN_OBJECT_TYPE"},
    ResultName{0x8004103F, "WBEM_E_UNKNOWN_PACKET_TYPE"},
    ResultName{0x80041040, "WBEM_E_MARSHAL_VERSION_MISMATCH"},
    ResultName{0x80041041, "WBEM_E_MARSHAL_INVALID_SIGNATURE"},
    ResultName{0x80041042, "WBEM_E_INVALID_QUALIFIER"},
    ResultName{0x80041043, "WBEM_E_INVALID_DUPLICATE_PARAMETER"},
    ResultName{0x80041044, "WBEM_E_TOO_MUCH_DATA"},
    ResultName{0x80041045, "WBEM_E_SERVER_TOO_BUSY", "the machine is too busy"},
    ResultName{0x80041046, "WBEM_E_INVALID_FLAVOR"},
    ResultName{0x80041047, "WBEM_E_CIRCULAR_REFERENCE"},
    ResultName{0x80041048, "WBEM_E_UNSUPPORTED_CLASS_UPDATE"},
    ResultName{0x80041049, "WBEM_E_CANNOT_CHANGE_KEY_INHERITANCE"},
    ResultName{0x80041050, "WBEM_E_CANNOT_CHANGE_INDEX_INHERITANCE"},
    ResultName{0x80041051, "WBEM_E_TOO_MANY_PROPERTIES"},
    ResultName{0x80041052, "WBEM_E_UPDATE_TYPE_MISMATCH"},
    ResultName{0x80041053, "WBEM_E_UPDATE_OVERRIDE_NOT_ALLOWED"},
    ResultName{0x80041054, "WBEM_E_UPDATE_PROPAGATED_METHOD"},
    ResultName{0x80041055, "WBEM_E_METHOD_NOT_IMPLEMENTED", "the provider cannot do this"},
    ResultName{0x80041056, "WBEM_E_METHOD_DISABLED", "the provider may not do this"},
    ResultName{0x80041057, "WBEM_E_REFRESHER_BUSY"},
    ResultName{0x80041058, "WBEM_E_UNPARSABLE_QUERY"},
    ResultName{0x80041059, "WBEM_E_NOT_EVENT_CLASS"},
    ResultName{0x8004105A, "WBEM_E_MISSING_GROUP_WITHIN"},
    ResultName{0x8004105B, "WBEM_E_MISSING_AGGREGATION_LIST"},
    ResultName{0x8004105C, "WBEM_E_PROPERTY_NOT_AN_OBJECT"},
    ResultName{0x8004105D, "WBEM_E_AGGREGATING_BY_OBJECT"},
    ResultName{0x8004105F, "WBEM_E_UNINTERPRETABLE_PROVIDER_QUERY"},
    ResultName{0x80041060, "WBEM_E_BACKUP_RESTORE_WINMGMT_RUNNING"},
    ResultName{0x80041061, "WBEM_E_QUEUE_OVERFLOW"},
    ResultName{0x80041062, "WBEM_E_PRIVILEGE_NOT_HELD", "a privilege is missing"},
    ResultName{0x80041063, "WBEM_E_INVALID_OPERATOR"},
    ResultName{0x80041064, "WBEM_E_LOCAL_CREDENTIALS"},
    ResultName{0x80041065, "WBEM_E_CANNOT_BE_ABSTRACT"},
    ResultName{0x80041066, "WBEM_E_AMENDED_OBJECT"},
    ResultName{0x80041067, "WBEM_E_CLIENT_TOO_SLOW"},
    ResultName{0x80041068, "WBEM_E_NULL_SECURITY_DESCRIPTOR"},
    ResultName{0x80041069, "WBEM_E_TIMED_OUT", "it took too long"},
    ResultName{0x8004106A, "WBEM_E_INVALID_ASSOCIATION"},
    ResultName{0x8004106B, "WBEM_E_AMBIGUOUS_OPERATION"},
    ResultName{0x8004106C, "WBEM_E_QUOTA_VIOLATION"},
    ResultName{0x8004106F, "WBEM_E_UNSUPPORTED_LOCALE"},
    ResultName{0x80041070, "WBEM_E_HANDLE_OUT_OF_DATE"},
    ResultName{0x80041071, "WBEM_E_CONNECTION_FAILED", "the connection failed"},
    ResultName{0x80041072, "WBEM_E_INVALID_HANDLE_REQUEST"},
    ResultName{0x80041073, "WBEM_E_PROPERTY_NAME_TOO_WIDE"},
    ResultName{0x80041074, "WBEM_E_CLASS_NAME_TOO_WIDE"},
    ResultName{0x80041075, "WBEM_E_METHOD_NAME_TOO_WIDE"},
    ResultName{0x80041076, "WBEM_E_QUALIFIER_NAME_TOO_WIDE"},
    ResultName{0x80041077, "WBEM_E_RERUN_COMMAND"},
    ResultName{0x80041078, "WBEM_E_DATABASE_VER_MISMATCH"},
    ResultName{0x80041079, "WBEM_E_VETO_DELETE"},
    ResultName{0x8004107A, "WBEM_E_VETO_PUT"},
    ResultName{0x80041080, "WBEM_E_INVALID_LOCALE"},
    ResultName{0x80041081, "WBEM_E_PROVIDER_SUSPENDED", "the provider is suspended"},
    ResultName{0x80041082, "WBEM_E_SYNCHRONIZATION_REQUIRED"},
    ResultName{0x80041083, "WBEM_E_NO_SCHEMA"},
    ResultName{0x80041084, "WBEM_E_PROVIDER_ALREADY_REGISTERED"},
    ResultName{0x80041085, "WBEM_E_PROVIDER_NOT_REGISTERED"},
    ResultName{0x80041086, "WBEM_E_FATAL_TRANSPORT_ERROR"},
    ResultName{0x80041087, "WBEM_E_ENCRYPTED_CONNECTION_REQUIRED", "the connection must be encrypted"},
    ResultName{0x80041088, "WBEM_E_PROVIDER_TIMED_OUT", "the provider took too long"},
    ResultName{0x80041089, "WBEM_E_NO_KEY"},
    ResultName{0x8004108A, "WBEM_E_PROVIDER_DISABLED", "the provider is switched off"},
    ResultName{0x80070005, "E_ACCESSDENIED", "access is denied"},
    ResultName{0x80070006, "E_HANDLE"},
    ResultName{0x8007000E, "E_OUTOFMEMORY", "there is not enough memory"},
    ResultName{0x80070057, "E_INVALIDARG", "a value is not allowed"},
    ResultName{0x800706BA, "RPC_S_SERVER_UNAVAILABLE", "the machine cannot be reached"},
    ResultName{0x800706BE, "RPC_S_CALL_FAILED", "the connection failed"},
    ResultName{0x80080005, "CO_E_SERVER_EXEC_FAILURE", "the provider cannot be started"},
};

static_assert(std::is_sorted(kResultNames.begin(), kResultNames.end(),
                             [](const ResultName& a, const ResultName& b) { return a.code < b.code; }));

const ResultName* Find(std::int32_t code) {
    const auto number = static_cast<std::uint32_t>(code);
    const auto* found =
        std::lower_bound(kResultNames.begin(), kResultNames.end(), number,
                         [](const ResultName& each, std::uint32_t wanted) { return each.code < wanted; });
    return found != kResultNames.end() && found->code == number ? found : nullptr;
}

class Category final : public std::error_category {
  public:
    const char* name() const noexcept override { return "quillet"; }
    std::string message(int code) const override { return ExplainResult(code); }

    std::error_condition default_error_condition(int code) const noexcept override {
        switch (static_cast<std::uint32_t>(code)) {
        case 0:
            return {};
        case 0x80041003: // WBEM_E_ACCESS_DENIED
        case 0x80070005: // E_ACCESSDENIED
            return std::errc::permission_denied;
        case 0x80041006: // WBEM_E_OUT_OF_MEMORY
        case 0x8007000E: // E_OUTOFMEMORY
            return std::errc::not_enough_memory;
        case 0x80041008: // WBEM_E_INVALID_PARAMETER
        case 0x80070057: // E_INVALIDARG
            return std::errc::invalid_argument;
        case 0x80004001: // E_NOTIMPL
        case 0x8004100C: // WBEM_E_NOT_SUPPORTED
            return std::errc::not_supported;
        case 0x80041069: // WBEM_E_TIMED_OUT
        case 0x80041088: // WBEM_E_PROVIDER_TIMED_OUT
            return std::errc::timed_out;
        case 0x80041032: // WBEM_E_CALL_CANCELLED
            return std::errc::operation_canceled;
        case 0x80010108: // RPC_E_DISCONNECTED
        case 0x80041015: // WBEM_E_TRANSPORT_FAILURE
            return std::errc::connection_aborted;
        case 0x800706BA: // RPC_S_SERVER_UNAVAILABLE
            return std::errc::host_unreachable;
        default:
            return {code, *this};
        }
    }
};

} // namespace

const std::error_category& ResultCategory() noexcept {
    static const Category kCategory;
    return kCategory;
}

std::string DescribeResult(std::int32_t code) {
    std::array<char, 16> hex{};
    std::snprintf(hex.data(), hex.size(), "0x%08X", static_cast<unsigned>(code));
    const ResultName* known = Find(code);
    return known == nullptr ? hex.data() : std::string(hex.data()) + ' ' + known->name;
}

std::string ExplainResult(std::int32_t code, const std::string& reason) {
    const ResultName* known = Find(code);
    std::string words = reason;
    if (words.empty() && known != nullptr) {
        words = known->words;
    } else if (words.empty() && code >= 0) {
        words = "a code of the provider's own";
    }
    if (words.empty()) {
        return known == nullptr ? DescribeResult(code) + " (unknown)" : DescribeResult(code);
    }
    return words + ": " + DescribeResult(code);
}

} // namespace quillet
