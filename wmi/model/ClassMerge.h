// What a class takes over from its superclass.
#pragma once

#include <quillet-wmi/Model.h>

namespace quillet::simulator {

/// Completes a definition with what it inherits: properties and methods, qualifiers that propagate.
/// False, with the reason, when the definition cannot stand: bad or double names, an override of another
/// type, a default that does not fit, a key where none may be.
bool MergeClass(ClassDefinition& definition, const ClassDefinition* superclass, std::wstring& reason);

} // namespace quillet::simulator
