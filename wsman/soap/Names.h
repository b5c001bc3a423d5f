// The names of the wire: namespaces, actions, dialects, limits.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::wsman {

// Namespaces.
inline constexpr std::string_view kSoap = "http://www.w3.org/2003/05/soap-envelope";
inline constexpr std::string_view kAddressing = "http://schemas.xmlsoap.org/ws/2004/08/addressing";
inline constexpr std::string_view kWsman = "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd";
inline constexpr std::string_view kEnumeration = "http://schemas.xmlsoap.org/ws/2004/09/enumeration";
inline constexpr std::string_view kTransfer = "http://schemas.xmlsoap.org/ws/2004/09/transfer";
inline constexpr std::string_view kIdentity =
    "http://schemas.dmtf.org/wbem/wsman/identity/1/wsmanidentity.xsd";
inline constexpr std::string_view kBinding = "http://schemas.dmtf.org/wbem/wsman/1/cimbinding.xsd";
inline constexpr std::string_view kCommon = "http://schemas.dmtf.org/wbem/wscim/1/common";
inline constexpr std::string_view kMicrosoft = "http://schemas.microsoft.com/wbem/wsman/1/wsman.xsd";
inline constexpr std::string_view kWsmanFault = "http://schemas.microsoft.com/wbem/wsman/1/wsmanfault";
inline constexpr std::string_view kSchemaInstance = "http://www.w3.org/2001/XMLSchema-instance";
inline constexpr std::string_view kSchema = "http://www.w3.org/2001/XMLSchema";

/// Where an answer goes, and what an endpoint reference has in place of an address.
inline constexpr std::string_view kAnonymous =
    "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous";

// What stands before a class in a resource URI, and before a namespace and a class.
inline constexpr std::string_view kDmtfClasses = "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/";
inline constexpr std::string_view kWmiClasses = "http://schemas.microsoft.com/wbem/wsman/1/wmi/";
/// Classes themselves, as CIM-XML.
inline constexpr std::string_view kClassesAsXml = "http://schemas.dmtf.org/wbem/cim-xml/2/cim-schema/2/*";

/// Any class, for queries.
inline constexpr std::string_view kDmtfAllClasses = "http://schemas.dmtf.org/wbem/wscim/1/*";

// What a message wants done, where it is no method.
inline constexpr std::string_view kGet = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Get";
inline constexpr std::string_view kPut = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Put";
inline constexpr std::string_view kCreate = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Create";
inline constexpr std::string_view kDelete = "http://schemas.xmlsoap.org/ws/2004/09/transfer/Delete";
inline constexpr std::string_view kEnumerate = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Enumerate";
inline constexpr std::string_view kPull = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Pull";
inline constexpr std::string_view kRelease = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Release";

/// What every Windows has one instance of: "CSName" is the computer's own name.
inline constexpr std::string_view kOperatingSystem =
    "http://schemas.microsoft.com/wbem/wsman/1/wmi/root/cimv2/Win32_OperatingSystem";

/// The language of queries.
inline constexpr std::string_view kWqlDialect = "http://schemas.microsoft.com/wbem/wsman/1/WQL";

/// The selector that names the namespace beside a resource URI without one.
inline constexpr std::string_view kNamespaceSelector = "__cimnamespace";

/// The option by which a client asks for what is below a class, too.
inline constexpr std::string_view kIncludeSubClasses = "IncludeSubClasses";
/// The option by which a client asks for null arrays to be marked.
inline constexpr std::string_view kPreciseArrays = "msftwinrm:UsePreciseArrays";
/// The option by which a client names the properties that it changed, one each.
inline constexpr const wchar_t* kModifiedProperties = L"__MIInstanceModifiedPropertiesList";

/// The least envelope that a client may ask for.
inline constexpr std::size_t kLeastEnvelope = 8192;

} // namespace quillet::wsman
