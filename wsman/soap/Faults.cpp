// Codes into faults, and out of whatever form a fault has.
#include "soap/Faults.h"

#include "soap/Names.h"

#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace quillet::wsman {

namespace {

constexpr HRESULT Code(long long value) noexcept {
    return static_cast<HRESULT>(static_cast<std::uint32_t>(value));
}

/// A code of WMI's, the number that CIM has for it, and how it travels.
struct Row {
    HRESULT code;
    int status;
    const char* subcode;
    bool isOurs = false;
    const char* detail = "";
};

// The first row of a subcode is what it means where nothing else tells.
constexpr Row kRows[] = {
    {Code(WBEM_E_NOT_FOUND), 6, "a:DestinationUnreachable", false, "InvalidResourceURI"},
    {Code(WBEM_E_INVALID_CLASS), 5, "a:DestinationUnreachable", false, "InvalidResourceURI"},
    {Code(WBEM_E_INVALID_NAMESPACE), 3, "a:DestinationUnreachable", false, "InvalidNamespace"},
    {Code(WBEM_E_ACCESS_DENIED), 2, "w:AccessDenied"},
    {E_ACCESSDENIED, 2, "w:AccessDenied"},
    {Code(WBEM_E_ALREADY_EXISTS), 11, "w:AlreadyExists"},
    {Code(WBEM_E_INVALID_PARAMETER), 4, "w:InvalidParameter"},
    {Code(WBEM_E_INVALID_CONTEXT), 4, "w:InvalidParameter"},
    {Code(WBEM_E_INVALID_OBJECT), 4, "w:InvalidParameter"},
    {Code(WBEM_E_INVALID_METHOD_PARAMETERS), 4, "w:InvalidParameter"},
    {Code(WBEM_E_VALUE_OUT_OF_RANGE), 4, "w:InvalidParameter"},
    {Code(WBEM_E_READ_ONLY), 7, "w:InvalidParameter"},
    {Code(WBEM_E_ILLEGAL_NULL), 4, "w:SchemaValidationError"},
    {Code(WBEM_E_INVALID_OBJECT_PATH), 4, "w:InvalidSelectors"},
    {Code(WBEM_E_INVALID_QUERY), 15, "n:CannotProcessFilter"},
    {Code(WBEM_E_INVALID_QUERY_TYPE), 14, "n:FilterDialectRequestedUnavailable"},
    {Code(WBEM_E_NOT_SUPPORTED), 7, "a:ActionNotSupported", false, "ActionMismatch"},
    {Code(WBEM_E_INVALID_METHOD), 17, "a:ActionNotSupported"},
    {Code(WBEM_E_METHOD_NOT_IMPLEMENTED), 16, "a:ActionNotSupported"},
    {Code(WBEM_E_PROVIDER_NOT_CAPABLE), 7, "w:UnsupportedFeature"},
    {Code(WBEM_E_INVALID_OPERATION), 7, "w:UnsupportedFeature"},
    {Code(WBEM_E_TIMED_OUT), 1, "w:TimedOut", true},
    {Code(WBEM_E_QUOTA_VIOLATION), 27, "w:QuotaLimit", true},
    {Code(WBEM_E_SERVER_TOO_BUSY), 27, "w:QuotaLimit", true},
};
// What the wire's own subcodes mean to a client of WMI; a machine that fails with these codes fails
// otherwise.
constexpr Row kWireRows[] = {
    {Code(WBEM_E_TRANSPORT_FAILURE), 1, "w:EncodingLimit"},
    {Code(WBEM_E_UNEXPECTED), 1, "n:InvalidEnumerationContext"},
};
/// Everything else is the machine's own failure.
constexpr Row kInternal{Code(WBEM_E_FAILED), 1, "w:InternalError", true};

Row RowOf(HRESULT code) {
    for (const Row& row : kRows) {
        if (row.code == code) {
            return row;
        }
    }
    Row row = kInternal;
    row.code = code;
    return row;
}

/// An unsigned number of 32 bits, decimal or with 0x before it.
std::optional<HRESULT> ReadCode(std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(isHex ? 2 : 0);
    std::uint32_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number, isHex ? 16 : 10);
    if (read.ec != std::errc() || number == 0 || (!isHex && read.ptr != text.data() + text.size())) {
        return std::nullopt;
    }
    constexpr std::uint32_t kWin32 = 0x80070000U;
    return Code(number < 0x10000U ? kWin32 | number : number);
}

/// A code of WS-Management's own, which no client of WMI knows.
bool IsOfTransport(HRESULT code) {
    return (static_cast<std::uint32_t>(code) & 0xFFFF0000U) == 0x80330000U;
}

std::optional<HRESULT> CodeBehind(std::string_view mark, std::string_view text) {
    const std::size_t place = text.find(mark);
    return place == std::string_view::npos ? std::nullopt : ReadCode(text.substr(place + mark.size()));
}

/// Goes through a fault's detail, whose forms differ; what stands deeper knows more.
class Detail {
  public:
    explicit Detail(const Element& detail) { Visit(detail, 0); }

    std::optional<HRESULT> errorCode;   ///< the provider's own
    std::optional<HRESULT> messageCode; ///< in a message's identifier
    std::optional<HRESULT> statusCode;  ///< of an extended status
    std::optional<HRESULT> inner;       ///< of the innermost fault of the transport
    std::string message;
    std::string faultDetail;

  private:
    void Visit(const Element& holder, std::size_t depth) {
        constexpr std::size_t kDeepest = 16;
        for (Element each = holder.First(); each && depth < kDeepest; each = each.Next()) {
            const std::string_view name = each.Name();
            if (name == "error_Code") {
                Take(errorCode, ReadCode(each.Word()));
            } else if (name == "MessageID") {
                Take(messageCode, CodeBehind("HRESULT ", each.Word()));
            } else if (name == "StatusCode") {
                Take(statusCode, ReadCode(each.Word()));
            } else if (name == "WSManFault") {
                Take(inner, ReadCode(each.Attribute("Code").value_or("")));
            } else if (name == "FaultDetail") {
                const std::string uri = each.Word();
                faultDetail = uri.substr(uri.find_last_of('/') + 1);
            }
            if (name == "Message" && !each.First() && !each.Word().empty()) {
                message = each.Word();
            }
            Visit(each, depth + 1);
        }
    }
    static void Take(std::optional<HRESULT>& place, std::optional<HRESULT> code) {
        if (code) {
            place = code;
        }
    }
};

std::string Shortened(std::string text) {
    constexpr std::size_t kMost = 500;
    if (text.size() > kMost) {
        text.resize(kMost);
    }
    for (char& character : text) {
        character = static_cast<unsigned char>(character) < 0x20 ? ' ' : character;
    }
    return wmi::FromUtf8(text) ? text : std::string();
}

/// What a subcode means where no code is told.
HRESULT MeaningOf(std::string_view subcode, std::string_view detail) {
    const std::string_view local = subcode.substr(subcode.find(':') + 1);
    if (detail == "InvalidNamespace") {
        return Code(WBEM_E_INVALID_NAMESPACE);
    }
    const auto isCalled = [local](const Row& row) {
        const std::string_view known = row.subcode;
        return known.substr(known.find(':') + 1) == local;
    };
    if (const auto* row = std::find_if(std::begin(kRows), std::end(kRows), isCalled);
        row != std::end(kRows)) {
        return row->code;
    }
    const auto* row = std::find_if(std::begin(kWireRows), std::end(kWireRows), isCalled);
    return row != std::end(kWireRows) ? row->code : kInternal.code;
}

} // namespace

std::string CodeText(HRESULT code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(code));
    return text;
}

Fault FaultFor(HRESULT code, const std::string& reason) {
    const Row row = RowOf(code);
    return {code, row.subcode, row.isOurs, row.detail,
            reason.empty() ? "The request failed: HRESULT " + CodeText(code) : reason};
}

void WriteFault(XmlWriter& xml, const Fault& fault, std::string_view machine) {
    const std::string number = std::to_string(static_cast<std::uint32_t>(fault.code));
    xml.Open("s:Fault");
    const bool isMustUnderstand = fault.subcode.empty();
    xml.Open("s:Code").Leaf("s:Value", isMustUnderstand ? "s:MustUnderstand"
                                       : fault.isOurs   ? "s:Receiver"
                                                        : "s:Sender");
    if (!isMustUnderstand) {
        xml.Open("s:Subcode").Leaf("s:Value", fault.subcode).Close();
    }
    xml.Close();
    xml.Open("s:Reason").Open("s:Text").Attribute("xml:lang", "en-US").Text(fault.reason).Close().Close();
    xml.Open("s:Detail");
    if (!fault.detail.empty()) {
        xml.Leaf("w:FaultDetail", "http://schemas.dmtf.org/wbem/wsman/1/wsman/faultDetail/" + fault.detail);
    }
    xml.Open("f:WSManFault").Declare("f", kWsmanFault).Attribute("Code", number);
    xml.Attribute("Machine", machine).Leaf("f:Message", fault.reason).Close();
    // A client that looks for WMI's own code finds it here.
    xml.Open("p:MSFT_WmiError").Declare("p", std::string(kDmtfClasses) + "MSFT_WmiError");
    xml.Declare("b", kBinding).Attribute("b:IsCIM_Error", "true");
    xml.Attribute("xsi:type", "p:MSFT_WmiError_Type");
    xml.Leaf("p:CIMStatusCode", std::to_string(RowOf(fault.code).status)).Leaf("p:ErrorType", "4");
    xml.Leaf("p:Message", fault.reason).Leaf("p:MessageID", "HRESULT " + CodeText(fault.code));
    xml.Leaf("p:PerceivedSeverity", "3").Leaf("p:error_Code", number).Leaf("p:error_Type", "HRESULT");
    xml.Close().Close().Close();
}

Fault ReadFault(const Element& fault) {
    Fault read;
    const Element code = fault.Child("Code");
    read.isOurs = code.Child("Value").Word().find("Receiver") != std::string::npos;
    read.subcode = code.Child("Subcode").Child("Value").Word();
    const Detail detail(fault.Child("Detail"));
    read.detail = detail.faultDetail;
    std::string reason = fault.Child("Reason").Child("Text").Word();
    reason = reason.empty() ? detail.message : reason;
    read.code = MeaningOf(read.subcode, read.detail);
    for (const std::optional<HRESULT>& told : {detail.errorCode, detail.messageCode, detail.statusCode,
                                               detail.inner, CodeBehind("HRESULT ", reason)}) {
        if (told && !IsOfTransport(*told)) {
            read.code = *told;
            read.isCodeTold = true;
            break;
        }
    }
    read.reason = Shortened(std::move(reason));
    return read;
}

} // namespace quillet::wsman
