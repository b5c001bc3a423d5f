// IEnumWbemClassObject: the answer to an enumeration or a query, taken from a stream.
#pragma once

#include "connection/Session.h"

namespace quillet::wmi {

/// An answer and how it may be walked.
struct Enumeration {
    std::unique_ptr<ObjectStream> objects; ///< null when there is nothing but a failure
    HRESULT status = S_OK; ///< a failure that the first Next reports: the call itself returned at once
    bool amended = false;
    bool forwardOnly = false;
};

IEnumWbemClassObject* MakeEnumerator(SessionPtr session, Enumeration enumeration);

} // namespace quillet::wmi
