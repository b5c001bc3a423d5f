// IWbemQualifierSet: the qualifiers of a class, property or method as one caller may see them.
#pragma once

#include "com/ComObject.h"
#include "connection/Session.h"

namespace quillet::wmi {

/// How a caller looks at qualifiers.
struct QualifierView {
    bool amended = false;    ///< it asked for amended qualifiers
    bool onInstance = false; ///< it holds an instance, to which only some qualifiers pass on
};

/// The qualifiers that a caller sees, each with the text of its language and the flavor it has there.
std::vector<Qualifier> VisibleQualifiers(const Qualifiers& qualifiers, LCID locale, QualifierView view);

/// @param owner the class of the object
IWbemQualifierSet* MakeQualifierSet(SessionPtr session, std::vector<Qualifier> qualifiers, ClassPtr owner);

} // namespace quillet::wmi
