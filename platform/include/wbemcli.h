// The WMI client interfaces, their flags and result codes.
#pragma once

#include <oaidl.h>
#include <oleauto.h>

/// Values of the system property __GENUS.
enum tag_WBEM_GENUS_TYPE { WBEM_GENUS_CLASS = 1, WBEM_GENUS_INSTANCE = 2 };
using WBEM_GENUS_TYPE = tag_WBEM_GENUS_TYPE;

/// Flags of PutClass and PutInstance.
enum tag_WBEM_CHANGE_FLAG_TYPE {
    WBEM_FLAG_CREATE_OR_UPDATE = 0,
    WBEM_FLAG_UPDATE_ONLY = 0x1,
    WBEM_FLAG_CREATE_ONLY = 0x2,
    WBEM_FLAG_UPDATE_COMPATIBLE = 0x0,
    WBEM_FLAG_UPDATE_SAFE_MODE = 0x20,
    WBEM_FLAG_UPDATE_FORCE_MODE = 0x40,
    WBEM_MASK_UPDATE_MODE = 0x60,
    WBEM_FLAG_ADVISORY = 0x10000
};
using WBEM_CHANGE_FLAG_TYPE = tag_WBEM_CHANGE_FLAG_TYPE;

enum tag_WBEM_GENERIC_FLAG_TYPE {
    WBEM_FLAG_RETURN_IMMEDIATELY = 0x10,
    WBEM_FLAG_RETURN_WBEM_COMPLETE = 0,
    WBEM_FLAG_BIDIRECTIONAL = 0,
    WBEM_FLAG_FORWARD_ONLY = 0x20,
    WBEM_FLAG_NO_ERROR_OBJECT = 0x40,
    WBEM_FLAG_RETURN_ERROR_OBJECT = 0,
    WBEM_FLAG_SEND_STATUS = 0x80,
    WBEM_FLAG_DONT_SEND_STATUS = 0,
    WBEM_FLAG_ENSURE_LOCATABLE = 0x100,
    WBEM_FLAG_DIRECT_READ = 0x200,
    WBEM_FLAG_SEND_ONLY_SELECTED = 0,
    WBEM_RETURN_WHEN_COMPLETE = 0,
    WBEM_RETURN_IMMEDIATELY = 0x10,
    WBEM_MASK_RESERVED_FLAGS = 0x1f000,
    WBEM_FLAG_USE_AMENDED_QUALIFIERS = 0x20000,
    WBEM_FLAG_STRONG_VALIDATION = 0x100000
};
using WBEM_GENERIC_FLAG_TYPE = tag_WBEM_GENERIC_FLAG_TYPE;

/// Flags of IWbemObjectSink::SetStatus.
enum tag_WBEM_STATUS_TYPE {
    WBEM_STATUS_COMPLETE = 0,
    WBEM_STATUS_REQUIREMENTS = 1,
    WBEM_STATUS_PROGRESS = 2,
    WBEM_STATUS_LOGGING_INFORMATION = 0x100,
    WBEM_STATUS_LOGGING_INFORMATION_PROVIDER = 0x200,
    WBEM_STATUS_LOGGING_INFORMATION_HOST = 0x400,
    WBEM_STATUS_LOGGING_INFORMATION_REPOSITORY = 0x800,
    WBEM_STATUS_LOGGING_INFORMATION_ESS = 0x1000
};
using WBEM_STATUS_TYPE = tag_WBEM_STATUS_TYPE;

/// Unsigned, as in the SDK: the timeouts of the calls are signed, so WBEM_INFINITE goes there through a cast.
enum tag_WBEM_TIMEOUT_TYPE { WBEM_NO_WAIT = 0, WBEM_INFINITE = 0xffffffff };
using WBEM_TIMEOUT_TYPE = tag_WBEM_TIMEOUT_TYPE;

/// Flags of GetNames and BeginEnumeration.
enum tag_WBEM_CONDITION_FLAG_TYPE {
    WBEM_FLAG_ALWAYS = 0,
    WBEM_FLAG_ONLY_IF_TRUE = 0x1,
    WBEM_FLAG_ONLY_IF_FALSE = 0x2,
    WBEM_FLAG_ONLY_IF_IDENTICAL = 0x3,
    WBEM_MASK_PRIMARY_CONDITION = 0x3,
    WBEM_FLAG_KEYS_ONLY = 0x4,
    WBEM_FLAG_REFS_ONLY = 0x8,
    WBEM_FLAG_LOCAL_ONLY = 0x10,
    WBEM_FLAG_PROPAGATED_ONLY = 0x20,
    WBEM_FLAG_SYSTEM_ONLY = 0x30,
    WBEM_FLAG_NONSYSTEM_ONLY = 0x40,
    WBEM_MASK_CONDITION_ORIGIN = 0x70,
    WBEM_FLAG_CLASS_OVERRIDES_ONLY = 0x100,
    WBEM_FLAG_CLASS_LOCAL_AND_OVERRIDES = 0x200,
    WBEM_MASK_CLASS_CONDITION = 0x300
};
using WBEM_CONDITION_FLAG_TYPE = tag_WBEM_CONDITION_FLAG_TYPE;

/// Flavours of properties and qualifiers.
enum tag_WBEM_FLAVOR_TYPE {
    WBEM_FLAVOR_DONT_PROPAGATE = 0,
    WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE = 0x1,
    WBEM_FLAVOR_FLAG_PROPAGATE_TO_DERIVED_CLASS = 0x2,
    WBEM_FLAVOR_MASK_PROPAGATION = 0xf,
    WBEM_FLAVOR_OVERRIDABLE = 0,
    WBEM_FLAVOR_NOT_OVERRIDABLE = 0x10,
    WBEM_FLAVOR_MASK_PERMISSIONS = 0x10,
    WBEM_FLAVOR_ORIGIN_LOCAL = 0,
    WBEM_FLAVOR_ORIGIN_PROPAGATED = 0x20,
    WBEM_FLAVOR_ORIGIN_SYSTEM = 0x40,
    WBEM_FLAVOR_MASK_ORIGIN = 0x60,
    WBEM_FLAVOR_NOT_AMENDED = 0,
    WBEM_FLAVOR_AMENDED = 0x80,
    WBEM_FLAVOR_MASK_AMENDED = 0x80
};
using WBEM_FLAVOR_TYPE = tag_WBEM_FLAVOR_TYPE;

enum tag_WBEM_QUERY_FLAG_TYPE { WBEM_FLAG_DEEP = 0, WBEM_FLAG_SHALLOW = 1, WBEM_FLAG_PROTOTYPE = 2 };
using WBEM_QUERY_FLAG_TYPE = tag_WBEM_QUERY_FLAG_TYPE;

enum tag_WBEM_LIMITATION_FLAG_TYPE {
    WBEM_FLAG_EXCLUDE_OBJECT_QUALIFIERS = 0x10,
    WBEM_FLAG_EXCLUDE_PROPERTY_QUALIFIERS = 0x20
};
using WBEM_LIMITATION_FLAG_TYPE = tag_WBEM_LIMITATION_FLAG_TYPE;

enum tag_WBEM_TEXT_FLAG_TYPE { WBEM_FLAG_NO_FLAVORS = 0x1 };
using WBEM_TEXT_FLAG_TYPE = tag_WBEM_TEXT_FLAG_TYPE;

enum tag_WBEM_COMPARISON_FLAG {
    WBEM_COMPARISON_INCLUDE_ALL = 0,
    WBEM_FLAG_IGNORE_QUALIFIERS = 0x1,
    WBEM_FLAG_IGNORE_OBJECT_SOURCE = 0x2,
    WBEM_FLAG_IGNORE_DEFAULT_VALUES = 0x4,
    WBEM_FLAG_IGNORE_CLASS = 0x8,
    WBEM_FLAG_IGNORE_CASE = 0x10,
    WBEM_FLAG_IGNORE_FLAVOR = 0x20
};
using WBEM_COMPARISON_FLAG = tag_WBEM_COMPARISON_FLAG;

enum tag_WBEM_CONNECT_OPTIONS {
    WBEM_FLAG_CONNECT_REPOSITORY_ONLY = 0x40,
    WBEM_FLAG_CONNECT_USE_MAX_WAIT = 0x80,
    WBEM_FLAG_CONNECT_PROVIDERS = 0x100
};
using WBEM_CONNECT_OPTIONS = tag_WBEM_CONNECT_OPTIONS;

enum tag_WBEM_LIMITS {
    WBEM_MAX_IDENTIFIER = 0x1000,
    WBEM_MAX_QUERY = 0x4000,
    WBEM_MAX_PATH = 0x2000,
    WBEM_MAX_OBJECT_NESTING = 64,
    WBEM_MAX_USER_PROPERTIES = 1024
};
using WBEM_LIMITS = tag_WBEM_LIMITS;

enum tag_CIMTYPE_ENUMERATION {
    CIM_ILLEGAL = 0xfff,
    CIM_EMPTY = 0,
    CIM_SINT8 = 16,
    CIM_UINT8 = 17,
    CIM_SINT16 = 2,
    CIM_UINT16 = 18,
    CIM_SINT32 = 3,
    CIM_UINT32 = 19,
    CIM_SINT64 = 20,
    CIM_UINT64 = 21,
    CIM_REAL32 = 4,
    CIM_REAL64 = 5,
    CIM_BOOLEAN = 11,
    CIM_STRING = 8,
    CIM_DATETIME = 101,
    CIM_REFERENCE = 102,
    CIM_CHAR16 = 103,
    CIM_OBJECT = 13,
    CIM_FLAG_ARRAY = 0x2000
};
using CIMTYPE_ENUMERATION = tag_CIMTYPE_ENUMERATION;

using CIMTYPE = LONG;

// The failure codes are unsigned, as in the SDK: give them to an HRESULT through a cast.
enum tag_WBEMSTATUS {
    WBEM_NO_ERROR = 0,
    WBEM_S_NO_ERROR = 0,
    WBEM_S_SAME = 0,
    WBEM_S_FALSE = 1,
    WBEM_S_ALREADY_EXISTS = 0x40001,
    WBEM_S_RESET_TO_DEFAULT = 0x40002,
    WBEM_S_DIFFERENT = 0x40003,
    WBEM_S_TIMEDOUT = 0x40004,
    WBEM_S_NO_MORE_DATA = 0x40005,
    WBEM_S_OPERATION_CANCELLED = 0x40006,
    WBEM_S_PENDING = 0x40007,
    WBEM_S_DUPLICATE_OBJECTS = 0x40008,
    WBEM_S_ACCESS_DENIED = 0x40009,
    WBEM_S_PARTIAL_RESULTS = 0x40010,
    WBEM_S_SOURCE_NOT_AVAILABLE = 0x40017,
    WBEM_E_FAILED = 0x80041001,
    WBEM_E_NOT_FOUND = 0x80041002,
    WBEM_E_ACCESS_DENIED = 0x80041003,
    WBEM_E_PROVIDER_FAILURE = 0x80041004,
    WBEM_E_TYPE_MISMATCH = 0x80041005,
    WBEM_E_OUT_OF_MEMORY = 0x80041006,
    WBEM_E_INVALID_CONTEXT = 0x80041007,
    WBEM_E_INVALID_PARAMETER = 0x80041008,
    WBEM_E_NOT_AVAILABLE = 0x80041009,
    WBEM_E_CRITICAL_ERROR = 0x8004100a,
    WBEM_E_INVALID_STREAM = 0x8004100b,
    WBEM_E_NOT_SUPPORTED = 0x8004100c,
    WBEM_E_INVALID_SUPERCLASS = 0x8004100d,
    WBEM_E_INVALID_NAMESPACE = 0x8004100e,
    WBEM_E_INVALID_OBJECT = 0x8004100f,
    WBEM_E_INVALID_CLASS = 0x80041010,
    WBEM_E_PROVIDER_NOT_FOUND = 0x80041011,
    WBEM_E_INVALID_PROVIDER_REGISTRATION = 0x80041012,
    WBEM_E_PROVIDER_LOAD_FAILURE = 0x80041013,
    WBEM_E_INITIALIZATION_FAILURE = 0x80041014,
    WBEM_E_TRANSPORT_FAILURE = 0x80041015,
    WBEM_E_INVALID_OPERATION = 0x80041016,
    WBEM_E_INVALID_QUERY = 0x80041017,
    WBEM_E_INVALID_QUERY_TYPE = 0x80041018,
    WBEM_E_ALREADY_EXISTS = 0x80041019,
    WBEM_E_OVERRIDE_NOT_ALLOWED = 0x8004101a,
    WBEM_E_PROPAGATED_QUALIFIER = 0x8004101b,
    WBEM_E_PROPAGATED_PROPERTY = 0x8004101c,
    WBEM_E_UNEXPECTED = 0x8004101d,
    WBEM_E_ILLEGAL_OPERATION = 0x8004101e,
    WBEM_E_CANNOT_BE_KEY = 0x8004101f,
    WBEM_E_INCOMPLETE_CLASS = 0x80041020,
    WBEM_E_INVALID_SYNTAX = 0x80041021,
    WBEM_E_NONDECORATED_OBJECT = 0x80041022,
    WBEM_E_READ_ONLY = 0x80041023,
    WBEM_E_PROVIDER_NOT_CAPABLE = 0x80041024,
    WBEM_E_CLASS_HAS_CHILDREN = 0x80041025,
    WBEM_E_CLASS_HAS_INSTANCES = 0x80041026,
    WBEM_E_QUERY_NOT_IMPLEMENTED = 0x80041027,
    WBEM_E_ILLEGAL_NULL = 0x80041028,
    WBEM_E_INVALID_QUALIFIER_TYPE = 0x80041029,
    WBEM_E_INVALID_PROPERTY_TYPE = 0x8004102a,
    WBEM_E_VALUE_OUT_OF_RANGE = 0x8004102b,
    WBEM_E_CANNOT_BE_SINGLETON = 0x8004102c,
    WBEM_E_INVALID_CIM_TYPE = 0x8004102d,
    WBEM_E_INVALID_METHOD = 0x8004102e,
    WBEM_E_INVALID_METHOD_PARAMETERS = 0x8004102f,
    WBEM_E_SYSTEM_PROPERTY = 0x80041030,
    WBEM_E_INVALID_PROPERTY = 0x80041031,
    WBEM_E_CALL_CANCELLED = 0x80041032,
    WBEM_E_SHUTTING_DOWN = 0x80041033,
    WBEM_E_PROPAGATED_METHOD = 0x80041034,
    WBEM_E_UNSUPPORTED_PARAMETER = 0x80041035,
    WBEM_E_MISSING_PARAMETER_ID = 0x80041036,
    WBEM_E_INVALID_PARAMETER_ID = 0x80041037,
    WBEM_E_NONCONSECUTIVE_PARAMETER_IDS = 0x80041038,
    WBEM_E_PARAMETER_ID_ON_RETVAL = 0x80041039,
    WBEM_E_INVALID_OBJECT_PATH = 0x8004103a,
    WBEM_E_OUT_OF_DISK_SPACE = 0x8004103b,
    WBEM_E_BUFFER_TOO_SMALL = 0x8004103c,
    WBEM_E_UNSUPPORTED_PUT_EXTENSION = 0x8004103d,
    WBEM_E_UNKNOWN_OBJECT_TYPE = 0x8004103e,
    WBEM_E_UNKNOWN_PACKET_TYPE = 0x8004103f,
    WBEM_E_MARSHAL_VERSION_MISMATCH = 0x80041040,
    WBEM_E_MARSHAL_INVALID_SIGNATURE = 0x80041041,
    WBEM_E_INVALID_QUALIFIER = 0x80041042,
    WBEM_E_INVALID_DUPLICATE_PARAMETER = 0x80041043,
    WBEM_E_TOO_MUCH_DATA = 0x80041044,
    WBEM_E_SERVER_TOO_BUSY = 0x80041045,
    WBEM_E_INVALID_FLAVOR = 0x80041046,
    WBEM_E_CIRCULAR_REFERENCE = 0x80041047,
    WBEM_E_UNSUPPORTED_CLASS_UPDATE = 0x80041048,
    WBEM_E_CANNOT_CHANGE_KEY_INHERITANCE = 0x80041049,
    WBEM_E_CANNOT_CHANGE_INDEX_INHERITANCE = 0x80041050,
    WBEM_E_TOO_MANY_PROPERTIES = 0x80041051,
    WBEM_E_UPDATE_TYPE_MISMATCH = 0x80041052,
    WBEM_E_UPDATE_OVERRIDE_NOT_ALLOWED = 0x80041053,
    WBEM_E_UPDATE_PROPAGATED_METHOD = 0x80041054,
    WBEM_E_METHOD_NOT_IMPLEMENTED = 0x80041055,
    WBEM_E_METHOD_DISABLED = 0x80041056,
    WBEM_E_REFRESHER_BUSY = 0x80041057,
    WBEM_E_UNPARSABLE_QUERY = 0x80041058,
    WBEM_E_NOT_EVENT_CLASS = 0x80041059,
    WBEM_E_MISSING_GROUP_WITHIN = 0x8004105a,
    WBEM_E_MISSING_AGGREGATION_LIST = 0x8004105b,
    WBEM_E_PROPERTY_NOT_AN_OBJECT = 0x8004105c,
    WBEM_E_AGGREGATING_BY_OBJECT = 0x8004105d,
    WBEM_E_UNINTERPRETABLE_PROVIDER_QUERY = 0x8004105f,
    WBEM_E_BACKUP_RESTORE_WINMGMT_RUNNING = 0x80041060,
    WBEM_E_QUEUE_OVERFLOW = 0x80041061,
    WBEM_E_PRIVILEGE_NOT_HELD = 0x80041062,
    WBEM_E_INVALID_OPERATOR = 0x80041063,
    WBEM_E_LOCAL_CREDENTIALS = 0x80041064,
    WBEM_E_CANNOT_BE_ABSTRACT = 0x80041065,
    WBEM_E_AMENDED_OBJECT = 0x80041066,
    WBEM_E_CLIENT_TOO_SLOW = 0x80041067,
    WBEM_E_NULL_SECURITY_DESCRIPTOR = 0x80041068,
    WBEM_E_TIMED_OUT = 0x80041069,
    WBEM_E_INVALID_ASSOCIATION = 0x8004106a,
    WBEM_E_AMBIGUOUS_OPERATION = 0x8004106b,
    WBEM_E_QUOTA_VIOLATION = 0x8004106c,
    WBEM_E_RESERVED_001 = 0x8004106d,
    WBEM_E_RESERVED_002 = 0x8004106e,
    WBEM_E_UNSUPPORTED_LOCALE = 0x8004106f,
    WBEM_E_HANDLE_OUT_OF_DATE = 0x80041070,
    WBEM_E_CONNECTION_FAILED = 0x80041071,
    WBEM_E_INVALID_HANDLE_REQUEST = 0x80041072,
    WBEM_E_PROPERTY_NAME_TOO_WIDE = 0x80041073,
    WBEM_E_CLASS_NAME_TOO_WIDE = 0x80041074,
    WBEM_E_METHOD_NAME_TOO_WIDE = 0x80041075,
    WBEM_E_QUALIFIER_NAME_TOO_WIDE = 0x80041076,
    WBEM_E_RERUN_COMMAND = 0x80041077,
    WBEM_E_DATABASE_VER_MISMATCH = 0x80041078,
    WBEM_E_VETO_DELETE = 0x80041079,
    WBEM_E_VETO_PUT = 0x8004107a,
    WBEM_E_INVALID_LOCALE = 0x80041080,
    WBEM_E_PROVIDER_SUSPENDED = 0x80041081,
    WBEM_E_SYNCHRONIZATION_REQUIRED = 0x80041082,
    WBEM_E_NO_SCHEMA = 0x80041083,
    WBEM_E_PROVIDER_ALREADY_REGISTERED = 0x80041084,
    WBEM_E_PROVIDER_NOT_REGISTERED = 0x80041085,
    WBEM_E_FATAL_TRANSPORT_ERROR = 0x80041086,
    WBEM_E_ENCRYPTED_CONNECTION_REQUIRED = 0x80041087,
    WBEM_E_PROVIDER_TIMED_OUT = 0x80041088,
    WBEM_E_NO_KEY = 0x80041089,
    WBEM_E_PROVIDER_DISABLED = 0x8004108a,
    WBEMESS_E_REGISTRATION_TOO_BROAD = 0x80042001,
    WBEMESS_E_REGISTRATION_TOO_PRECISE = 0x80042002,
    WBEMESS_E_AUTHZ_NOT_PRIVILEGED = 0x80042003
};
using WBEMSTATUS = tag_WBEMSTATUS;

#pragma GCC visibility push(default)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

struct IWbemClassObject;
struct IWbemQualifierSet;
struct IWbemLocator;
struct IWbemServices;
struct IEnumWbemClassObject;
struct IWbemContext;
struct IWbemCallResult;
struct IWbemObjectSink;

/// A class or an instance: properties, qualifiers, methods.
QUILLET_PLATFORM_IID(IWbemClassObject, 0xdc12a681, 0x737f, 0x11cf, 0x88, 0x4d, 0x00, 0xaa, 0x00, 0x4b, 0x2e,
                     0x24)
struct IWbemClassObject : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet** qualifiers) = 0;
    virtual HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                          LONG* flavor) = 0;
    virtual HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) = 0;
    virtual HRESULT STDMETHODCALLTYPE Delete(LPCWSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR qualifier, LONG flags, VARIANT* qualifierValue,
                                               SAFEARRAY** names) = 0;
    virtual HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                           LONG* flavor) = 0;
    virtual HRESULT STDMETHODCALLTYPE EndEnumeration() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR property,
                                                              IWbemQualifierSet** qualifiers) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject** copy) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetObjectText(LONG flags, BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG flags, IWbemClassObject** newClass) = 0;
    virtual HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** newInstance) = 0;
    virtual HRESULT STDMETHODCALLTYPE CompareTo(LONG flags, IWbemClassObject* other) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR name, BSTR* className) = 0;
    virtual HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR ancestor) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inSignature,
                                                IWbemClassObject** outSignature) = 0;
    virtual HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR name, LONG flags, IWbemClassObject* inSignature,
                                                IWbemClassObject* outSignature) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** inSignature,
                                                 IWbemClassObject** outSignature) = 0;
    virtual HRESULT STDMETHODCALLTYPE EndMethodEnumeration() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR method,
                                                            IWbemQualifierSet** qualifiers) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR method, BSTR* className) = 0;
};

/// The qualifiers of a class, property or method.
QUILLET_PLATFORM_IID(IWbemQualifierSet, 0xdc12a680, 0x737f, 0x11cf, 0x88, 0x4d, 0x00, 0xaa, 0x00, 0x4b, 0x2e,
                     0x24)
struct IWbemQualifierSet : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, LONG* flavor) = 0;
    virtual HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, VARIANT* value, LONG flavor) = 0;
    virtual HRESULT STDMETHODCALLTYPE Delete(LPCWSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNames(LONG flags, SAFEARRAY** names) = 0;
    virtual HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, LONG* flavor) = 0;
    virtual HRESULT STDMETHODCALLTYPE EndEnumeration() = 0;
};

/// Opens namespaces.
QUILLET_PLATFORM_IID(IWbemLocator, 0xdc12a687, 0x737f, 0x11cf, 0x88, 0x4d, 0x00, 0xaa, 0x00, 0x4b, 0x2e, 0x24)
struct IWbemLocator : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR networkResource, const BSTR user,
                                                    const BSTR password, const BSTR locale,
                                                    LONG securityFlags, const BSTR authority,
                                                    IWbemContext* context, IWbemServices** services) = 0;
};

/// One open namespace.
QUILLET_PLATFORM_IID(IWbemServices, 0x9556dc99, 0x828c, 0x11cf, 0xa3, 0x7e, 0x00, 0xaa, 0x00, 0x32, 0x40,
                     0xc7)
struct IWbemServices : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR name, LONG flags, IWbemContext* context,
                                                    IWbemServices** services,
                                                    IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG flags, IWbemObjectSink** sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                                IWbemClassObject** object, IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR path, LONG flags, IWbemContext* context,
                                                     IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject* object, LONG flags, IWbemContext* context,
                                               IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject* object, LONG flags,
                                                    IWbemContext* context, IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR name, LONG flags, IWbemContext* context,
                                                  IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR name, LONG flags, IWbemContext* context,
                                                       IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags,
                                                      IWbemContext* context,
                                                      IEnumWbemClassObject** enumerator) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR superclass, LONG flags,
                                                           IWbemContext* context, IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* instance, LONG flags,
                                                  IWbemContext* context, IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject* instance, LONG flags,
                                                       IWbemContext* context, IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR path, LONG flags, IWbemContext* context,
                                                     IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR path, LONG flags, IWbemContext* context,
                                                          IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags,
                                                         IWbemContext* context,
                                                         IEnumWbemClassObject** enumerator) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR className, LONG flags,
                                                              IWbemContext* context,
                                                              IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                                IWbemContext* context, IEnumWbemClassObject** enumerator) = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR language, const BSTR query, LONG flags,
                                                     IWbemContext* context, IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR language, const BSTR query, LONG flags,
                                                            IWbemContext* context,
                                                            IEnumWbemClassObject** enumerator) = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR language, const BSTR query,
                                                                 LONG flags, IWbemContext* context,
                                                                 IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                                 IWbemContext* context, IWbemClassObject* inParameters,
                                                 IWbemClassObject** outParameters,
                                                 IWbemCallResult** callResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR path, const BSTR method, LONG flags,
                                                      IWbemContext* context, IWbemClassObject* inParameters,
                                                      IWbemObjectSink* sink) = 0;
};

/// The result of a query or enumeration.
QUILLET_PLATFORM_IID(IEnumWbemClassObject, 0x027947e1, 0xd731, 0x11ce, 0xa3, 0x57, 0x00, 0x00, 0x00, 0x00,
                     0x00, 0x01)
struct IEnumWbemClassObject : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                           ULONG* returned) = 0;
    virtual HRESULT STDMETHODCALLTYPE NextAsync(ULONG count, IWbemObjectSink* sink) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) = 0;
};

/// Named values that travel with a call to the provider.
QUILLET_PLATFORM_IID(IWbemContext, 0x44aca674, 0xe8fc, 0x11d0, 0xa0, 0x7c, 0x00, 0xc0, 0x4f, 0xb6, 0x88, 0x20)
struct IWbemContext : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Clone(IWbemContext** copy) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNames(LONG flags, SAFEARRAY** names) = 0;
    virtual HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE EndEnumeration() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetValue(LPCWSTR name, LONG flags, VARIANT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetValue(LPCWSTR name, LONG flags, VARIANT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteValue(LPCWSTR name, LONG flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteAll() = 0;
};

/// The outcome of a semi-synchronous call.
QUILLET_PLATFORM_IID(IWbemCallResult, 0x44aca675, 0xe8fc, 0x11d0, 0xa0, 0x7c, 0x00, 0xc0, 0x4f, 0xb6, 0x88,
                     0x20)
struct IWbemCallResult : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetResultObject(LONG timeout, IWbemClassObject** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetResultString(LONG timeout, BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetResultServices(LONG timeout, IWbemServices** services) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCallStatus(LONG timeout, LONG* status) = 0;
};

/// Receives the results of an asynchronous call.
QUILLET_PLATFORM_IID(IWbemObjectSink, 0x7c857801, 0x7381, 0x11cf, 0x88, 0x4d, 0x00, 0xaa, 0x00, 0x4b, 0x2e,
                     0x24)
struct IWbemObjectSink : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Indicate(LONG count, IWbemClassObject** objects) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStatus(LONG flags, HRESULT result, BSTR text,
                                                IWbemClassObject* object) = 0;
};

DEFINE_GUID(CLSID_WbemLocator, 0x4590f811, 0x1d3a, 0x11d0, 0x89, 0x1f, 0x00, 0xaa, 0x00, 0x4b, 0x2e, 0x24);
DEFINE_GUID(CLSID_WbemContext, 0x674b6698, 0xee92, 0x11d0, 0xad, 0x71, 0x00, 0xc0, 0x4f, 0xd8, 0xfd, 0xff);
DEFINE_GUID(CLSID_WbemClassObject, 0x9a653086, 0x174f, 0x11d2, 0xb5, 0xf9, 0x00, 0x10, 0x4b, 0x70, 0x3e,
            0xfd);
DEFINE_GUID(CLSID_WbemStatusCodeText, 0xeb87e1bd, 0x3233, 0x11d2, 0xae, 0xc9, 0x00, 0xc0, 0x4f, 0xb6, 0x88,
            0x20);
class WbemLocator;
__CRT_UUID_DECL(WbemLocator, 0x4590f811, 0x1d3a, 0x11d0, 0x89, 0x1f, 0x00, 0xaa, 0x00, 0x4b, 0x2e, 0x24)
class WbemContext;
__CRT_UUID_DECL(WbemContext, 0x674b6698, 0xee92, 0x11d0, 0xad, 0x71, 0x00, 0xc0, 0x4f, 0xd8, 0xfd, 0xff)

#pragma GCC diagnostic pop
#pragma GCC visibility pop
