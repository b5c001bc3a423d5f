// Classes as CIM-XML, the form in which a server tells them.
#pragma once

#include "soap/XmlReader.h"
#include "soap/XmlWriter.h"

#include <quillet-wmi/Model.h>

#include <windows.h>

namespace quillet::wsman {

/// Writes a class with all that it inherits. @param locale in whose language amended texts are; 0: as the
/// schema has them
void WriteClass(XmlWriter& xml, const wmi::ClassDefinition& definition, LCID locale);

/// Reads a "CLASS" element. What is not known in it is passed over. Throws MessageError for what is no class.
wmi::ClassDefinition ReadClass(const Element& element);

} // namespace quillet::wsman
