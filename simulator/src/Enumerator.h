// IEnumWbemClassObject: the answer to an enumeration or a query, taken when it was asked.
#pragma once

#include "Dispatcher.h"
#include "Session.h"

namespace quillet::simulator {

/// An answer and how it may be walked.
struct Enumeration {
    std::wstring target; ///< the class or the query, for the journal
    std::shared_ptr<const std::vector<ProvidedObject>> objects;
    HRESULT status = S_OK; ///< a failure that the first Next reports: the call itself returned at once
    bool amended = false;
    bool forwardOnly = false;
};

IEnumWbemClassObject* MakeEnumerator(SessionPtr session, Enumeration enumeration);

} // namespace quillet::simulator
