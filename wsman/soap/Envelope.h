// Messages: what stands in the head of one, and their frame.
#pragma once

#include "soap/Addressing.h"
#include "soap/Faults.h"
#include "soap/XmlReader.h"
#include "soap/XmlWriter.h"

#include <quillet-wmi/Connection.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quillet::wsman {

/// The head of a request.
struct RequestHead {
    std::string action;
    std::string messageId;
    Endpoint endpoint;                           ///< the resource; empty where the message has none
    std::string to;                              ///< the URL
    std::size_t maxEnvelope = 512'000;           ///< the most bytes that the answer may have
    std::chrono::milliseconds timeout{60'000};   ///< how long the answer may take
    std::string locale{};                        ///< "de-DE"; empty: none is asked for
    std::vector<wmi::NamedValue> options{};      ///< the values of an IWbemContext
    std::vector<std::string> transportOptions{}; ///< names of those that are not for the provider
    bool hasReplyTo = false;                     ///< whether it says where the answer goes
    bool isLocaleForced = false;                 ///< whether a language must be understood
    std::string notUnderstood{};                 ///< a block that must be understood, and is not
    bool isReplyAnonymous = true;                ///< whether the answer goes back the way it came
};

/// A request with its body.
std::string WriteRequest(const RequestHead& head, std::string_view body);
/// Reads the head of a request. Throws MessageError for what is no envelope, and for a head that lacks what
/// it must have. A message without any head is one of "Identify".
RequestHead ReadRequestHead(const Element& envelope);

/// The frame of an answer. @param relatesTo the identifier of the request; empty: it had none @param
/// notUnderstood the block of the request's head that had to be understood; empty: none. Without an action
/// there is no head.
std::string WriteResponse(std::string_view action, std::string_view relatesTo, std::string_view body,
                          std::string_view notUnderstood = {});

/// The "Body" of an envelope. Throws MessageError where there is not exactly one.
Element BodyOf(const Element& envelope);

/// A new identifier: "uuid:…".
std::string NewMessageId();
/// "PT60.000S".
std::string DurationText(std::chrono::milliseconds time);
/// A duration in seconds, minutes, hours and days; nothing where it is none.
std::optional<std::chrono::milliseconds> ReadDuration(std::string_view text);

} // namespace quillet::wsman
