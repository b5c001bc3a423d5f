// Failures on the wire, and the codes that WMI would have given.
#pragma once

#include "soap/XmlReader.h"
#include "soap/XmlWriter.h"

#include <windows.h>

#include <string>
#include <string_view>

namespace quillet::wsman {

/// What a fault says.
struct Fault {
    HRESULT code = 0;
    std::string subcode{};   ///< "a:DestinationUnreachable", with the prefixes that our own messages declare;
                             ///< empty: a header that had to be understood
    bool isOurs = false;     ///< the receiver's failure, and none of the message
    std::string detail{};    ///< the last part of a fault detail URI: "InvalidResourceURI"; empty: none
    std::string reason{};    ///< for people
    bool isCodeTold = false; ///< of one that was read: the peer knows WMI's codes, and this is one
};

/// "0x80041002".
std::string CodeText(HRESULT code);

/// The fault for a code of WMI's. @param reason for people; empty: the code's name is all there is to say
Fault FaultFor(HRESULT code, const std::string& reason = {});
/// Writes the body of a message that is a fault.
void WriteFault(XmlWriter& xml, const Fault& fault, std::string_view machine);

/// Reads a fault: the code from wherever the peer put it, else what its subcode means. The text of a peer is
/// cut to a length that a message can have.
/// @param fault the "Fault" element
Fault ReadFault(const Element& fault);

} // namespace quillet::wsman
