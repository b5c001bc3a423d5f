// Operations that only read, as functions of one shape, for tables of operations over a sized machine.
#pragma once

#include "SizedMachine.h"

#include <quillet/Quillet.h>

namespace quillet::tests {

/// Reads something about one object, given by its path, into a record of its own.
template <class Answer>
HRESULT Read(CQuillet& quillet, HRESULT (CQuillet::*operation)(const std::wstring&, Answer&),
             const std::wstring& object) {
    Answer answer{};
    return (quillet.*operation)(object, answer);
}
/// Reads something about the whole machine.
template <class Answer>
HRESULT Read(CQuillet& quillet, HRESULT (CQuillet::*operation)(Answer&)) {
    Answer answer{};
    return (quillet.*operation)(answer);
}

// The functions take the size of the machine, as those do that need it.

template <auto Operation>
HRESULT OfMachine(CQuillet& quillet, unsigned) {
    return Read(quillet, Operation);
}
template <auto Operation, unsigned Number = 1>
HRESULT OfAdapter(CQuillet& quillet, unsigned) {
    return Read(quillet, Operation, AdapterId(Number));
}
template <auto Operation>
HRESULT OfTeam(CQuillet& quillet, unsigned) {
    return Read(quillet, Operation, TeamId(1));
}
template <auto Operation, unsigned Adapter>
HRESULT OfAdapterVlan(CQuillet& quillet, unsigned) {
    return Read(quillet, Operation, AdapterVlanId(Adapter, 1));
}
template <auto Operation>
HRESULT OfTeamVlan(CQuillet& quillet, unsigned) {
    return Read(quillet, Operation, TeamVlanId(1, 1));
}

} // namespace quillet::tests
